#include "base/protocolescapes.h"

#include <gtest/gtest.h>

#include <QStringList>

namespace Tamrix {
namespace {

using Function = QString (*)(const QString&);

QString escapeVariable(const QString& text) {
    return escapeForVariablePrinting(text);
}

const struct {
    Function escape;
    Function unescape;
} pairs[] = {{escapeVariable, unescapeVariablePrinting},
             {escapeNonPrintable, unescapeNonPrintable}};

TEST(ProtocolEscapes, EachPairIsOneTheInverseOfTheOtherOverAllOfUnicode) {
    for (const auto& [escape, unescape] : pairs) {
        // Halves of surrogate pairs alone, too: a file name may hold them.
        for (uint code = 0; code < 0x10000; ++code) {
            const QString text(QChar(static_cast<ushort>(code)));
            // What follows a backslash must not be taken for an escape.
            for (const QString& whole : {text, "\\" + text, text + "\\", text + "n,x41"}) {
                const QString escaped = escape(whole);
                ASSERT_EQ(unescape(escaped), whole) << std::hex << code;
                ASSERT_FALSE(escaped.contains('\n')) << std::hex << code;
            }
        }
        for (uint plane = 1; plane <= 0x10; ++plane) {
            QString text;
            for (uint code = plane << 16; code <= ((plane << 16) | 0xffff); ++code)
                text += QString::fromUcs4(&code, 1);
            EXPECT_EQ(unescape(escape(text)), text) << plane;
        }
    }
}

TEST(ProtocolEscapes, VariablesKeepTheSignsOfAListingApart) {
    EXPECT_EQ(escapeForVariablePrinting("a,b#c=d\\e\nf\tg \"h\""),
              "a\\,b\\#c\\=d\\\\e\\nf\tg \"h\"");
    EXPECT_EQ(unescapeVariablePrinting("\\q\\"), "\\q\\") << "no escapes";
}

TEST(ProtocolEscapes, OnlyPrintableAsciiStandsAsItIs) {
    EXPECT_EQ(escapeNonPrintable(QString::fromUtf8(" ~\\\n\t\"\r\x7f\u00e4\u0100\U0001f600,#=")),
              " ~\\\\\\n\\t\\\"\\x0d\\x7f\\xe4\\u0100\\ud83d\\ude00,#=");
}

TEST(ProtocolEscapes, UnescapingTakesBlanksAndLeavesWhatIsNoEscape) {
    const struct {
        const char* escaped;
        const char* text;
    } rows[] = {
        {"/tmp/my\\ file.py", "/tmp/my file.py"},
        {"\\xe4\\xE4\\u20ac\\u20AC", "\u00e4\u00e4\u20ac\u20ac"},
        {"\\x4", "\\x4"},
        {"\\xg0\\u12", "\\xg0\\u12"},
        {"\\u123g", "\\u123g"},
        {"\\q\\", "\\q\\"},
        {"C:\\\\x", "C:\\x"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(unescapeNonPrintable(row.escaped).toStdString(), row.text) << row.escaped;
}

}  // namespace
}  // namespace Tamrix
