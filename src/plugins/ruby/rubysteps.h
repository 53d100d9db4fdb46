#pragma once

#include "interpreter/language/stepactions.h"
#include "plugins/ruby/rubyapi.h"

namespace Tamrix::RubyPlugin {

class RubyInterpreter;

/// What Ruby brings for the steps of feature files.
class RubySteps final : public StepLanguage {
public:
    explicit RubySteps(RubyInterpreter& interpreter);

    std::optional<ScriptError> loadFile(const QString& path, const QString& text) override;
    bool isLoaded(const QString& path) override;
    LineInfo definitionOf(const Value& function) override {
        return interpreter().placeOf(function);
    }
    Value contextValue() override;
    Value tableValue(const Value& rows) override;
    Value bigInteger(const QString& text) override;
    Value bigDecimal(const QString& text) override;
    QString snippetText(const StepSnippet& snippet) override;

private:
    RubyInterpreter& m_ruby;
};

/// Whether the exception, which may be nil, tells of a step that is still to be written.
bool isPendingStep(VALUE exception);

}  // namespace Tamrix::RubyPlugin
