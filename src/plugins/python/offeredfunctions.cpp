#include "plugins/python/offeredfunctions.h"

#include <QMap>
#include <algorithm>
#include <iterator>
#include <vector>

#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

constexpr OfferedFunction functions[] = {
    {"click", "object[, x, y][, button][, modifiers]",
     "Clicks the object, in its middle without a place"},
    {"doubleClick", "object[, x, y][, button][, modifiers]", "Clicks the object twice"},
    {"drag", "object, x, y, dx, dy[, button][, modifiers]",
     "Drags from a point of the object by a distance"},
    {"hover", "object[, x, y]", "Moves the mouse over the object"},
    {"fill", "object, text", "Sets the whole text of a field"},
    {"typeText", "object, text", "Types a text into the object"},
    {"press", "object, keys", "Presses keys: \"Ctrl+A\", \"Return\""},
    {"selectItem", "object, text",
     "Selects an item of a menu, list, tree, combo box or tab bar by its text or a list of steps"},
    {"check", "object", "Checks a box or button that can be checked"},
    {"uncheck", "object", "Takes the check away"},
    {"closeWindow", "object", "Closes the object's window"},
    {"clipboardText", "", "The text on the clipboard", false},
};

/// What the application calls the buttons that scripts may give by their numbers.
constexpr struct {
    long number;
    const char* name;
} buttons[] = {{1, "left"}, {2, "right"}, {4, "middle"}, {8, "back"}, {16, "forward"}};

/// Parameters that are given together or not at all.
struct Group {
    QStringList names;
    bool isOptional = false;
};

/// The groups of "object[, x, y][, button]": object, then x and y, then button.
std::vector<Group> groupsOf(const char* parameters) {
    std::vector<Group> groups;
    const QStringList parts = QString(parameters).split('[');
    for (int index = 0; index < parts.size(); ++index) {
        QString part = parts.at(index);
        QStringList names = part.remove(']').remove(' ').split(',', Qt::SkipEmptyParts);
        if (index > 0)
            groups.push_back({names, true});
        else
            for (const QString& name : qAsConst(names))
                groups.push_back({{name}, false});
    }
    return groups;
}

[[noreturn]] void refuse(const OfferedFunction& function, const QString& problem) {
    PyErr_SetString(PyExc_TypeError,
                    (QString(function.name) + "() " + problem).toUtf8().constData());
    throw PythonErrorSet();
}

bool isNumber(PyObject* value) {
    return (PyLong_Check(value) && !PyBool_Check(value)) || PyFloat_Check(value);
}

/// The arguments by the names of their parameters, without those that are left out.
class Slots {
public:
    Slots(const OfferedFunction& function, PyObject* tuple, PyObject* named)
        : m_function(function), m_groups(groupsOf(function.parameters)) {
        takePositional(tuple);
        takeNamed(named);
        checkWhole();
        fillButton();
    }

    PyRef ordered() const {
        std::vector<PyRef> values;
        for (const Group& group : m_groups) {
            for (const QString& name : group.names) {
                if (m_values.contains(name))
                    values.push_back(m_values.value(name));
            }
        }
        PyRef tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(values.size())));
        for (std::size_t index = 0; index < values.size(); ++index)
            PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index), values[index].release());
        return tuple;
    }

private:
    /// A place is told from a button as the application does it: by two numbers.
    void takePositional(PyObject* tuple) {
        const Py_ssize_t count = PyTuple_GET_SIZE(tuple);
        Py_ssize_t next = 0;
        for (const Group& group : m_groups) {
            const Py_ssize_t end = next + group.names.size();
            bool isHere = end <= count;
            for (Py_ssize_t index = next; isHere && group.names.size() > 1 && index < end; ++index)
                isHere = isNumber(PyTuple_GET_ITEM(tuple, index)) ||
                         PyTuple_GET_ITEM(tuple, index) == Py_None;
            for (const QString& name : isHere ? group.names : QStringList())
                put(name, PyTuple_GET_ITEM(tuple, next++));
        }
        if (next < count)
            refuse(m_function,
                   QString("takes (%1), not %2 arguments without a name")
                       .arg(QLatin1String(m_function.parameters), QString::number(count)));
    }

    void takeNamed(PyObject* named) {
        PyObject* key = nullptr;
        PyObject* value = nullptr;
        Py_ssize_t position = 0;
        while (named && PyDict_Next(named, &position, &key, &value)) {
            const QString name = fromPyString(key);
            const bool isKnown =
                std::any_of(m_groups.begin(), m_groups.end(),
                            [&](const Group& group) { return group.names.contains(name); });
            if (!isKnown)
                refuse(m_function, "has no argument '" + name + "'");
            if (m_values.contains(name))
                refuse(m_function, "got several values for the argument '" + name + "'");
            put(name, value);
        }
    }

    void put(const QString& name, PyObject* value) {
        const bool isOptional = std::any_of(
            m_groups.begin(), m_groups.end(),
            [&](const Group& group) { return group.isOptional && group.names.contains(name); });
        if (!isOptional || value != Py_None)
            m_values.insert(name, PyRef::borrow(value));
    }

    void checkWhole() const {
        for (const Group& group : m_groups) {
            const bool isWanted =
                !group.isOptional ||
                std::any_of(group.names.begin(), group.names.end(),
                            [&](const QString& name) { return m_values.contains(name); });
            for (const QString& name : isWanted ? group.names : QStringList()) {
                if (!m_values.contains(name))
                    refuse(m_function, "needs an argument '" + name + "'");
            }
        }
    }

    /// Modifiers stand behind a button, which is a name where it could be taken for a place.
    void fillButton() {
        if (!m_values.contains("modifiers"))
            return;
        const PyRef button = m_values.value("button");
        if (button && !PyLong_Check(button.get()))
            return;
        const long number = button ? PyLong_AsLong(button.get()) : buttons[0].number;
        PyErr_Clear();  // of a number that is too large: it is no button
        const auto* const found =
            std::find_if(std::begin(buttons), std::end(buttons),
                         [&](const auto& entry) { return entry.number == number; });
        if (found == std::end(buttons))
            refuse(m_function,
                   textOf(button.get()) + " is no mouse button: 1 is left, 2 right, 4 middle");
        m_values.insert("button", checked(PyUnicode_FromString(found->name)));
    }

    const OfferedFunction& m_function;
    std::vector<Group> m_groups;
    QMap<QString, PyRef> m_values;
};

}  // namespace

const OfferedFunction* offeredFunction(const QString& name) {
    const auto* const found =
        std::find_if(std::begin(functions), std::end(functions),
                     [&](const OfferedFunction& function) { return name == function.name; });
    return found == std::end(functions) ? nullptr : found;
}

QStringList offeredFunctionNames() {
    QStringList names;
    for (const OfferedFunction& function : functions)
        names.append(function.name);
    return names;
}

PyRef orderedArguments(const OfferedFunction& function, PyObject* tuple, PyObject* named) {
    bool isPlain = !named || PyDict_GET_SIZE(named) == 0;
    for (Py_ssize_t index = 0; index < PyTuple_GET_SIZE(tuple); ++index)
        isPlain = isPlain && PyTuple_GET_ITEM(tuple, index) != Py_None;
    // The application knows the forms of its functions by itself.
    return isPlain ? PyRef::borrow(tuple) : Slots(function, tuple, named).ordered();
}

}  // namespace Tamrix::PythonPlugin
