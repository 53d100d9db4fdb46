#include "interpreter/language/noticedfailures.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "interpreter/language/framesdebugger.h"
#include "interpreter/language/stacklines.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

/// An exception of no language.
struct Reference {
    explicit Reference(int number) : m_number(number) {}
    int get() const { return m_number; }

private:
    int m_number;
};

TEST(NoticedFailures, AreToldByTheirExceptions) {
    FramesDebugger debugger;
    const int source = debugger.sourceIdOf("/suite/a.feature");
    NoticedFailures<Reference> failures;
    failures.notice({ScriptFailure::Kind::Fatal, "skipped", true, {}}, debugger, 1);
    failures.notice({ScriptFailure::Kind::General, "a step", false, {7, -1, source}}, debugger, 2);
    failures.notice({ScriptFailure::Kind::General, "any", false, {}}, debugger, 3);
    EXPECT_TRUE(failures.isSkip(1));
    ScriptError error;
    error.callStack = {LineInfo("test.py", 3)};
    failures.complete(3, &error);
    EXPECT_EQ(error.callStack.size(), 1U);
    EXPECT_EQ(placedText(error), "test.py:3: ");
    failures.complete(2, &error);
    EXPECT_FALSE(error.isSkip);
    EXPECT_EQ(error.callStack.front(), LineInfo("/suite/a.feature", 7));
    failures.complete(1, &error);
    EXPECT_TRUE(error.isSkip);
    // One in no code that runs, in a file of the language.
    failures.noticePlace(LineInfo("module.js", 4), 5);
    failures.complete(5, &error);
    EXPECT_EQ(error.callStack.front(), LineInfo("module.js", 4));
    EXPECT_FALSE(error.isSkip);
    failures.clear();
    EXPECT_FALSE(failures.isSkip(1));
}

TEST(ScriptError, IsToldWithItsPlace) {
    ScriptError error;
    error.message = "it failed";
    EXPECT_EQ(placedText(error), "it failed");
    EXPECT_EQ(placedText(error, LineInfo("steps.py", 0)), "steps.py:0: it failed");
    error.callStack = {LineInfo("inner.py", 4), LineInfo("outer.py", 5)};
    EXPECT_EQ(placedText(error, LineInfo("steps.py", 0)), "inner.py:4: it failed");
}

TEST(ScriptError, IsToldWithAFewOfItsCauses) {
    const auto textOf = [](int number) { return "error " + QString::number(number); };
    const auto oneMore = [](int number) {
        return number < 3 ? std::optional(number + 1) : std::nullopt;
    };
    EXPECT_EQ(textWithCauses(1, textOf, oneMore), "error 1\ncaused by error 2\ncaused by error 3");
    const auto itself = [](int number) { return std::optional(number); };
    EXPECT_EQ(textWithCauses(7, textOf, itself).count("caused by"), 5);
}

TEST(CutCommonEnd, LeavesWhatRunsNoMore) {
    const struct {
        std::vector<int> stack;
        std::vector<int> running;
        std::vector<int> left;
    } rows[] = {
        {{1, 2, 3}, {2, 3}, {1}},
        {{1, 2, 3}, {}, {1, 2, 3}},
        {{1, 2}, {5, 1, 2}, {}},
        {{1, 2}, {2, 4}, {1, 2}},
        {{}, {1}, {}},
    };
    for (const auto& row : rows) {
        std::vector<int> stack = row.stack;
        cutCommonEnd(&stack, row.running);
        EXPECT_EQ(stack, row.left);
    }
}

}  // namespace
}  // namespace Tamrix
