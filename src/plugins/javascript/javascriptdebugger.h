#pragma once

#include <jsapi.h>

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "interpreter/language/languageinterpreter.h"
#include "plugins/javascript/debuggerrealm.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

/// The language's half of the debugger. While it is interactive the engine tells it of lines: in
/// mode Run of those with a break point alone, when stepping of all.
class JavaScriptDebugger final : public LanguageDebugger, private DebuggeeListener {
public:
    explicit JavaScriptDebugger(JavaScriptInterpreter& interpreter);

    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;
    /// Stops where the script is. Only sets flags.
    void interrupt() override;

    /// The interpreter runs in another realm now.
    void realmChanged();
    /// A file is about to be compiled: break points that wait for it are set.
    void noticeFile(const QString& file);
    /// What is pending has ended the script: stops if the debugger has not done so before, as for
    /// what a promise was rejected with that looked as if somebody waited for it.
    void errorUncaught();

    /// Runs code in a frame, or at the script's top level for null. Throws ScriptErrorSet.
    JS::Value evaluate(const ScriptFrame* frame, const QString& code);
    /// The variables of a frame.
    std::vector<DebuggerRealm::Variable> variablesOf(const ScriptFrame& frame);

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<VariableWatcher> makeVariableWatcher() override;
    void enterSilence() override;
    void leaveSilence() override;
    void breakPointsChanged() override;

private:
    void lineReached(const QString& file, int line) override;
    void errorThrown(JS::HandleValue exception) override;
    void watch();
    /// Lets the engine tell what the mode wants.
    void applyMode();

    JavaScriptInterpreter& m_interpreter;
    /// Those that were compiled.
    QStringList m_files;
    /// The exception that the debugger has stopped for.
    JS::PersistentRootedValue m_toldError;
};

}  // namespace Tamrix::JavaScriptPlugin
