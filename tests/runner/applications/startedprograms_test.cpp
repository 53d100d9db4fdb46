#include "runner/applications/startedprograms.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QElapsedTimer>

#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

constexpr int patience = 60000;

StartedPrograms::Pointer startShell(const QString& script) {
    static int s_number = 0;
    ApplicationStart start;
    start.name = "shell";
    start.program.program = "/bin/sh";
    start.program.arguments = QStringList{"-c", script};
    start.program.mark = QString("started-programs-%1:%2").arg(::getpid()).arg(++s_number);
    auto process = ChildProcess::start(start.program);
    EXPECT_EQ(Tamrix::Test::errorOf(process), "");
    return std::make_shared<StartedProgram>(start, std::move(process.value()));
}

void workUntilSettled(StartedPrograms& programs) {
    QElapsedTimer timer;
    timer.start();
    while (programs.isAnyRunning() && timer.elapsed() < patience) {
        programs.work();
        ::usleep(1000);
    }
    EXPECT_FALSE(programs.isAnyRunning());
}

TEST(StartedPrograms, OnlyTheLastOnesKeepAllTheirOutput) {
    StartedPrograms programs;
    std::vector<StartedPrograms::Pointer> all;
    for (size_t count = 0; count < StartedPrograms::recentCount + 2; ++count) {
        all.push_back(startShell("head -c 100000 /dev/zero | tr '\\0' x; echo end"));
        programs.add(all.back());
    }
    workUntilSettled(programs);
    for (size_t index = 0; index < all.size(); ++index) {
        const QByteArray output = all[index]->output().standardOutput();
        const bool isRecent = index + StartedPrograms::recentCount >= all.size();
        EXPECT_EQ(output.size() == 100004, isRecent) << output.left(80).constData();
        EXPECT_EQ(output.startsWith("[83620 bytes before this are left out]\nxxx"), !isRecent);
        EXPECT_TRUE(output.endsWith("xend\n"));
    }
    EXPECT_EQ(programs.ofInterest(all[0]).size(), StartedPrograms::recentCount + 1);
    EXPECT_EQ(programs.ofInterest(all.back()).size(), StartedPrograms::recentCount);
}

TEST(StartedPrograms, EndsThatNobodyAskedForAreTold) {
    using Cause = StartedPrograms::EndCause;
    const struct {
        const char* script;
        bool isWatched;
        bool isExpected;
        Cause cause;
        /// Empty when it is not told.
        const char* end;
        bool isCrash;
    } rows[] = {
        {"exit 0", true, false, Cause::None, "", false},
        {"echo why >&2; exit 3", true, false, Cause::None,
         "it exited with code 3\nThe last lines of its standard error:\nwhy", false},
        {"kill -TERM $$", true, false, Cause::None, "it was ended by SIGTERM (Terminated)", true},
        {"exit 3", false, false, Cause::None, "", false},
        {"kill -SEGV $$", true, true, Cause::None, "", false},
        {"exit 3", true, false, Cause::AskedToClose, "it exited with code 3", false},
        {"exit 3", true, false, Cause::Terminated, "", false},
        {"kill -KILL $$", true, false, Cause::Terminated, "it was ended by SIGKILL (Killed)", true},
        {"kill -SEGV $$", true, false, Cause::Terminated,
         "it was ended by SIGSEGV (Segmentation fault)", true},
    };
    for (const auto& row : rows) {
        StartedPrograms programs;
        const auto program = startShell(row.script);
        programs.add(program);
        program->noteApplication("x", row.isExpected);
        if (row.isWatched)
            program->watch();
        programs.setEndCause(row.cause);
        workUntilSettled(programs);
        const std::vector<UnexpectedEnd> ends = programs.takeUnexpectedEnds();
        ASSERT_EQ(ends.size(), *row.end ? 1u : 0u) << row.script;
        if (ends.empty())
            continue;
        EXPECT_EQ(ends[0].text, QString("The application 'x' has ended: ") + row.end);
        EXPECT_EQ(ends[0].isCrash, row.isCrash);
        EXPECT_TRUE(programs.takeUnexpectedEnds().empty());
    }
}

TEST(StartedPrograms, KillingWhatDoesNotEndWhenAskedIsNoFinding) {
    StartedPrograms programs;
    const auto program = startShell("trap '' TERM; echo ready; while true; do sleep 1; done");
    programs.add(program);
    program->watch();
    while (program->output().standardOutput().isEmpty())
        ::usleep(1000);
    programs.setEndCause(StartedPrograms::EndCause::Terminated);
    EXPECT_TRUE(programs.endAll(50).isEmpty());
    EXPECT_TRUE(program->wasKilled());
    EXPECT_TRUE(programs.takeUnexpectedEnds().empty());
}

}  // namespace
}  // namespace Tamrix
