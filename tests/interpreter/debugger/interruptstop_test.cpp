// SIGINT during a run that is debugged. Each case runs in a process of its own.

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "interpreter/debugger/interruptstop.h"
#include "interpreter/debugger/testdebugger.h"
#include "support/fakelanguage.h"

namespace Tamrix {
namespace {

using testing::ExitedWithCode;
using testing::KilledBySignal;

/// Tells on standard error when it is stopped, and does then what the test wants.
class InterruptedDebugger : public Test::TestDebugger {
public:
    explicit InterruptedDebugger(Interpreter* interpreter = nullptr) : TestDebugger(interpreter) {}
    bool stop() override {
        std::fprintf(stderr, "stop %d;", ++stops);
        if (interruptedAgain)
            std::raise(SIGINT);
        if (resumes)
            run();
        return true;
    }

    int stops = 0;
    bool interruptedAgain = false;
    bool resumes = false;
};

/// Evaluates code that is interrupted.
class InterruptingInterpreter : public Test::FakeInterpreter {
public:
    InterruptingInterpreter() : FakeInterpreter(nullptr, Interpreter::Tcl) {}
    bool evaluate(const QString&, const QString&, int, int) override {
        std::raise(SIGINT);
        return true;
    }
};

void hostHandler(int) {
    std::fprintf(stderr, "host;");
}

TEST(InterruptStop, FirstStopsSecondKills) {
    EXPECT_EXIT(
        {
            InterruptedDebugger debugger;
            debugger.run();
            EXPECT_EQ(debugger.debuggerMode(), Debugger::Run);
            std::raise(SIGINT);
            std::fprintf(stderr, "goes on;");
            std::raise(SIGINT);
        },
        KilledBySignal(SIGINT), "^stop 1;goes on;$");
}

TEST(InterruptStop, SecondKillsAlsoWhileStopped) {
    EXPECT_EXIT(
        {
            InterruptedDebugger debugger;
            debugger.interruptedAgain = true;
            debugger.run();
            std::raise(SIGINT);
        },
        KilledBySignal(SIGINT), "^stop 1;$");
}

TEST(InterruptStop, RunInstallsTheHandlerAgain) {
    EXPECT_EXIT(
        {
            InterruptedDebugger debugger;
            debugger.resumes = true;
            debugger.run();
            std::raise(SIGINT);
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^stop 1;stop 2;$");
}

TEST(InterruptStop, SecondOneIsTheHostsWhereItHasAHandler) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, hostHandler);
            InterruptedDebugger debugger;
            debugger.interruptedAgain = true;
            debugger.run();
            std::raise(SIGINT);
            std::raise(SIGINT);
            debugger.run();
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^stop 1;host;host;stop 2;host;$");
}

TEST(InterruptStop, PassesOverWhatTheHostSays) {
    EXPECT_EXIT(
        {
            setInterruptFilter([](int, const siginfo_t& info) { return info.si_code == SI_QUEUE; });
            InterruptedDebugger debugger;
            debugger.run();
            sigqueue(getpid(), SIGINT, {});
            std::fprintf(stderr, "passed over;");
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^passed over;stop 1;$");
}

TEST(InterruptStop, ShutDownAndDestructionGiveTheSignalBackToTheHost) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, hostHandler);
            InterruptedDebugger debugger;
            debugger.run();
            debugger.run();
            debugger.shutDown();
            EXPECT_EQ(debugger.interpreter(), nullptr);
            std::raise(SIGINT);
            {
                InterruptedDebugger second;
                second.run();
                std::raise(SIGINT);
            }
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^host;stop 1;host;$");
}

TEST(InterruptStop, OneWhileCodeIsEvaluatedIsTheCodes) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, hostHandler);
            InterruptingInterpreter interpreter;
            InterruptedDebugger debugger(&interpreter);
            // At a terminal all is then as it was,
            tamrix_verbose_debugger = true;
            debugger.evaluate("code");
            std::raise(SIGINT);
            debugger.run();
            debugger.evaluate("code");
            std::raise(SIGINT);
            // and a program may send one late.
            tamrix_verbose_debugger = false;
            debugger.evaluate("code");
            std::raise(SIGINT);
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^stop 1;host;stop 2;stop 3;stop 4;stop 5;host;$");
}

TEST(InterruptStop, ShutDownOfAnotherDebuggerLeavesTheHandler) {
    EXPECT_EXIT(
        {
            std::signal(SIGINT, hostHandler);
            InterruptedDebugger first;
            first.run();
            InterruptedDebugger second;
            second.run();
            first.shutDown();
            std::raise(SIGINT);
            second.shutDown();
            std::raise(SIGINT);
            std::exit(0);
        },
        ExitedWithCode(0), "^stop 1;host;$");
}

}  // namespace
}  // namespace Tamrix
