#include "runner/farm/caseorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Kind = OrderWish::Kind;

TEST(CaseOrder, IsTheSuitesTheLongestFirstOrRandom) {
    EXPECT_EQ(orderedCases(3, {1, 3, 2}, {Kind::Suite, 0}), (CaseOrder{0, 1, 2}));
    EXPECT_EQ(orderedCases(3, {1, 3, 2}, {Kind::LongestFirst, 0}), (CaseOrder{1, 2, 0}));
    EXPECT_EQ(orderedCases(3, {-1, -1, -1}, {Kind::LongestFirst, 0}), (CaseOrder{0, 1, 2}));
    // A seed that somebody has noted means the same order for ever.
    EXPECT_EQ(orderedCases(6, {}, {Kind::Random, 7}), orderedCases(6, {}, {Kind::Random, 7}));
    EXPECT_NE(orderedCases(20, {}, {Kind::Random, 7}), orderedCases(20, {}, {Kind::Random, 8}));
    CaseOrder random = orderedCases(20, {}, {Kind::Random, 9});
    std::sort(random.begin(), random.end());
    EXPECT_EQ(random, orderedCases(20, {}, {Kind::Suite, 0}));
}

TEST(CaseOrder, ReadsShards) {
    const auto shard = parseShard("2/14");
    ASSERT_TRUE(shard.has_value());
    EXPECT_EQ(shard->number, 2);
    EXPECT_EQ(shard->count, 14);
    for (const char* text : {"", "2", "0/4", "5/4", "1/0", "-1/4", "1/4 ", "1/2/3", "1/9999999"})
        EXPECT_TRUE(Tamrix::Test::errorOf(parseShard(text)).contains("a shard is I/N")) << text;
}

TEST(CaseOrder, ShardsHaveEachCaseOnceAndAboutTheSameTime) {
    std::mt19937 random(1);
    std::vector<double> times(100);
    for (double& time : times)
        time = std::exp(static_cast<double>(random() % 3000) / 1000);
    const double whole = std::accumulate(times.begin(), times.end(), 0.0);
    for (const bool hasTimes : {true, false}) {
        CaseOrder all;
        for (int number = 1; number <= 8; ++number) {
            const CaseOrder part =
                casesOfShard(100, hasTimes ? times : std::vector<double>(), {number, 8});
            double load = 0;
            for (const int index : part)
                load += times[static_cast<size_t>(index)];
            if (hasTimes) {
                EXPECT_NEAR(load, whole / 8, whole / 8 * 0.1);
            }
            EXPECT_TRUE(std::is_sorted(part.begin(), part.end()));
            all.insert(all.end(), part.begin(), part.end());
        }
        std::sort(all.begin(), all.end());
        EXPECT_EQ(all, orderedCases(100, {}, {}));
    }
    EXPECT_EQ(casesOfShard(5, {}, {2, 2}), (CaseOrder{1, 3}));
    EXPECT_EQ(casesOfShard(2, {}, {3, 4}), CaseOrder());
}

}  // namespace
}  // namespace Tamrix
