#pragma once

#include <QString>
#include <memory>
#include <vector>

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
    /// Stops where the script is. Only sets flags.
    void interrupt() override;

    /// The interpreter runs in another realm now.
    void realmChanged();
    /// What is pending has ended the script: stops if the debugger has not done so before, as for
    /// what a promise was rejected with that looked as if somebody waited for it.
    void errorUncaught();

    // What the engine tells.
    /// A line of the file is about to run.
    void reached(const QString& file, int line);
    /// An exception leaves the innermost frame, and no `catch` of the script will stop it.
    void errorThrown(JS::HandleValue exception);

    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override;

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override;
    void enterSilence() override;
    void leaveSilence() override;
    void breakPointsChanged() override;

private:
    void watch();
    /// Lets `work` deal with the debugger's side of the engine, if that watches.
    template <typename Work>
    void ask(Work work);
    /// Lets the engine tell what the mode wants.
    void applyMode();

    JavaScriptInterpreter& m_interpreter;
    /// The exception that the debugger has stopped for.
    JS::PersistentRootedValue m_toldError;
};

}  // namespace Tamrix::JavaScriptPlugin
