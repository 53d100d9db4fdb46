#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/expressions/cucumberexpression.h"
#include "platform/gherkin/expressions/parametertypes.h"
#include "platform/gherkin/scriptlocation.h"

namespace Tamrix::Gherkin {

/// The step definitions of a run, and the look-up of steps in them. A language's plug-in adds what
/// its scripts register and calls what is found. Additions and look-ups from one thread at a time.
class TAMRIX_EXPORT StepDefinitions {
public:
    /// Definitions are numbered as they are added, from 0.
    using Id = std::size_t;

    struct Definition {
        /// The expression as it was written.
        std::string source;
        ScriptLocation location;
    };

    struct Match {
        Id id;
        std::vector<Argument> arguments;
    };

    StepDefinitions() = default;
    StepDefinitions(const StepDefinitions&) = delete;
    StepDefinitions& operator=(const StepDefinitions&) = delete;

    /// The types that expressions may use when they are added.
    ParameterTypes& parameterTypes() { return m_types; }

    /// Throws ExpressionError; then nothing was added.
    Id addExpression(std::string_view cucumberExpression, const ScriptLocation& location);
    /// The expression matches if it does so anywhere in a step's text, so mostly it begins with "^"
    /// and ends with "$". Throws ExpressionError; then nothing was added.
    Id addRegularExpression(std::string_view pattern, const ScriptLocation& location);

    std::size_t count() const { return m_definitions.size(); }
    const Definition& definition(Id id) const { return m_definitions[id].definition; }

    /// All that match the text, in the order in which they were added: with none the step is
    /// undefined, with several it is ambiguous. The text must be valid UTF-8. Throws
    /// ExpressionError when matching takes too long.
    std::vector<Match> find(std::string_view text) const;

private:
    struct Entry {
        Definition definition;
        std::variant<CucumberExpression, RegularExpression> expression;
    };

    Id add(Entry entry);
    const RegularExpression& regularExpression(const Entry& entry) const;

    ParameterTypes m_types;
    std::deque<Entry> m_definitions;
    /// By what the texts that match begin with; the keys point into the definitions.
    std::unordered_map<std::string_view, std::vector<Id>> m_byPrefix;
    /// The lengths of the keys, each once, in ascending order.
    std::vector<std::size_t> m_prefixLengths;
};

}  // namespace Tamrix::Gherkin
