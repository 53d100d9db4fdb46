#include "platform/gherkin/grammar.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace Tamrix::Gherkin {

namespace {

using Kind = TokenKind;

template <std::size_t... counts>
consteval auto joined(const std::array<Transition, counts>&... parts) {
    std::array<Transition, (counts + ...)> all{};
    auto to = all.begin();
    ((to = std::copy(parts.begin(), parts.end(), to)), ...);
    return all;
}

/// One transition as a part of a list.
consteval std::array<Transition, 1> one(TokenKind token, State next) {
    return {{{token, next}}};
}

/// Comments and empty lines change nothing.
consteval std::array<Transition, 2> ignored(State state) {
    return {{{Kind::Comment, state}, {Kind::Empty, state}}};
}

constexpr auto ended = one(Kind::EndOfFile, State::End);

// What ends a background and the header of a feature or rule: the next part of the feature.
constexpr auto nextPart = std::to_array<Transition>({
    {Kind::Tags, State::ScenarioTags, Kind::Scenario},
    {Kind::Tags, State::RuleTags},
    {Kind::Scenario, State::Scenario},
    {Kind::Rule, State::Header},
});

// What ends the steps of a scenario: its examples, too.
constexpr auto nextPartOrExamples = joined(std::to_array<Transition>({
                                               {Kind::Tags, State::ExamplesTags, Kind::Examples},
                                               {Kind::Examples, State::Examples},
                                           }),
                                           nextPart);

// The lists, in the order of State.

constexpr auto start =
    joined(ended, one(Kind::Language, State::Language), one(Kind::Tags, State::FeatureTags),
           one(Kind::Feature, State::Header), ignored(State::Start));
constexpr auto language = joined(one(Kind::Tags, State::FeatureTags),
                                 one(Kind::Feature, State::Header), ignored(State::Language));
constexpr auto featureTags = joined(one(Kind::Tags, State::FeatureTags),
                                    one(Kind::Feature, State::Header), ignored(State::FeatureTags));

constexpr auto header =
    joined(ended, ignored(State::Header), one(Kind::Background, State::Background), nextPart,
           one(Kind::Other, State::HeaderDescription));
constexpr auto headerDescription = joined(ended, one(Kind::Comment, State::HeaderDescription),
                                          one(Kind::Background, State::Background), nextPart,
                                          one(Kind::Other, State::HeaderDescription));
constexpr auto ruleTags = joined(one(Kind::Tags, State::RuleTags), one(Kind::Rule, State::Header),
                                 ignored(State::RuleTags));

constexpr auto background =
    joined(ended, ignored(State::Background), one(Kind::Step, State::BackgroundStep), nextPart,
           one(Kind::Other, State::BackgroundDescription));
constexpr auto backgroundDescription = joined(
    ended, one(Kind::Comment, State::BackgroundDescription), one(Kind::Step, State::BackgroundStep),
    nextPart, one(Kind::Other, State::BackgroundDescription));
constexpr auto backgroundStep =
    joined(ended, one(Kind::TableRow, State::BackgroundTable),
           one(Kind::Fence, State::BackgroundDocString), one(Kind::Step, State::BackgroundStep),
           nextPart, ignored(State::BackgroundStep));
constexpr auto backgroundTable =
    joined(ended, one(Kind::TableRow, State::BackgroundTable),
           one(Kind::Fence, State::BackgroundLastDocString), one(Kind::Step, State::BackgroundStep),
           nextPart, ignored(State::BackgroundTable));
constexpr auto backgroundDocString = joined(one(Kind::Fence, State::BackgroundDocStringEnd),
                                            one(Kind::Other, State::BackgroundDocString));
constexpr auto backgroundDocStringEnd = joined(
    ended, one(Kind::TableRow, State::BackgroundLastTable), one(Kind::Step, State::BackgroundStep),
    nextPart, ignored(State::BackgroundDocStringEnd));
constexpr auto backgroundLastTable =
    joined(ended, one(Kind::TableRow, State::BackgroundLastTable),
           one(Kind::Step, State::BackgroundStep), nextPart, ignored(State::BackgroundLastTable));
constexpr auto backgroundLastDocString = joined(one(Kind::Fence, State::BackgroundArgumentsEnd),
                                                one(Kind::Other, State::BackgroundLastDocString));
constexpr auto backgroundArgumentsEnd = joined(ended, one(Kind::Step, State::BackgroundStep),
                                               nextPart, ignored(State::BackgroundArgumentsEnd));

constexpr auto scenarioTags =
    joined(one(Kind::Tags, State::ScenarioTags), one(Kind::Scenario, State::Scenario),
           ignored(State::ScenarioTags));

constexpr auto scenario =
    joined(ended, ignored(State::Scenario), one(Kind::Step, State::ScenarioStep),
           nextPartOrExamples, one(Kind::Other, State::ScenarioDescription));
constexpr auto scenarioDescription = joined(
    ended, one(Kind::Comment, State::ScenarioDescription), one(Kind::Step, State::ScenarioStep),
    nextPartOrExamples, one(Kind::Other, State::ScenarioDescription));
constexpr auto scenarioStep = joined(
    ended, one(Kind::TableRow, State::ScenarioTable), one(Kind::Fence, State::ScenarioDocString),
    one(Kind::Step, State::ScenarioStep), nextPartOrExamples, ignored(State::ScenarioStep));
constexpr auto scenarioTable =
    joined(ended, one(Kind::TableRow, State::ScenarioTable),
           one(Kind::Fence, State::ScenarioLastDocString), one(Kind::Step, State::ScenarioStep),
           nextPartOrExamples, ignored(State::ScenarioTable));
constexpr auto scenarioDocString = joined(one(Kind::Fence, State::ScenarioDocStringEnd),
                                          one(Kind::Other, State::ScenarioDocString));
constexpr auto scenarioDocStringEnd = joined(
    ended, one(Kind::TableRow, State::ScenarioLastTable), one(Kind::Step, State::ScenarioStep),
    nextPartOrExamples, ignored(State::ScenarioDocStringEnd));
constexpr auto scenarioLastTable = joined(ended, one(Kind::TableRow, State::ScenarioLastTable),
                                          one(Kind::Step, State::ScenarioStep), nextPartOrExamples,
                                          ignored(State::ScenarioLastTable));
constexpr auto scenarioLastDocString = joined(one(Kind::Fence, State::ScenarioArgumentsEnd),
                                              one(Kind::Other, State::ScenarioLastDocString));
constexpr auto scenarioArgumentsEnd =
    joined(ended, one(Kind::Step, State::ScenarioStep), nextPartOrExamples,
           ignored(State::ScenarioArgumentsEnd));

constexpr auto examplesTags =
    joined(one(Kind::Tags, State::ExamplesTags), one(Kind::Examples, State::Examples),
           ignored(State::ExamplesTags));

constexpr auto examples =
    joined(ended, ignored(State::Examples), one(Kind::TableRow, State::ExamplesTable),
           nextPartOrExamples, one(Kind::Other, State::ExamplesDescription));
constexpr auto examplesDescription =
    joined(ended, one(Kind::Comment, State::ExamplesDescription),
           one(Kind::TableRow, State::ExamplesTable), nextPartOrExamples,
           one(Kind::Other, State::ExamplesDescription));
constexpr auto examplesTable = joined(ended, one(Kind::TableRow, State::ExamplesTable),
                                      nextPartOrExamples, ignored(State::ExamplesTable));

constexpr std::array<std::span<const Transition>, 30> table = {{
    start,
    language,
    featureTags,
    header,
    headerDescription,
    ruleTags,
    background,
    backgroundDescription,
    backgroundStep,
    backgroundTable,
    backgroundDocString,
    backgroundDocStringEnd,
    backgroundLastTable,
    backgroundLastDocString,
    backgroundArgumentsEnd,
    scenarioTags,
    scenario,
    scenarioDescription,
    scenarioStep,
    scenarioTable,
    scenarioDocString,
    scenarioDocStringEnd,
    scenarioLastTable,
    scenarioLastDocString,
    scenarioArgumentsEnd,
    examplesTags,
    examples,
    examplesDescription,
    examplesTable,
    {},
}};

/// Empty for what needs no mention.
constexpr std::string_view nameOf(TokenKind kind) {
    switch (kind) {
        case TokenKind::EndOfFile:
            return "the end of the file";
        case TokenKind::Language:
            return "a line \"# language: ...\"";
        case TokenKind::Tags:
            return "tags";
        case TokenKind::Feature:
            return "a feature";
        case TokenKind::Rule:
            return "a rule";
        case TokenKind::Background:
            return "a background";
        case TokenKind::Scenario:
            return "a scenario";
        case TokenKind::Examples:
            return "examples";
        case TokenKind::Step:
            return "a step";
        case TokenKind::Fence:
            return "a doc string's fence";
        case TokenKind::TableRow:
            return "a table row";
        case TokenKind::Empty:
        case TokenKind::Comment:
        case TokenKind::Other:
            break;
    }
    return {};
}

}  // namespace

std::span<const Transition> transitions(State state) {
    return table[static_cast<std::size_t>(state)];
}

std::string expectedTokens(State state) {
    std::vector<std::string_view> names;
    for (const Transition& transition : transitions(state)) {
        const std::string_view name = nameOf(transition.token);
        if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    }
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0)
            text += i + 1 == names.size() ? " or " : ", ";
        text += names[i];
    }
    return text;
}

}  // namespace Tamrix::Gherkin
