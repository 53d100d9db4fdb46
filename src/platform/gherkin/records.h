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
};

/// Also an outline. In its rows the columns' names are filled in with their values.
struct Scenario {
    int line = 0;
    std::string name;
    std::vector<std::string> description;
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
        ArgumentFailure = 5
    };

    int kind = Success;
    std::string message;
    ScriptLocation location;
};

struct ExecuteHookResult {
    enum Kind { Success = 0, ScriptFailure = 1, LibraryFailure = 2 };

    int kind = Success;
    std::string message;
    ScriptLocation location;
};

}  // namespace Tamrix::Gherkin
