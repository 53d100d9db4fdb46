#include "interpreter/language/timelimit.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <atomic>
#include <thread>

namespace Tamrix {
namespace {

using std::chrono::milliseconds;

std::atomic<int> s_count{0};

void count() {
    ++s_count;
}

TEST(TimeLimit, TellsAgainAndAgainUntilItIsGone) {
    s_count = 0;
    {
        const TimeLimit limit(milliseconds(10), count);
        EXPECT_TRUE(TimeLimit::isArmed());
        // A call that waits ends early.
        EXPECT_EQ(poll(nullptr, 0, 10000), -1);
        EXPECT_EQ(errno, EINTR);
        while (s_count < 3) {
        }
    }
    EXPECT_FALSE(TimeLimit::isArmed());
    const int told = s_count;
    std::this_thread::sleep_for(milliseconds(50));
    EXPECT_EQ(s_count, told);
}

TEST(TimeLimit, OneInAnotherLimitsNothing) {
    const TimeLimit outer(milliseconds(10000), count);
    {
        s_count = 0;
        const TimeLimit inner(milliseconds(1), count);
        std::this_thread::sleep_for(milliseconds(30));
        EXPECT_EQ(s_count, 0);
    }
    EXPECT_TRUE(TimeLimit::isArmed());
}

}  // namespace
}  // namespace Tamrix
