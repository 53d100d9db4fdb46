#include "dap/session/values.h"

#include <algorithm>

#include "dap/session/language.h"

namespace Tamrix::Dap {

namespace {

// Marks in the names of listings.
constexpr QLatin1Char expandableMark('+');
/// In front of the number with which the rest of a long listing begins.
constexpr QLatin1Char restMark('@');

/// What names below a path begin with: the path without its mark, and without where in a long
/// listing it begins.
QString nameOfPath(const QString& path) {
    const QString name = path.startsWith(expandableMark) ? path.mid(1) : path;
    const int lastPart = name.lastIndexOf('.') + 1;
    return name.midRef(lastPart).startsWith(restMark) ? name.left(lastPart - 1) : name;
}

/// The last part of a name, which holds the whole path.
QString ownName(const QString& name, const QString& pathName) {
    const bool isBelow = !pathName.isEmpty() && name.startsWith(pathName) &&
                         name.size() > pathName.size() && name[pathName.size()] == '.';
    return isBelow ? name.mid(pathName.size() + 1) : name;
}

}  // namespace

int Values::top(int level) {
    Node node;
    // A caller stands in paths by its number.
    if (level > 0)
        node.path = QStringLiteral("+^%1").arg(level);
    node.isTop = true;
    return numberOf(node);
}

int Values::numberOf(const Node& node) {
    const auto known = m_numbers.constFind(node.path);
    if (known != m_numbers.constEnd())
        return *known;
    m_nodes[++m_lastNumber] = node;
    m_numbers.insert(node.path, m_lastNumber);
    return m_lastNumber;
}

Variable Values::variableOf(const Binding& binding, const Node& parent) {
    const bool isExpandable = binding.name.startsWith(expandableMark);
    const QString name =
        ownName(isExpandable ? binding.name.mid(1) : binding.name, nameOfPath(parent.path));
    Variable variable;
    variable.name = name;
    variable.value = binding.value.isNull() ? binding.type : binding.value;
    if (!binding.type.isEmpty())
        variable.type = binding.type;
    QString expression;
    if (name.startsWith(restMark)) {
        // The rest is of the same value.
        variable.name = QStringLiteral("...");
        variable.type.reset();
        expression = parent.expression;
    } else {
        if (parent.isTop && parent.path.isEmpty())
            expression = name;
        else if (!parent.expression.isNull())
            expression = memberExpression(m_file, parent.expression, name);
        if (!expression.isNull())
            variable.evaluateName = expression;
    }
    if (isExpandable) {
        const bool canReadMembers = membersHaveExpressions(binding.type);
        variable.variablesReference =
            numberOf({binding.name, false, canReadMembers ? expression : QString(), std::nullopt});
    }
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
