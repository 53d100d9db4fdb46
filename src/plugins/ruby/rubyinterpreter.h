#pragma once

#include <memory>

#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scriptfailure.h"
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

    LanguageContext& context() override { return *m_context; }
    LanguageDebugger& languageDebugger() override;
    RubyContext& rubyContext() { return *m_context; }
    RubyDebugger& rubyDebugger() { return *m_debugger; }

    /// Remembers of an exception what it can't hold: that it is the one by which a skip ends the
    /// script, and that it stands in a file that is none of Ruby's.
    void noticeFailure(const ScriptFailure& failure, VALUE exception);
    bool isSkip(VALUE exception) const { return m_skip && m_skip.get() == exception; }
    bool hasOrigin(VALUE exception) const { return m_originOf && m_originOf.get() == exception; }
    LineInfo errorOrigin() const { return m_errorOrigin; }

    bool isErrorOrdinary() override;
    ScriptError takeError() override;
    bool checkSyntax(const QString& text, const QString& fileName) override;
    QString addToSearchPath(const QFileInfo& directory) override;
    void addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                           const QStringList& requiredParameters,
                           const QStringList& optionalParameters,
                           const QString& description) override;
    void addNativeType(const QString& name, void* typeId, const NativeScriptType& type) override;

protected:
    void publishFunctions(const QStringList& names) override;
    void startScript(const QString& path, const QStringList& arguments,
                     const QStringList& folders) override;
    SharedPtr<ScriptArgument> scriptFunction(const QString& name) override;
    SharedPtr<ScriptArgument> libraryFunction(const QString& name) override;
    bool runScript(const QString& text, const QString& fileName) override;
    CallEnd call(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments,
                 const QString& name, bool isCallback) override;
    Outcome<QString> evaluateAtStop(const ScriptFrame* frame, const QString& code) override;
    LineInfo placeOf(const SharedPtr<ScriptArgument>& function) override;

private:
    /// The end of script code that was left by what is pending.
    bool failWithPending(bool hasFile);

    std::unique_ptr<RubyContext> m_context;
    std::unique_ptr<RubyDebugger> m_debugger;
    RubyRef m_skip;
    RubyRef m_originOf;
    LineInfo m_errorOrigin;
    bool m_hasStarted = false;
    bool m_hasInitScripts = false;
};

}  // namespace Tamrix::RubyPlugin
