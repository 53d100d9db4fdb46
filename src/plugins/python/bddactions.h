#pragma once

#include <QString>

#include "platform/gherkin/callbacks.h"
#include "plugins/python/bddcontext.h"
#include "plugins/python/bddregistry.h"
#include "plugins/python/bddstepfiles.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// The behaviour-driven side of an interpreter: what its scripts have registered, and the running
/// of it. What ends the script, such as a skip or sys.exit(), passes a run as PythonErrorSet.
class BddActions final : public Gherkin::ScriptActions {
public:
    explicit BddActions(PythonInterpreter& interpreter)
        : m_interpreter(interpreter), m_files(interpreter, m_registry) {}

    BddRegistry& registry() { return m_registry; }
    BddScopes& scopes() { return m_scopes; }
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
    Gherkin::LookupAndExecuteStepResult execute(const Gherkin::Step& step,
                                                const BddRegistry::Match& match);
    void enterScope(Gherkin::HookType type, const Gherkin::HookSubject& subject);

    PythonInterpreter& m_interpreter;
    BddRegistry m_registry;
    BddScopes m_scopes;
    BddStepFiles m_files;
    QString m_featureFile;
    /// Why files could not be loaded again.
    QString m_reloadError;
    /// What "and" and "but" stand for.
    Gherkin::KeywordType m_keywordType = Gherkin::KeywordType::Unknown;
};

}  // namespace Tamrix::PythonPlugin
