#pragma once

#include <QString>

#include "base/outcome.h"

namespace Tamrix::Dap {

/// How often a break point must have been reached for the script to stop: "3" or "== 3", "> 3",
/// ">= 3", "< 3", "<= 3", or "% 3" for every third time.
class HitCondition {
public:
    static Outcome<HitCondition> parse(const QString& text);

    /// `hits` counts from 1.
    bool holds(int hits) const { return m_test(hits, m_number); }

private:
    using Test = bool (*)(int hits, int number);
    HitCondition(Test test, int number) : m_test(test), m_number(number) {}

    Test m_test;
    int m_number;
};

}  // namespace Tamrix::Dap
