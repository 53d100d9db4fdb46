#include "platform/gherkin/expressions/regularexpression.h"

#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

namespace {

using Program = RegularExpressionProgram;
using Operation = Program::Operation;

/// What a search may cost: some tens of milliseconds. A sensible expression takes some hundreds of
/// steps.
constexpr int maxSteps = 1'000'000;

constexpr std::size_t unset = std::string_view::npos;

/// One search in one text.
class Matcher {
public:
    Matcher(const Program& program, std::string_view text)
        : m_program(program),
          m_text(text),
          m_slots(static_cast<std::size_t>(program.slotCount), unset) {}

    bool matchAt(std::size_t place) {
        m_slots.assign(m_slots.size(), unset);
        return run(0, place);
    }
    std::size_t slot(int index) const { return m_slots[static_cast<std::size_t>(index)]; }

private:
    /// Where to go on after a failure, or what to undo on the way there.
    struct Choice {
        static constexpr int undo = -1;
        /// The instruction, or undo.
        int instruction;
        /// The slot to set back.
        int slot;
        /// The place in the text, or the slot's old value.
        std::size_t place;
    };

    bool run(int instruction, std::size_t place);
    bool look(const Program::Instruction& each, int at, std::size_t place);
    bool step(int* at, std::size_t* place);
    bool goBack(std::size_t base, int* at, std::size_t* place);
    void setSlot(int index, std::size_t value);
    bool takeCharacter(const Program::Instruction& each, std::size_t* place) const;
    bool takeGroup(int group, std::size_t* place) const;
    bool holds(Operation operation, std::size_t place) const;
    bool isWordAt(std::size_t place) const;

    const Program& m_program;
    std::string_view m_text;
    std::vector<std::size_t> m_slots;
    std::vector<Choice> m_choices;
    int m_steps = 0;
};

/// Whether the instructions match from the place on; afterwards no choice is left.
bool Matcher::run(int at, std::size_t place) {
    const std::size_t base = m_choices.size();
    for (;;) {
        if (++m_steps > maxSteps)
            throw ExpressionError("Matching a regular expression takes more than " +
                                  std::to_string(maxSteps) + " steps");
        if (m_program.instructions[static_cast<std::size_t>(at)].operation == Operation::Match) {
            m_choices.resize(base);
            return true;
        }
        if (!step(&at, &place) && !goBack(base, &at, &place))
            return false;
    }
}

bool Matcher::goBack(std::size_t base, int* at, std::size_t* place) {
    while (m_choices.size() > base) {
        const Choice choice = m_choices.back();
        m_choices.pop_back();
        if (choice.instruction != Choice::undo) {
            *at = choice.instruction;
            *place = choice.place;
            return true;
        }
        m_slots[static_cast<std::size_t>(choice.slot)] = choice.place;
    }
    return false;
}

/// Carries out one instruction and goes to the next; false if it fails.
bool Matcher::step(int* at, std::size_t* place) {
    const int current = *at;
    const Program::Instruction& each = m_program.instructions[static_cast<std::size_t>(current)];
    *at = current + 1;
    switch (each.operation) {
        case Operation::Character:
        case Operation::Any:
        case Operation::AnyButLineEnd:
        case Operation::Class:
            return takeCharacter(each, place);
        case Operation::Jump:
            *at = each.target;
            return true;
        case Operation::Split:
            m_choices.push_back({each.target, 0, *place});
            return true;
        case Operation::SplitLazily:
            m_choices.push_back({current + 1, 0, *place});
            *at = each.target;
            return true;
        case Operation::Save:
            setSlot(each.index, *place);
            return true;
        case Operation::Progress:
            return slot(each.index) != *place;
        case Operation::BackReference:
            return takeGroup(each.index, place);
        case Operation::LookAhead:
        case Operation::NegativeLookAhead:
            *at = each.target;
            return look(each, current + 1, *place);
        default:
            return holds(each.operation, *place);
    }
}

void Matcher::setSlot(int index, std::size_t value) {
    // Without a choice there is no way back.
    if (!m_choices.empty())
        m_choices.push_back({Choice::undo, index, slot(index)});
    m_slots[static_cast<std::size_t>(index)] = value;
}

/// The recursion is as deep as the expression's nesting.
bool Matcher::look(const Program::Instruction& each, int at, std::size_t place) {
    const std::vector<std::size_t> before = m_slots;
    const bool isFound = run(at, place);
    if (each.operation == Operation::NegativeLookAhead) {
        m_slots = before;
        return !isFound;
    }
    // What groups inside took stays, and is undone when the matcher goes back behind this place.
    for (std::size_t i = 0; isFound && i < before.size(); ++i)
        if (m_slots[i] != before[i])
            m_choices.push_back({Choice::undo, static_cast<int>(i), before[i]});
    return isFound;
}

bool Matcher::takeCharacter(const Program::Instruction& each, std::size_t* place) const {
    if (*place >= m_text.size())
        return false;
    std::string_view rest = m_text.substr(*place);
    const char32_t character = takeCodePoint(&rest);
    *place = m_text.size() - rest.size();
    switch (each.operation) {
        case Operation::Character:
            return character == each.character;
        case Operation::AnyButLineEnd:
            return character != U'\n';
        case Operation::Class:
            return m_program.classes[static_cast<std::size_t>(each.index)].contains(character);
        default:
            return true;
    }
}

bool Matcher::takeGroup(int group, std::size_t* place) const {
    const std::size_t begin = slot(2 * group);
    const std::size_t end = slot(2 * group + 1);
    if (begin == unset || end == unset)
        return false;
    std::string_view wanted = m_text.substr(begin, end - begin);
    std::string_view rest = m_text.substr(*place);
    while (!wanted.empty()) {
        if (rest.empty())
            return false;
        const char32_t left = takeCodePoint(&wanted);
        const char32_t right = takeCodePoint(&rest);
        if (left != right && (!m_program.ignoresCase || otherCase(left) != right))
            return false;
    }
    *place = m_text.size() - rest.size();
    return true;
}

bool Matcher::isWordAt(std::size_t place) const {
    if (place >= m_text.size())
        return false;
    std::string_view rest = m_text.substr(place);
    return isWordCharacter(takeCodePoint(&rest));
}

bool Matcher::holds(Operation operation, std::size_t place) const {
    const bool isAtEnd = place == m_text.size();
    switch (operation) {
        case Operation::TextBegin:
            return place == 0;
        case Operation::TextEnd:
            return isAtEnd;
        case Operation::LineBegin:
            return place == 0 || m_text[place - 1] == '\n';
        case Operation::LineEnd:
            return isAtEnd || m_text[place] == '\n';
        default:
            break;
    }
    std::size_t before = place;
    while (before > 0 && (static_cast<unsigned char>(m_text[--before]) & 0xC0) == 0x80) {
    }
    const bool isBoundary = (place > 0 && isWordAt(before)) != isWordAt(place);
    return isBoundary == (operation == Operation::WordBoundary);
}

}  // namespace

RegularExpression::RegularExpression(std::string_view pattern)
    : RegularExpression(parseRegularExpression(pattern)) {}

RegularExpression::RegularExpression(const ParsedRegularExpression& parsed)
    : m_program(compile(parsed)),
      m_groupCount(parsed.groupCount),
      m_groupNames(parsed.groupNames),
      m_hasBackReferences(parsed.hasBackReferences) {}

std::optional<RegularExpression::Match> RegularExpression::search(std::string_view text) const {
    if (!text.starts_with(m_program.prefix) || !text.ends_with(m_program.suffix))
        return std::nullopt;
    Matcher matcher(m_program, text);
    // An expression that is bound to the start can't match elsewhere.
    const bool isBound = m_program.instructions.size() > 1 &&
                         m_program.instructions[1].operation == Operation::TextBegin;
    std::size_t place = 0;
    while (!matcher.matchAt(place)) {
        if (isBound || place == text.size())
            return std::nullopt;
        std::string_view rest = text.substr(place);
        takeCodePoint(&rest);
        place = text.size() - rest.size();
    }
    Match match;
    for (int group = 0; group <= m_groupCount; ++group) {
        const Range range{matcher.slot(2 * group), matcher.slot(2 * group + 1)};
        const bool tookPart = range.begin != unset && range.end != unset;
        match.push_back(tookPart ? std::optional(range) : std::nullopt);
    }
    return match;
}

}  // namespace Tamrix::Gherkin
