#pragma once

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "comparison/diff.h"

namespace Tamrix::Diff {

/// The rules of the differ, word by word and without any haste: what the real one must give.
class SlowDiff {
public:
    using Pair = std::pair<Operation, Line>;

    static std::vector<Pair> diff(const Lines& first, const Lines& second) {
        SlowDiff slow;
        slow.diffRanges(first, second);
        return slow.m_out;
    }

private:
    static Lines part(const Lines& lines, std::size_t begin, std::size_t end) {
        return {lines.begin() + static_cast<std::ptrdiff_t>(begin),
                lines.begin() + static_cast<std::ptrdiff_t>(end)};
    }

    void emit(Operation operation, const Lines& lines) {
        for (const Line& line : lines)
            m_out.emplace_back(operation, line);
    }

    void diffRanges(const Lines& a, const Lines& b) {
        if (a.empty())
            return emit(Insert, b);
        if (b.empty())
            return emit(Delete, a);
        std::size_t prefix = 0;
        while (prefix < a.size() && prefix < b.size() && a[prefix] == b[prefix])
            ++prefix;
        std::size_t suffix = 0;
        while (suffix < a.size() - prefix && suffix < b.size() - prefix &&
               a[a.size() - 1 - suffix] == b[b.size() - 1 - suffix])
            ++suffix;
        emit(Equal, part(a, 0, prefix));
        const Lines middleOfA = part(a, prefix, a.size() - suffix);
        const Lines middleOfB = part(b, prefix, b.size() - suffix);
        if (middleOfA.empty()) {
            emit(Insert, middleOfB);
        } else if (middleOfB.empty()) {
            emit(Delete, middleOfA);
        } else if (middleOfA.size() == 1 && middleOfB.size() == 1) {
            emit(Delete, middleOfA);
            emit(Insert, middleOfB);
        } else {
            bisect(middleOfA, middleOfB);
        }
        emit(Equal, part(a, a.size() - suffix, a.size()));
    }

    void bisect(const Lines& a, const Lines& b) {
        const int n = static_cast<int>(a.size());
        const int m = static_cast<int>(b.size());
        const auto lineOfA = [&a](int index) { return a.at(static_cast<std::size_t>(index)); };
        const auto lineOfB = [&b](int index) { return b.at(static_cast<std::size_t>(index)); };
        const int maxD = (n + m + 1) / 2;
        const int offset = maxD;
        const int size = 2 * maxD;
        std::vector<int> forwardReach(static_cast<std::size_t>(size), -1);
        std::vector<int> reverseReach(static_cast<std::size_t>(size), -1);
        const auto forward = [&](int i) -> int& {
            return forwardReach.at(static_cast<std::size_t>(i));
        };
        const auto reverse = [&](int i) -> int& {
            return reverseReach.at(static_cast<std::size_t>(i));
        };
        forward(offset + 1) = 0;
        reverse(offset + 1) = 0;
        const int delta = n - m;
        const bool front = delta % 2 != 0;
        int k1start = 0;
        int k1end = 0;
        int k2start = 0;
        int k2end = 0;
        for (int d = 0; d < maxD; ++d) {
            for (int k = -d + k1start; k <= d - k1end; k += 2) {
                int x = 0;
                if (k == -d || (k != d && forward(offset + k - 1) < forward(offset + k + 1)))
                    x = forward(offset + k + 1);
                else
                    x = forward(offset + k - 1) + 1;
                int y = x - k;
                while (x < n && y < m && lineOfA(x) == lineOfB(y)) {
                    ++x;
                    ++y;
                }
                forward(offset + k) = x;
                if (x > n) {
                    k1end += 2;
                } else if (y > m) {
                    k1start += 2;
                } else if (front) {
                    const int k2 = offset + delta - k;
                    if (k2 >= 0 && k2 < size && reverse(k2) != -1 && x >= n - reverse(k2))
                        return bisectSplit(a, b, x, y);
                }
            }
            for (int k = -d + k2start; k <= d - k2end; k += 2) {
                int x = 0;
                if (k == -d || (k != d && reverse(offset + k - 1) < reverse(offset + k + 1)))
                    x = reverse(offset + k + 1);
                else
                    x = reverse(offset + k - 1) + 1;
                int y = x - k;
                while (x < n && y < m && lineOfA(n - x - 1) == lineOfB(m - y - 1)) {
                    ++x;
                    ++y;
                }
                reverse(offset + k) = x;
                if (x > n) {
                    k2end += 2;
                } else if (y > m) {
                    k2start += 2;
                } else if (!front) {
                    const int k1 = offset + delta - k;
                    if (k1 >= 0 && k1 < size && forward(k1) != -1) {
                        const int x1 = forward(k1);
                        const int y1 = offset + x1 - k1;
                        if (x1 >= n - x)
                            return bisectSplit(a, b, x1, y1);
                    }
                }
            }
        }
        emit(Delete, a);
        emit(Insert, b);
    }

    void bisectSplit(const Lines& a, const Lines& b, int x, int y) {
        const auto middleOfA = static_cast<std::size_t>(x);
        const auto middleOfB = static_cast<std::size_t>(y);
        ASSERT_TRUE(x >= 0 && y >= 0 && middleOfA <= a.size() && middleOfB <= b.size());
        diffRanges(part(a, 0, middleOfA), part(b, 0, middleOfB));
        diffRanges(part(a, middleOfA, a.size()), part(b, middleOfB, b.size()));
    }

    std::vector<Pair> m_out;
};

}  // namespace Tamrix::Diff
