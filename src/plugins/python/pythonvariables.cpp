#include "plugins/python/pythonvariables.h"

#include <QSet>
#include <QStringList>
#include <algorithm>
#include <iterator>

#include "plugins/python/conversion.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Bindings of one listing.
constexpr Py_ssize_t limit = 200;

/// The number behind a mark, nothing when the part has another form.
std::optional<int> markedNumber(const QString& part, QChar mark) {
    bool isNumber = false;
    const int number = part.midRef(1).toInt(&isNumber);
    if (!part.startsWith(mark) || !isNumber || number < 0)
        return std::nullopt;
    return number;
}

QString below(const QString& path, const QString& name) {
    return path.isEmpty() ? name : path + '.' + name;
}

}  // namespace

VariableWatcher::VariableBindings PythonVariableWatcher::topLevelBindings() {
    return list(Target());
}

bool PythonVariableWatcher::handlesPath(const QString& path) {
    return find(path).has_value();
}

VariableWatcher::VariableBindings PythonVariableWatcher::languageBindings(const QString& path) {
    const std::optional<Target> target = find(path);
    return target ? list(*target) : VariableBindings();
}

std::vector<ValueMember> PythonVariableWatcher::variablesOf(int level) {
    const std::vector<ScriptFrame> frames = m_python.debugger().frames();
    std::vector<ValueMember> variables;
    if (level >= static_cast<int>(frames.size()))
        return variables;
    // A feature file has none.
    if (!frames[static_cast<std::size_t>(level)].frame)
        return variables;
    auto* const frame =
        reinterpret_cast<PyFrameObject*>(frames[static_cast<std::size_t>(level)].frame.get());
    const PyRef locals = checked(PyFrame_GetLocals(frame));
    const PyRef globals = checked(PyFrame_GetGlobals(frame));
    // A variable of the module that one of the function hides can't be named by the function.
    QSet<QString> known;
    for (const PyRef* names : {&locals, &globals}) {
        const PyRef items = checked(PyMapping_Items(names->get()));
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(items.get()); ++index) {
            PyObject* const item = PyList_GET_ITEM(items.get(), index);
            const QString name = fromPyString(PyTuple_GET_ITEM(item, 0));
            if (name.isNull() || name.startsWith("__") ||
                m_python.isSelfDefinedVariableName(name) || known.contains(name))
                continue;
            known.insert(name);
            variables.push_back({pathPart(name), PyRef::borrow(PyTuple_GET_ITEM(item, 1))});
        }
    }
    return variables;
}

std::optional<PythonVariableWatcher::Target> PythonVariableWatcher::find(const QString& path) {
    QStringList parts = partsOfPath(path.startsWith('+') ? path.mid(1) : path);
    Target target;
    if (const std::optional<int> first = markedNumber(parts.last(), '@')) {
        target.first = *first;
        parts.removeLast();
    }
    target.path = parts.join('.');
    if (parts.isEmpty())
        return target;
    if (const std::optional<int> level = markedNumber(parts.first(), '^')) {
        if (*level >= static_cast<int>(m_python.debugger().frames().size()))
            return std::nullopt;
        target.level = *level;
        parts.removeFirst();
    }
    bool isVariable = true;
    for (const QString& part : parts) {
        if (isVariable) {
            const std::vector<ValueMember> variables = variablesOf(target.level);
            const auto variable =
                std::find_if(variables.begin(), variables.end(),
                             [&part](const ValueMember& each) { return each.name == part; });
            target.value = variable != variables.end() ? variable->value : PyRef();
        } else {
            target.value = memberNamed(target.value.get(), part);
        }
        isVariable = false;
        // What is below an application's object is not for the language to tell.
        if (!target.value || ObjectHolder::check(target.value.get()))
            return std::nullopt;
    }
    return target;
}

VariableWatcher::VariableBindings PythonVariableWatcher::list(const Target& target) {
    ValueTexts texts;
    ValueMembers members;
    if (target.value) {
        members = membersOf(target.value.get(), target.first, limit, texts);
    } else {
        std::vector<ValueMember> variables = variablesOf(target.level);
        members.count = static_cast<Py_ssize_t>(variables.size());
        const Py_ssize_t first = std::min(target.first, members.count);
        const Py_ssize_t end = std::min(members.count, first + limit);
        members.page.assign(std::make_move_iterator(variables.begin() + first),
                            std::make_move_iterator(variables.begin() + end));
    }
    VariableBindings bindings;
    for (const ValueMember& member : members.page)
        bindings.push_back(bind(below(target.path, member.name), member.value.get(), texts));
    const Py_ssize_t end = target.first + static_cast<Py_ssize_t>(members.page.size());
    if (!members.page.empty() && end < members.count)
        bindings.push_back({"+" + below(target.path, QStringLiteral("@%1").arg(end)),
                            QStringLiteral("rest"),
                            QStringLiteral("%1 more").arg(members.count - end)});
    return bindings;
}

Debugger::VariableBinding PythonVariableWatcher::bind(const QString& path, PyObject* value,
                                                      ValueTexts& texts) {
    if (const SharedPtr<Object> object = ObjectHolder::unwrap(value)) {
        const bool isExpandable = registerTamrixObject("+" + path, object);
        return {isExpandable ? "+" + path : path, object->className(), texts.textOf(value)};
    }
    return {hasMembers(value) ? "+" + path : path, ValueTexts::typeNameOf(value),
            texts.textOf(value)};
}

}  // namespace Tamrix::PythonPlugin
