#pragma once

#include <QString>
#include <map>
#include <vector>

#include "base/export.h"
#include "interpreter/bridge/scriptargument.h"

namespace Tamrix {

/// What steps and hooks keep in their context, in scopes that lie in each other: the run, the
/// feature, the scenario. A name is set in the innermost scope and looked for from there outwards.
/// Script thread only.
class TAMRIX_EXPORT StepScopes {
public:
    using Value = SharedPtr<ScriptArgument>;

    void clear() { m_scopes.clear(); }
    /// Leaves all but that of the run, as after a run that was cut short.
    void leaveAll();
    void enter();
    void leave();

    /// Null when there is none.
    Value find(const QString& name) const;
    void set(const QString& name, const Value& value);
    /// False when the innermost scope has no such name.
    bool remove(const QString& name);
    /// All names with the values that find() gives.
    std::map<QString, Value> all() const;

private:
    /// The innermost last.
    std::vector<std::map<QString, Value>> m_scopes;
};

}  // namespace Tamrix
