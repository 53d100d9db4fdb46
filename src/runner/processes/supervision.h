#pragma once

#include <sys/types.h>

#include <QString>
#include <csignal>
#include <optional>

namespace Tamrix {

/// A run works in a child process, so that whatever the script does to its process, the exit code
/// and the reports tell of it. The process that was started, the supervisor, only waits. The two
/// share the terminal and the process group; signals that only the supervisor gets are forwarded.
class Supervision {
public:
    /// How the child ended.
    struct End {
        /// It said so before, or a signal to the run ended it: its exit code is the run's.
        bool isOrderly = false;
        /// Its user ended it before all was done.
        bool isQuit = false;
        /// Another process is to go on with the cases that it has left, of which it knows.
        bool isHandedOver = false;
        int exitCode = 0;
        /// "it exited with code 3", "it was ended by SIGKILL (Killed)".
        QString text;
    };

    /// Forks. Nothing in the child, which goes on as the run. The supervisor gets to know the end;
    /// when it is killed, the child is killed, too. Without a child to be had, the run goes on
    /// unsupervised in this process. Call it while there is one thread only. When it is called
    /// again behind the end of a child, the next one begins as the first has.
    static std::optional<End> begin();

    /// In the child: whether there is a supervisor.
    static bool isSupervised();

    /// In the supervisor, between two children: whether a signal has come meanwhile that ends a
    /// run.
    static bool isAskedToEnd();

    /// Forks a child that the caller looks after itself: 0 in the child, in which signals are
    /// treated as in that of begin() and which is killed when the caller ends; -1 on failure.
    static pid_t startWorker();

    /// In the child: from now on its end is in order. Safe in signal handlers.
    static void markOrderly();

    /// In the child, which exits then: the user ends the run here.
    static void markQuit();

    /// In the child, which exits then: it can run no further cases.
    static void markHandedOver();

    /// In the child: whether a signal is the second of the two that come when a whole process group
    /// is sent one, since the supervisor forwards its own. Safe in signal handlers.
    static bool isSecondDelivery(int signal, const siginfo_t& info);
};

}  // namespace Tamrix
