#pragma once

#include "interpreter/language/stepactions.h"
#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

/// Files with step definitions as modules, and what steps are given.
class JavaScriptSteps final : public StepLanguage {
public:
    explicit JavaScriptSteps(JavaScriptInterpreter& interpreter);

    std::optional<ScriptError> loadFile(const QString& path, const QString& text) override;
    bool isLoaded(const QString& path) override;
    void forgetFiles(const QStringList& paths) override;
    LineInfo definitionOf(const Value& function) override {
        return interpreter().placeOf(function);
    }
    Value contextValue() override;
    /// An array of objects by the names of the first row, with `headers`, `rows` and `raw`.
    Value tableValue(const Value& rows) override;
    /// A BigInt.
    Value bigInteger(const QString& text) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    JavaScriptInterpreter& m_interpreter;
};

/// Gives a new global object the functions with which scripts register steps, hooks and parameter
/// types: `Given`, `BeforeScenario` and the like. They begin with capitals, since an object with a
/// function `then` is a promise to the language. Throws ScriptErrorSet.
void addStepFunctions(JS::HandleObject global);

}  // namespace Tamrix::JavaScriptPlugin
