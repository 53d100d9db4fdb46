#pragma once

#include <QString>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/debugger/variablewatcher.h"
#include "interpreter/language/valuetexts.h"

namespace Tamrix {

class LanguageDebugger;

/// Lists the variables of a script that stands still, of which its debugger says what there are.
///
/// In front of a path (`valuepath.h`) may stand "^N", which means the variables of the frame N
/// levels outwards from where the script stands; behind it "@N", which means the members from the
/// one numbered N. A listing is limited; the rest is one binding, whose path says so.
class TAMRIX_EXPORT LanguageVariables final : public VariableWatcher {
public:
    /// `texts` tells what values consist of.
    LanguageVariables(LanguageDebugger& debugger, std::unique_ptr<ValueTexts> texts)
        : m_debugger(debugger), m_texts(std::move(texts)) {}

    /// The variables of the function where the script stands, then those of its module.
    VariableBindings topLevelBindings() override;
    bool handlesPath(const QString& path) override;
    VariableBindings languageBindings(const QString& path) override;

private:
    using Value = SharedPtr<ScriptArgument>;
    using Member = ValueTexts::Part;

    /// What a path leads to.
    struct Target {
        /// The path without its mark and "@N".
        QString path;
        /// How many frames outwards.
        int level = 0;
        /// Null for the variables of the frame themselves.
        Value value;
        int first = 0;
    };
    std::optional<Target> find(const QString& path);
    /// Of those with the same name the first one, and none of the library's own.
    std::vector<Member> visibleVariables(int level);
    VariableBindings list(const Target& target);
    Debugger::VariableBinding bind(const QString& path, const Value& value);

    LanguageDebugger& m_debugger;
    std::unique_ptr<ValueTexts> m_texts;
};

}  // namespace Tamrix
