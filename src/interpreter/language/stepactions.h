#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/stepfiles.h"
#include "interpreter/language/stepregistry.h"
#include "interpreter/language/stepscopes.h"
#include "interpreter/language/stepsnippet.h"
#include "platform/gherkin/callbacks.h"

namespace Tamrix {

/// What a language brings for the steps of feature files.
class TAMRIX_EXPORT StepLanguage {
public:
    using Value = SharedPtr<ScriptArgument>;

    virtual ~StepLanguage() = default;

    /// Runs a file with step definitions. What was raised, nothing on success; what ends the script
    /// passes as ScriptErrorSet. By default as one that a script runs.
    virtual std::optional<ScriptError> loadFile(const QString& path, const QString& text);
    /// Whether a file has been loaded by another one, as a module. By default it has not.
    virtual bool isLoaded(const QString& path);
    /// The files are not loaded any more, nor modules. By default there is nothing to do.
    virtual void forgetFiles(const QStringList& paths);

    /// Where a function for a step or hook is defined; invalid for a language of which that is
    /// where the script registers it, as it is by default.
    virtual LineInfo definitionOf(const Value&) { return {}; }

    /// What each step and hook is called with first: an object whose properties are the names in
    /// StepActions::scopes().
    virtual Value contextValue() = 0;
    /// The table of a step, of which `rows` has all rows as lists of texts: those below the first
    /// one as maps, in whatever form scripts like; the first row and all rows can be had of it,
    /// too.
    virtual Value tableValue(const Value& rows) = 0;
    /// An integer beyond 64 bits; by default its text.
    virtual Value bigInteger(const QString& text);
    /// A number with all its digits; by default the language's float.
    virtual Value bigDecimal(const QString& text);
    /// A step definition that can be pasted into a file with steps.
    virtual QString snippetText(const StepSnippet& snippet) = 0;

protected:
    explicit StepLanguage(LanguageInterpreter& interpreter) : m_interpreter(interpreter) {}
    LanguageInterpreter& interpreter() { return m_interpreter; }

private:
    LanguageInterpreter& m_interpreter;
};

/// The behaviour-driven side of an interpreter: what its scripts have registered, and the running
/// of it. What ends the script, such as a skip or an exit, passes a run as ScriptErrorSet.
class TAMRIX_EXPORT StepActions final : public Gherkin::ScriptActions {
public:
    using Value = SharedPtr<ScriptArgument>;

    StepActions(LanguageInterpreter& interpreter, StepLanguage& language)
        : m_interpreter(interpreter),
          m_language(language),
          m_files(interpreter, language, m_registry) {}

    StepRegistry& registry() { return m_registry; }
    StepScopes& scopes() { return m_scopes; }

    // What scripts register. These throw Gherkin::ExpressionError.
    /// StepRegistry::addStep().
    void addStep(std::string_view expression, bool isRegular, const Value& function);
    /// StepRegistry::addHook().
    void addHook(const HookKind& hook, std::string_view tags, const Value& function);

    /// A new test case begins.
    void clear();
    /// A feature file is to run: loads the files with steps. Returns an error text, empty on
    /// success.
    QString prepare(const QString& featureFile);

    Gherkin::LookupAndExecuteStepResult lookupAndExecuteStep(const Gherkin::Step& step) override;
    std::vector<Gherkin::StepMatch> findStep(const Gherkin::Step& step) override;
    std::vector<Definition> definitions() override;
    std::string snippet(const Gherkin::Step& step) override;
    void reload() override;
    Gherkin::ExecuteHookResult executeHooks(Gherkin::HookType type, Gherkin::HookOrder order,
                                            const Gherkin::HookSubject& subject) override;

private:
    LineInfo placeOf(const Value& function);
    /// The rows of a step's table as lists of texts.
    Value tableRows(const Gherkin::Step& step);
    Gherkin::LookupAndExecuteStepResult execute(const Gherkin::Step& step,
                                                const StepRegistry::Match& match);
    /// The context and the values of the parameters; nothing with `*problem` set when a parameter
    /// type fails.
    std::optional<CallArguments> arguments(const StepRegistry::Match& match, std::string* problem);
    /// What the parameter took, as a number, a text, or what its type makes of it. Null with
    /// `*error` set when its type refuses it.
    Value valueOf(const Gherkin::Argument& argument, QString* error);
    void noticeKeyword(const Gherkin::Step& step);
    void enterScope(Gherkin::HookType type, const Gherkin::HookSubject& subject);

    LanguageInterpreter& m_interpreter;
    StepLanguage& m_language;
    StepRegistry m_registry;
    StepScopes m_scopes;
    StepFiles m_files;
    QString m_featureFile;
    /// Why files could not be loaded again.
    QString m_reloadError;
    /// What "and" and "but" stand for.
    Gherkin::KeywordType m_keywordType = Gherkin::KeywordType::Unknown;
};

}  // namespace Tamrix
