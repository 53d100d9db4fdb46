#include "runner/processes/processstate.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>
#include <QtGlobal>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <utility>

namespace Tamrix {

namespace {

std::vector<std::string> environmentEntries() {
    std::vector<std::string> entries;
    for (char** entry = environ; entry && *entry; ++entry)
        entries.emplace_back(*entry);
    return entries;
}

mode_t currentFileMask() {
    // The mask can only be read by setting it.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return mask;
}

/// Signals whose handling a language changes for good when it starts, and those that end a run.
bool isLeftAlone(int signal) {
    constexpr int ones[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGKILL, SIGSTOP};
    return std::ranges::find(ones, signal) != std::end(ones);
}

bool isFunction(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ||
           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

void stopTimers() {
    const itimerval none{};
    for (const auto timer : {ITIMER_REAL, ITIMER_VIRTUAL, ITIMER_PROF})
        ::setitimer(timer, &none, nullptr);
}

/// Whether a descriptor may be one of ours or of a library: a socket, the end of a pipe that is
/// read, or what has no name, as an event descriptor.
bool mayBeInUse(int descriptor, const struct stat& facts) {
    if (S_ISFIFO(facts.st_mode))
        return (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY;
    return S_ISSOCK(facts.st_mode) || (facts.st_mode & S_IFMT) == 0;
}

}  // namespace

ProcessState::ProcessState()
    : m_directory(::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)),
      m_environment(environmentEntries()),
      m_locale(std::setlocale(LC_ALL, nullptr)),
      m_fileMask(currentFileMask()),
      m_priority(::getpriority(PRIO_PROCESS, 0)) {
    pthread_sigmask(SIG_SETMASK, nullptr, &m_blockedSignals);
    for (int signal = 1; signal < NSIG; ++signal)
        ::sigaction(signal, nullptr, &m_signalActions[static_cast<size_t>(signal)]);
    for (const auto resource :
         {RLIMIT_NOFILE, RLIMIT_FSIZE, RLIMIT_CORE, RLIMIT_CPU, RLIMIT_DATA, RLIMIT_AS}) {
        Limit limit{resource, {}};
        if (::getrlimit(resource, &limit.value) == 0)
            m_limits.push_back(limit);
    }
}

ProcessState::~ProcessState() {
    if (m_directory >= 0) {
        if (::fchdir(m_directory) != 0)
            qWarning("Can't return to the working directory: %s", std::strerror(errno));
        ::close(m_directory);
    }
    restoreEnvironment();
    ::tzset();
    std::setlocale(LC_ALL, m_locale.c_str());
    ::umask(m_fileMask);
    restoreSignals();
    restoreLimits();
}

void ProcessState::restoreEnvironment() const {
    if (environmentEntries() == m_environment)
        return;
    ::clearenv();
    for (const std::string& entry : m_environment) {
        const size_t separator = entry.find('=');
        if (separator != std::string::npos)
            ::setenv(entry.substr(0, separator).c_str(), entry.c_str() + separator + 1, 1);
    }
}

void ProcessState::restoreSignals() const {
    // A timer that goes on would end the process when its signal has no handler any more.
    stopTimers();
    for (int signal = 1; signal < NSIG; ++signal) {
        const struct sigaction& before = m_signalActions[static_cast<size_t>(signal)];
        struct sigaction now {};
        if (!isLeftAlone(signal) && ::sigaction(signal, nullptr, &now) == 0 && !isFunction(now) &&
            now.sa_handler != before.sa_handler)
            ::sigaction(signal, &before, nullptr);
    }
    pthread_sigmask(SIG_SETMASK, &m_blockedSignals, nullptr);
}

void ProcessState::restoreLimits() const {
    for (const Limit& limit : m_limits) {
        rlimit now{};
        if (::getrlimit(limit.resource, &now) != 0 || now.rlim_cur == limit.value.rlim_cur)
            continue;
        now.rlim_cur = std::min(limit.value.rlim_cur, now.rlim_max);
        ::setrlimit(limit.resource, &now);
    }
    // Only some users may raise it.
    if (::getpriority(PRIO_PROCESS, 0) != m_priority)
        ::setpriority(PRIO_PROCESS, 0, m_priority);
}

StandardStreams::StandardStreams() {
    for (size_t number = 0; number < m_streams.size(); ++number) {
        Stream& stream = m_streams[number];
        stream.copy = ::fcntl(static_cast<int>(number), F_DUPFD_CLOEXEC, 3);
        if (stream.copy >= 0 && ::fstat(stream.copy, &stream.identity) != 0)
            ::close(std::exchange(stream.copy, -1));
    }
}

StandardStreams::~StandardStreams() {
    for (const Stream& stream : m_streams) {
        if (stream.copy >= 0)
            ::close(stream.copy);
    }
}

void StandardStreams::restore() const {
    for (size_t number = 0; number < m_streams.size(); ++number) {
        const Stream& stream = m_streams[number];
        const int descriptor = static_cast<int>(number);
        if (stream.copy < 0)
            continue;
        struct stat now {};
        if (::fstat(descriptor, &now) == 0 &&
            ((now.st_dev == stream.identity.st_dev && now.st_ino == stream.identity.st_ino) ||
             mayBeInUse(descriptor, now)))
            continue;
        ::dup2(stream.copy, descriptor);
    }
}

}  // namespace Tamrix
