#include "plugins/python/globalfunctions.h"

#include <algorithm>

#include "interpreter/bridge/actionrecord.h"
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
#include "plugins/python/offeredfunctions.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

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
    if (const OfferedFunction* offered = offeredFunction(name))
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

/// What the application's function is called with. Only of those that all agents offer the names of
/// parameters are known.
PyRef givenArguments(const QString& name, PyObject* tuple, PyObject* named) {
    if (const OfferedFunction* offered = offeredFunction(name))
        return orderedArguments(*offered, tuple, named);
    refuseNamedArguments(name, named);
    return PyRef::borrow(tuple);
}

/// What the results tell of the call: its arguments as the script gave them.
void noteArguments(ActionRecord& record, PyObject* tuple) {
    ScriptArgument::List arguments;
    for (Py_ssize_t index = 0; record.isWanted() && index < PyTuple_GET_SIZE(tuple); ++index)
        arguments.push_back(new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(tuple, index))));
    record.setArguments(arguments);
}

PyObject* callGlobal(PyObject* self, PyObject* tuple, PyObject* named) {
    const QString name = GlobalFunctionHolder::unwrap(self)->name();
    return askApplication(name,
                          [&](PythonInterpreter& interpreter) {
                              ActionRecord record(&interpreter.context(), name);
                              PyRef values = givenArguments(name, tuple, named);
                              noteArguments(record, values.get());
                              const QList<const Method*> methods = globalMethods(name);
                              if (PyTuple_GET_SIZE(values.get()) > 0 && takesObject(name, methods))
                                  values = withObject(interpreter, values.get());
                              // Which of several methods is meant is the application's to say.
                              return callResult(Inspector::self()->take(methods.first()->invoke(
                                  nullptr, callArguments(name, values.get(), nullptr))));
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
    const OfferedFunction* const offered = offeredFunction(name);
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
    for (const QString& name : offeredFunctionNames())
        publish(interpreter, name);
    const Class* const globalClass = model ? model->globalClass() : nullptr;
    for (int index = 0; globalClass && index < globalClass->numMethods(); ++index)
        publish(interpreter, globalClass->method(index)->name());
}

}  // namespace Tamrix::PythonPlugin
