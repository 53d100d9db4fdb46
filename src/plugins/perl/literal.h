#pragma once

#include <QString>

namespace Tamrix::PerlPlugin {

/// Which characters a literal may hold as they are.
enum class LiteralCharacters {
    All,   ///< for a file that says `use utf8`
    Ascii  ///< for any file
};

/// The text as a literal of Perl, on one line whatever it holds: in single quotes unless it needs
/// escapes.
QString literal(const QString& text, LiteralCharacters characters = LiteralCharacters::All);

}  // namespace Tamrix::PerlPlugin
