#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace Tamrix::Dap {

/// A line of a script.
struct ScriptPlace {
    QString file;
    int line = 0;

    bool operator==(const ScriptPlace&) const = default;
};

/// Why a script stopped, as far as the debugger tells it.
enum class StopKind {
    Line,            ///< it reached a line, whatever made it stop there
    ObjectNotFound,  ///< an object was looked for in vain
    ImageNotFound,
    TextNotFound,
    StepMissing  ///< a step of a feature has no definition
};

struct Stop {
    StopKind kind = StopKind::Line;
    ScriptPlace place;
    /// From 1 on, 0 when unknown.
    int column = 0;
    /// What was not found, or the step's text; may be empty.
    QString subject;
    /// More about it, may be empty.
    QString detail;
};

// The lines of the debugger's protocol as values, each behind its prefix. A line that is something
// else gives nothing.

/// A line that tells of a stop.
std::optional<Stop> readStop(const QByteArray& line);

/// A line of an answer to "backtrace".
std::optional<ScriptPlace> readFrame(const QByteArray& line);

/// Progress or information that the program tells unasked.
struct Notice {
    QString key;
    QString value;
};
std::optional<Notice> readNotice(const QByteArray& line);

/// One entry of a listing of variables. A name that begins with "+" can be listed in its turn, and
/// is the path of that listing.
struct Binding {
    QString type;
    QString name;
    /// Null when there is none.
    QString value;
};
/// An answer to "print variables".
std::optional<std::vector<Binding>> readListing(const QByteArray& line);

}  // namespace Tamrix::Dap
