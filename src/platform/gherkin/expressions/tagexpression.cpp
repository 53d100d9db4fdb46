#include "platform/gherkin/expressions/tagexpression.h"

#include <algorithm>
#include <utility>

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

constexpr std::size_t maxExpressionSize = 20'000;

struct Word {
    /// Without the backslashes of escapes.
    std::string text;
    /// Whether it is a bracket or may be an operator: it has no escapes.
    bool isPlain = true;
    int begin = 0;
    int end = 0;

    bool is(std::string_view wanted) const { return isPlain && text == wanted; }
};

[[noreturn]] void fail(std::string_view expression, int begin, int end, std::string message) {
    throw ExpressionError({"tag expression", expression, begin, end, std::move(message), {}});
}

/// Words are separated by whitespace; brackets are words of their own.
std::vector<Word> wordsOf(std::string_view expression) {
    std::vector<Word> words;
    bool isOpen = false;
    int at = 0;
    for (std::string_view rest = expression; !rest.empty();) {
        const int begin = at++;
        char32_t character = takeCodePoint(&rest);
        if (isSpace(character)) {
            isOpen = false;
            continue;
        }
        const bool isBracket = character == U'(' || character == U')';
        if (isBracket || !isOpen)
            words.push_back({{}, true, begin, begin});
        isOpen = !isBracket;
        if (character == U'\\') {
            const char32_t escaped = rest.empty() ? U'\0' : takeCodePoint(&rest);
            ++at;
            if (escaped != U'(' && escaped != U')' && escaped != U'\\' && !isSpace(escaped))
                fail(expression, begin, begin + 1,
                     "Only brackets, backslashes and whitespace can be escaped");
            character = escaped;
            words.back().isPlain = false;
        }
        appendCodePoint(character, &words.back().text);
        words.back().end = at;
    }
    return words;
}

}  // namespace

/// By two stacks: what has been read completely, and the operators and brackets that wait for more.
class TagExpression::Parser {
public:
    explicit Parser(std::string_view expression) : m_expression(expression) {}

    std::vector<Token> run();

private:
    struct Waiting {
        Operation operation;
        bool isBracket;
        Word word;
    };

    void readOperand(const Word& word);
    void readOperator(const Word& word);
    void closeBracket(const Word& word);
    void finishOperator();

    std::string_view m_expression;
    std::vector<Token> m_output;
    std::vector<Waiting> m_waiting;
    bool m_wantsOperand = true;
};

std::vector<TagExpression::Token> TagExpression::Parser::run() {
    const std::vector<Word> words = wordsOf(m_expression);
    for (const Word& word : words) {
        if (m_wantsOperand)
            readOperand(word);
        else
            readOperator(word);
    }
    const int end = words.empty() ? 0 : words.back().end;
    if (m_wantsOperand && !words.empty())
        fail(m_expression, end, end + 1, "Expected a tag at the end");
    while (!m_waiting.empty()) {
        const Waiting& last = m_waiting.back();
        if (last.isBracket)
            fail(m_expression, last.word.begin, last.word.end,
                 "The '(' does not have a matching ')'");
        finishOperator();
    }
    return std::move(m_output);
}

void TagExpression::Parser::readOperand(const Word& word) {
    if (word.is("not") || word.is("(")) {
        m_waiting.push_back({Operation::Not, word.is("("), word});
        return;
    }
    if (word.is("and") || word.is("or") || word.is(")"))
        fail(m_expression, word.begin, word.end, "Expected a tag");
    m_output.push_back({Operation::Tag, word.text});
    m_wantsOperand = false;
}

void TagExpression::Parser::readOperator(const Word& word) {
    if (word.is(")")) {
        closeBracket(word);
        return;
    }
    const bool isAnd = word.is("and");
    if (!isAnd && !word.is("or"))
        fail(m_expression, word.begin, word.end, "Expected 'and', 'or' or ')'");
    // What binds at least as strongly is complete: "not" before "and" before "or".
    while (!m_waiting.empty() && !m_waiting.back().isBracket &&
           !(isAnd && m_waiting.back().operation == Operation::Or))
        finishOperator();
    m_waiting.push_back({isAnd ? Operation::And : Operation::Or, false, word});
    m_wantsOperand = true;
}

void TagExpression::Parser::closeBracket(const Word& word) {
    while (!m_waiting.empty() && !m_waiting.back().isBracket)
        finishOperator();
    if (m_waiting.empty())
        fail(m_expression, word.begin, word.end, "The ')' does not have a matching '('");
    m_waiting.pop_back();
}

void TagExpression::Parser::finishOperator() {
    m_output.push_back({m_waiting.back().operation, {}});
    m_waiting.pop_back();
}

TagExpression::TagExpression(std::string_view expression) {
    if (expression.size() > maxExpressionSize)
        throw ExpressionError("A tag expression is longer than " +
                              std::to_string(maxExpressionSize) + " bytes");
    if (invalidUtf8(expression))
        throw ExpressionError("A tag expression isn't valid UTF-8");
    m_tokens = Parser(expression).run();
}

bool TagExpression::holds(const std::vector<std::string>& tags) const {
    if (m_tokens.empty())
        return true;
    std::vector<bool> values;
    for (const Token& token : m_tokens) {
        if (token.operation == Operation::Tag) {
            const bool isThere = std::any_of(tags.begin(), tags.end(), [&](const std::string& tag) {
                return token.tag.size() == tag.size() + 1 && token.tag[0] == '@' &&
                       token.tag.ends_with(tag);
            });
            values.push_back(isThere);
            continue;
        }
        const bool right = values.back();
        if (token.operation == Operation::Not) {
            values.back() = !right;
            continue;
        }
        values.pop_back();
        const bool left = values.back();
        values.back() = token.operation == Operation::And ? left && right : left || right;
    }
    return values.back();
}

}  // namespace Tamrix::Gherkin
