#include "platform/gherkin/expressions/regularexpressionparser.h"

#include <algorithm>
#include <utility>

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

using Node = RegularExpressionNode;
using Type = Node::Type;

constexpr std::size_t maxPatternSize = 20'000;
constexpr int maxNesting = 100;
constexpr int maxRepetition = 1'000;

Node nodeOf(Type type) {
    Node node;
    node.type = type;
    return node;
}

std::optional<int> hexDigit(char32_t digit) {
    if (digit >= U'0' && digit <= U'9')
        return static_cast<int>(digit - U'0');
    if (digit >= U'a' && digit <= U'f')
        return static_cast<int>(digit - U'a' + 10);
    if (digit >= U'A' && digit <= U'F')
        return static_cast<int>(digit - U'A' + 10);
    return std::nullopt;
}

/// By recursive descent: alternatives of sequences of repeated atoms.
class Parser {
public:
    explicit Parser(std::string_view pattern);
    ParsedRegularExpression run();

private:
    [[noreturn]] void fail(int begin, const std::string& message) const;
    bool atEnd() const { return m_at == m_pattern.size(); }
    char32_t peek() const { return atEnd() ? U'\0' : m_pattern[m_at]; }
    bool looksAt(std::u32string_view text) const {
        return std::u32string_view(m_pattern).substr(m_at).starts_with(text);
    }
    bool take(std::u32string_view text);
    int place() const { return static_cast<int>(m_at); }

    void readFlags();
    Node readAlternatives();
    Node readSequence();
    Node readRepeated();
    Node readAtom();
    Node readGroup();
    std::string readGroupName(char32_t end, int begin);
    Node readEscape();
    Node readClass();
    std::optional<char32_t> readClassCharacter(CharacterClass* characters);
    bool readNamedClass(CharacterClass* characters);
    char32_t readCharacterEscape(int begin);
    bool readBounds(Node* repetition);
    std::optional<int> readNumber();
    Node characterNode(char32_t character) const;
    Node backReference(int number, int begin);

    std::string_view m_source;
    std::u32string m_pattern;
    std::size_t m_at = 0;
    int m_depth = 0;
    bool m_dotTakesAll = false;
    bool m_isMultiline = false;
    ParsedRegularExpression m_result;
    /// Where each group that may be referred to has ended.
    std::vector<bool> m_isClosed;
};

Parser::Parser(std::string_view pattern) : m_source(pattern) {
    if (pattern.size() > maxPatternSize)
        throw ExpressionError("A regular expression is longer than " +
                              std::to_string(maxPatternSize) + " bytes");
    if (invalidUtf8(pattern))
        throw ExpressionError("A regular expression isn't valid UTF-8");
    while (!pattern.empty())
        m_pattern.push_back(takeCodePoint(&pattern));
}

void Parser::fail(int begin, const std::string& message) const {
    const int size = static_cast<int>(m_pattern.size());
    throw ExpressionError({"regular expression",
                           m_source,
                           std::min(begin, size),
                           std::max(place(), std::min(begin, size) + 1),
                           message,
                           {}});
}

bool Parser::take(std::u32string_view text) {
    if (!looksAt(text))
        return false;
    m_at += text.size();
    return true;
}

ParsedRegularExpression Parser::run() {
    readFlags();
    m_result.root = readAlternatives();
    if (!atEnd())
        fail(place(), "The ')' does not have a matching '('");
    return std::move(m_result);
}

/// Flags hold for the whole expression, so they stand at its start.
void Parser::readFlags() {
    const std::size_t begin = m_at;
    if (!take(U"(?"))
        return;
    for (; !atEnd() && peek() != U')'; ++m_at) {
        switch (peek()) {
            case U'i':
                m_result.ignoresCase = true;
                break;
            case U's':
                m_dotTakesAll = true;
                break;
            case U'm':
                m_isMultiline = true;
                break;
            case U'u':
                break;
            default:
                // A group of another kind, or flags that are refused there.
                m_result.ignoresCase = m_dotTakesAll = m_isMultiline = false;
                m_at = begin;
                return;
        }
    }
    if (!take(U")"))
        fail(static_cast<int>(begin), "The '(' does not have a matching ')'");
}

Node Parser::readAlternatives() {
    if (++m_depth > maxNesting)
        fail(place(),
             "There are more than " + std::to_string(maxNesting) + " groups inside each other");
    Node alternatives = nodeOf(Type::Alternatives);
    do
        alternatives.children.push_back(readSequence());
    while (take(U"|"));
    --m_depth;
    if (alternatives.children.size() > 1)
        return alternatives;
    return std::move(alternatives.children[0]);
}

Node Parser::readSequence() {
    Node sequence = nodeOf(Type::Sequence);
    while (!atEnd() && peek() != U'|' && peek() != U')')
        sequence.children.push_back(readRepeated());
    return sequence;
}

Node Parser::readRepeated() {
    const int begin = place();
    Node atom = readAtom();
    Node repetition = nodeOf(Type::Repetition);
    const int quantifier = place();
    if (take(U"*")) {
        repetition.maximum = -1;
    } else if (take(U"+")) {
        repetition.minimum = 1;
        repetition.maximum = -1;
    } else if (take(U"?")) {
        repetition.maximum = 1;
    } else if (!readBounds(&repetition)) {
        return atom;
    }
    if (begin == quantifier)
        fail(quantifier, "There is nothing to repeat");
    repetition.isLazy = take(U"?");
    const bool isRepeatedAgain = peek() == U'*' || peek() == U'+' || peek() == U'?';
    Node ignored;
    const int again = place();
    if (isRepeatedAgain || readBounds(&ignored)) {
        m_at = std::max(m_at, static_cast<std::size_t>(again) + 1);
        fail(again, "What is repeated can't be repeated again without a group");
    }
    repetition.children.push_back(std::move(atom));
    return repetition;
}

/// Reads "{2}", "{2,}", "{2,3}" or "{,3}". Other braces are plain characters.
bool Parser::readBounds(Node* repetition) {
    const std::size_t begin = m_at;
    if (!take(U"{"))
        return false;
    const std::optional<int> minimum = readNumber();
    std::optional<int> maximum = minimum;
    const bool isRange = take(U",");
    if (isRange)
        maximum = readNumber();
    if (!take(U"}") || (!minimum && !maximum)) {
        m_at = begin;
        return false;
    }
    repetition->minimum = minimum.value_or(0);
    repetition->maximum = maximum.value_or(-1);
    if (repetition->minimum > maxRepetition || repetition->maximum > maxRepetition)
        fail(static_cast<int>(begin), "Nothing can be repeated more than " +
                                          std::to_string(maxRepetition) + " times by number");
    if (repetition->maximum >= 0 && repetition->maximum < repetition->minimum)
        fail(static_cast<int>(begin), "The smaller number comes first");
    return true;
}

std::optional<int> Parser::readNumber() {
    if (peek() < U'0' || peek() > U'9')
        return std::nullopt;
    int number = 0;
    for (; peek() >= U'0' && peek() <= U'9'; ++m_at)
        number = std::min(number * 10 + static_cast<int>(peek() - U'0'), 1'000'000);
    return number;
}

Node Parser::characterNode(char32_t character) const {
    Node node = nodeOf(Type::Character);
    node.character = character;
    if (m_result.ignoresCase && otherCase(character) != character) {
        node.type = Type::Class;
        node.characters.add(character, character);
        node.characters.ignoreCase();
    }
    return node;
}

Node Parser::readAtom() {
    const char32_t character = peek();
    switch (character) {
        case U'*':
        case U'+':
        case U'?':
            // Nothing is taken, and the quantifier that follows complains.
            return nodeOf(Type::Empty);
        case U'(':
            return readGroup();
        case U'[':
            return readClass();
        case U'\\':
            return readEscape();
        default:
            break;
    }
    ++m_at;
    switch (character) {
        case U'.':
            return nodeOf(m_dotTakesAll ? Type::Any : Type::AnyButLineEnd);
        case U'^':
            return nodeOf(m_isMultiline ? Type::LineBegin : Type::TextBegin);
        case U'$':
            return nodeOf(m_isMultiline ? Type::LineEnd : Type::TextEnd);
        default:
            return characterNode(character);
    }
}

Node Parser::readGroup() {
    const int begin = place();
    Node node = nodeOf(Type::Group);
    std::string name;
    bool isCapture = false;
    if (take(U"(?:")) {
        node.type = Type::Sequence;
    } else if (take(U"(?=")) {
        node.type = Type::LookAhead;
    } else if (take(U"(?!")) {
        node.type = Type::NegativeLookAhead;
    } else if (take(U"(?P=")) {
        const std::string wanted = readGroupName(U')', begin);
        const auto& names = m_result.groupNames;
        const auto found = std::find(names.begin(), names.end(), wanted);
        if (found == names.end())
            fail(begin, "There is no group '" + wanted + "'");
        return backReference(static_cast<int>(found - names.begin()) + 1, begin);
    } else if (looksAt(U"(?<=") || looksAt(U"(?<!")) {
        m_at += 4;
        fail(begin, "Looking behind is not supported");
    } else {
        isCapture = true;
        if (take(U"(?P<") || take(U"(?<"))
            name = readGroupName(U'>', begin);
        else if (take(U"(?"))
            fail(begin, "This kind of group is not supported");
        else
            ++m_at;
    }
    if (isCapture) {
        if (!name.empty() &&
            std::count(m_result.groupNames.begin(), m_result.groupNames.end(), name))
            fail(begin, "There is already a group '" + name + "'");
        node.number = ++m_result.groupCount;
        m_result.groupNames.push_back(name);
        m_isClosed.push_back(false);
    }
    node.children.push_back(readAlternatives());
    if (!take(U")"))
        fail(begin, "The '(' does not have a matching ')'");
    if (isCapture)
        m_isClosed[static_cast<std::size_t>(node.number) - 1] = true;
    return node;
}

std::string Parser::readGroupName(char32_t end, int begin) {
    std::string name;
    for (; !atEnd() && isWordCharacter(peek()); ++m_at)
        appendCodePoint(peek(), &name);
    if (name.empty() || peek() != end)
        fail(begin, "The name of a group consists of letters, digits and underscores");
    ++m_at;
    return name;
}

Node Parser::backReference(int number, int begin) {
    if (number > m_result.groupCount || !m_isClosed[static_cast<std::size_t>(number) - 1])
        fail(begin, "There is no group " + std::to_string(number) + " before this place");
    m_result.hasBackReferences = true;
    Node node = nodeOf(Type::BackReference);
    node.number = number;
    return node;
}

Node Parser::readEscape() {
    const int begin = place();
    ++m_at;
    const char32_t next = peek();
    if (next >= U'1' && next <= U'9')
        return backReference(*readNumber(), begin);
    Node node = nodeOf(Type::Class);
    if (readNamedClass(&node.characters))
        return node;
    const struct {
        char32_t letter;
        Type type;
    } places[] = {{U'b', Type::WordBoundary},
                  {U'B', Type::NoWordBoundary},
                  {U'A', Type::TextBegin},
                  {U'Z', Type::TextEnd},
                  {U'z', Type::TextEnd}};
    for (const auto& each : places) {
        if (next == each.letter) {
            ++m_at;
            return nodeOf(each.type);
        }
    }
    return characterNode(readCharacterEscape(begin));
}

/// Behind a backslash: one of d, D, w, W, s, S.
bool Parser::readNamedClass(CharacterClass* characters) {
    const struct {
        char32_t letter;
        CharacterClass::Kind kind;
        bool isNegated;
    } kinds[] = {
        {U'd', CharacterClass::Kind::Digit, false}, {U'D', CharacterClass::Kind::Digit, true},
        {U'w', CharacterClass::Kind::Word, false},  {U'W', CharacterClass::Kind::Word, true},
        {U's', CharacterClass::Kind::Space, false}, {U'S', CharacterClass::Kind::Space, true}};
    for (const auto& each : kinds) {
        if (peek() == each.letter) {
            characters->add(each.kind, each.isNegated);
            ++m_at;
            return true;
        }
    }
    return false;
}

/// Behind a backslash, which stands at `begin`.
char32_t Parser::readCharacterEscape(int begin) {
    if (atEnd())
        fail(begin, "The end of the expression can't be escaped");
    const char32_t letter = m_pattern[m_at++];
    const struct {
        char32_t letter;
        char32_t character;
    } controls[] = {{U'n', U'\n'}, {U't', U'\t'}, {U'r', U'\r'},
                    {U'f', U'\f'}, {U'v', U'\v'}, {U'0', U'\0'}};
    for (const auto& each : controls)
        if (letter == each.letter)
            return each.character;
    if (letter == U'x' || letter == U'u') {
        char32_t value = 0;
        for (int i = 0; i < (letter == U'x' ? 2 : 4); ++i) {
            const std::optional<int> digit = hexDigit(peek());
            if (!digit)
                fail(begin, "The number of a character is incomplete");
            value = value * 16 + static_cast<char32_t>(*digit);
            ++m_at;
        }
        if (value >= 0xD800 && value <= 0xDFFF)
            fail(begin, "There is no character of this number");
        return value;
    }
    if (letter < 0x80 && isWordCharacter(letter) && letter != U'_')
        fail(begin, "This escape is not supported");
    return letter;
}

Node Parser::readClass() {
    const int begin = place();
    ++m_at;
    Node node = nodeOf(Type::Class);
    if (m_result.ignoresCase)
        node.characters.ignoreCase();
    if (take(U"^"))
        node.characters.negate();
    // A bracket that comes first is a character of the class.
    for (bool isFirst = true; isFirst || peek() != U']'; isFirst = false) {
        if (atEnd())
            fail(begin, "The '[' does not have a matching ']'");
        const int itemBegin = place();
        const std::optional<char32_t> first = readClassCharacter(&node.characters);
        if (!first)
            continue;
        std::optional<char32_t> last = first;
        if (looksAt(U"-") && !looksAt(U"-]")) {
            ++m_at;
            last = atEnd() ? std::nullopt : readClassCharacter(&node.characters);
            if (!last || *last < *first)
                fail(itemBegin, "A range goes from a character to one that comes later");
        }
        node.characters.add(*first, *last);
    }
    ++m_at;
    return node;
}

/// A character of a class; nothing if it was a whole class, like \d, which is added.
std::optional<char32_t> Parser::readClassCharacter(CharacterClass* characters) {
    const int begin = place();
    if (!take(U"\\"))
        return m_pattern[m_at++];
    if (readNamedClass(characters))
        return std::nullopt;
    if (take(U"b"))
        return U'\b';
    return readCharacterEscape(begin);
}

}  // namespace

ParsedRegularExpression parseRegularExpression(std::string_view pattern) {
    return Parser(pattern).run();
}

}  // namespace Tamrix::Gherkin
