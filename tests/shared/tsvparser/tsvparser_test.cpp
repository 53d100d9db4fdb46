#include "shared/tsvparser/tsvparser.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <random>

#include "shared/testdata/tsvtestdataset.h"
#include "shared/tsvparser/literalreader.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

constexpr int encodingCount = 5;

/// With a byte-order mark, in UTF-8 or in units of 2 or 4 bytes of either order.
QByteArray encoded(const QString& text, int encoding) {
    const QString marked = QChar(0xfeff) + text;
    if (encoding == 0)
        return marked.toUtf8();
    QVector<uint> units = marked.toUcs4();
    if (encoding < 3)
        units = QVector<uint>(marked.utf16(), marked.utf16() + marked.size());
    const int width = encoding < 3 ? 2 : 4;
    QByteArray bytes;
    for (const uint unit : qAsConst(units)) {
        for (int place = 0; place < width; ++place) {
            const int low = encoding % 2 == 0 ? place : width - 1 - place;
            bytes += static_cast<char>(unit >> 8 * low);
        }
    }
    return bytes;
}

class TsvParserTest : public testing::Test {
protected:
    QString store(const QByteArray& bytes, const QString& name = "table.csv") {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return file.fileName();
    }

    QVector<QStringList> rowsOf(const QByteArray& bytes, char separator = ',') {
        const SharedPtr<TestDataSet> set(new TsvTestDataSet(store(bytes), separator));
        QVector<QStringList> rows = {valuesOf(set->header())};
        for (int index = 0; index < set->count(); ++index) {
            EXPECT_EQ(set->record(index)->index(), index);
            rows.append(valuesOf(set->record(index)));
        }
        return rows;
    }

    static QStringList valuesOf(const TestDataRecord* record) {
        const int count = record->count();
        QStringList values;
        for (int column = 0; column < count; ++column)
            values.append(record->valueAsString(column));
        EXPECT_EQ(record->count(), count);
        return values;
    }

    QTemporaryDir folder;
};

TEST_F(TsvParserTest, RefusesLinesThatAreTooLong) {
    const int most = static_cast<int>(DelimitedText::mostLineBytes);
    const struct {
        QByteArray text;
        bool isRead;
    } rows[] = {
        {"a\n" + QByteArray(most, 'x') + "\nc", true},
        {"a\n" + QByteArray(most + 1, 'x') + "\nc", false},
        {QByteArray(most + 1, '\0'), false},
        // Each line of the file is short, but a quote has no end.
        {"a\n\"" + QByteArray("x\n").repeated(most / 2 + 1), false},
    };
    for (const auto& row : rows) {
        const QString path = store(row.text);
        testing::internal::CaptureStderr();
        const SharedPtr<TestDataSet> set(TestDataSet::createTestDataSet(path));
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  row.isRead ? ""
                             : "Couldn't read " + path.toStdString() +
                                   ": it has a line of more than 64 MiB\n");
        ASSERT_TRUE(set);
        EXPECT_EQ(set->isComplete(), row.isRead);
    }
}

TEST_F(TsvParserTest, ReadsRows) {
    struct Case {
        QByteArray text;
        QVector<QStringList> rows;
    };
    const Case cases[] = {
        {"a,b\n1,2\n", {{"a", "b"}, {"1", "2"}}},
        {"a\n\"x\ny\"\r\nz", {{"a"}, {"x\ny"}, {"z"}}},
        {"a,b\r\n\"1\",\"2\"\r\n\"\r\n\",3\r\n", {{"a", "b"}, {"1", "2"}, {"\r\n", "3"}}},
        {"a,\"b\"\"c\",d", {{"a", "b\"c", "d"}}},
        {"a,\n,a", {{"a", ""}, {"", "a"}}},
        {"\"a\"x,b\nab\"c,d\"e,f", {{"ax", "b"}, {"abc,de", "f"}}},
        {"a\nb\r", {{"a"}, {"b\r"}}},
        {"\"\"\n\"\"\"\n\",x", {{}, {"\"\n", "x"}}},
        {"a\n\n1\n", {{"a"}}},
        {"a\n\r\n1\n", {{"a"}}},
        {"\na\n", {{"1"}}},
        {"", {{"1"}}},
        {"a\n\"open,\nb", {{"a"}, {"open,\nb"}}},
        {"a\nb\"", {{"a"}, {"b"}}},
    };
    for (const Case& row : cases)
        EXPECT_EQ(rowsOf(row.text), row.rows) << row.text.constData();
}

TEST_F(TsvParserTest, DecodesWhatAByteOrderMarkTells) {
    const QString text = QString::fromUtf8("n\xc3\xa4me,\xe2\x82\xac\n\"\xf0\x9f\x98\x80\",2\n");
    const QVector<QStringList> rows = {text.split('\n')[0].split(','),
                                       {QString::fromUtf8("\xf0\x9f\x98\x80"), "2"}};
    EXPECT_EQ(rowsOf(text.toUtf8()), rows);
    for (int encoding = 0; encoding < encodingCount; ++encoding)
        EXPECT_EQ(rowsOf(encoded(text, encoding)), rows) << encoding;
}

TEST_F(TsvParserTest, CountsSeparators) {
    struct Case {
        const char* line;
        int count;
    };
    const Case cases[] = {{"", -1},       {"abc", 0},           {"a,b,", 2},
                          {"\"a,b\"", 0}, {"\"a\",\"b\",c", 2}, {"\"a\"\"b,c\"", 1},
                          {"\"\",", 1},   {"\"a\"\",b", 1},     {"\"a,b", 0}};
    for (const Case& row : cases)
        EXPECT_EQ(TsvParser::countSeparator(row.line, ','), row.count) << row.line;
}

TEST_F(TsvParserTest, TellsRowsOfAnotherWidth) {
    const QString path = store("a,b\n1\n1,2\n1,2,3\n");
    testing::internal::CaptureStderr();
    const SharedPtr<TestDataSet> set(new TsvTestDataSet(path, ','));
    const QString name = path.toLocal8Bit();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              ("Warning: inconsistent format in " + name +
               " (line 1): Expected 2 fields. Got 1.\nWarning: inconsistent format in " + name +
               " (line 3): Expected 2 fields. Got 3.\n")
                  .toStdString());
    EXPECT_EQ(set->count(), 3);
    EXPECT_EQ(valuesOf(set->record(2)), (QStringList{"1", "2", "3"}));
}

TEST_F(TsvParserTest, TellsWhatIsNoUtf8) {
    const QString replaced = QString("a\nM") + QChar(QChar::ReplacementCharacter) + "ller";
    const QString path = store("a\nM\xfcller\n\xfc\n");
    testing::internal::CaptureStderr();
    const SharedPtr<TestDataSet> set(new TsvTestDataSet(path, ','));
    EXPECT_EQ(
        testing::internal::GetCapturedStderr(),
        path.toStdString() + " is no UTF-8 (line 2): what can't be read stands there as U+FFFD\n");
    EXPECT_EQ(valuesOf(set->record(0)), QStringList(replaced.section('\n', 1)));
    // Other encodings with their mark, and the character itself.
    for (const QByteArray& bytes : {replaced.toUtf8(), QByteArray::fromHex("fffe61000a00fc00")}) {
        const QString good = store(bytes);
        testing::internal::CaptureStderr();
        const TsvParser parser(good);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
}

TEST_F(TsvParserTest, GoesOnBehindABlankLineAndBeginsAgain) {
    TsvParser parser(store("a\n\nb"));
    EXPECT_EQ(parser.nextLine(), "a");
    EXPECT_EQ(parser.nextLine(), "");
    EXPECT_EQ(parser.lineNumber(), 1);
    EXPECT_EQ(parser.nextLine(), "b");
    EXPECT_EQ(parser.nextLine(), "");
    EXPECT_EQ(parser.lineNumber(), 2);
    parser.rewind();
    EXPECT_EQ(parser.nextLine(), "a");
}

TEST_F(TsvParserTest, AFileThatCantBeReadIsEmpty) {
    testing::internal::CaptureStderr();
    TsvParser parser(folder.path());
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Couldn't open " + folder.path().toStdString() + "\n");
    EXPECT_FALSE(parser.isOpen());
    EXPECT_EQ(parser.name(), "");
    EXPECT_EQ(parser.nextLine(), "");
    parser.rewind();
}

/// Random text that is rich in what matters, around the borders of blocks.
class RandomText {
public:
    explicit RandomText(unsigned seed) : m_random(seed) {}

    QByteArray make(char separator) {
        static const char* const s_pieces[] = {
            "\"",   "\"",           "\"\"",         "\n",
            "\r\n", "\r",           "abc",          " ",
            "x",    "\xc3\xa4",     "\xe2\x82\xac", "\xf0\x9f\x98\x80",
            "0",    "longer value", "\xef\xbb\xbf", "\xe2\x82",
            "\xc3", "\xff",         "\xed\xa0\x80", "\xc0\x80"};
        // Some texts are sound, others hold mistakes.
        const int count = pick(2) == 0 ? 14 : static_cast<int>(std::size(s_pieces));
        const int quotes = pick(3);
        QByteArray text;
        static constexpr int sizes[] = {5, 70, 300, 3000};
        const int size = sizes[pick(4)];
        if (pick(20) == 0)
            text = QByteArray(16384 - pick(8), 'y').replace(100, 1, "\n");
        while (size > text.size() % 16384) {
            const int piece = pick(count + 4);
            if (piece >= count)
                text += separator;
            else if (piece >= 3 || pick(3) < quotes)
                text += s_pieces[piece];
        }
        if (pick(30) == 0)
            text.append('\0');
        return text;
    }
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

private:
    std::mt19937 m_random;
};

TEST_F(TsvParserTest, AgreesWithTheLiteralReading) {
    RandomText random(11);
    testing::internal::CaptureStderr();
    for (int round = 0; round < 500; ++round) {
        static constexpr char separators[] = {',', ';', '\t', '"', '\r', '\xe4'};
        const char separator = separators[random.pick(round % 8 == 0 ? 6 : 3)];
        QByteArray bytes = random.make(separator);
        if (round % 10 == 0) {
            bytes = encoded(QString::fromUtf8(bytes), random.pick(encodingCount));
        }
        QVector<QStringList> expected = LiteralReader(bytes).rows(separator);
        if (expected.isEmpty())
            expected = {{"1"}};
        ASSERT_EQ(rowsOf(bytes, separator), expected) << bytes.toPercentEncoding().constData();

        LiteralReader literal(bytes);
        TsvParser parser(folder.filePath("table.csv"));
        for (int line = 0; line < 10; ++line)
            ASSERT_EQ(parser.nextLine(), literal.nextLine());
    }
    testing::internal::GetCapturedStderr();
}

}  // namespace
}  // namespace Tamrix
