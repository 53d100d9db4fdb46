#include "interpreter/language/stepscopes.h"

namespace Tamrix {

void StepScopes::enter() {
    if (m_scopes.empty())
        m_scopes.emplace_back();
    m_scopes.emplace_back();
}

void StepScopes::leave() {
    if (m_scopes.size() > 1)
        m_scopes.pop_back();
}

void StepScopes::leaveAll() {
    while (m_scopes.size() > 1)
        m_scopes.pop_back();
}

StepScopes::Value StepScopes::find(const QString& name) const {
    for (auto scope = m_scopes.rbegin(); scope != m_scopes.rend(); ++scope) {
        const auto found = scope->find(name);
        if (found != scope->end())
            return found->second;
    }
    return {};
}

void StepScopes::set(const QString& name, const Value& value) {
    if (m_scopes.empty())
        m_scopes.emplace_back();
    m_scopes.back()[name] = value;
}

bool StepScopes::remove(const QString& name) {
    return !m_scopes.empty() && m_scopes.back().erase(name) > 0;
}

std::map<QString, StepScopes::Value> StepScopes::all() const {
    std::map<QString, Value> names;
    for (const auto& scope : m_scopes) {
        for (const auto& [name, value] : scope)
            names[name] = value;
    }
    return names;
}

}  // namespace Tamrix
