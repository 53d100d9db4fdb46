#pragma once

#include <jsapi.h>

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "interpreter/language/valuetexts.h"
#include "plugins/javascript/debuggerrealm.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

/// The language's half of the debugger. While it is interactive the engine tells it of lines: in
/// mode Run of those with a break point alone, when stepping of all.
class JavaScriptDebugger final : public LanguageDebugger {
public:
    explicit JavaScriptDebugger(JavaScriptInterpreter& interpreter);

    void setInteractive(bool interactive) override;
    void setDebuggerMode(DbgMode mode) override;

    /// The interpreter runs in another realm now.
    void realmChanged();
    /// A file is about to be compiled: break points that wait for it are set.
    void noticeFile(const QString& file);
    /// What is pending has ended the script: stops if the debugger has not done so before, as for
    /// what a promise was rejected with that looked as if somebody waited for it.
    void errorUncaught();

    // What the engine tells.
    /// A line of the file is about to run.
    void reached(const QString& file, int line);
    /// An exception leaves the innermost frame, and no `catch` of the script will stop it.
    void errorThrown(JS::HandleValue exception);

    /// Runs code in a frame, or at the script's top level for null. Throws ScriptErrorSet.
    JS::Value evaluate(const ScriptFrame* frame, const QString& code);

    /// The variables of a frame, with their names as parts of paths.
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame);

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<VariableWatcher> makeVariableWatcher() override;
    void enterSilence() override;
    void leaveSilence() override;
    void breakPointsChanged() override;
    void stopSoon() override;

private:
    void watch();
    /// Lets `work` deal with the debugger's side of the engine, if that watches.
    template <typename Work>
    void ask(Work work);
    /// Lets the engine tell what the mode wants.
    void applyMode();

    JavaScriptInterpreter& m_interpreter;
    /// Those that were compiled.
    QStringList m_files;
    /// The exception that the debugger has stopped for.
    JS::PersistentRootedValue m_toldError;
};

}  // namespace Tamrix::JavaScriptPlugin
