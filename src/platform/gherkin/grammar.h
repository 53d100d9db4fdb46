#pragma once

#include <span>
#include <string>

namespace Tamrix::Gherkin {

/// What a line of a feature file is taken for.
enum class TokenKind {
    EndOfFile,
    Empty,
    Comment,
    Language,
    Tags,
    Feature,
    Rule,
    Background,
    Scenario,
    Examples,
    Step,
    Fence,
    TableRow,
    Other
};

/// What the lines read so far leave open. A rule's background and scenarios have the states of a
/// feature's: what may follow is the same. A step takes a table and a doc string, in any order.
enum class State {
    Start,
    Language,
    FeatureTags,
    /// Behind the line with a feature's or a rule's name.
    Header,
    HeaderDescription,
    RuleTags,
    Background,
    BackgroundDescription,
    BackgroundStep,
    BackgroundTable,
    BackgroundDocString,
    BackgroundDocStringEnd,
    BackgroundLastTable,
    BackgroundLastDocString,
    BackgroundArgumentsEnd,
    ScenarioTags,
    Scenario,
    ScenarioDescription,
    ScenarioStep,
    ScenarioTable,
    ScenarioDocString,
    ScenarioDocStringEnd,
    ScenarioLastTable,
    ScenarioLastDocString,
    ScenarioArgumentsEnd,
    ExamplesTags,
    Examples,
    ExamplesDescription,
    ExamplesTable,
    End
};

/// One thing that may follow in a state.
struct Transition {
    TokenKind token;
    State next;
    /// Tags are taken for those of what follows them: only if that is a token of this kind the
    /// transition holds. EndOfFile: it always holds.
    TokenKind onlyBefore = TokenKind::EndOfFile;
};

/// What may follow in a state; the first that fits a line holds.
std::span<const Transition> transitions(State state);

/// What may follow in words, like "tags or a feature". Comments and empty lines aren't named.
std::string expectedTokens(State state);

}  // namespace Tamrix::Gherkin
