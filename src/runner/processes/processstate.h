#pragma once

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <csignal>

#include <array>
#include <string>
#include <vector>

namespace Tamrix {

/// What a test case may change of the process and must not leave to the next one: the working
/// directory, the environment, the locale, the mask for new files, signals that it ignores or
/// blocks, timers, limits and the standard streams. The constructor saves it, the destructor
/// restores it. Not while another thread uses any of them.
///
/// Handlers of signals that are functions stay: they may be those of a language, which takes back
/// what a script has installed. Of the signals that end a run Interrupt takes care.
class ProcessState {
public:
    ProcessState();
    ~ProcessState();
    ProcessState(const ProcessState&) = delete;
    ProcessState& operator=(const ProcessState&) = delete;

private:
    /// A limit that lowers with those of the process; the hard one can't be raised again.
    struct Limit {
        __rlimit_resource resource;
        rlimit value;
    };

    void restoreEnvironment() const;
    void restoreSignals() const;
    void restoreLimits() const;

    /// Open on the directory, so that it is found again although it was renamed.
    int m_directory;
    /// "NAME=VALUE" each, in the order of the process.
    std::vector<std::string> m_environment;
    std::string m_locale;
    mode_t m_fileMask;
    sigset_t m_blockedSignals{};
    /// By the number of the signal.
    std::array<struct sigaction, NSIG> m_signalActions{};
    std::vector<Limit> m_limits;
    int m_priority;
};

/// Standard input, output and error as they are when it is made, for what a test case does to them.
/// A descriptor that a case has closed is the next that somebody gets, and what goes to standard
/// output would be written there.
class StandardStreams {
public:
    StandardStreams();
    ~StandardStreams();
    StandardStreams(const StandardStreams&) = delete;
    StandardStreams& operator=(const StandardStreams&) = delete;

    /// Sets back those that are closed or lead somewhere else. What may be in use by the process
    /// itself, as a socket, which got the number meanwhile, stays until it is closed.
    void restore() const;

private:
    struct Stream {
        /// Another descriptor of the same; -1 where there was none.
        int copy = -1;
        struct stat identity {};
    };

    std::array<Stream, 3> m_streams;
};

}  // namespace Tamrix
