#include "runner/applications/startedprograms.h"

#include <algorithm>
#include <csignal>

namespace Tamrix {

namespace {

constexpr int settlingInterval = 200;
/// How long the last output of a program may take behind its end.
constexpr int outputPatience = 200;

}  // namespace

void StartedPrograms::add(const Pointer& program) {
    m_running.push_back({program});
    m_recent.push_back(program);
    if (m_recent.size() <= recentCount)
        return;
    if (m_recent.front()->hasSettled())
        m_recent.front()->keepLittleOutput();
    m_recent.pop_front();
}

void StartedPrograms::remove(const Pointer& program) {
    const auto isIt = [&](const Running& each) { return each.program == program; };
    m_running.erase(std::remove_if(m_running.begin(), m_running.end(), isIt), m_running.end());
    m_recent.erase(std::remove(m_recent.begin(), m_recent.end(), program), m_recent.end());
}

StartedPrograms::Pointer StartedPrograms::of(pid_t process) const {
    for (const Running& each : m_running) {
        if (each.program->process().pid() == process || each.program->includes(process))
            return each.program;
    }
    return nullptr;
}

bool StartedPrograms::isAnyAlive() {
    return std::any_of(m_running.begin(), m_running.end(),
                       [](const Running& each) { return each.program->isAlive(); });
}

bool StartedPrograms::isRecent(const Pointer& program) const {
    return std::find(m_recent.begin(), m_recent.end(), program) != m_recent.end();
}

std::vector<StartedPrograms::Pointer> StartedPrograms::ofInterest(const Pointer& current) const {
    std::vector<Pointer> programs;
    if (current && !isRecent(current))
        programs.push_back(current);
    programs.insert(programs.end(), m_recent.begin(), m_recent.end());
    return programs;
}

// Ends

void StartedPrograms::work() {
    // Each call of a script comes here, and the clock costs more than the rest of it.
    if (m_running.empty())
        return;
    const bool isSettlingDue = m_nextSettling.hasExpired();
    if (isSettlingDue) {
        for (const Running& each : m_running)
            each.program->process().hasEnded();
    }
    noteEnds();
    if (!isSettlingDue)
        return;
    const auto hasSettled = [this](const Running& each) {
        // One that has ended just now is to be noted first.
        if ((each.program->isWatched() && !each.isEndNoted) || !each.program->settle())
            return false;
        if (!isRecent(each.program))
            each.program->keepLittleOutput();
        return true;
    };
    m_running.erase(std::remove_if(m_running.begin(), m_running.end(), hasSettled),
                    m_running.end());
    m_nextSettling.setRemainingTime(settlingInterval);
}

void StartedPrograms::noteEnds() {
    for (Running& each : m_running) {
        // Every call of a script comes here; whoever works with the program looks before.
        if (each.isEndNoted || !each.program->isWatched() ||
            !each.program->process().wasSeenEnded())
            continue;
        each.isEndNoted = true;
        if (!each.program->isExitExpected())
            noteEnd(*each.program);
    }
}

void StartedPrograms::noteEnd(StartedProgram& program) {
    const ChildProcess& process = program.process();
    const int signal = process.endSignal();
    const bool isOwnDoing =
        m_endCause == EndCause::Terminated &&
        (signal == 0 || signal == SIGTERM || (signal == SIGKILL && program.wasKilled()));
    // Below 0: nobody knows, since the script itself waited for the process.
    if (process.exitCode() <= 0 || isOwnDoing)
        return;
    program.output().waitForEnd(outputPatience);
    m_ends.push_back({signal != 0, program.endText()});
}

QStringList StartedPrograms::endAll(int patience) {
    QStringList left;
    for (const Running& each : m_running) {
        if (each.program->end(patience) > 0)
            left.append(each.program->start().name);
    }
    noteEnds();
    m_running.clear();
    m_recent.clear();
    m_endCause = EndCause::None;
    return left;
}

}  // namespace Tamrix
