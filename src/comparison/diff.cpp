#include "comparison/diff.h"

#include <algorithm>
#include <optional>
#include <span>
#include <stdexcept>
#include <utility>

#include "comparison/diagonals.h"
#include "comparison/differ.h"
#include "comparison/linenumbers.h"

namespace Tamrix::Diff {

namespace {

/// So many differences in, a search is long enough to ask whether there is anything to find.
constexpr int askAtDifferences = 64;

constexpr std::size_t mostLines = std::size_t(1) << 30;

}  // namespace

void Runs::append(Operation operation, int begin, int count) {
    if (count == 0)
        return;
    if (!m_runs.empty() && m_runs.back().operation == operation)
        m_runs.back().count += count;
    else
        m_runs.push_back({operation, begin, count});
}

Differ::Sequence::Sequence(std::vector<int> numbers)
    : lines(std::move(numbers)), mirrored(lines.rbegin(), lines.rend()) {}

Differ::Differ(std::vector<int> first, std::vector<int> second, int numbers, Walk walk)
    : m_first(std::move(first)),
      m_second(std::move(second)),
      m_walk(walk),
      m_seen(static_cast<std::size_t>(numbers), 0) {}

void Differ::diff(Runs& out) {
    // What is left to do, the next at the end: the halves of a bisection could follow each other
    // deeper than calls can.
    m_tasks.push_back({Task::Kind::Diff,
                       {0, static_cast<int>(m_first.lines.size())},
                       {0, static_cast<int>(m_second.lines.size())}});
    while (!m_tasks.empty()) {
        const Task task = m_tasks.back();
        m_tasks.pop_back();
        if (task.kind == Task::Kind::Equal)
            out.append(Equal, task.first.begin, task.first.size());
        else
            diffRanges(task.first, task.second, out);
    }
}

void Differ::diffRanges(Range first, Range second, Runs& out) {
    // 1. With one side empty the other is all there is.
    if (first.size() == 0 || second.size() == 0) {
        replace(first, second, out);
        return;
    }

    // 2. The common prefix and suffix.
    const int* const a = m_first.lines.data();
    const int* const b = m_second.lines.data();
    const int start = first.begin;
    while (first.size() > 0 && second.size() > 0 && a[first.begin] == b[second.begin]) {
        ++first.begin;
        ++second.begin;
    }
    out.append(Equal, start, first.begin - start);
    const int end = first.end;
    while (first.size() > 0 && second.size() > 0 && a[first.end - 1] == b[second.end - 1]) {
        --first.end;
        --second.end;
    }

    // 4. The suffix comes behind all that the middle gives.
    if (first.end < end)
        m_tasks.push_back({Task::Kind::Equal, {first.end, end}, {}});

    // 3. The middle.
    if (first.size() == 0 || second.size() == 0 || (first.size() == 1 && second.size() == 1))
        replace(first, second, out);
    else
        bisect(first, second, out);
}

void Differ::replace(Range first, Range second, Runs& out) {
    out.append(Delete, first.begin, first.size());
    out.append(Insert, second.begin, second.size());
}

void Differ::bisect(Range first, Range second, Runs& out) {
    int x = 0;
    int y = 0;
    if (findMeeting(first, second, &x, &y))
        bisectSplit(first, second, x, y);
    else
        replace(first, second, out);
}

void Differ::bisectSplit(Range first, Range second, int x, int y) {
    const int middleOfFirst = first.begin + x;
    const int middleOfSecond = second.begin + y;
    m_tasks.push_back({Task::Kind::Diff, {middleOfFirst, first.end}, {middleOfSecond, second.end}});
    m_tasks.push_back(
        {Task::Kind::Diff, {first.begin, middleOfFirst}, {second.begin, middleOfSecond}});
}

bool Differ::findMeeting(Range first, Range second, int* x, int* y) {
    // 1. Paths from both ends, and what they have to know of each other.
    const int n = first.size();
    const int m = second.size();
    const int maxD = (n + m + 1) / 2;
    const int delta = n - m;
    const bool front = delta % 2 != 0;
    const auto enter = [n, m, maxD](Direction& direction, const int* lines, const int* mirrored) {
        direction.first = lines;
        direction.secondMirrored = mirrored;
        direction.firstSize = n;
        direction.secondSize = m;
        direction.trimStart = 0;
        direction.trimEnd = 0;
        direction.reach.reset(maxD);
    };
    enter(m_forward, m_first.lines.data() + first.begin,
          m_second.mirrored.data() + (m_second.mirrored.size() - second.end));
    enter(m_reverse, m_first.mirrored.data() + (m_first.mirrored.size() - first.end),
          m_second.lines.data() + second.begin);

    for (int d = 0; d < maxD; ++d) {
        // What shares no line can't meet; a search would find that out in quadratic time.
        if (d == askAtDifferences && !shareLine(first, second))
            return false;

        // 2. Forward; with an odd delta the paths meet here.
        int k = 0;
        m_forward.reach.grow(d);
        if (m_walk(m_forward, {front ? &m_reverse.reach : nullptr, d - 1, delta}, d, &k)) {
            *x = m_forward.reach[k];
            *y = *x - k;
            return true;
        }

        // 3. Reverse; with an even delta the paths meet here.
        m_reverse.reach.grow(d);
        if (m_walk(m_reverse, {front ? nullptr : &m_forward.reach, d, delta}, d, &k)) {
            *x = m_forward.reach[delta - k];
            *y = *x - (delta - k);
            return true;
        }
    }
    // 4. No common line.
    return false;
}

bool Differ::shareLine(Range first, Range second) {
    ++m_generation;
    for (int i = second.begin; i < second.end; ++i)
        m_seen[static_cast<std::size_t>(m_second.lines[static_cast<std::size_t>(i)])] =
            m_generation;
    const std::span lines(m_first.lines.data() + first.begin,
                          static_cast<std::size_t>(first.size()));
    return std::ranges::any_of(lines, [this](int number) {
        return m_seen[static_cast<std::size_t>(number)] == m_generation;
    });
}

std::vector<Run> diff(const Lines& first, const Lines& second) {
    if (first.size() > mostLines || second.size() > mostLines)
        throw std::length_error("too many lines to compare");

    // The common prefix and suffix are part of no bisection, so they need no numbers.
    const std::size_t shorter = std::min(first.size(), second.size());
    std::size_t prefix = 0;
    while (prefix < shorter && first[prefix] == second[prefix])
        ++prefix;
    std::size_t suffix = 0;
    while (suffix < shorter - prefix &&
           first[first.size() - 1 - suffix] == second[second.size() - 1 - suffix])
        ++suffix;

    const auto middleLines = [prefix, suffix](const Lines& lines) {
        return std::span(lines).subspan(prefix, lines.size() - prefix - suffix);
    };
    LineNumbers numbers(middleLines(first).size());
    std::vector<int> middleOfFirst = numbers.number(middleLines(first));
    std::vector<int> middleOfSecond =
        numbers.numberBeside(middleLines(second), middleLines(first), middleOfFirst);

    Runs middle;
    Differ(std::move(middleOfFirst), std::move(middleOfSecond), numbers.count(), fastestWalk())
        .diff(middle);
    Runs runs;
    const int offset = static_cast<int>(prefix);
    runs.append(Equal, 0, offset);
    for (const Run& run : middle.runs())
        runs.append(run.operation, run.begin + offset, run.count);
    runs.append(Equal, static_cast<int>(first.size() - suffix), static_cast<int>(suffix));
    return runs.runs();
}

}  // namespace Tamrix::Diff
