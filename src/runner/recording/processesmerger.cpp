#include "runner/recording/processesmerger.h"

#include <utility>

namespace Tamrix {

namespace {

/// What a person does in one process ends what was done in another; the rest comes by itself.
bool isDoneByPerson(const Wire::Observation& observation) {
    return !std::holds_alternative<Wire::ObservedState>(observation) &&
           !std::holds_alternative<Wire::ObservedRest>(observation);
}

}  // namespace

ProcessesMerger::ProcessesMerger(ActionMerger::Take take, ActionMerger::NameOf nameOf)
    : m_take(std::move(take)), m_nameOf(std::move(nameOf)) {}

int ProcessesMerger::addProcess(const QString& name) {
    const auto process = static_cast<int>(m_processes.size());
    const bool isFirst = process == 0;
    m_processes.push_back(
        {name,
         std::make_unique<ActionMerger>(
             [this, process](const ScriptAction& action) { give(process, action); }, m_nameOf),
         isFirst});
    return process;
}

void ProcessesMerger::add(int process, const Wire::Observation& observation, qint64 now) {
    for (size_t other = 0; isDoneByPerson(observation) && other < m_processes.size(); ++other) {
        if (static_cast<int>(other) != process)
            m_processes[other].merger->finish();
    }
    m_processes[static_cast<size_t>(process)].merger->add(observation, now);
}

void ProcessesMerger::idle(qint64 now) {
    for (const Process& process : m_processes)
        process.merger->idle(now);
}

void ProcessesMerger::finish() {
    for (const Process& process : m_processes)
        process.merger->finish();
}

void ProcessesMerger::give(int process, const ScriptAction& action) {
    if (process != m_current)
        makeCurrent(process);
    m_take(action);
}

void ProcessesMerger::makeCurrent(int process) {
    m_current = process;
    FunctionAction action{QStringLiteral("setApplicationContext"), {}, {}};
    // 1. One that the script knows.
    if (m_processes[static_cast<size_t>(process)].isTaken) {
        action.arguments = {NamedContext{m_processes[static_cast<size_t>(process)].name}};
        m_take(action);
        return;
    }
    // 2. A new one, behind those that came before it, in which nothing was done.
    for (size_t earlier = 0; earlier < static_cast<size_t>(process); ++earlier) {
        if (!std::exchange(m_processes[earlier].isTaken, true))
            m_take(FunctionAction{QStringLiteral("waitForApplicationLaunch"), {}, {}});
    }
    m_processes[static_cast<size_t>(process)].isTaken = true;
    action.arguments = {LaunchedContext{}};
    m_take(action);
}

}  // namespace Tamrix
