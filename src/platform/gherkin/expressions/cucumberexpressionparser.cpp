#include "platform/gherkin/expressions/cucumberexpressionparser.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

using Node = CucumberExpressionNode;
using Type = Node::Type;

constexpr std::size_t maxExpressionSize = 20'000;

enum class TokenType {
    Start,
    End,
    Space,
    OptionalBegin,
    OptionalEnd,
    ParameterBegin,
    ParameterEnd,
    Slash,
    Text
};

struct Token {
    TokenType type;
    /// Without the backslashes of escapes.
    std::string text;
    int begin;
    int end;
};

class Failure {
public:
    explicit Failure(std::string_view expression) : m_expression(expression) {}

    [[noreturn]] void operator()(int begin, int end, std::string message, std::string hint) const {
        throw ExpressionError(
            {"Cucumber Expression", m_expression, begin, end, std::move(message), std::move(hint)});
    }

private:
    std::string_view m_expression;
};

constexpr const char* escapeSlash =
    R"(If you did not mean to use an alternative you can use '\/' to escape the '/')";
constexpr const char* escapeOptional =
    R"(If you did not mean to use an optional you can use '\(' to escape the '(')";

TokenType typeOf(char32_t character) {
    switch (character) {
        case U'(':
            return TokenType::OptionalBegin;
        case U')':
            return TokenType::OptionalEnd;
        case U'{':
            return TokenType::ParameterBegin;
        case U'}':
            return TokenType::ParameterEnd;
        case U'/':
            return TokenType::Slash;
        default:
            return isSpace(character) ? TokenType::Space : TokenType::Text;
    }
}

/// Text and whitespace come in pieces as long as possible.
std::vector<Token> tokensOf(std::string_view expression, const Failure& fail) {
    std::vector<Token> tokens{{TokenType::Start, {}, 0, 0}};
    std::string_view rest = expression;
    int at = 0;
    while (!rest.empty()) {
        const int begin = at++;
        char32_t character = takeCodePoint(&rest);
        TokenType type = typeOf(character);
        if (character == U'\\') {
            if (rest.empty())
                fail(begin, at, "The end of line can not be escaped",
                     R"(You can use '\\' to escape the '\')");
            character = takeCodePoint(&rest);
            ++at;
            if (typeOf(character) == TokenType::Text && character != U'\\')
                fail(
                    begin + 1, at,
                    R"(Only the characters '{', '}', '(', ')', '\', '/' and whitespace can be escaped)",
                    R"(If you did mean to use an '\' you can use '\\' to escape it)");
            type = TokenType::Text;
        }
        const bool joins = type == TokenType::Text || type == TokenType::Space;
        if (!joins || tokens.back().type != type)
            tokens.push_back({type, {}, begin, begin});
        appendCodePoint(character, &tokens.back().text);
        tokens.back().end = at;
    }
    tokens.push_back({TokenType::End, {}, at, at});
    return tokens;
}

/// By recursive descent over the tokens. Optional text can't be nested, so the recursion is
/// bounded.
class Parser {
public:
    explicit Parser(std::string_view expression)
        : m_fail(expression), m_tokens(tokensOf(expression, m_fail)) {}

    Node run();

private:
    const Token& token() const { return m_tokens[m_at]; }
    bool isAt(TokenType type) const { return token().type == type; }
    /// A node of the next token, which is taken.
    Node takeText(Type type = Type::Text);
    std::optional<Node> readAlternation();
    Node readPart();
    Node readParameter();
    Node readOptional();
    std::size_t closingToken(TokenType end, const char* missing, const char* hint) const;

    Failure m_fail;
    std::vector<Token> m_tokens;
    std::size_t m_at = 1;
};

Node Parser::takeText(Type type) {
    const Token& taken = m_tokens[m_at++];
    return {type, taken.text, taken.begin, taken.end, {}};
}

Node Parser::run() {
    Node root{Type::Expression, {}, 0, m_tokens.back().end, {}};
    while (!isAt(TokenType::End)) {
        if (std::optional<Node> alternation = readAlternation())
            root.children.push_back(std::move(*alternation));
        else
            root.children.push_back(readPart());
    }
    return root;
}

/// An alternation goes from a boundary on the left to one on the right, and has a slash in it.
std::optional<Node> Parser::readAlternation() {
    const TokenType before = m_tokens[m_at - 1].type;
    if (before != TokenType::Start && before != TokenType::Space &&
        before != TokenType::ParameterEnd)
        return std::nullopt;
    const std::size_t first = m_at;
    Node alternation{Type::Alternation, {}, token().begin, 0, {}};
    Node alternative{Type::Alternative, {}, token().begin, 0, {}};
    const auto close = [&] {
        alternative.end = token().begin;
        alternation.children.push_back(std::move(alternative));
    };
    while (!isAt(TokenType::Space) && !isAt(TokenType::End) && !isAt(TokenType::ParameterBegin)) {
        if (isAt(TokenType::Slash)) {
            close();
            ++m_at;
            alternative = {Type::Alternative, {}, token().begin, 0, {}};
        } else {
            alternative.children.push_back(readPart());
        }
    }
    if (alternation.children.empty()) {
        m_at = first;
        return std::nullopt;
    }
    close();
    alternation.end = token().begin;
    for (const Node& each : alternation.children) {
        if (each.children.empty())
            m_fail(each.begin, each.end, "Alternative may not be empty", escapeSlash);
        if (std::all_of(each.children.begin(), each.children.end(),
                        [](const Node& child) { return child.type == Type::Optional; }))
            m_fail(each.begin, each.end, "An alternative may not exclusively contain optionals",
                   escapeOptional);
    }
    return alternation;
}

Node Parser::readPart() {
    if (isAt(TokenType::OptionalBegin))
        return readOptional();
    if (isAt(TokenType::ParameterBegin))
        return readParameter();
    return takeText();
}

/// Where the token stands that closes what the current one opens.
std::size_t Parser::closingToken(TokenType end, const char* missing, const char* hint) const {
    for (std::size_t at = m_at + 1; at < m_tokens.size(); ++at)
        if (m_tokens[at].type == end)
            return at;
    m_fail(token().begin, token().end, missing, hint);
}

Node Parser::readParameter() {
    const std::size_t end =
        closingToken(TokenType::ParameterEnd, "The '{' does not have a matching '}'",
                     R"(If you did not intend to use a parameter you can use '\{' to escape it)");
    Node node{Type::Parameter, {}, token().begin, m_tokens[end].end, {}};
    for (++m_at; m_at < end; ++m_at) {
        if (!isAt(TokenType::Text) && !isAt(TokenType::Space))
            m_fail(token().begin, token().end,
                   R"(Parameter names may not contain '{', '}', '(', ')', '\' or '/')",
                   "Did you mean to use a regular expression?");
        node.text += token().text;
    }
    ++m_at;
    return node;
}

Node Parser::readOptional() {
    const std::size_t end =
        closingToken(TokenType::OptionalEnd, "The '(' does not have a matching ')'",
                     R"(If you did not intend to use optional text you can use '\(' to escape it)");
    Node node{Type::Optional, {}, token().begin, m_tokens[end].end, {}};
    for (++m_at; m_at < end;) {
        const Token& inner = token();
        if (inner.type == TokenType::Slash)
            m_fail(inner.begin, inner.end, "An alternation can not be used inside an optional",
                   R"(You can use '\/' to escape the '/')");
        if (inner.type == TokenType::OptionalBegin)
            m_fail(inner.begin, inner.end, "An optional may not contain an other optional",
                   std::string(escapeOptional) +
                       ". For more complicated expressions consider "
                       "using a regular expression instead");
        if (inner.type == TokenType::ParameterBegin)
            m_fail(
                inner.begin, inner.end, "An optional may not contain a parameter type",
                R"(If you did not mean to use a parameter type you can use '\{' to escape the '{')");
        node.children.push_back(takeText());
    }
    ++m_at;
    if (node.children.empty())
        m_fail(node.begin, node.end, "An optional must contain some text", escapeOptional);
    return node;
}

}  // namespace

CucumberExpressionNode parseCucumberExpression(std::string_view expression) {
    if (expression.size() > maxExpressionSize)
        throw ExpressionError("A Cucumber Expression is longer than " +
                              std::to_string(maxExpressionSize) + " bytes");
    if (invalidUtf8(expression))
        throw ExpressionError("A Cucumber Expression isn't valid UTF-8");
    return Parser(expression).run();
}

}  // namespace Tamrix::Gherkin
