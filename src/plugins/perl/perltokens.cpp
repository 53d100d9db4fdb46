#include "plugins/perl/perltokens.h"

#include <QRegularExpression>
#include <algorithm>
#include <iterator>

namespace Tamrix::PerlPlugin {

namespace {

constexpr int longestSource = 20'000;

/// How tokens look, in the order in which they are tried.
const struct {
    PerlToken::Kind kind;
    const char* pattern;
} tokenForms[] = {
    {PerlToken::Operator, R"(\$#)"},
    {PerlToken::Variable, R"([$@%](?:::)?\w+(?:::\w+)*(?:(?:->)?\[\s*(?:-?\d+|\$\w+)\s*\]|)"
                          R"((?:->)?\{\s*(?:-?\w+|'[^'\\]*'|"[^"\\$@]*"|\$\w+)\s*\}|)"
                          R"(->[A-Za-z_]\w*(?![\w:]|\s*\())*)"},
    // With brackets those that have no others of their kind in them.
    {PerlToken::Constant, R"((?:q|qq|qw|qr|m)(?!\w|\s*=>|\s*,)\s*(?:)"
                          R"(\((?:[^()\\]|\\.)*\)|\{(?:[^{}\\]|\\.)*\}|\[(?:[^\[\]\\]|\\.)*\]|)"
                          R"(<(?:[^<>\\]|\\.)*>|([^\w\s])(?:(?!\1)[^\\]|\\.)*\1)[a-z]*)"},
    {PerlToken::Constant, R"('(?:[^'\\]|\\.)*'|"(?:[^"\\]|\\.)*"|\d[\w.]*)"},
    {PerlToken::Word, R"([A-Za-z_]\w*(?:::\w+)*)"},
    {PerlToken::Separator, R"(,|=>)"},
    {PerlToken::Semicolon, R"(;)"},
    {PerlToken::Open, R"([(\[{])"},
    {PerlToken::Close, R"([)\]}])"},
    {PerlToken::Operator, R"(->|=~|!~|.)"},
};
/// Where an operand stands, "/" begins an expression that is matched.
constexpr const char* match = R"(/(?:[^/\\\n]|\\.)*/[a-z]*)";
constexpr const char* blanks = R"((?:\s+|#[^\n]*)+)";

QRegularExpression compiled(const char* pattern) {
    return QRegularExpression(QLatin1String(pattern),
                              QRegularExpression::DotMatchesEverythingOption);
}

int lengthAt(const QRegularExpression& expression, const QString& source, int place) {
    const QRegularExpressionMatch found = expression.match(
        source, place, QRegularExpression::NormalMatch, QRegularExpression::AnchoredMatchOption);
    return found.hasMatch() ? found.capturedLength() : 0;
}

bool expectsOperand(const std::vector<PerlToken>& tokens) {
    if (tokens.empty())
        return true;
    const PerlToken::Kind last = tokens.back().kind;
    return last == PerlToken::Operator || last == PerlToken::Open || last == PerlToken::Separator ||
           last == PerlToken::Semicolon;
}

/// The token that begins there.
PerlToken tokenAt(const QString& source, int place, bool isOperand) {
    static const QRegularExpression s_match = compiled(match);
    static const std::vector<QRegularExpression> s_forms = [] {
        std::vector<QRegularExpression> forms;
        forms.reserve(std::size(tokenForms));
        for (const auto& form : tokenForms)
            forms.push_back(compiled(form.pattern));
        return forms;
    }();
    if (const int length = isOperand ? lengthAt(s_match, source, place) : 0)
        return {PerlToken::Constant, place, place + length};
    for (std::size_t index = 0; index < s_forms.size(); ++index) {
        if (const int length = lengthAt(s_forms[index], source, place))
            return {tokenForms[index].kind, place, place + length};
    }
    return {PerlToken::Operator, place, place + 1};
}

bool isRoundOrSquare(const QString& source, const PerlToken& token) {
    return source.at(token.start) != '{' && source.at(token.start) != '}';
}

}  // namespace

std::vector<PerlToken> perlTokens(const QString& source) {
    static const QRegularExpression s_blanks = compiled(blanks);
    std::vector<PerlToken> tokens;
    const int end = std::min(source.size(), longestSource);
    const int firstLine = source.indexOf('\n');
    // Of blocks a statement may have any in its brackets, and none around it is told apart.
    int depth = 0;
    for (int place = lengthAt(s_blanks, source, 0); place < end;
         place += lengthAt(s_blanks, source, place)) {
        const PerlToken token = tokenAt(source, place, expectsOperand(tokens));
        tokens.push_back(token);
        place = token.end;
        if (token.kind == PerlToken::Open && isRoundOrSquare(source, token))
            ++depth;
        else if (token.kind == PerlToken::Close && isRoundOrSquare(source, token))
            --depth;
        else if (token.kind == PerlToken::Semicolon && depth <= 0 && token.start > firstLine)
            break;
    }
    return tokens;
}

}  // namespace Tamrix::PerlPlugin
