#pragma once

#include <jsapi.h>

#include <QString>

#include "interpreter/language/languagevariables.h"
#include "interpreter/language/valuetexts.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptDebugger;

/// Writes values as a person looks at them while a script stands still. Their parts are elements
/// of an array or a Set, properties of an object, entries of a Map. Runs no code of the script.
class JavaScriptValueTexts final : public ValueTexts {
public:
    using ValueTexts::textOf;
    QString textOf(JS::HandleValue value);

    Parts partsOf(const Value& value, int end, int depth = 0) override;

protected:
    QString text(const Value& value, int depth) override;

private:
    QString objectText(const Value& value, JS::HandleObject object, int depth);
};

/// The variables of a script that stands still.
class JavaScriptVariables final : public LanguageVariables {
public:
    explicit JavaScriptVariables(JavaScriptDebugger& debugger);

protected:
    std::vector<Member> variablesOf(int level) override;

private:
    JavaScriptDebugger& m_debugger;
};

}  // namespace Tamrix::JavaScriptPlugin
