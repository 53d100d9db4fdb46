#pragma once

#include <jsapi.h>

#include <QString>

#include "interpreter/language/languagevariables.h"
#include "interpreter/language/valuetexts.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptDebugger;

/// Writes values as a person looks at them while a script stands still. Runs no code of the script.
class JavaScriptValueTexts final : public ValueTexts {
public:
    QString textOf(JS::HandleValue value, int depth = 0);

private:
    QString objectText(JS::HandleObject object, int depth);
};

/// The variables of a script that stands still: elements of an array or a Set by their number,
/// properties of an object by their name, entries of a Map by their key.
class JavaScriptVariables final : public LanguageVariables {
public:
    explicit JavaScriptVariables(JavaScriptDebugger& debugger);

protected:
    void startListing() override { m_texts = JavaScriptValueTexts(); }
    std::vector<Member> variablesOf(int level) override;
    Members membersOf(const Value& value, int first, int limit) override;
    QString textOf(const Value& value) override;

private:
    JavaScriptDebugger& m_debugger;
    JavaScriptValueTexts m_texts;
};

}  // namespace Tamrix::JavaScriptPlugin
