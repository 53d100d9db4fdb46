#include "runner/farm/casequeue.h"

#include <gtest/gtest.h>

namespace Tamrix {
namespace {

using End = CaseQueue::End;
using Step = CaseQueue::Step;

TEST(CaseQueue, HandsOutEachCaseOnceInOrder) {
    CaseQueue queue(2, {});
    EXPECT_EQ(queue.waiting(), 2);
    EXPECT_EQ(queue.nextStep(false, 0), Step::Run);
    EXPECT_EQ(queue.take(false), (CaseTask{0, 1, false}));
    EXPECT_EQ(queue.take(true), (CaseTask{1, 1, false}));
    EXPECT_EQ(queue.nextStep(true, 0), Step::Nothing);
    queue.noteEnd({0}, End::Passed);
    queue.noteEnd({1}, End::Failed);
    EXPECT_EQ(queue.done(), 2);
    EXPECT_EQ(queue.failed(), 1);
    EXPECT_EQ(queue.waiting(), 0);
}

TEST(CaseQueue, KnowsWhatRunsAgain) {
    const struct {
        const char* description;
        CaseTask task;
        int retries;
        End end;
        bool runsAgain;
    } table[] = {
        {"passed", {0, 1, false}, 2, End::Passed, false},
        {"failed without retries", {0, 1, false}, 0, End::Failed, false},
        {"failed with one left", {0, 2, false}, 2, End::Failed, true},
        {"failed with none left", {0, 3, false}, 2, End::Failed, false},
        {"given back once, though there are no retries", {0, 1, false}, 0, End::WorkerDied, true},
        {"not twice", {0, 2, true}, 0, End::WorkerDied, false},
        {"but retried", {0, 2, true}, 2, End::WorkerDied, true},
        {"interrupted", {0, 1, false}, 2, End::Interrupted, false},
    };
    for (const auto& row : table) {
        CaseQueue queue(1, {row.retries, 0});
        queue.take(false);
        queue.noteEnd(row.task, row.end);
        EXPECT_EQ(queue.waiting(), row.runsAgain ? 1 : 0) << row.description;
        EXPECT_EQ(queue.done(), row.runsAgain ? 0 : 1) << row.description;
        queue.close();
        EXPECT_FALSE(queue.runsAgain(row.task, row.end)) << row.description << ", but closed";
    }
}

TEST(CaseQueue, RetriesGoToFreshWorkersAndOnlyAsManyRetireForThem) {
    CaseQueue queue(3, {1, 0});
    queue.noteEnd(queue.take(false), End::Failed);
    EXPECT_EQ(queue.nextStep(true, 0), Step::Retire);
    EXPECT_EQ(queue.nextStep(true, 1), Step::Run) << "a fresh one is on its way";
    EXPECT_EQ(queue.take(true).index, 1);
    EXPECT_EQ(queue.take(false), (CaseTask{0, 2, false}));
    EXPECT_EQ(queue.nextStep(true, 0), Step::Run);
}

TEST(CaseQueue, EndsAfterTooManyFailures) {
    CaseQueue queue(5, {1, 2});
    queue.noteEnd({0, 1, false}, End::Failed);
    EXPECT_FALSE(queue.hasTooManyFailures()) << "it runs again";
    queue.noteEnd({0, 2, false}, End::Failed);
    queue.noteEnd({1, 2, false}, End::Failed);
    EXPECT_TRUE(queue.hasTooManyFailures());
    EXPECT_EQ(queue.nextStep(false, 0), Step::Nothing);
    EXPECT_EQ(queue.waiting(), 0);
    EXPECT_EQ(queue.neverStarted(), 5);
}

}  // namespace
}  // namespace Tamrix
