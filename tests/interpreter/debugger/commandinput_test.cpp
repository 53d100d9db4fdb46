// Standard input as the source of commands. Each test has a pipe as its standard input.

#include "interpreter/debugger/lineprotocol/commandinput.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QTimer>
#include <cstdlib>
#include <thread>

#include "interpreter/debugger/testdebugger.h"
#include "runner/coreapplication.h"

namespace Tamrix {
namespace {

using namespace Test;
using End = CommandInput::End;

class CommandInputTest : public testing::Test {
protected:
    CommandInputTest() {
        coreApplication();
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        m_kept = ::dup(STDIN_FILENO);
        ::dup2(ends[0], STDIN_FILENO);
        ::close(ends[0]);
        m_writer = ends[1];
    }
    ~CommandInputTest() override {
        closeWriter();
        ::dup2(m_kept, STDIN_FILENO);
        ::close(m_kept);
    }

    void type(const std::string& text) const {
        EXPECT_EQ(::write(m_writer, text.data(), text.size()), ssize_t(text.size()));
    }
    void closeWriter() {
        if (m_writer >= 0)
            ::close(m_writer);
        m_writer = -1;
    }

    StandardInput input;

private:
    int m_kept;
    int m_writer;
};

TEST_F(CommandInputTest, TakesOneLineAndNoByteMore) {
    type("first\n\nrest of the script");
    EXPECT_EQ(input.readLine("").text, "first");
    EXPECT_EQ(input.readLine("").text, "");
    char rest[64];
    EXPECT_EQ(::read(STDIN_FILENO, rest, sizeof rest), 18);
}

TEST_F(CommandInputTest, LetsQtWorkWhileItWaits) {
    QTimer::singleShot(20, [this] { type("late\n"); });
    EXPECT_EQ(input.readLine("").text, "late");
}

TEST_F(CommandInputTest, GivesTheWaitUpWhenTheProgramIsToEnd) {
    bool isInterrupted = false;
    StandardInput interruptible([&] { return isInterrupted; });
    QTimer::singleShot(20, [&] { isInterrupted = true; });
    EXPECT_EQ(interruptible.readLine("").end, End::Interrupted);
}

TEST_F(CommandInputTest, PassesOverWhatIsTooLong) {
    std::thread writer([this] {
        const std::string block(1 << 16, 'x');
        for (std::size_t size = 0; size <= CommandInput::maximalSize; size += block.size())
            type(block);
        type("\nshort\n");
    });
    EXPECT_EQ(input.readLine("").end, End::TooLong);
    const CommandInput::Line next = input.readLine("");
    EXPECT_EQ(next.end, End::None);
    EXPECT_EQ(next.text, "short");
    writer.join();
}

TEST_F(CommandInputTest, EndsWithHalfALineOrWithoutADescriptor) {
    type("half");
    closeWriter();
    EXPECT_EQ(input.readLine("").end, End::OfInput);
    ::close(STDIN_FILENO);
    EXPECT_EQ(input.readLine("").end, End::OfInput);
}

TEST_F(CommandInputTest, TheEndOfTheInputEndsTheProcess) {
    closeWriter();
    EXPECT_EXIT(
        {
            TestDebugger debugger;
            debugger.enterScript("/nowhere/a.py");
            debugger.setInteractive(true);
            debugger.stop();
            std::_Exit(3);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Tamrix
