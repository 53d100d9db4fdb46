#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "base/outcome.h"
#include "dap/program/debuggee.h"
#include "dap/protocol/messages.h"
#include "dap/session/hitcondition.h"

namespace Tamrix::Dap {

/// A break point that a client has set.
struct ScriptBreakPoint {
    enum class State {
        Waiting,  ///< the debugger does not know it yet
        Set,
        Buffered,  ///< set, in a file that the script has not loaded yet
        Refused    ///< it can't be set
    };

    int id = 0;
    /// With the path as the debugger tells it.
    ScriptPlace place;
    /// The path as the client gave it.
    QString clientPath;
    QString condition;
    std::optional<HitCondition> hitCondition;
    QString logMessage;
    State state = State::Waiting;
    /// Why it was refused.
    QString problem;
    /// How often the script reached it, with its condition true.
    int hits = 0;

    /// The script may pass it without stopping.
    bool mayPass() const { return !condition.isEmpty() || hitCondition || !logMessage.isEmpty(); }
};

/// The break points of a session, and what the debugger knows of them.
class BreakPoints {
public:
    /// Puts these in the place of all in the file: those at the same line keep their number and
    /// their count. Returns them in their order.
    std::vector<const ScriptBreakPoint*> replace(const QString& path,
                                                 const std::vector<SourceBreakpoint>& wanted);
    /// Whether the debugger is to be told something.
    bool hasChanges() const;
    /// Tells the debugger, whose script stands still. Returns those that the client does not know
    /// the state of.
    std::vector<const ScriptBreakPoint*> apply(Debuggee& debuggee);
    /// The debugger knows nothing any more: another test case has begun.
    void forgetDebugger();
    /// Another run: nothing was reached yet.
    void forgetHits();

    /// Null when there is none. A file is known by its bare name as well.
    ScriptBreakPoint* at(const ScriptPlace& place);
    /// Whether the debugger may stop there for what is no break point any more.
    bool isLeftOver(const ScriptPlace& place) const;
    /// Whether a stop may have to be passed.
    bool mayPass() const;
    /// The path under which the client knows a file.
    QString clientPath(const QString& file) const;

private:
    /// The debugger is to delete it.
    void abandon(const ScriptPlace& place);

    std::vector<std::unique_ptr<ScriptBreakPoint>> m_all;
    /// What the debugger is to delete, or could not delete yet.
    std::vector<ScriptPlace> m_leftOver;
    bool m_hasDeletions = false;
    int m_lastId = 0;
};

}  // namespace Tamrix::Dap
