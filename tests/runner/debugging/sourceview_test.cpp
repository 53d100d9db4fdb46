#include "runner/debugging/sourceview.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(SourceView, ShowsTheLineWithTwoAroundIt) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("test.py");
    QByteArray text;
    for (int line = 1; line <= 11; ++line)
        text += "line " + QByteArray::number(line) + (line == 9 ? "\r\n" : "\n");
    ASSERT_TRUE(Tamrix::Test::writeFile(file, text + "\x1b[31mred\t" + QByteArray(600, 'x')));
    const struct {
        int line;
        QString shown;
    } rows[] = {
        {1, "> 1  line 1\n  2  line 2\n  3  line 3\n"},
        {5, "  3  line 3\n  4  line 4\n> 5  line 5\n  6  line 6\n  7  line 7\n"},
        {8, "   6  line 6\n   7  line 7\n>  8  line 8\n   9  line 9\n  10  line 10\n"},
        {12, "  10  line 10\n  11  line 11\n> 12  \\x1b[31mred\t" + QString(488, 'x') +
                 QChar(0x2026) + "\n"},
        {13, ""},
        {0, ""},
        {-1, ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(sourceAround({file, row.line, 1}), row.shown) << row.line;
}

TEST(SourceView, ShowsNothingOfWhatIsNoFile) {
    const QTemporaryDir folder;
    for (const QString& file : {QString(), folder.path(), folder.filePath("none.py")})
        EXPECT_EQ(sourceAround({file, 1, 1}), "") << qPrintable(file);
}

}  // namespace
}  // namespace Tamrix
