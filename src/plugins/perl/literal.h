#pragma once

#include <QString>

namespace Tamrix::PerlPlugin {

/// How a character stands by its number in double quotes.
constexpr const char* numberedCharacter = "\\x{%1}";

/// The text as a literal of Perl, on one line whatever it holds: in single quotes unless it needs
/// escapes. For a file that says `use utf8`.
QString literal(const QString& text);
/// The same for any file, with escapes for all but ASCII.
QString asciiLiteral(const QString& text);

}  // namespace Tamrix::PerlPlugin
