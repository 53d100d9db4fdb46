#pragma once

#include <QString>
#include <memory>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/noticedfailures.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptcontext.h"
#include "plugins/javascript/javascriptdebugger.h"
#include "plugins/javascript/scriptrealm.h"

namespace Tamrix::JavaScriptPlugin {

/// The interpreter of one test case on the engine, which lives as long as the process. The script
/// runs in a realm of its own. A script with `import`, `export` or `await` at its top level is a
/// module, any other one a classic script, whose functions are global.
class JavaScriptInterpreter final : public LanguageInterpreter {
public:
    /// Throws std::runtime_error when the engine can't be started.
    explicit JavaScriptInterpreter(RunnerInterface* runner);
    ~JavaScriptInterpreter() override;

    static JavaScriptInterpreter* active() {
        return static_cast<JavaScriptInterpreter*>(LanguageInterpreter::active(JavaScript));
    }

    JavaScriptDebugger& javaScriptDebugger() { return m_debugger; }
    ScriptRealm& realm() { return *m_realm; }

    NoticedFailures<ObjectRoot>& failures() { return m_failures; }

    /// What becomes of the exports of a module.
    enum class Exports { StayInModule, BecomeGlobals };
    /// Runs a script or a module in the realm, and waits for it. Throws ScriptErrorSet. `fileName`
    /// may be empty.
    void runText(const QString& text, const QString& fileName, Exports exports);
    /// What it exports becomes global.
    void runFile(const QString& text, const QString& path) override {
        runText(text, path, Exports::BecomeGlobals);
    }
    /// What the script's module exports, by name, as far as it has come to it.
    ScriptArgument::Map exportedVariables();

    LineInfo placeOf(const SharedPtr<ScriptArgument>& function) override {
        return placeOfFunction(valueOf(function));
    }
    bool isErrorOrdinary() override { return !isEndOfScript(); }
    ScriptError takeError() override { return takeScriptError(); }
    void compileOnly(const QString& text, const QString& fileName) override {
        compile(text, fileName);
    }
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    QString addToSearchPath(const QFileInfo& directory) override;

protected:
    void publishFunctions(const QStringList& names) override;
    void startScript(const QString& path, const QStringList& arguments,
                     const QStringList& folders) override;
    SharedPtr<ScriptArgument> scriptFunction(const QString& name) override;
    SharedPtr<ScriptArgument> libraryFunction(const QString& name) override;
    bool runScript(const QString& text, const QString& fileName) override {
        return runCode(!fileName.isEmpty(),
                       [&] { runText(text, fileName, Exports::StayInModule); });
    }
    CallEnd call(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
                 const QString& name, bool isCallback) override;
    QString evaluateAtStop(const ScriptFrame* frame, const QString& code) override;
    TimeLimit::Expired endOfEvaluation() override {
        return [] { Engine::self().requestEnd(Engine::End::TimeLimit); };
    }
    void forgetEndOfEvaluation() override { Engine::self().forgetRequest(Engine::End::TimeLimit); }
    void errorUncaught() override { m_debugger.errorUncaught(); }

private:
    void enterNewRealm();
    /// Makes the realm of the active interpreter that in which code runs; at the end, none.
    static void enterActiveRealm();
    /// One of these.
    struct Code {
        Root<JSScript*> script;
        ObjectRoot module;
    };
    /// `fileName` may be empty. Throws ScriptErrorSet.
    Code compile(const QString& text, const QString& fileName);

    JavaScriptContext m_context{*this};
    JavaScriptDebugger m_debugger{*this};
    std::unique_ptr<ScriptRealm> m_realm;
    QStringList m_searchPath;

    ObjectRoot m_scriptModule;
    NoticedFailures<ObjectRoot> m_failures;
};

}  // namespace Tamrix::JavaScriptPlugin
