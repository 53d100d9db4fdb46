#pragma once

#include <QString>
#include <string>
#include <variant>

#include "base/export.h"

// What a debugger says to whoever drives it, in whatever form that travels. What a stop can be due
// to is a variant: a further reason is a struct here, and every front end says how it is written.

namespace Tamrix {

class Debugger;

/// Where a script stands. Lines are counted from 1; -1 stands for an unknown line or column.
struct ScriptPosition {
    /// The path of the source, the null string when unknown.
    QString file;
    int line = -1;
    int column = -1;
};

// Why a script stopped.

/// A line was reached: by stepping, at a break point, or because of an interrupt.
struct LineReached {};

struct ObjectNotFound {
    QString name;
    /// Why it was not found; may be empty.
    QString detail;
};

struct ImageNotFound {
    QString name;
    /// 3 when the search settings can be relaxed and no other fix was asked for, 2 when they can't.
    int target = 0;
    /// Where the screenshot is that was searched.
    QString screenshot;
};

struct TextNotFound {
    QString screenshot;
};

/// A step of a feature has no definition. The position has the line in the feature file alone.
struct StepMissing {
    std::string text;
};

struct StopReason
    : std::variant<LineReached, ObjectNotFound, ImageNotFound, TextNotFound, StepMissing> {
    using variant::variant;
};

/// The side of a debugger that speaks with whoever drives it: a person at a terminal, an editor, a
/// test. All calls come on the script thread, but for a stop by SIGINT, see stopOnInterrupt().
class TAMRIX_EXPORT DebuggerFrontEnd {
public:
    virtual ~DebuggerFrontEnd() = default;

    /// The script has stopped. performCommands() follows when it waits.
    virtual void stopped(const ScriptPosition& position, const StopReason& reason) = 0;
    /// The script passes a line without stopping, for a front end that highlights it.
    virtual void passed(const ScriptPosition& position) = 0;
    /// Progress and information.
    virtual void notify(const QString& key, const QString& value) = 0;

    /// Performs what it is commanded upon the debugger, on which a stop waits, until a command lets
    /// the script go on. Waits for commands without limit. False when none will come: the script
    /// then goes on in its mode.
    virtual bool performCommands(Debugger& debugger) = 0;
};

}  // namespace Tamrix
