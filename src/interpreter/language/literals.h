#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

// Code that is written for people to go on with: names in scripts, steps, recorded lines.

/// How a language writes a text between quotes.
struct LiteralStyle {
    QChar quote = '"';
    /// What else than the quote and the backslash has a backslash in front.
    const char* furtherEscaped = "";
    /// A character by its number: "%1" is that in hexadecimal digits.
    const char* numbered = "\\u%1";
    /// At least so many digits.
    int digits = 4;
    /// Whether the number may be that of half a character, which texts of an application may hold;
    /// otherwise the replacement character stands for it.
    bool hasHalves = true;
};

/// The text as a literal: line ends and tabs as `\n`, `\r` and `\t`; other characters that can't be
/// seen, and half characters that no file could hold, by their numbers.
TAMRIX_EXPORT QString literalOf(const QString& text, const LiteralStyle& style = LiteralStyle());

/// Whether all characters of the text are shown as what they are.
TAMRIX_EXPORT bool isPlainText(const QString& text);

}  // namespace Tamrix
