#include "dap/session/stopjudge.h"

#include "dap/session/language.h"
#include "dap/session/logmessage.h"

namespace Tamrix::Dap {

namespace {

/// What a stop for something that was not found is called.
struct NotFoundText {
    StopKind kind;
    const char* description;
};
constexpr NotFoundText notFoundTexts[] = {
    {StopKind::ObjectNotFound, "Object not found"},
    {StopKind::ImageNotFound, "Image not found"},
    {StopKind::TextNotFound, "Text not found"},
    {StopKind::StepMissing, "Step without definition"},
};

}  // namespace

void StopJudge::resumed(Resume how, Debuggee& debuggee) {
    m_failure.reset();
    m_step.reset();
    if (how == Resume::Continue || how == Resume::SkipError)
        return;
    Step step{how, std::nullopt};
    if (how != Resume::StepIn && m_breakPoints.mayPass()) {
        if (const Outcome<std::vector<ScriptPlace>> callers = debuggee.callers())
            step.mostCallers = callers->size() - (how == Resume::StepOut && !callers->empty());
    }
    m_step = step;
}

void StopJudge::resultTold(const ResultTold& result) {
    if (result.isFailure)
        m_failure = result;
}

StopJudgement StopJudge::judge(const Stop& stop, Debuggee& debuggee) {
    // What was not found is told by name.
    if (stop.kind != StopKind::Line) {
        if (std::optional<ReportedStop> report = judgeNotFound(stop))
            return *report;
        return PassedStop{Resume::SkipError};
    }
    // An error that leaves the script.
    if (const std::optional<QString> error = std::exchange(m_error, std::nullopt)) {
        if (!m_filters.stopsAtScriptErrors())
            return onwards();
        return ReportedStop{"exception", "Script error", *error};
    }
    // A verdict that failed at this line, after which the script was to stop.
    if (m_failure && m_failure->place == stop.place) {
        const ResultTold failure = *std::exchange(m_failure, std::nullopt);
        return ReportedStop{"exception", "Failed verdict",
                            failure.detail.isEmpty()
                                ? failure.message
                                : failure.message + QLatin1String(": ") + failure.detail};
    }
    bool isBreakPoint = false;
    if (std::optional<ReportedStop> report = judgeBreakPoint(stop, debuggee, &isBreakPoint))
        return *report;
    if (m_isPauseWanted) {
        m_isPauseWanted = false;
        return ReportedStop{"pause", "Paused", {}};
    }
    if (m_step && (!isBreakPoint || isStepDone(debuggee)))
        return ReportedStop{"step", "Stepped", {}};
    if (isBreakPoint)
        return onwards();
    // Nothing here wanted it but the script itself.
    return ReportedStop{"breakpoint", "Stopped by the script", {}};
}

StopJudgement StopJudge::judgeInterrupted(const Stop& stop, Debuggee& debuggee) {
    bool isBreakPoint = false;
    if (stop.kind != StopKind::Line || m_isPauseWanted)
        return judge(stop, debuggee);
    if (std::optional<ReportedStop> report = judgeBreakPoint(stop, debuggee, &isBreakPoint))
        return *report;
    return onwards();
}

std::optional<ReportedStop> StopJudge::judgeNotFound(const Stop& stop) const {
    // Switched off since the search began.
    if ((stop.kind == StopKind::ObjectNotFound && !m_filters.stopsAtMissingObjects()) ||
        (stop.kind == StopKind::ImageNotFound && !m_filters.stopsAtMissingImages()))
        return std::nullopt;
    for (const NotFoundText& text : notFoundTexts) {
        if (text.kind == stop.kind)
            return ReportedStop{"exception", QString::fromLatin1(text.description), stop.subject,
                                stop.detail};
    }
    return std::nullopt;
}

std::optional<ReportedStop> StopJudge::judgeBreakPoint(const Stop& stop, Debuggee& debuggee,
                                                       bool* isBreakPoint) {
    ScriptBreakPoint* const breakPoint = m_breakPoints.at(stop.place);
    *isBreakPoint = breakPoint || m_breakPoints.isLeftOver(stop.place);
    if (!breakPoint)
        return std::nullopt;
    // A condition that can't be evaluated stops the script: somebody has to see it.
    QString problem;
    if (!breakPoint->condition.isEmpty()) {
        const Outcome<bool> holds =
            conditionHolds(debuggee, stop.place.file, breakPoint->condition);
        if (!holds)
            problem = QStringLiteral("The condition '%1' failed: %2")
                          .arg(breakPoint->condition, holds.error().text);
        else if (!*holds)
            return std::nullopt;
    }
    ++breakPoint->hits;
    if (problem.isNull() && breakPoint->hitCondition &&
        !breakPoint->hitCondition->holds(breakPoint->hits))
        return std::nullopt;
    if (problem.isNull() && !breakPoint->logMessage.isEmpty()) {
        m_log(logText(breakPoint->logMessage, debuggee), stop.place);
        return std::nullopt;
    }
    m_isPauseWanted = false;
    return ReportedStop{"breakpoint", "Break point reached", problem, {}, {breakPoint->id}};
}

QString StopJudge::logText(const QString& message, Debuggee& debuggee) const {
    QString text;
    for (const LogPart& part : splitLogMessage(message)) {
        if (!part.isCode) {
            text += part.text;
            continue;
        }
        const Outcome<QString> value = debuggee.evaluate(part.text);
        text += value ? *value : value.error().text;
    }
    return text;
}

bool StopJudge::isStepDone(Debuggee& debuggee) const {
    if (!m_step->mostCallers)
        return true;
    const Outcome<std::vector<ScriptPlace>> callers = debuggee.callers();
    return !callers || callers->size() <= *m_step->mostCallers;
}

PassedStop StopJudge::onwards() const {
    // A step that was held up in a function that it called goes back to where it came from.
    return {m_step ? Resume::StepOut : Resume::Continue};
}

}  // namespace Tamrix::Dap
