#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"
#include "interpreter/debugger/variablewatcher.h"

namespace Tamrix {

class LanguageDebugger;
struct ScriptFrame;

/// Lists the variables of a script that stands still. A language's own class derives from it and
/// says what variables and members there are.
///
/// In front of a path (`valuepath.h`) may stand "^N", which means the variables of the frame N
/// levels outwards from where the script stands; behind it "@N", which means the members from the
/// one numbered N. A listing is limited; the rest is one binding, whose path says so.
class TAMRIX_EXPORT LanguageVariables : public VariableWatcher {
public:
    explicit LanguageVariables(LanguageDebugger& debugger) : m_debugger(debugger) {}

    /// The variables of the function where the script stands, then those of its module.
    VariableBindings topLevelBindings() override;
    bool handlesPath(const QString& path) override;
    VariableBindings languageBindings(const QString& path) override;

protected:
    using Value = SharedPtr<ScriptArgument>;

    struct Member {
        /// As it stands in a path: a name as a pathPart(), an entry of a map with its key in
        /// brackets as code has it, another element as its number.
        QString name;
        Value value;
    };
    /// Some of the members of a value.
    struct Members {
        std::vector<Member> page;
        /// Of all members.
        int count = 0;
    };

    // For the language. None of them runs code of the script but textOf(), within limits.
    /// A listing begins: limits of time start anew.
    virtual void startListing() = 0;
    /// The variables of one of the debugger's frames(), those of its function first; none for a
    /// frame of a feature file. Names of the library's own are left out.
    virtual std::vector<Member> variablesOf(int level) = 0;
    /// At most `limit` members from the one numbered `first`, in their order.
    virtual Members membersOf(const Value& value, int first, int limit) = 0;
    virtual bool hasMembers(const Value& value) { return membersOf(value, 0, 1).count > 0; }
    /// The member with the name as it stands in paths; null when there is none. By default it is
    /// looked for among membersOf().
    virtual Value memberNamed(const Value& value, const QString& name);
    virtual QString textOf(const Value& value) = 0;

    LanguageDebugger& debugger() { return m_debugger; }
    /// One of the debugger's frames(); nothing for a frame of a feature file, and beyond the last.
    std::optional<ScriptFrame> codeFrame(int level);

private:
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
    VariableBindings list(const Target& target);
    Debugger::VariableBinding bind(const QString& path, const Value& value);

    LanguageDebugger& m_debugger;
};

}  // namespace Tamrix
