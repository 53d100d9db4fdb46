#include "interpreter/language/literals.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix {
namespace {

TEST(Literals, AreCode) {
    const LiteralStyle plain;
    const LiteralStyle ruby{'"', "#"};
    const LiteralStyle perl{'\'', "", "\\x{%1}", 0};
    const struct {
        LiteralStyle style;
        QString text;
        const char* literal;
    } rows[] = {
        {plain, "Save", R"("Save")"},
        {plain, R"(C:\a "b" 'c' #{d})", R"("C:\\a \"b\" 'c' #{d}")"},
        {plain, "a\nb\r\tc", R"("a\nb\r\tc")"},
        {plain, QString("a") + QChar(1) + QChar(0x200B) + "b", "\"a\\u0001\\u200bb\""},
        {plain, QString::fromUtf8("é€😀"), "\"é€😀\""},
        {plain, QString("a") + QChar(0xD83D) + "b" + QChar(0xDE00), "\"a\\ud83db\\ude00\""},
        {ruby, "#{a}", R"("\#{a}")"},
        {perl, QString("it's") + QChar(1), R"('it\'s\x{1}')"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(literalOf(row.text, row.style), QString::fromUtf8(row.literal));
}

}  // namespace
}  // namespace Tamrix
