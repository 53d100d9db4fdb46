#include "base/nativebytes.h"

#include <gtest/gtest.h>

#include <QTextCodec>

#include "base/textescape.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(NativeBytes, EveryNameComesOutAsItWas) {
    const struct {
        QByteArray bytes;
        const char* escaped;
    } rows[] = {
        {"plain", "plain"},
        {"caf\xc3\xa9 \xf0\x9f\x98\x80", "café 😀"},
        {"caf\xe9", "caf\\xe9"},
        {"\xff\xfe", "\\xff\\xfe"},
        // A character that is cut, one that is too long, half of a pair, one that is out of range.
        {"a\xe2\x82", "a\\xe2\\x82"},
        {"\xc0\xaf", "\\xc0\\xaf"},
        {"\xed\xb2\x80", "\\xed\\xb2\\x80"},
        {"\xf5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"},
        {"\xef\xbb\xbfmark", "\ufeffmark"},
        {"\xe9\xc3\xa9\xe9", "\\xe9é\\xe9"},
        {"", ""},
    };
    for (const auto& row : rows) {
        const QString text = fromNativeBytes(row.bytes);
        EXPECT_EQ(escapedForTerminal(text), fromNativeBytes(row.escaped));
        EXPECT_EQ(toNativeBytes(text), row.bytes) << row.escaped;
    }
    // Halves of pairs that stand for no byte.
    EXPECT_EQ(toNativeBytes(QString(QChar(0xd83d)) + QChar(0xdc7f)), "\xf0\x9f\x91\xbf");
    EXPECT_EQ(toNativeBytes(QString(QChar(0xdc7f)) + QChar(0xd83d)), "??");
}

}  // namespace
}  // namespace Tamrix
