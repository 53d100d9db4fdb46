#include "runner/processes/markedprocesses.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>

namespace Tamrix {

namespace {

constexpr std::chrono::milliseconds pollInterval(10);
/// How long after a look that found none the next one follows.
constexpr std::chrono::milliseconds secondLook(3);
/// How long a process may take to be gone once it is killed: on a busy machine a large one takes
/// more than a moment.
constexpr std::chrono::seconds deathPatience(10);

// A limit that is a mark, from its highest bit: 01, 42 bits for the run, 20 for the program.
constexpr int programBits = 20;
constexpr rlim_t markBit = rlim_t{1} << 62;
constexpr rlim_t programMask = (rlim_t{1} << programBits) - 1;
constexpr rlim_t runMask = markBit - 1 - programMask;

std::string readWholeFile(const std::string& path) {
    std::string content;
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return content;
    char block[4096];
    ssize_t size = 0;
    while ((size = ::read(descriptor, block, sizeof(block))) > 0)
        content.append(block, static_cast<size_t>(size));
    ::close(descriptor);
    return content;
}

/// What /proc/PID/stat tells behind the name in brackets, which may hold blanks and brackets.
struct ProcessStatus {
    char state = 'Z';
    pid_t session = -1;
};

ProcessStatus readStatus(const std::string& folder) {
    const std::string line = readWholeFile(folder + "/stat");
    const size_t nameEnd = line.rfind(')');
    if (nameEnd == std::string::npos || nameEnd + 2 >= line.size())
        return {};
    ProcessStatus status;
    status.state = line[nameEnd + 2];
    // Behind the state: parent, process group, session.
    const char* position = line.c_str() + nameEnd + 3;
    char* end = nullptr;
    std::strtol(position, &end, 10);
    std::strtol(end, &end, 10);
    status.session = static_cast<pid_t>(std::strtol(end, &end, 10));
    return status;
}

/// The value of a variable among "NAME=VALUE" entries, each with a zero behind it.
std::string environmentValue(const std::string& entries, const std::string& name) {
    const std::string start = name + '=';
    for (size_t position = 0; position < entries.size();) {
        const size_t end = std::min(entries.find('\0', position), entries.size());
        if (entries.compare(position, start.size(), start) == 0)
            return entries.substr(position + start.size(), end - position - start.size());
        position = end + 1;
    }
    return {};
}

/// Whether a process carries the mark in its limit.
bool hasLimitOf(pid_t process, const ProcessFilter& filter) {
    rlimit limit{};
    if (::prlimit(process, RLIMIT_RTTIME, nullptr, &limit) != 0)
        return false;
    const rlim_t wanted = limitOfMark(filter.mark);
    return filter.isWholeMark ? limit.rlim_cur == wanted
                              : (limit.rlim_cur & ~programMask) == (wanted & ~programMask);
}

void noteOnce(std::vector<pid_t>* processes, pid_t process) {
    if (processes && std::find(processes->begin(), processes->end(), process) == processes->end())
        processes->push_back(process);
}

}  // namespace

unsigned long long limitOfMark(const std::string& mark) {
    const size_t separator = std::min(mark.rfind(':'), mark.size());
    // FNV-1a, which spreads the run's name over all bits.
    rlim_t hash = 0xcbf29ce484222325;
    for (const char c : mark.substr(0, separator))
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    const char* const number =
        separator < mark.size() ? mark.c_str() + separator + 1 : mark.c_str() + separator;
    return markBit | (hash & runMask) | (std::strtoull(number, nullptr, 10) & programMask);
}

void markThisProcess(unsigned long long limit) {
    rlimit current{};
    if (::getrlimit(RLIMIT_RTTIME, &current) != 0 || current.rlim_max < limit)
        return;
    current.rlim_cur = limit;
    // The hard limit stays, so that this can't fail.
    ::setrlimit(RLIMIT_RTTIME, &current);
}

bool isMeant(pid_t process, const ProcessFilter& filter) {
    if (process == ::getpid())
        return false;
    const std::string folder = "/proc/" + std::to_string(process);
    const ProcessStatus status = readStatus(folder);
    if (status.state == 'Z' || status.state == 'X')
        return false;
    if (filter.session > 0 && status.session == filter.session)
        return true;
    if (filter.mark.empty())
        return false;
    if (hasLimitOf(process, filter))
        return true;
    const std::string mark = environmentValue(readWholeFile(folder + "/environ"), runMarkVariable);
    return filter.isWholeMark ? mark == filter.mark : mark.rfind(filter.mark, 0) == 0;
}

std::vector<pid_t> findProcesses(const ProcessFilter& filter) {
    std::vector<pid_t> processes;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(::opendir("/proc"), ::closedir);
    while (const dirent* entry = folder ? ::readdir(folder.get()) : nullptr) {
        const auto process = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        if (process > 0 && isMeant(process, filter))
            processes.push_back(process);
    }
    return processes;
}

int endProcesses(const ProcessFilter& filter, int patience, std::vector<pid_t>* killed) {
    using Clock = std::chrono::steady_clock;
    const auto killTime = Clock::now() + std::chrono::milliseconds(patience);
    const auto lastTime = killTime + deathPatience;
    std::vector<pid_t> asked;
    std::vector<pid_t> processes = findProcesses(filter);
    // A process can be missed that comes up during a look, or shows no mark for the moment in which
    // it becomes another program.
    bool isSure = false;
    while (!processes.empty() || !isSure) {
        isSure = processes.empty();
        const auto now = Clock::now();
        if (now >= lastTime)
            break;
        for (const pid_t process : processes) {
            if (now >= killTime) {
                ::kill(process, SIGKILL);
                noteOnce(killed, process);
            } else if (std::find(asked.begin(), asked.end(), process) == asked.end()) {
                ::kill(process, SIGTERM);
                // A stopped process takes the request when it goes on.
                ::kill(process, SIGCONT);
                asked.push_back(process);
            }
        }
        std::this_thread::sleep_for(isSure ? secondLook : pollInterval);
        processes = findProcesses(filter);
    }
    return static_cast<int>(processes.size());
}

}  // namespace Tamrix
