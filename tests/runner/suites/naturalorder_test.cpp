#include "runner/suites/naturalorder.h"

#include <gtest/gtest.h>

#include <QStringList>
#include <algorithm>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(NaturalOrder, NumbersByValueAndLettersWithoutCase) {
    const QStringList sorted = {"",
                                "1a",
                                "2",
                                "10",
                                "a",
                                "B",
                                "b",
                                "case1",
                                "case01",
                                "case2",
                                "case10",
                                "case010x",
                                "case99999999999999999999998",
                                "case99999999999999999999999",
                                "Case_b",
                                "cases",
                                "ä"};
    QStringList names = sorted;
    std::reverse(names.begin(), names.end());
    std::sort(names.begin(), names.end(), naturallyBefore);
    // "01" and "1" are the same number: then the characters decide.
    QStringList expected = sorted;
    expected.swapItemsAt(expected.indexOf("case1"), expected.indexOf("case01"));
    EXPECT_EQ(names, expected) << qPrintable(names.join(' '));
}

TEST(NaturalOrder, NothingStandsBeforeItself) {
    for (const char* name : {"", "a", "A1", "007"})
        EXPECT_FALSE(naturallyBefore(name, name)) << name;
}

}  // namespace
}  // namespace Tamrix
