#pragma once

#include <cstdint>
#include <vector>

#include "comparison/diagonals.h"
#include "comparison/diff.h"

namespace Tamrix::Diff {

/// Operations in their order; those of one kind that follow each other become one run.
class Runs {
public:
    /// Nothing for no lines.
    void append(Operation operation, int begin, int count);
    const std::vector<Run>& runs() const { return m_runs; }

private:
    std::vector<Run> m_runs;
};

/// Compares two sequences of lines that are numbers. For one comparison, in one thread.
class Differ {
public:
    /// The numbers are from 0 to less than `numbers`.
    Differ(std::vector<int> first, std::vector<int> second, int numbers, Walk walk);

    void diff(Runs& out);

private:
    struct Range {
        int begin = 0;
        int end = 0;
        int size() const { return end - begin; }
    };

    struct Task {
        enum class Kind { Diff, Equal };
        Kind kind;
        Range first;
        /// Unused for Equal.
        Range second;
    };

    struct Sequence {
        explicit Sequence(std::vector<int> numbers);
        std::vector<int> lines;
        /// The same backwards: both ends are walked by the same code.
        std::vector<int> mirrored;
    };

    void diffRanges(Range first, Range second, Runs& out);
    /// All of the first as deletes, then all of the second as inserts.
    static void replace(Range first, Range second, Runs& out);
    /// Finds the middle snake and leaves what is on both its sides as tasks.
    void bisect(Range first, Range second, Runs& out);
    void bisectSplit(Range first, Range second, int x, int y);
    /// Where the paths from both ends meet, in lines from the start of the ranges; false when they
    /// don't.
    bool findMeeting(Range first, Range second, int* x, int* y);
    bool shareLine(Range first, Range second);

    Sequence m_first;
    Sequence m_second;
    Walk m_walk;
    Direction m_forward;
    Direction m_reverse;
    std::vector<Task> m_tasks;
    /// The generation in which a number was last seen.
    std::vector<std::uint32_t> m_seen;
    std::uint32_t m_generation = 0;
};

}  // namespace Tamrix::Diff
