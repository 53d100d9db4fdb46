#include "runner/processes/interrupt.h"

#include <gtest/gtest.h>

#include <string>

namespace Tamrix {
namespace {

std::string s_calls;

void languageHandler(int signal) {
    s_calls += signal == SIGINT ? "i" : "t";
}

void otherLanguageHandler(int) {
    s_calls += "o";
}

void setHandler(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    ::sigaction(signal, &action, nullptr);
}

class InterruptTest : public testing::Test {
protected:
    void SetUp() override {
        s_calls.clear();
        setHandler(SIGINT, SIG_DFL);
        setHandler(SIGTERM, SIG_DFL);
    }
    void TearDown() override { Interrupt::reset(); }
};

TEST_F(InterruptTest, SignalIsRememberedAndHandedOnToTheLanguage) {
    Interrupt::install();
    {
        const Interrupt::Aside aside;
        // A language takes Ctrl-C only where it finds the default.
        struct sigaction found;
        ::sigaction(SIGINT, nullptr, &found);
        EXPECT_EQ(found.sa_handler, SIG_DFL);
        setHandler(SIGINT, languageHandler);
        ::raise(SIGINT);
        EXPECT_EQ(s_calls, "");
    }
    EXPECT_EQ(s_calls, "i") << "a signal that comes while loading arrives afterwards";
    EXPECT_EQ(Interrupt::signalNumber(), SIGINT);
    EXPECT_EQ(Interrupt::exitCode(Interrupt::signalNumber()), 130);
    // Installing once more must not make the handler its own predecessor.
    Interrupt::install();
    ::raise(SIGINT);
    EXPECT_EQ(s_calls, "ii");
}

TEST_F(InterruptTest, EachLanguageFindsNoHandlerAndGetsTheSignal) {
    Interrupt::install();
    for (void (*const handler)(int) : {languageHandler, otherLanguageHandler, languageHandler}) {
        const Interrupt::Aside aside;
        struct sigaction found;
        ::sigaction(SIGINT, nullptr, &found);
        EXPECT_EQ(found.sa_handler, SIG_DFL);
        setHandler(SIGINT, handler);
    }
    {
        // One that has its handler already does not install it again.
        const Interrupt::Aside aside;
    }
    ::raise(SIGINT);
    EXPECT_EQ(s_calls, "io");
}

TEST_F(InterruptTest, TerminationInterruptsTheScriptAsCtrlCDoes) {
    setHandler(SIGINT, languageHandler);
    Interrupt::install();
    ::raise(SIGTERM);
    EXPECT_EQ(s_calls, "i");
    EXPECT_EQ(Interrupt::signalNumber(), SIGTERM);
    EXPECT_EQ(Interrupt::exitCode(Interrupt::signalNumber()), 143);
}

TEST_F(InterruptTest, HandlerThatALanguageTookAwayComesBack) {
    Interrupt::install();
    setHandler(SIGINT, SIG_DFL);
    Interrupt::install();
    ::raise(SIGINT);
    EXPECT_EQ(Interrupt::signalNumber(), SIGINT);
}

TEST_F(InterruptTest, IgnoredFromTheStartStaysIgnored) {
    setHandler(SIGINT, SIG_IGN);
    Interrupt::install();
    ::raise(SIGINT);
    EXPECT_EQ(Interrupt::signalNumber(), 0);
}

TEST_F(InterruptTest, TheThirdSignalEndsTheProcess) {
    EXPECT_EXIT(
        {
            Interrupt::install();
            for (int i = 0; i < 3; ++i)
                ::raise(SIGINT);
        },
        testing::ExitedWithCode(130), "interrupt once more to end at once");
}

}  // namespace
}  // namespace Tamrix
