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

TEST(TimeLimit, OneInAnotherLeavesThatAsItIs) {
    s_count = 0;
    TimeLimit outer(count);
    {
        static std::atomic<int> s_inner{0};
        const TimeLimit inner(milliseconds(1), [] { ++s_inner; });
        while (s_inner < 2) {
        }
        EXPECT_EQ(s_count, 0);
    }
    EXPECT_TRUE(TimeLimit::isArmed());
    EXPECT_FALSE(outer.wasExpired());
    // By whoever wants it, as on another thread.
    std::thread([&outer] { outer.expire(); }).join();
    while (s_count < 2) {
    }
    EXPECT_TRUE(outer.wasExpired());
}

}  // namespace
}  // namespace Tamrix
