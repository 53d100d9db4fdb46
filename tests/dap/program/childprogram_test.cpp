#include "dap/program/childprogram.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <csignal>

#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

ProgramStart shell(const QString& script, const TextMap& environment = {}) {
    return {"/bin/sh", {"-c", script}, environment};
}

/// What a program wrote until its end: standard output, then standard error in brackets.
QString outputOf(Program& program) {
    QByteArray output;
    QByteArray errors;
    while (!program.exitCode()) {
        std::vector<pollfd> watched;
        program.watch(&watched);
        EXPECT_GT(::poll(watched.data(), watched.size(), 60'000), 0);
        for (const Program::Piece& piece : program.receive())
            (piece.isError ? errors : output) += piece.bytes;
    }
    return QString::fromUtf8(output + '[' + errors + ']');
}

TEST(ChildProgram, ReadsWritesAndTellsTheExitCode) {
    // As the program does: a reader that goes away is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    ::setenv("TAMRIX_TEST_GONE", "here", 1);
    const auto program = startChildProgram(
        shell("read line; echo \"$line $NEW $TAMRIX_TEST_GONE.\"; echo e >&2; exit 7",
              {{"NEW", "new"}, {"TAMRIX_TEST_GONE", std::nullopt}}));
    ASSERT_TRUE(program);
    EXPECT_FALSE((*program)->exitCode());
    (*program)->write("hello\n");
    EXPECT_EQ(outputOf(**program), "hello new .\n[e\n]");
    EXPECT_EQ((*program)->exitCode(), 7);
    // Nobody reads it, and nobody is hit.
    (*program)->write("more\n");
    (*program)->signal(SIGTERM);
}

TEST(ChildProgram, EndsBySignalsAndWithItsObject) {
    auto program = startChildProgram(shell("kill -TERM $$"));
    ASSERT_TRUE(program);
    outputOf(**program);
    EXPECT_EQ((*program)->exitCode(), 128 + SIGTERM);

    program = startChildProgram(shell("echo $$; exec sleep 600"));
    ASSERT_TRUE(program);
    QByteArray pid;
    while (!pid.endsWith('\n')) {
        for (const Program::Piece& piece : (*program)->receive())
            pid += piece.bytes;
    }
    program->reset();
    EXPECT_NE(::kill(pid.trimmed().toInt(), 0), 0);
}

TEST(ChildProgram, EndsAlthoughAnotherProcessKeepsItsOutput) {
    const auto program = startChildProgram(shell("sleep 600 & echo $!"));
    ASSERT_TRUE(program);
    const QString output = outputOf(**program);
    EXPECT_EQ((*program)->exitCode(), 0);
    ::kill(output.section('\n', 0, 0).toInt(), SIGKILL);
}

TEST(ChildProgram, AFileThatIsNoProgramIsAFailure) {
    const auto program = startChildProgram({"/no/such", {}, {}});
    ASSERT_FALSE(program);
    EXPECT_EQ(program.error().text, "'/no/such' can't be started: No such file or directory");
}

}  // namespace
}  // namespace Tamrix::Dap
