#include "comparison/diff.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>
#include <string>

#include "comparison/differ.h"
#include "comparison/linenumbers.h"
#include "comparison/slowdiff.h"

namespace Tamrix::Diff {

namespace {

using Pair = SlowDiff::Pair;

std::vector<Pair> pairsOf(const std::vector<Run>& runs, const Lines& first, const Lines& second) {
    std::vector<Pair> pairs;
    for (const Run& run : runs) {
        const Lines& lines = run.operation == Insert ? second : first;
        for (int i = run.begin; i < run.begin + run.count; ++i)
            pairs.emplace_back(run.operation, lines.at(static_cast<std::size_t>(i)));
    }
    return pairs;
}

std::vector<Pair> diffBy(Walk walk, const Lines& first, const Lines& second) {
    LineNumbers numbers(first.size() + second.size());
    std::vector<int> numbered[2];
    for (const Line& line : first)
        numbered[0].push_back(numbers.number(line));
    for (const Line& line : second)
        numbered[1].push_back(numbers.number(line));
    Runs runs;
    Differ(numbered[0], numbered[1], numbers.count(), walk).diff(runs);
    return pairsOf(runs.runs(), first, second);
}

std::vector<Walk> walks() {
    if (fastestWalk() == walkPlainly)
        return {walkPlainly};
    return {walkPlainly, walkWithAvx2};
}

void expectAsByTheRules(const Lines& first, const Lines& second) {
    const std::vector<Pair> expected = SlowDiff::diff(first, second);
    EXPECT_EQ(pairsOf(diff(first, second), first, second), expected);
    for (const Walk walk : walks())
        EXPECT_EQ(diffBy(walk, first, second), expected);
}

std::string textOf(const char* first, const char* second) {
    const auto lines = [](std::string_view text) {
        Lines result;
        for (std::size_t i = 0; i < text.size(); ++i)
            result.push_back(text.substr(i, 1));
        return result;
    };
    const Lines one = lines(first);
    const Lines other = lines(second);
    std::string text;
    for (const auto& [operation, line] : pairsOf(diff(one, other), one, other))
        text += std::string(1, "+-="[operation]) + std::string(line) + ' ';
    return text;
}

class RandomLines {
public:
    explicit RandomLines(unsigned seed) : m_random(seed) {}

    int number(int least, int most) {
        return std::uniform_int_distribution<int>(least, most)(m_random);
    }
    Line word(int alphabet) {
        const auto index = static_cast<std::size_t>(number(0, alphabet - 1));
        while (m_words.size() <= index)
            m_words.push_back("line " + std::to_string(m_words.size()) + '\n');
        return m_words[index];
    }
    Lines lines(int count, int alphabet) {
        Lines result;
        for (int i = 0; i < count; ++i)
            result.push_back(word(alphabet));
        return result;
    }
    /// A copy with every so many-th line changed, dropped or doubled.
    Lines changed(const Lines& lines, int oneIn, int alphabet) {
        Lines result;
        for (const Line& line : lines) {
            const int change = number(1, oneIn) == 1 ? number(0, 2) : 3;
            if (change == 0)
                result.push_back(word(alphabet));
            if (change > 1)
                result.push_back(line);
            if (change == 2)
                result.push_back(line);
        }
        return result;
    }

private:
    std::mt19937 m_random;
    std::deque<std::string> m_words;
};

TEST(Diff, OrdersItsOperations) {
    EXPECT_EQ(textOf("", ""), "");
    EXPECT_EQ(textOf("", "ab"), "+a +b ");
    EXPECT_EQ(textOf("ab", ""), "-a -b ");
    EXPECT_EQ(textOf("axb", "ayb"), "=a -x +y =b ");
    EXPECT_EQ(textOf("abc", "xyz"), "-a -b -c +x +y +z ");
    EXPECT_EQ(textOf("abcabba", "cbabac"), "-a +c =b -c =a =b -b =a +c ");
}

TEST(Diff, GivesWhatTheRulesGive) {
    RandomLines random(5);
    for (int round = 0; round < 20000 && !HasFailure(); ++round) {
        const int alphabet = random.number(1, round % 2 ? 3 : 12);
        const Lines first = random.lines(random.number(0, 24), alphabet);
        const Lines second = random.lines(random.number(0, 24), alphabet);
        expectAsByTheRules(first, second);
    }
    // Long enough for whole blocks of diagonals and for the question whether lines are shared.
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
        const int alphabet = random.number(2, round % 3 ? 40 : 2000);
        const Lines first = random.lines(random.number(100, 400), alphabet);
        const Lines second = round % 2 ? random.lines(random.number(20, 400), alphabet)
                                       : random.changed(first, random.number(2, 20), alphabet);
        expectAsByTheRules(first, second);
    }
}

TEST(Diff, ReplacesWhatSharesNothing) {
    RandomLines random(6);
    for (const auto& [n, m] : {std::pair(300, 300), {301, 300}, {2, 500}, {500, 3}}) {
        Lines first = random.lines(n, 50);
        Lines second(static_cast<std::size_t>(m), "other\n");
        expectAsByTheRules(first, second);
    }
}

TEST(Diff, TakesAMillionLinesWithoutDeepCalls) {
    RandomLines random(7);
    const Lines first = random.lines(1'000'000, 1'000'000);
    const Lines second = random.changed(first, 1000, 1'000'000);
    std::size_t lines[3] = {};
    for (const auto& run : diff(first, second))
        lines[run.operation] += static_cast<std::size_t>(run.count);
    EXPECT_EQ(lines[Equal] + lines[Delete], first.size());
    EXPECT_EQ(lines[Equal] + lines[Insert], second.size());
    EXPECT_LT(lines[Delete] + lines[Insert], first.size() / 500);
}

TEST(LineNumbers, TellsLinesApartByTheirBytes) {
    LineNumbers numbers(1000);
    const std::string zeros(20, '\0');
    for (std::size_t size = 0; size <= zeros.size(); ++size)
        EXPECT_EQ(numbers.number(std::string_view(zeros).substr(0, size)), static_cast<int>(size));
    EXPECT_EQ(numbers.number("a"), 21);
    EXPECT_EQ(numbers.number("a\n"), 22);
    EXPECT_EQ(numbers.number(std::string("a")), 21);
}

}  // namespace

}  // namespace Tamrix::Diff
