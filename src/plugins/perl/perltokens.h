#pragma once

#include <QString>
#include <vector>

namespace Tamrix::PerlPlugin {

/// A piece of Perl's source, as far as people who look for values need to know it.
struct PerlToken {
    enum Kind {
        Word,      ///< a name without a sign, perhaps with packages
        Variable,  ///< with what is taken of it: "$h->{key}[0]"
        Constant,  ///< a number, a text of whatever quotes, an expression that is matched
        Open,
        Close,
        Separator,  ///< "," and "=>"
        Semicolon,
        Operator
    };

    Kind kind;
    int start;
    int end;

    QString textIn(const QString& source) const { return source.mid(start, end - start); }
};

/// Splits source without running it, which can't be right always: what it can't tell apart is an
/// operator. Comments and blanks are no tokens. Stops at the end of the first statement that ends
/// outside of brackets behind the first line, and after some 20,000 characters.
std::vector<PerlToken> perlTokens(const QString& source);

}  // namespace Tamrix::PerlPlugin
