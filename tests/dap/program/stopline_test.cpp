#include "dap/program/stopline.h"

#include <gtest/gtest.h>

#include <QStringList>

#include "base/protocolescapes.h"
#include "dap/program/outputlines.h"
#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

TEST(StopLine, TellsPlaceAndReason) {
    struct Row {
        QByteArray line;
        StopKind kind;
        ScriptPlace place;
        QString subject;
        QString detail;
    };
    const Row rows[] = {
        {"@line 3, column 7, /s/a, b: c/test.py:",
         StopKind::Line,
         {"/s/a, b: c/test.py", 3},
         "",
         ""},
        {"@objLookupError 3\t-1\t/s/test.py\t{type\\='QPushButton'}",
         StopKind::ObjectNotFound,
         {"/s/test.py", 3},
         "{type='QPushButton'}",
         ""},
        {"@objLookupError 3\t-1\t/s/test.py\t:a\tnearest:\\n\\u00e4\\\"b\\\"",
         StopKind::ObjectNotFound,
         {"/s/test.py", 3},
         ":a",
         "nearest:\n\u00e4\"b\""},
        {"@imgLookupError 4\t-1\t/s/test.py\tok\\,\t3\t/tmp/x.png",
         StopKind::ImageNotFound,
         {"/s/test.py", 4},
         "ok,",
         "/tmp/x.png"},
        {"@textLookupError 4\t-1\t/s/test.py\t/tmp/x.png",
         StopKind::TextNotFound,
         {"/s/test.py", 4},
         "",
         "/tmp/x.png"},
        {"@missingStep 12 Given nothing", StopKind::StepMissing, {"", 12}, "Given nothing", ""},
    };
    for (const Row& row : rows) {
        const std::optional<Stop> stop = readStop(row.line);
        ASSERT_TRUE(stop) << row.line.constData();
        EXPECT_EQ(stop->kind, row.kind);
        EXPECT_EQ(stop->place.file, row.place.file);
        EXPECT_EQ(stop->place.line, row.place.line);
        EXPECT_EQ(stop->column, row.line.contains("column 7") ? 7 : 0);
        EXPECT_EQ(stop->subject, row.subject);
        EXPECT_EQ(stop->detail, row.detail);
    }
    for (const char* other : {"@line 3", "@file /s/test.py", "@notify a\tb", "eval1", "symb:{}",
                              "@objLookupError 3", "/s/a.py: 3", "@line x, column y, z:"})
        EXPECT_FALSE(readStop(other)) << other;
}

TEST(StopLine, FramesMayHaveColonsInTheirPath) {
    EXPECT_EQ(readFrame("/s/a: 1/test.py: 33"), (ScriptPlace{"/s/a: 1/test.py", 33}));
    EXPECT_FALSE(readFrame("@line 3"));
    EXPECT_FALSE(readFrame("no frame"));
}

TEST(StopLine, ListingsHoldAnyText) {
    // Each field as the debugger escapes it.
    const QStringList texts = {"plain", "a,b#c=d\\e\nf", "\\", "{}", "", "=", "ä🙂"};
    QByteArray listing;
    for (const QString& text : texts) {
        const QString escaped = escapeForVariablePrinting(text);
        listing += (listing.isEmpty() ? "" : ",") + escaped.toUtf8() + '#' + escaped.toUtf8() +
                   '=' + escaped.toUtf8();
    }
    const auto bindings = readListing("symb.+a:{" + listing + '}');
    ASSERT_TRUE(bindings);
    ASSERT_EQ(static_cast<int>(bindings->size()), texts.size());
    for (int index = 0; index < texts.size(); ++index) {
        const Binding& binding = (*bindings)[static_cast<size_t>(index)];
        EXPECT_EQ(binding.type, texts[index]);
        EXPECT_EQ(binding.name, texts[index]);
        EXPECT_EQ(binding.value, texts[index]);
    }
    const auto withoutValue = readListing("symb:{int#x}");
    ASSERT_TRUE(withoutValue);
    EXPECT_TRUE(withoutValue->at(0).value.isNull());
    EXPECT_TRUE(readListing("symb:{}")->empty());
    EXPECT_FALSE(readListing("symb:{"));
}

/// Parts in one line: protocol lines in brackets.
QByteArray shown(const std::vector<OutputPart>& parts) {
    QByteArray text;
    for (const OutputPart& part : parts) {
        if (const auto* line = std::get_if<ProtocolLine>(&part))
            text += '[' + line->text + ']';
        else
            text += std::get<ProgramOutput>(part).text;
    }
    return text;
}

TEST(OutputLines, PartsProtocolFromOutputHoweverItIsCut) {
    const QByteArray stream = "one\nTDBG:@line 1\ntwoTDBG:eval1\nTDB\nTDBG:\nTD";
    for (int first = 0; first <= stream.size(); ++first) {
        OutputLines lines;
        QByteArray text = shown(lines.add(stream.left(first)));
        text += shown(lines.add(stream.mid(first)));
        EXPECT_EQ(text + lines.takeRest(), "one\n[@line 1]two[eval1]TDB\n[]TD") << first;
    }
}

TEST(OutputLines, AnUnfinishedLineGoesOutAtOnce) {
    OutputLines lines;
    EXPECT_EQ(shown(lines.add("50 %")), "50 %");
}

}  // namespace
}  // namespace Tamrix::Dap
