#pragma once

#include "interpreter/language/stepactions.h"

namespace Tamrix::PythonPlugin {

class PythonInterpreter;

/// Steps of feature files in Python. Files with steps are modules of their own, which the module
/// `bdd` helps to register what they have.
class PythonSteps final : public StepLanguage {
public:
    explicit PythonSteps(PythonInterpreter& interpreter);

    std::optional<ScriptError> loadFile(const QString& path, const QString& text) override;
    bool isLoaded(const QString& path) override;
    void forgetFiles(const QStringList& paths) override;
    LineInfo definitionOf(const Value& function) override {
        return interpreter().placeOf(function);
    }
    Value contextValue() override;
    Value tableValue(const Value& rows) override;
    Value bigInteger(const QString& text) override;
    /// A decimal.Decimal.
    Value bigDecimal(const QString& text) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    PythonInterpreter& m_python;
};

}  // namespace Tamrix::PythonPlugin
