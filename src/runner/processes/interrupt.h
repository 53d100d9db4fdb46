#pragma once

#include <csignal>

namespace Tamrix {

/// The request to end the run early: Ctrl-C (SIGINT), SIGTERM, or SIGHUP when the terminal goes
/// away. Process-wide.
///
/// The first signal is recorded and forwarded to the handlers that the languages of scripts have
/// for Ctrl-C, so that the script is interrupted in its own way. The second one does the same
/// again, for a script that goes on or a clean-up that hangs; the third one ends the process at
/// once. A signal that the process was started to ignore (a background job of a shell script, say)
/// stays ignored.
class Interrupt {
public:
    /// Installs the handlers; those that were installed before get the signals forwarded.
    static void install();

    /// The first signal that asked the run to end, 0 as long as none did. Any thread.
    static int signalNumber();

    /// Whether it was not the user who asked, but the parent, with ask(): a test case has
    /// taken too long.
    static bool isTimeOut();
    /// Asks a process that Supervision::startWorker() started to end what it runs, as Ctrl-C does.
    /// `isTimeOut` as above; otherwise `signal` is handed on from the user.
    static void ask(int process, int signal, bool isTimeOut);
    /// From now on this process says nothing about a further signal: somebody else does.
    static void leaveHintToOthers();

    /// How a process that ended by the signal reports it: 130 for Ctrl-C, 143 for SIGTERM,
    /// 129 for SIGHUP.
    static int exitCode(int signal) { return 128 + signal; }

    /// Forgets the signals so far and uninstalls the handlers: for tests.
    static void reset();

    /// Steps aside while a language plug-in is loaded and installs its own handlers, which it may
    /// do only where it finds none: those of other languages are not there either, and get the
    /// signals all the same. Signals that come meanwhile are held back and arrive
    /// afterwards, when the handlers are on top again.
    class Aside {
    public:
        Aside();
        ~Aside();
        Aside(const Aside&) = delete;
        Aside& operator=(const Aside&) = delete;

    private:
        sigset_t m_oldMask;
    };
};

}  // namespace Tamrix
