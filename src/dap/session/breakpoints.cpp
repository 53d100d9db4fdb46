#include "dap/session/breakpoints.h"

#include <QFileInfo>
#include <algorithm>

namespace Tamrix::Dap {

namespace {

using State = ScriptBreakPoint::State;

bool isKnownToDebugger(const ScriptBreakPoint& breakPoint) {
    return breakPoint.state == State::Set || breakPoint.state == State::Buffered;
}

/// As the debugger tells it: absolute, links resolved.
QString debuggerPath(const QString& path) {
    const QString resolved = QFileInfo(path).canonicalFilePath();
    return resolved.isEmpty() ? path : resolved;
}

}  // namespace

std::vector<const ScriptBreakPoint*> BreakPoints::replace(
    const QString& path, const std::vector<SourceBreakpoint>& wanted) {
    const QString file = debuggerPath(path);
    const auto firstOfFile = std::stable_partition(
        m_all.begin(), m_all.end(), [&](const auto& each) { return each->place.file != file; });
    std::vector<std::unique_ptr<ScriptBreakPoint>> before(std::make_move_iterator(firstOfFile),
                                                          std::make_move_iterator(m_all.end()));
    m_all.erase(firstOfFile, m_all.end());

    std::vector<const ScriptBreakPoint*> result;
    for (const SourceBreakpoint& each : wanted) {
        const auto old = std::find_if(before.begin(), before.end(), [&](const auto& candidate) {
            return candidate && candidate->place.line == each.line;
        });
        auto breakPoint =
            old == before.end() ? std::make_unique<ScriptBreakPoint>() : std::move(*old);
        if (breakPoint->id == 0)
            breakPoint->id = ++m_lastId;
        breakPoint->place = {file, each.line};
        breakPoint->clientPath = path;
        breakPoint->condition = each.condition.value_or(QString()).trimmed();
        breakPoint->logMessage = each.logMessage.value_or(QString());
        breakPoint->hitCondition.reset();
        if (breakPoint->state == State::Refused)
            breakPoint->state = State::Waiting;
        const QString hitCondition = each.hitCondition.value_or(QString()).trimmed();
        if (!hitCondition.isEmpty()) {
            const Outcome<HitCondition> parsed = HitCondition::parse(hitCondition);
            if (parsed) {
                breakPoint->hitCondition = *parsed;
            } else {
                if (isKnownToDebugger(*breakPoint))
                    abandon(breakPoint->place);
                breakPoint->state = State::Refused;
                breakPoint->problem = parsed.error().text;
            }
        }
        // It is wanted again before it could be deleted.
        if (breakPoint->state != State::Refused)
            std::erase(m_leftOver, breakPoint->place);
        result.push_back(breakPoint.get());
        m_all.push_back(std::move(breakPoint));
    }
    for (const auto& each : before) {
        if (each && isKnownToDebugger(*each))
            abandon(each->place);
    }
    return result;
}

void BreakPoints::abandon(const ScriptPlace& place) {
    m_leftOver.push_back(place);
    m_hasDeletions = true;
}

bool BreakPoints::hasChanges() const {
    return m_hasDeletions || std::any_of(m_all.begin(), m_all.end(), [](const auto& each) {
               return each->state == State::Waiting;
           });
}

std::vector<const ScriptBreakPoint*> BreakPoints::apply(Debuggee& debuggee) {
    // One in a file that is not loaded yet can't be deleted now, and stays left over.
    std::erase_if(m_leftOver, [&](const ScriptPlace& place) {
        return debuggee.deleteBreakPoint(place).has_value();
    });
    m_hasDeletions = false;
    std::vector<const ScriptBreakPoint*> changed;
    for (const auto& each : m_all) {
        if (each->state != State::Waiting)
            continue;
        const Outcome<bool> isBuffered = debuggee.setBreakPoint(each->place);
        if (!isBuffered && isBuffered.error().kind != FailureKind::Refused)
            break;
        if (isBuffered) {
            each->state = *isBuffered ? State::Buffered : State::Set;
        } else {
            each->state = State::Refused;
            each->problem = isBuffered.error().text;
        }
        changed.push_back(each.get());
    }
    return changed;
}

void BreakPoints::forgetDebugger() {
    m_leftOver.clear();
    m_hasDeletions = false;
    for (const auto& each : m_all) {
        if (isKnownToDebugger(*each))
            each->state = State::Waiting;
    }
}

void BreakPoints::forgetHits() {
    for (const auto& each : m_all)
        each->hits = 0;
}

ScriptBreakPoint* BreakPoints::at(const ScriptPlace& place) {
    const auto found = std::find_if(m_all.begin(), m_all.end(), [&](const auto& each) {
        return each->place == place && isKnownToDebugger(*each);
    });
    return found == m_all.end() ? nullptr : found->get();
}

bool BreakPoints::isLeftOver(const ScriptPlace& place) const {
    return std::find(m_leftOver.begin(), m_leftOver.end(), place) != m_leftOver.end();
}

bool BreakPoints::mayPass() const {
    return !m_leftOver.empty() || std::any_of(m_all.begin(), m_all.end(),
                                              [](const auto& each) { return each->mayPass(); });
}

QString BreakPoints::clientPath(const QString& file) const {
    const auto found = std::find_if(m_all.begin(), m_all.end(),
                                    [&](const auto& each) { return each->place.file == file; });
    return found == m_all.end() ? file : (*found)->clientPath;
}

}  // namespace Tamrix::Dap
