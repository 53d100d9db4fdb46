#pragma once

#include "interpreter/language/stepactions.h"

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

}  // namespace Tamrix::JavaScriptPlugin
