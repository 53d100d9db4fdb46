#include "base/utf8.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <QTextCodec>

#include "base/utf8file.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(Utf8, FindsTheFirstMistake) {
    const struct {
        QByteArray bytes;
        int valid;
    } rows[] = {
        {"", 0},
        {"plain", 5},
        {QByteArray("a\0b", 3), 3},
        {"\xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80", 9},
        // The first and the last of each length.
        {"\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf", 18},
        {"a\x80", 1},
        {"\xc1\xbf", 0},
        {"\xe0\x9f\xbf", 0},
        {"\xf0\x8f\xbf\xbf", 0},
        {"a\xed\xa0\x80", 1},
        {"\xed\x9f\xbf\xee\x80\x80", 6},
        {"\xf4\x90\x80\x80", 0},
        {"\xf5\x80\x80\x80", 0},
        // Cut at the end, or by another character.
        {"ab\xc3", 2},
        {"ab\xe2\x82", 2},
        {"ab\xf0\x9f\x98", 2},
        {"\xe2\x82z", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(validUtf8Length(row.bytes.constBegin(), row.bytes.constEnd()), row.valid)
            << row.bytes.toHex().constData();
    }
}

TEST(Utf8, AgreesWithQtOnEveryShortSequence) {
    QTextCodec* const codec = QTextCodec::codecForName("UTF-8");
    const char interesting[] = {'a',        char(0x80), char(0x8f), char(0x90),
                                char(0x9f), char(0xa0), char(0xbf)};
    for (int lead = 0; lead < 256; ++lead) {
        for (const char second : interesting) {
            for (const char third : interesting) {
                const char bytes[] = {char(lead), second, third, char(0x80)};
                const int length = utf8CharacterLength(bytes, bytes + sizeof bytes);
                for (int size = 1; size <= 4; ++size) {
                    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
                    const QString text = codec->toUnicode(bytes, size, &state);
                    const bool isOne = state.invalidChars == 0 && state.remainingChars == 0 &&
                                       text.toUcs4().size() == 1;
                    EXPECT_EQ(length == size, isOne) << lead << ' ' << size;
                }
            }
        }
    }
}

TEST(Utf8, FilesAreReadWhole) {
    const QTemporaryDir folder;
    const struct {
        QByteArray bytes;
        QString text;
        int faultyLine;
    } rows[] = {
        {"", "", 0},
        {"\xef\xbb\xbf"
         "a\n\xc3\xa4",
         QString::fromUtf8("a\n\xc3\xa4"), 0},
        {QByteArray("a\0b", 3), QString("a") + QChar(0) + "b", 0},
        {"a\nb\xe4\nc", QString("a\nb") + QChar(QChar::ReplacementCharacter) + "\nc", 2},
    };
    const QString path = folder.filePath("file");
    for (const auto& row : rows) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(row.bytes);
        file.close();
        const Outcome<Utf8Text> content = readUtf8File(path);
        ASSERT_TRUE(content);
        EXPECT_EQ(content->text, row.text);
        EXPECT_EQ(content->faultyLine, row.faultyLine);
    }
    EXPECT_EQ(readUtf8File(folder.filePath("none")).error().text, "No such file or directory");
}

}  // namespace
}  // namespace Tamrix
