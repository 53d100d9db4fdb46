#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "interpreter/language/languageinterpreter.h"
#include "plugins/perl/frames.h"
#include "plugins/perl/guardedcall.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perlruntime.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

class PerlContext;
class PerlDebugger;

/// The interpreter of one test case, with a runtime of its own. The script's functions are those of
/// the package `main`.
class CaseInterpreter final : public LanguageInterpreter {
public:
    /// Throws std::runtime_error when Perl can't be started.
    explicit CaseInterpreter(RunnerInterface* runner);
    ~CaseInterpreter() override;

    /// The interpreter whose scripts run, null when there is none.
    static CaseInterpreter* active() {
        return static_cast<CaseInterpreter*>(LanguageInterpreter::active(Perl));
    }
    /// The same on the thread of its scripts; null on any other one.
    static CaseInterpreter* onScriptThread() {
        CaseInterpreter* const interpreter = active();
        return interpreter && interpreter->isScriptThread() ? interpreter : nullptr;
    }

    SourceFiles& files() { return m_files; }
    ScriptErrors& errors() { return m_errors; }
    NativeFunctions& functions() { return m_functions; }
    PerlInterpreter* perl() const { return m_runtime.perl(); }

    /// Whether this is a process that the script has forked: the run is none of its business.
    bool isInChild() const;

    /// An exception is on its way, in the code that is running.
    void exceptionRaised(pTHX_ SV* exception);

    /// Whether the library, or Perl itself, has the name in the package.
    bool isOwnName(HV* package, const QString& name) const;

    /// Runs text as `eval` does, where the script is. `isCompiled`, when given, is set when the
    /// text could be compiled.
    CodeEnd evaluateText(const QString& text, const QString& fileName, bool* isCompiled);
    void runFile(const QString& text, const QString& path) override;

    bool isErrorOrdinary() override;
    ScriptError takeError() override;
    bool checkSyntax(const QString& text, const QString& fileName) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    LineInfo placeOf(const SharedPtr<ScriptArgument>& function) override;

protected:
    void publishFunctions(const QStringList& names) override;
    void startScript(const QString& path, const QStringList& arguments,
                     const QStringList& folders) override;
    SharedPtr<ScriptArgument> scriptFunction(const QString& name) override;
    SharedPtr<ScriptArgument> libraryFunction(const QString& name) override;
    bool runScript(const QString& text, const QString& fileName) override;
    CallEnd call(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
                 const QString& name, bool isCallback) override;
    QString evaluateAtStop(const ScriptFrame* frame, const QString& code) override;
    TimeLimit::Expired endOfEvaluation() override;
    void forgetEndOfEvaluation() override;

private:
    /// The function of the name in `main`, null without.
    CV* mainFunction(const QString& name) const;

    PerlRuntime m_runtime;
    SourceFiles m_files{isPerlFile};
    ScriptErrors m_errors;
    NativeFunctions m_functions;
    std::unique_ptr<PerlContext> m_context;
    std::unique_ptr<PerlDebugger> m_debugger;
    int m_process;
    QStringList m_folders;
    /// The names in `main` and the modules from before the first script.
    SvRef m_initialNames;
    SvRef m_initialModules;

    /// Perl compiles a text by running it: what checkSyntax() has run, for evaluate().
    struct Checked {
        QString text;
        QString fileName;
        CodeEnd end;
    };
    std::optional<Checked> m_checked;
};

}  // namespace Tamrix::PerlPlugin
