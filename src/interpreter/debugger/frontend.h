#pragma once

#include <QString>
#include <optional>
#include <string>
#include <variant>

#include "base/export.h"
#include "base/outcome.h"

// What a debugger and whoever drives it say to each other, in whatever form that travels. What a
// stop can be due to, what can be commanded and what is answered are variants: a further one is a
// struct here, and every front end says how it is written or read.

namespace Tamrix {

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

// What a front end can command while the script stands still.

/// Lets the script go on.
struct Resume {
    enum Mode {
        Next,    ///< to the next line that is not in a function called from here
        Return,  ///< until the current function has returned
        Step,    ///< to the next line
        Run      ///< to the next break point
    };
    Mode mode = Run;
};

struct SetBreakPoint {
    QString file;
    int line = 0;
};

struct DeleteBreakPoint {
    QString file;
    int line = 0;
};

using DebuggerCommand = std::variant<Resume, SetBreakPoint, DeleteBreakPoint>;

/// The answer to a command about a break point: where it is or was.
struct BreakPointReply {
    /// The path of the source, or for a file that is not loaded yet the path made absolute.
    QString file;
    int line = 0;
    /// It takes effect once the file is loaded.
    bool isBuffered = false;
};

/// The side of a debugger that speaks with whoever drives it: a person at a terminal, an editor, a
/// test. All calls come on the script thread, but for a stop by SIGINT, see stopOnInterrupt().
class TAMRIX_EXPORT DebuggerFrontEnd {
public:
    virtual ~DebuggerFrontEnd() = default;

    /// The script has stopped. What it waits for comes from waitForCommand(), if anything.
    virtual void stopped(const ScriptPosition& position, const StopReason& reason) = 0;
    /// The script passes a line without stopping, for a front end that highlights it.
    virtual void passed(const ScriptPosition& position) = 0;
    /// Progress and information.
    virtual void notify(const QString& key, const QString& value) = 0;

    /// Waits without limit for the next command. Nothing when there will be none: the script then
    /// goes on in its mode.
    virtual std::optional<DebuggerCommand> waitForCommand() = 0;
    /// Answers a command. One that lets the script go on has no answer.
    virtual void reply(const DebuggerCommand& command, const Outcome<BreakPointReply>& answer) = 0;
};

}  // namespace Tamrix
