#pragma once

#include <string_view>
#include <vector>

#include "base/export.h"

namespace Tamrix::Diff {

/// A line with its line end; the bytes belong to the caller.
using Line = std::string_view;
using Lines = std::vector<Line>;

enum Operation {
    Insert = 0,  ///< a line only in the second sequence
    Delete = 1,  ///< a line only in the first
    Equal = 2
};

/// The same operation on `count` lines from `begin` on: of the second sequence for Insert, of the
/// first for the others.
struct Run {
    Operation operation;
    int begin;
    int count;

    bool operator==(const Run& other) const = default;
};

/// The shortest way from the first to the second sequence that the divide and conquer form of
/// Myers' algorithm finds, in the order of the lines; next to each other, runs differ in their
/// operation. Lines are the same when their bytes are.
///
/// Takes time in proportion to the lines times their differences, and memory in proportion to the
/// lines. Neither may have more than 2^30 lines. Any thread.
TAMRIX_EXPORT std::vector<Run> diff(const Lines& first, const Lines& second);

}  // namespace Tamrix::Diff
