#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

#include "dap/program/debuggee.h"
#include "dap/program/journaltail.h"
#include "dap/session/breakpoints.h"
#include "dap/session/exceptionfilters.h"

namespace Tamrix::Dap {

/// A stop that the client is to see.
struct ReportedStop {
    /// As the protocol names it.
    QString reason;
    QString description;
    /// What was not found, which verdict failed; null for other reasons.
    QString text;
    QString detail = {};
    std::vector<int> hitBreakPoints = {};
};

/// The client is not to see it.
struct PassedStop {
    Resume how = Resume::Continue;
};

using StopJudgement = std::variant<ReportedStop, PassedStop>;

/// Finds out why a script stopped, which the debugger does not tell for a line: because of a break
/// point, whose condition and count may want it to go on, a step that is done, a pause, a failed
/// verdict.
class StopJudge {
public:
    /// Takes what log points say.
    using Log = std::function<void(const QString& text, const ScriptPlace& place)>;

    /// Neither is owned.
    StopJudge(BreakPoints& breakPoints, const ExceptionFilters& filters, Log log)
        : m_breakPoints(breakPoints), m_filters(filters), m_log(std::move(log)) {}

    /// The client lets the script go on. Asks the debugger where that is, if a step may have to
    /// pass break points.
    void resumed(Resume how, Debuggee& debuggee);
    void resultTold(const ResultTold& result);
    /// The next stop is for an error that the script does not catch.
    void errorTold(const QString& text) { m_error = text; }
    /// The client wants a stop, wherever that is.
    void pauseWanted() { m_isPauseWanted = true; }
    bool isPauseWanted() const { return m_isPauseWanted; }
    /// Another case begins: no step goes on from one to the next.
    void caseBegan() { m_step.reset(); }

    StopJudgement judge(const Stop& stop, Debuggee& debuggee);
    /// The same for a line to which nothing but an interrupt led.
    StopJudgement judgeInterrupted(const Stop& stop, Debuggee& debuggee);

private:
    struct Step {
        Resume how;
        /// How many callers there may be for the step to be done; nothing for any number.
        std::optional<std::size_t> mostCallers;
    };
    std::optional<ReportedStop> judgeBreakPoint(const Stop& stop, Debuggee& debuggee,
                                                bool* isBreakPoint);
    std::optional<ReportedStop> judgeNotFound(const Stop& stop) const;
    QString logText(const QString& message, Debuggee& debuggee) const;
    bool isStepDone(Debuggee& debuggee) const;
    PassedStop onwards() const;

    BreakPoints& m_breakPoints;
    const ExceptionFilters& m_filters;
    Log m_log;
    std::optional<Step> m_step;
    /// The last failure since the script went on.
    std::optional<ResultTold> m_failure;
    std::optional<QString> m_error;
    bool m_isPauseWanted = false;
};

}  // namespace Tamrix::Dap
