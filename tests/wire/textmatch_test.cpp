#include "wire/textmatch.h"

#include <gtest/gtest.h>

#include "support/printqt.h"

namespace Tamrix::Wire {
namespace {

TEST(TextMatch, ComparesAsTheModeSays) {
    const struct {
        const char* wanted;
        TextMatch::Mode mode;
        const char* text;
        bool matches;
    } rows[] = {
        {"Save*", TextMatch::Plain, "Save*", true},
        {"Save", TextMatch::Plain, "Save as", false},
        {"", TextMatch::Plain, "", true},
        {"Sav*", TextMatch::Wildcard, "Save\nas/it", true},
        {"Sav*", TextMatch::Wildcard, "xSave", false},
        {"?b", TextMatch::Wildcard, "ab", true},
        {"?b", TextMatch::Wildcard, "b", false},
        {"a.b", TextMatch::Wildcard, "axb", false},
        {"*\xf0\x9f\x98\x80 (?)", TextMatch::Wildcard, "a \xf0\x9f\x98\x80 (\xc3\xa4)", true},
        {"?[\xf0\x9f\x98\x80]", TextMatch::Wildcard, "\xf0\x9f\x98\x81\xf0\x9f\x98\x80", true},
        {"[a-c]1", TextMatch::Wildcard, "b1", true},
        {"[!a-c]1", TextMatch::Wildcard, "b1", false},
        {"[!a-c]1", TextMatch::Wildcard, "x1", true},
        {"[]]", TextMatch::Wildcard, "]", true},
        {"[\\d]", TextMatch::Wildcard, "7", false},
        {"[*]|x", TextMatch::Wildcard, "*|x", true},
        {"a|b", TextMatch::Wildcard, "b", false},
        {"ave", TextMatch::Pattern, "Save", true},
        {"^ave", TextMatch::Pattern, "Save", false},
    };
    for (const auto& row : rows) {
        const TextMatch match(row.wanted, row.mode);
        EXPECT_EQ(match.errorText(), "");
        EXPECT_EQ(match.matches(row.text), row.matches) << row.wanted << " on " << row.text;
    }
}

TEST(TextMatch, FaultyTextsSayWhyAndMatchNothing) {
    const struct {
        const char* wanted;
        int mode;
        const char* error;
    } rows[] = {
        {"a[b", 1, "the wildcard 'a[b' has a '[' without ']' at character 2"},
        {"[z-a]", 1, "'[z-a]' is no valid wildcard: range out of order in character class"},
        {"a(", 2,
         "'a(' is no valid regular expression: missing closing parenthesis at character 3"},
        {"a", 9, "there is no way 9 to compare texts"},
    };
    for (const auto& row : rows) {
        const TextMatch match(row.wanted, row.mode);
        EXPECT_EQ(match.errorText().left(static_cast<int>(strlen(row.error))), row.error);
        EXPECT_FALSE(match.matches(row.wanted));
    }
}

}  // namespace
}  // namespace Tamrix::Wire
