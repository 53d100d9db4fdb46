#include "runner/processes/childprocess.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "runner/processes/markedprocesses.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

/// With which the marks of this test's programs begin.
const QString run = QStringLiteral("test-run-%1:").arg(::getpid());

/// Milliseconds, for what ends by itself.
constexpr int patience = 100'000;

std::unique_ptr<ChildProcess> startShell(const QString& script,
                                         const ProgramEnvironment& environment = {},
                                         const QString& mark = {}) {
    ProgramStart start;
    start.program = "/bin/sh";
    start.arguments = QStringList{"-c", script};
    start.environment = environment;
    start.mark = mark;
    Outcome<std::unique_ptr<ChildProcess>> process = ChildProcess::start(start);
    EXPECT_EQ(Tamrix::Test::errorOf(process), "");
    return process ? std::move(*process) : nullptr;
}

TEST(ChildProcess, TellsHowItEndedAndWhatItWrote) {
    const auto exited = startShell("echo out; echo \"$VALUE\" >&2; exit 3", {{"VALUE", "ü"}});
    ASSERT_TRUE(exited->waitForEnd(patience));
    exited->output()->waitForEnd(patience);
    EXPECT_EQ(exited->endText(), "it exited with code 3");
    EXPECT_EQ(exited->output()->standardOutput(), "out\n");
    EXPECT_EQ(exited->output()->lastErrorLines(5), "ü");

    const auto killed = startShell("kill -SEGV $$");
    ASSERT_TRUE(killed->waitForEnd(patience));
    EXPECT_EQ(killed->endText(), "it was ended by SIGSEGV (Segmentation fault)");
    EXPECT_EQ(killed->exitCode(), 128 + SIGSEGV);
}

TEST(ChildProcess, WhatItWroteIsThereAtItsEnd) {
    for (const char* const script : {"echo out; echo why >&2; exit 3",
                                     // Another one holds the streams open.
                                     "sleep 100 & echo out; echo why >&2; exit 3"}) {
        const auto process = startShell(script, {}, run + "5");
        ASSERT_TRUE(process->waitForEnd(patience));
        process->output()->waitForEnd(0);
        EXPECT_EQ(process->output()->standardOutput(), "out\n");
        EXPECT_EQ(process->output()->standardError(), "why\n");
        endProcesses({run.toStdString() + "5", true}, 0);
    }
}

TEST(ChildProcess, KeepsTheEndOfMuchOutputWhileNobodyReads) {
    const auto process = startShell("head -c 3000000 /dev/zero | tr '\\0' x; echo end");
    ASSERT_TRUE(process->waitForEnd(patience));
    process->output()->waitForEnd(patience);
    const QByteArray output = process->output()->standardOutput();
    EXPECT_TRUE(output.startsWith("[1951428 bytes before this are left out]\nxxx"))
        << output.left(60).constData();
    EXPECT_TRUE(output.endsWith("xend\n"));
    EXPECT_EQ(process->output()->takeNews().standardOutput, output);
    EXPECT_EQ(process->output()->takeNews().standardOutput, "");
}

TEST(ChildProcess, FailsWithTheReason) {
    ProgramStart start;
    start.program = "/bin/sh";
    start.workingDirectory = "/no/such/folder";
    EXPECT_EQ(Tamrix::Test::errorOf(ChildProcess::start(start)),
              "'/bin/sh' can't be started in the folder '/no/such/folder': No such file or "
              "directory");
    start = {};
    start.program = "/etc/passwd";
    EXPECT_EQ(Tamrix::Test::errorOf(ChildProcess::start(start)),
              "'/etc/passwd' can't be executed: Permission denied");
}

TEST(MarkedProcesses, AllThatCameOfAProgramAreEnded) {
    // One in a session of its own and without an environment, one that takes no request to end, one
    // without the limit that is a mark.
    const auto process = startShell(
        "env -i setsid sleep 600 & (trap '' TERM; while true; do sleep 600; done) &"
        "prlimit --rttime=unlimited setsid sleep 600 & wait",
        {}, run + "7");
    const ProcessFilter filter{run.toStdString() + "7", true};
    std::size_t found = 0;
    for (int round = 0; round < 6000 && (found = findProcesses(filter).size()) < 5; ++round)
        process->waitForEnd(10);
    EXPECT_GE(found, 5U);
    EXPECT_TRUE(findProcesses({run.toStdString() + "70", true}).empty());
    EXPECT_EQ(endProcesses({run.toStdString()}, 200), 0);
    EXPECT_TRUE(findProcesses(filter).empty());
    EXPECT_TRUE(process->hasEnded());
}

}  // namespace
}  // namespace Tamrix
