#include "interpreter/language/valuepath.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(ValuePath, IsTakenApartAtPointsOutsideOfBrackets) {
    const std::pair<const char*, QStringList> rows[] = {
        {"", {""}},
        {"name", {"name"}},
        {"^2.name.3.@200", {"^2", "name", "3", "@200"}},
        {"map.['a.b'].x", {"map", "['a.b']", "x"}},
        {"map.[(1, ']')].x", {"map", "[(1, ']')]", "x"}},
        {"map.['it\\'s.'].x", {"map", "['it\\'s.']", "x"}},
        {"map.[open.x", {"map", "[open.x"}},
    };
    for (const auto& [path, parts] : rows)
        EXPECT_EQ(partsOfPath(path), parts) << path;
}

TEST(ValuePath, NamesOfAllKindsComeBack) {
    for (const QString& name : {QString("plain"), QString("a.b"), QString("100%"),
                                QString(" blank  and\ttab "), QString("@5"), QString("^1"),
                                QString("+x"), QString("[a]"), QString("ä€😀"), QString("a\nb")}) {
        const QString part = pathPart(name);
        EXPECT_EQ(partsOfPath(part), QStringList(part)) << qPrintable(name);
        EXPECT_EQ(textOfPathPart(part), name);
    }
    EXPECT_EQ(pathPart("a b"), "a b");
}

TEST(ValuePath, MarksHaveNumbers) {
    EXPECT_EQ(markedNumber("^12", '^'), 12);
    for (const char* const other : {"^", "^-1", "^x", "@12", ""})
        EXPECT_FALSE(markedNumber(other, '^')) << other;
}

}  // namespace
}  // namespace Tamrix
