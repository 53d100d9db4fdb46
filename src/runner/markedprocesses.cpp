#include "runner/markedprocesses.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <thread>

namespace Tamrix {

namespace {

constexpr std::chrono::milliseconds pollInterval(10);

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

}  // namespace

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

int endProcesses(const ProcessFilter& filter, int patience) {
    using Clock = std::chrono::steady_clock;
    const auto killTime = Clock::now() + std::chrono::milliseconds(patience);
    const auto lastTime = killTime + std::chrono::seconds(1);
    std::vector<pid_t> processes = findProcesses(filter);
    if (patience > 0) {
        for (const pid_t process : processes) {
            ::kill(process, SIGTERM);
            // A stopped process takes the request when it goes on.
            ::kill(process, SIGCONT);
        }
    }
    while (!processes.empty()) {
        const auto now = Clock::now();
        if (now >= lastTime)
            break;
        if (now >= killTime) {
            for (const pid_t process : processes)
                ::kill(process, SIGKILL);
        }
        std::this_thread::sleep_for(pollInterval);
        processes = findProcesses(filter);
    }
    return static_cast<int>(processes.size());
}

}  // namespace Tamrix
