#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/gherkin/document.h"
#include "platform/gherkin/scriptlocation.h"

namespace Tamrix::Gherkin {

/// The lines of a step with its table and doc string, from 1, and the column of its keyword in code
/// points from 1.
struct SourceExtent {
    int firstLine = 0;
    int firstColumn = 0;
    int lastLine = 0;
};

struct TableCell {
    std::string text;
    int line = 0;
};

struct DocString {
    std::string mediaType;
    std::string text;
};

struct Feature {
    int line = 0;
    std::string name;
    std::vector<std::string> description;
    /// As the file's language has it.
    std::string keyword;
    /// Its own ones, without "@".
    std::vector<std::string> tags;
};

/// Also an outline. In its rows the columns' names are filled in with their values.
struct Scenario {
    int line = 0;
    std::string name;
    std::vector<std::string> description;
    std::string keyword;
    /// Its own ones, without "@".
    std::vector<std::string> tags;
};

struct Background {
    int line = 0;
};

/// Of an outline, with the values of a row filled in.
struct Step {
    int line = 0;
    std::string text;
    /// With the space at its end, if it has one.
    std::string keyword;
    KeywordType type = KeywordType::Unknown;
    SourceExtent extent;
    std::optional<DocString> docString;
    std::vector<std::vector<TableCell>> table;
};

enum TraceType { Entering = 0, Leaving = 1 };
enum HookType { FeatureHook, ScenarioHook, StepHook };
enum HookOrder { BeforeHook, AfterHook };

/// What hooks run for.
struct HookSubject {
    /// The name of the feature or scenario, or the step's text.
    std::string title;
    /// Of the feature or the scenario, with those that are inherited, without "@".
    std::vector<std::string> tags;
};

/// What a parameter of a step definition takes of a step's text.
struct StepParameter {
    /// Bytes of the text.
    std::size_t begin = 0;
    std::size_t end = 0;
    /// The name of its type; empty for a group of a regular expression.
    std::string typeName;
};

/// A step definition that fits a step.
struct StepMatch {
    /// The expression as the script has it.
    std::string definition;
    ScriptLocation location;
    /// Those that took part.
    std::vector<StepParameter> parameters;
};

struct LookupAndExecuteStepResult {
    enum Kind {
        Success = 0,
        NoMatch = 1,
        SeveralMatches = 2,
        /// The look-up failed.
        LookupFailure = 3,
        /// The script failed, and its error is the interpreter's.
        ScriptFailure = 4,
        /// The arguments could not be handed over.
        ArgumentFailure = 5,
        /// The script says that the definition is still to be written.
        Pending = 6
    };

    int kind = Success;
    /// Of a step without a match: code with which its definition can begin.
    std::string message;
    ScriptLocation location;
    /// Set when there was exactly one definition.
    std::optional<StepMatch> match;
};

struct ExecuteHookResult {
    enum Kind { Success = 0, ScriptFailure = 1, LibraryFailure = 2 };

    int kind = Success;
    std::string message;
    ScriptLocation location;
};

}  // namespace Tamrix::Gherkin
