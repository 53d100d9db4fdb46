#include "comparison/difftext.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {

namespace {

QByteArray joined(const Diff::Lines& lines) {
    QByteArray text;
    for (const Diff::Line& line : lines)
        text += QByteArray(line.data(), static_cast<int>(line.size())) + '|';
    return text;
}

TEST(DiffText, SplitsBehindLineFeeds) {
    EXPECT_EQ(joined(splitLines("")), "");
    EXPECT_EQ(joined(splitLines("a\n\nb")), "a\n|\n|b|");
    EXPECT_EQ(joined(splitLines(QByteArray("a\r\n\0\n", 5))), QByteArray("a\r\n|\0\n|", 7));
    // Only in front of a line feed.
    EXPECT_EQ(withoutCarriageReturns("a\r\n\rb\r\r\n\r"), QByteArray("a\n\rb\r\n\r"));
}

TEST(DiffText, ListifiesEveryCarriageReturnAndLineFeed) {
    EXPECT_EQ(listifyQString(""), QByteArray("\n"));
    EXPECT_EQ(listifyQString("a\r\nb\rä"), QByteArray("a\n\nb\nä\n"));
}

TEST(DiffText, DecodesUnicode) {
    EXPECT_EQ(toUtfString("\xC3\xA4"), QString("ä"));
    EXPECT_EQ(toUtfString("\xEF\xBB\xBFx"), QString("x"));
    EXPECT_EQ(toUtfString(QByteArray("\xFF\xFEx\0", 4)), QString("x"));
}

TEST(DiffText, ShowsAllLinesWithTheirMarks) {
    const auto diffOf = [](const QByteArray& expected, const QByteArray& actual) {
        QByteArray out;
        bool differ = false;
        createDiff(splitLines(expected), splitLines(actual), out, differ);
        EXPECT_EQ(differ, expected != actual);
        return out;
    };
    EXPECT_EQ(diffOf("", ""), QByteArray(""));
    EXPECT_EQ(diffOf("a\nb\n", "a\nb\n"), QByteArray("  a\n  b\n"));
    EXPECT_EQ(diffOf("", "a\nb"), QByteArray("+ a\n+ b"));
    EXPECT_EQ(diffOf("a\nx\nb\n", "a\ny\nb\n"), QByteArray("  a\n- x\n+ y\n  b\n"));
    EXPECT_EQ(diffOf("a", "a\n"), QByteArray("- a+ a\n"));
}

}  // namespace

}  // namespace Tamrix
