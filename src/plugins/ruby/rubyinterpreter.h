#pragma once

#include <memory>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/noticedfailures.h"
#include "plugins/ruby/rubycontext.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

class RubyDebugger;

/// The interpreter of one test case on Ruby's virtual machine, which lives as long as the process.
/// The script's functions are methods of its top level.
class RubyInterpreter final : public LanguageInterpreter {
public:
    /// Throws std::runtime_error when Ruby can't be started.
    explicit RubyInterpreter(RunnerInterface* runner);
    /// The last one to go undoes what its scripts changed.
    ~RubyInterpreter() override;

    static RubyInterpreter* active() {
        return static_cast<RubyInterpreter*>(LanguageInterpreter::active(Ruby));
    }

    RubyContext& rubyContext() { return *m_context; }
    RubyDebugger& rubyDebugger() { return *m_debugger; }

    NoticedFailures<RubyRef>& failures() { return m_failures; }

    void runFile(const QString& text, const QString& path) override;
    bool isErrorOrdinary() override;
    ScriptError takeError() override;
    void compileOnly(const QString& text, const QString& fileName) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;
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

    void errorUncaught() override;

private:
    std::unique_ptr<RubyContext> m_context;
    std::unique_ptr<RubyDebugger> m_debugger;
    NoticedFailures<RubyRef> m_failures;
};

}  // namespace Tamrix::RubyPlugin
