#include "interpreter/language/looseutf8.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

QString text(std::initializer_list<ushort> units) {
    // A byte-order mark is one of the characters.
    return QString(reinterpret_cast<const QChar*>(units.begin()), static_cast<int>(units.size()));
}

TEST(LooseUtf8, KeepsLoneSurrogates) {
    const std::pair<QString, QByteArray> rows[] = {
        {QString(""), ""},
        {text({0xFEFF, 0xFEFF, 'z', 0xFEFF}), "\xEF\xBB\xBF\xEF\xBB\xBFz\xEF\xBB\xBF"},
        {text({0xFEFF, 0xD83D, 0xFEFF}), "\xEF\xBB\xBF\xED\xA0\xBD\xEF\xBB\xBF"},
        {text({'a', 0xE9, 0x20AC}), "a\xC3\xA9\xE2\x82\xAC"},
        {text({0xD83D, 0xDE00}), "\xF0\x9F\x98\x80"},
        {text({'a', 0xD83D}), "a\xED\xA0\xBD"},
        {text({0xDE00, 0xD83D, 0xDE00, 'b'}),
         "\xED\xB8\x80\xF0\x9F\x98\x80"
         "b"},
        {text({0xD83D, 0xD83D, 0xDE00}), "\xED\xA0\xBD\xF0\x9F\x98\x80"},
        {text({'a', 0, 0xDC00}), QByteArray("a\0\xED\xB0\x80", 5)},
    };
    for (const auto& [plain, bytes] : rows) {
        EXPECT_EQ(toLooseUtf8(plain).toHex(), bytes.toHex());
        EXPECT_EQ(fromLooseUtf8(bytes.constData(), bytes.size()), plain);
    }
}

TEST(LooseUtf8, ReadsWhatIsNone) {
    const QChar replacement(QChar::ReplacementCharacter);
    EXPECT_EQ(fromLooseUtf8("\xED\xA0", 2).back(), replacement);
    EXPECT_EQ(fromLooseUtf8("a\xFF"
                            "b",
                            3),
              QString("a") + replacement + "b");
}

}  // namespace
}  // namespace Tamrix
