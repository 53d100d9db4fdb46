#include "dap/session/values.h"

#include <algorithm>

#include "dap/session/language.h"

namespace Tamrix::Dap {

namespace {

/// In front of the names of what can be opened.
constexpr QLatin1Char expandableMark('+');

}  // namespace

int Values::top() {
    return numberOf(QString(), QString());
}

int Values::numberOf(const QString& path, const QString& expression) {
    const auto known = m_numbers.constFind(path);
    if (known != m_numbers.constEnd())
        return *known;
    m_nodes[++m_lastNumber] = {path, expression, std::nullopt};
    m_numbers.insert(path, m_lastNumber);
    return m_lastNumber;
}

Variable Values::variableOf(const Binding& binding, const Node& parent) {
    const bool isExpandable = binding.name.startsWith(expandableMark);
    QString name = isExpandable ? binding.name.mid(1) : binding.name;
    // A name holds the whole path, of which the client wants the last part.
    const QString parentName = parent.path.mid(1);
    const bool isTop = parent.path.isEmpty();
    if (!isTop && name.startsWith(parentName) && name.size() > parentName.size()) {
        name.remove(0, parentName.size());
        if (name.startsWith('.'))
            name.remove(0, 1);
    }
    QString expression;
    if (isTop)
        expression = name;
    else if (!parent.expression.isNull())
        expression = memberExpression(parent.expression, name);

    Variable variable;
    variable.name = name;
    variable.value = binding.value.isNull() ? binding.type : binding.value;
    if (!binding.type.isEmpty())
        variable.type = binding.type;
    if (!expression.isEmpty())
        variable.evaluateName = expression;
    if (isExpandable)
        variable.variablesReference = numberOf(binding.name, expression);
    return variable;
}

Outcome<std::vector<Variable>> Values::below(int reference, Debuggee& debuggee) {
    const auto found = m_nodes.find(reference);
    if (found == m_nodes.end())
        return fail(FailureKind::Gone,
                    QStringLiteral("the script has gone on since the variables %1 were listed")
                        .arg(reference));
    if (found->second.children)
        return *found->second.children;
    const Outcome<std::vector<Binding>> bindings = debuggee.variables(found->second.path);
    if (!bindings)
        return fail(bindings.error());
    std::vector<Variable> children;
    children.reserve(bindings->size());
    // A copy: new numbers come to the map.
    const Node parent = found->second;
    for (const Binding& binding : *bindings)
        children.push_back(variableOf(binding, parent));
    m_nodes[reference].children = children;
    return children;
}

std::optional<Variable> Values::listed(const QString& expression) const {
    for (const auto& [number, node] : m_nodes) {
        if (!node.children)
            continue;
        const auto found =
            std::find_if(node.children->begin(), node.children->end(),
                         [&](const Variable& each) { return each.evaluateName == expression; });
        if (found != node.children->end())
            return *found;
    }
    return std::nullopt;
}

std::vector<Variable> Values::members(const QString& expression, Debuggee& debuggee) {
    std::vector<Variable> members = below(top(), debuggee).value_or(std::vector<Variable>());
    if (expression.isEmpty())
        return members;
    // Down from the top, one name after the other.
    for (const QString& name : expression.split('.')) {
        const auto found = std::find_if(members.begin(), members.end(),
                                        [&](const Variable& each) { return each.name == name; });
        if (found == members.end() || found->variablesReference == 0)
            return {};
        members = below(found->variablesReference, debuggee).value_or(std::vector<Variable>());
    }
    return members;
}

void Values::refresh() {
    for (auto& [number, node] : m_nodes)
        node.children.reset();
}

void Values::clear() {
    m_nodes.clear();
    m_numbers.clear();
}

}  // namespace Tamrix::Dap
