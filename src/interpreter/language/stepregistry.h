#pragma once

#include <QString>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/gherkin/expressions/stepdefinitions.h"
#include "platform/gherkin/expressions/tagexpression.h"
#include "platform/gherkin/records.h"

namespace Tamrix {

/// A hook by the name under which scripts register it.
struct HookKind {
    const char* name;
    Gherkin::HookType type;
    Gherkin::HookOrder order;
};
inline constexpr HookKind hookKinds[] = {
    {"before_feature", Gherkin::FeatureHook, Gherkin::BeforeHook},
    {"after_feature", Gherkin::FeatureHook, Gherkin::AfterHook},
    {"before_scenario", Gherkin::ScenarioHook, Gherkin::BeforeHook},
    {"after_scenario", Gherkin::ScenarioHook, Gherkin::AfterHook},
    {"before_step", Gherkin::StepHook, Gherkin::BeforeHook},
    {"after_step", Gherkin::StepHook, Gherkin::AfterHook},
};
/// Also for "BeforeFeature", as some languages write it. Null for another name.
TAMRIX_EXPORT const HookKind* hookKind(const QString& name);

/// The step definitions, hooks and parameter types that the scripts of a test case have registered.
/// Matching is the library's; here stands what is called. Script thread only.
class TAMRIX_EXPORT StepRegistry {
public:
    using Function = SharedPtr<ScriptArgument>;

    /// A match and what to call for it.
    struct Match {
        Gherkin::StepDefinitions::Match match;
        Function function;
        Gherkin::StepDefinitions::Definition definition;
    };

    /// A Cucumber Expression, or with `isRegular` a regular expression. Throws
    /// Gherkin::ExpressionError.
    void addStep(std::string_view expression, bool isRegular, const Function& function,
                 const Gherkin::ScriptLocation& location);
    /// `file` is where the hook is defined. Throws Gherkin::ExpressionError.
    void addHook(Gherkin::HookType type, Gherkin::HookOrder order, std::string_view tags,
                 const Function& function, const QString& file);
    /// `transformer` is null or what makes a value of the texts of the groups, or of the whole
    /// text. Throws Gherkin::ExpressionError.
    void addParameterType(std::string_view name, std::vector<std::string> patterns,
                          const Function& transformer);

    /// All definitions that fit the text. Throws Gherkin::ExpressionError.
    std::vector<Match> find(std::string_view text) const;
    std::vector<Gherkin::StepDefinitions::Definition> definitions() const;
    /// What is to be called, in its order: those after something in the opposite order.
    std::vector<Function> hooks(Gherkin::HookType type, Gherkin::HookOrder order,
                                const std::vector<std::string>& tags) const;
    /// Null when there is none.
    Function transformer(const std::string& typeName) const;

    /// Forgets the steps and hooks of a file, which is about to be loaded again.
    void forget(const QString& file);
    void clear();

private:
    struct Step {
        Function function;
        /// The file was loaded again, or gives another definition in its place.
        bool isForgotten = false;
    };
    struct Hook {
        Gherkin::HookType type;
        Gherkin::HookOrder order;
        Gherkin::TagExpression tags;
        Function function;
        QString file;
    };
    struct Type {
        std::vector<std::string> patterns;
        Function transformer;
    };

    /// Can't be copied or emptied.
    std::unique_ptr<Gherkin::StepDefinitions> m_definitions =
        std::make_unique<Gherkin::StepDefinitions>();
    /// By the definitions' numbers.
    std::vector<Step> m_steps;
    std::vector<Hook> m_hooks;
    std::map<std::string, Type> m_types;
};

}  // namespace Tamrix
