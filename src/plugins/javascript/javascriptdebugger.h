#pragma once

#include <QString>
#include <memory>
#include <vector>

#include "interpreter/language/languagedebugger.h"
#include "plugins/javascript/roots.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

/// The language's half of the debugger. Scripts can be looked at from another compartment only, by
/// code of the language: a realm for it is made on first use, for the process. What it is given and
/// gives are values of the script's realm. While the debugger is interactive the engine tells it of
/// lines: in mode Run of those with a break point alone, when stepping of all.
class JavaScriptDebugger final : public LanguageDebugger {
public:
    explicit JavaScriptDebugger(JavaScriptInterpreter& interpreter);

    /// The interpreter runs in another realm now.
    void realmChanged();
    /// What is pending has ended the script: stops if the debugger has not done so before, as for
    /// what a promise was rejected with that looked as if somebody waited for it.
    void errorUncaught();

    // What the engine tells.
    /// A line of the file is about to run.
    void reached(const QString& file, int line);
    /// An exception, of the debugger's realm, leaves the innermost frame, and no `catch` of the
    /// script will stop it.
    void errorThrown(const JS::Value& thrown);

    /// Those of inner scopes first, none that are hidden by others.
    std::vector<ValueTexts::Part> variablesOf(const ScriptFrame& frame) override;

    // These throw ScriptErrorSet, and work for a script that is not watched, too.
    /// Runs code in a frame; at the top level of the script for null.
    static JS::Value evaluate(const ScriptFrame* frame, const QString& code);
    /// Runs code in the frame that has called the running native function. `file` stands for the
    /// code in positions.
    static JS::Value evaluateInCaller(const QString& code, const char* file);
    /// What the running call of a native function says in its script: the text of its first
    /// argument as a name without a value, then the values in it. These are looked up once more:
    /// names, properties, operators and some of the language's own functions; no other call is made
    /// a second time. Empty when there is nothing to tell.
    static std::vector<ValueTexts::Part> explainCaller();

protected:
    std::vector<ScriptFrame> runningFrames() override;
    std::unique_ptr<ValueTexts> makeValueTexts() override { return makeLimitedTexts(); }
    void enterSilence() override;
    void leaveSilence() override;
    void breakPointsChanged() override;
    /// Lets the engine tell what the mode wants.
    void modeChanged() override;
    void stopSoon() override { Engine::self().requestStop(); }

private:
    void watch();
    void unwatch();
    /// Lets `work` deal with the debugger's side of the engine, if that watches.
    template <typename Work>
    void ask(Work work);

    JavaScriptInterpreter& m_interpreter;
    /// The exception that the debugger has stopped for.
    ValueRoot m_toldError;
};

}  // namespace Tamrix::JavaScriptPlugin
