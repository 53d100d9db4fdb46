#include "plugins/python/globalfunctions.h"

#include <algorithm>

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/objectmodel.h"
#include "plugins/python/conversion.h"
#include "plugins/python/exceptions.h"
#include "plugins/python/holder.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/objectcalls.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

/// What the agents offer, so that the names are there before an application is connected.
constexpr struct Offered {
    const char* name;
    const char* parameters;
    const char* description;
    bool takesObject = true;
} offeredFunctions[] = {
    {"click", "object[, x, y][, button][, modifiers]", "Clicks the object"},
    {"doubleClick", "object[, x, y][, button][, modifiers]", "Clicks the object twice"},
    {"drag", "object, x, y, dx, dy", "Drags from a point of the object by a distance"},
    {"hover", "object[, x, y]", "Moves the mouse over the object"},
    {"fill", "object, text", "Sets the whole text of a field"},
    {"typeText", "object, text", "Types a text into the object"},
    {"press", "object, keys", "Presses keys: \"Ctrl+A\", \"Return\""},
    {"selectItem", "object, text",
     "Selects an item of a menu, list, tree, combo box or tab bar by its text"},
    {"check", "object", "Checks a box or button that can be checked"},
    {"uncheck", "object", "Takes the check away"},
    {"closeWindow", "object", "Closes the object's window"},
    {"clipboardText", "", "The text on the clipboard", false},
};

const Offered* offeredFunction(const QString& name) {
    const auto* const found =
        std::find_if(std::begin(offeredFunctions), std::end(offeredFunctions),
                     [&](const Offered& function) { return name == function.name; });
    return found == std::end(offeredFunctions) ? nullptr : found;
}

class GlobalFunction : public Shared {
public:
    explicit GlobalFunction(const QString& name) : m_name(name) {}
    /// The application's name, also where scripts write an underscore behind it.
    QString name() const { return m_name; }

private:
    QString m_name;
};

using GlobalFunctionHolder = Holder<GlobalFunction>;

[[noreturn]] void raise(ScriptContext::ErrorType type, const QString& text) {
    raiseScriptError(type, text);
    throw PythonErrorSet();
}

/// The methods of this name in the current application.
QList<const Method*> globalMethods(const QString& name) {
    ObjectModel* const model = Inspector::self()->model();
    if (!model)
        raise(ScriptContext::GeneralError, Inspector::noApplicationText);
    const Class* const globalClass = model->globalClass();
    QList<const Method*> methods =
        globalClass ? globalClass->methodsByName(name) : QList<const Method*>();
    if (methods.isEmpty())
        raise(ScriptContext::GeneralError, "The application has no function '" + name + "'");
    return methods;
}

/// Whether the function's first argument is an object: of functions that this table does not know,
/// it is one unless a method of the name takes a text there.
bool takesObject(const QString& name, const QList<const Method*>& methods) {
    if (const Offered* offered = offeredFunction(name))
        return offered->takesObject;
    return std::none_of(methods.begin(), methods.end(), [](const Method* method) {
        return method->signature().argumentCount() > 0 &&
               method->signature().argument(0).typeName() == QLatin1String("QString");
    });
}

/// The arguments with the object in place of its name.
PyRef withObject(PythonInterpreter& interpreter, PyObject* tuple) {
    const SharedPtr<ScriptArgument> first(
        new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(tuple, 0))));
    if (!isStringOrObjectName(first))
        return PyRef::borrow(tuple);
    SharedPtr<Object> object;
    // Whether the point that is used is free, the function looks itself.
    if (RunnerInterface* runner = interpreter.runner())
        object = runner->waitForObjectByName(serializeObjectName(first), false,
                                             TestSettingsType::s_waitForObjectTimeout);
    if (!object)
        raise(ScriptContext::LookupError, Inspector::self()->lastError());
    const Py_ssize_t count = PyTuple_GET_SIZE(tuple);
    PyRef resolved = checked(PyTuple_New(count));
    PyTuple_SET_ITEM(resolved.get(), 0, checked(ObjectHolder::wrap(object).release()).release());
    for (Py_ssize_t index = 1; index < count; ++index)
        PyTuple_SET_ITEM(resolved.get(), index, Py_NewRef(PyTuple_GET_ITEM(tuple, index)));
    return resolved;
}

PyObject* callGlobal(PyObject* self, PyObject* tuple, PyObject* named) {
    const QString name = GlobalFunctionHolder::unwrap(self)->name();
    return askApplication(name,
                          [&](PythonInterpreter& interpreter) {
                              refuseNamedArguments(name, named);
                              const QList<const Method*> methods = globalMethods(name);
                              const bool byName =
                                  PyTuple_GET_SIZE(tuple) > 0 && takesObject(name, methods);
                              const PyRef values =
                                  byName ? withObject(interpreter, tuple) : PyRef::borrow(tuple);
                              // Which of several methods is meant is the application's to say.
                              return callResult(methods.first()->invoke(
                                  nullptr, callArguments(name, values.get(), nullptr)));
                          })
        .release();
}

PyObject* functionRepr(PyObject* self) {
    return toPyString("<global function " + GlobalFunctionHolder::unwrap(self)->name() + ">")
        .release();
}

PyObject* functionName(PyObject* self, void*) {
    return toPyString(pythonName(GlobalFunctionHolder::unwrap(self)->name())).release();
}

PyObject* functionDoc(PyObject* self, void*) {
    const QString name = GlobalFunctionHolder::unwrap(self)->name();
    const Offered* const offered = offeredFunction(name);
    return toPyString(offered ? QStringLiteral("%1(%2)\n\n%3")
                                    .arg(name, QLatin1String(offered->parameters),
                                         QLatin1String(offered->description))
                              : "A function of the application")
        .release();
}

void publish(PythonInterpreter& interpreter, const QString& name) {
    const PyRef key = checked(toPyString(pythonName(name)).release());
    const int defined = PyDict_Contains(PyEval_GetBuiltins(), key.get());
    checked(defined);
    if (defined == 0)
        interpreter.defineGlobal(
            name, GlobalFunctionHolder::wrap(SharedPtr<GlobalFunction>(new GlobalFunction(name))));
}

}  // namespace

bool addGlobalFunctionType(PyObject* module) {
    static PyGetSetDef attributes[] = {{"__name__", functionName, nullptr, nullptr, nullptr},
                                       {"__doc__", functionDoc, nullptr, nullptr, nullptr},
                                       {nullptr, nullptr, nullptr, nullptr, nullptr}};
    const PyType_Slot slots[] = {{Py_tp_call, reinterpret_cast<void*>(callGlobal)},
                                 {Py_tp_repr, reinterpret_cast<void*>(functionRepr)},
                                 {Py_tp_getset, attributes},
                                 {0, nullptr}};
    PyTypeObject* const type = GlobalFunctionHolder::makeType("tamrix.GlobalFunction", slots);
    return type && PyModule_AddType(module, type) == 0;
}

void publishGlobalFunctions(PythonInterpreter& interpreter, ObjectModel* model) {
    for (const Offered& function : offeredFunctions)
        publish(interpreter, function.name);
    const Class* const globalClass = model ? model->globalClass() : nullptr;
    for (int index = 0; globalClass && index < globalClass->numMethods(); ++index)
        publish(interpreter, globalClass->method(index)->name());
}

}  // namespace Tamrix::PythonPlugin
