#include "platform/gherkin/parser.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/gherkin/dialect.h"
#include "platform/gherkin/documentbuilder.h"
#include "platform/gherkin/grammar.h"
#include "platform/gherkin/line.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

constexpr std::string_view defaultLanguage = "en";

/// What a token is called in an error.
constexpr std::string_view endOfFile = "end of file";

/// The number of bytes that an error shows of a line.
constexpr std::size_t longestToken = 200;

std::string shortened(std::string_view text) {
    text = trimmedEnd(text);
    if (text.size() <= longestToken)
        return std::string(text);
    std::size_t size = longestToken;
    while ((static_cast<unsigned char>(text[size]) & 0xC0) == 0x80)
        --size;
    return std::string(text.substr(0, size)) + "...";
}

constexpr std::optional<TitleKind> titleKind(TokenKind kind) {
    switch (kind) {
        case TokenKind::Feature:
            return TitleKind::Feature;
        case TokenKind::Rule:
            return TitleKind::Rule;
        case TokenKind::Background:
            return TitleKind::Background;
        case TokenKind::Scenario:
            return TitleKind::Scenario;
        case TokenKind::Examples:
            return TitleKind::Examples;
        default:
            return std::nullopt;
    }
}

/// Goes through the lines and, for each, the transitions of the state.
class Parser {
public:
    explicit Parser(std::string source) : m_builder(std::move(source), &m_errors) {}

    ParseResult run();

private:
    bool checkSource(std::string_view* text);
    bool mayGoOn();
    void take(const Line& line);
    const Transition* transitionFor(const Line& line) const;
    bool matches(TokenKind kind, const Line& line) const;
    bool isFollowedBy(TokenKind kind) const;
    void act(const Transition& transition, const Line& line);
    void setLanguage(const Line& line);
    void addError(Location location, std::string message, std::string_view token);
    /// Such a doc string takes every line but its closing fence.
    bool isInDocString() const { return transitions(m_state)[0].token == TokenKind::Fence; }

    std::vector<ParseError> m_errors;
    DocumentBuilder m_builder;
    Dialect m_dialect = *Dialect::find(defaultLanguage);
    State m_state = State::Start;
    /// Behind the current line.
    LineReader m_reader{{}};
    /// Of the doc string that is open.
    std::string_view m_fence;
};

void Parser::addError(Location location, std::string message, std::string_view token) {
    // One line may have several bad tags.
    if (m_errors.size() < maxParseErrors)
        m_errors.push_back({location, std::move(message), shortened(token)});
}

/// Whether the file is text and of a bearable size; takes the byte order mark off.
bool Parser::checkSource(std::string_view* text) {
    if (text->size() > maxFeatureFileSize) {
        addError({1, 0}, "the file is larger than " + std::to_string(maxFeatureFileSize) + " bytes",
                 std::to_string(text->size()) + " bytes");
        return false;
    }
    if (text->starts_with(byteOrderMark))
        text->remove_prefix(byteOrderMark.size());
    const std::optional<std::size_t> invalid = invalidUtf8(*text);
    if (!invalid)
        return true;
    const std::string_view before = text->substr(0, *invalid);
    const std::size_t lineBegin = before.rfind('\n') + 1;
    constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>((*text)[*invalid]);
    addError({static_cast<int>(1 + std::count(before.begin(), before.end(), '\n')),
              1 + codePointCount(before.substr(lineBegin))},
             "the text isn't valid UTF-8",
             std::string("byte 0x") + digits[byte >> 4] + digits[byte & 15]);
    return false;
}

ParseResult Parser::run() {
    std::string_view text = m_builder.source();
    if (!checkSource(&text))
        return {{}, std::move(m_errors)};
    m_builder.setLanguage(m_dialect.code());
    m_reader = LineReader(text);
    for (Line line; mayGoOn() && m_reader.next(&line);) {
        if (line.text.size() > maxLineSize) {
            addError({line.number, 0},
                     "the line is longer than " + std::to_string(maxLineSize) + " bytes",
                     line.content.substr(0, longestToken));
            return {{}, std::move(m_errors)};
        }
        take(line);
    }
    if (mayGoOn() && transitions(m_state)[0].token != TokenKind::EndOfFile)
        addError({m_reader.lineNumber() + 1, 0}, "expected " + expectedTokens(m_state), endOfFile);
    return {m_builder.finish(), std::move(m_errors)};
}

bool Parser::mayGoOn() {
    if (m_builder.isFull())
        addError({m_reader.lineNumber(), 0},
                 "the file holds more than " + std::to_string(DocumentBuilder::maxItems) +
                     " steps, cells, tags and lines of texts",
                 {});
    return !m_builder.isFull() && m_errors.size() < maxParseErrors;
}

void Parser::take(const Line& line) {
    // An error leaves the state as it was: the line is passed over.
    if (const Transition* const transition = transitionFor(line)) {
        act(*transition, line);
        m_state = transition->next;
    } else {
        addError(line.location(), "expected " + expectedTokens(m_state), line.content);
    }
}

const Transition* Parser::transitionFor(const Line& line) const {
    for (const Transition& transition : transitions(m_state))
        if (matches(transition.token, line) &&
            (transition.onlyBefore == TokenKind::EndOfFile || isFollowedBy(transition.onlyBefore)))
            return &transition;
    return nullptr;
}

bool Parser::matches(TokenKind kind, const Line& line) const {
    switch (kind) {
        case TokenKind::EndOfFile:
            return false;
        case TokenKind::Empty:
            return line.content.empty();
        case TokenKind::Comment:
            return line.content.starts_with('#');
        case TokenKind::Language:
            return !languageOf(line).empty();
        case TokenKind::Tags:
            return line.content.starts_with('@');
        case TokenKind::Step:
            return !m_dialect.step(line.content).text.empty();
        case TokenKind::Fence:
            return isInDocString() ? line.content.starts_with(m_fence) : !fenceOf(line).empty();
        case TokenKind::TableRow:
            return line.content.starts_with('|');
        case TokenKind::Other:
            return true;
        default:
            return !m_dialect.title(*titleKind(kind), line.content).empty();
    }
}

/// Whether, behind more tags, comments and empty lines, a token of the kind comes.
bool Parser::isFollowedBy(TokenKind kind) const {
    LineReader reader = m_reader;
    for (Line line; reader.next(&line);)
        if (!line.content.empty() && line.content[0] != '@' && line.content[0] != '#')
            return matches(kind, line);
    return false;
}

void Parser::act(const Transition& transition, const Line& line) {
    switch (transition.token) {
        case TokenKind::EndOfFile:
        case TokenKind::Empty:
            break;
        case TokenKind::Comment:
            m_builder.addComment(line);
            break;
        case TokenKind::Language:
            setLanguage(line);
            break;
        case TokenKind::Tags:
            m_builder.addTags(tagsOf(line, [this, &line](const Syntax::Tag& tag) {
                addError({line.number, tag.location.column}, "a tag may not contain whitespace",
                         tag.name);
            }));
            break;
        case TokenKind::Step: {
            const Dialect::StepKeyword keyword = m_dialect.step(line.content);
            m_builder.startStep(line.location(), keyword,
                                trimmed(line.content.substr(keyword.text.size())));
            break;
        }
        case TokenKind::Fence:
            if (isInDocString()) {
                m_builder.finishDocString(line);
            } else {
                m_fence = fenceOf(line);
                m_builder.startDocString(line, m_fence);
            }
            break;
        case TokenKind::TableRow:
            m_builder.addTableRow(line);
            break;
        case TokenKind::Other:
            if (isInDocString())
                m_builder.addDocStringLine(line);
            else
                m_builder.addDescriptionLine(line.text);
            break;
        default: {
            const TitleKind kind = *titleKind(transition.token);
            const std::string_view keyword = m_dialect.title(kind, line.content);
            m_builder.startTitle(kind, line.location(), keyword,
                                 trimmed(line.content.substr(keyword.size() + 1)));
        }
    }
}

void Parser::setLanguage(const Line& line) {
    const std::string_view code = languageOf(line);
    if (const std::optional<Dialect> dialect = Dialect::find(code)) {
        m_dialect = *dialect;
        m_builder.setLanguage(m_dialect.code());
    } else {
        addError(line.location(), "there is no such language", code);
    }
}

}  // namespace

ParseResult parse(std::string source) {
    return Parser(std::move(source)).run();
}

}  // namespace Tamrix::Gherkin
