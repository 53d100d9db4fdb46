#include "plugins/python/objectcalls.h"

#include "interpreter/bridge/objectvalues.h"
#include "platform/objectmodel/objectclass.h"
#include "plugins/python/conversion.h"
#include "plugins/python/holder.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

/// A method of an object, by name: what the class knows under it is asked at each call.
class BoundMethod : public Shared {
public:
    BoundMethod(SharedPtr<Object> object, const QString& name)
        : m_object(std::move(object)), m_name(name) {}

    const SharedPtr<Object>& object() const { return m_object; }
    QString name() const { return m_name; }
    QString displayName() const { return m_object->className() + '.' + m_name; }

private:
    SharedPtr<Object> m_object;
    QString m_name;
};

using MethodHolder = Holder<BoundMethod>;

[[noreturn]] void raiseTypeError(const QString& text) {
    PyErr_SetString(PyExc_TypeError, text.toUtf8().constData());
    throw PythonErrorSet();
}

/// Whether a Python value is what a type of the application stands for without conversion.
bool isOfType(PyObject* value, const QString& typeName) {
    if (PyUnicode_Check(value))
        return typeName == "QString";
    if (PyBool_Check(value))
        return typeName == "bool";
    if (PyFloat_Check(value))
        return typeName == "double" || typeName == "float" || typeName == "qreal";
    if (PyLong_Check(value))
        return typeName == "int" || typeName == "uint" || typeName == "qlonglong";
    return typeName != "QString" && typeName != "bool" && typeName != "double" && typeName != "int";
}

bool fits(const Signature& signature, PyObject* tuple) {
    for (int index = 0; index < signature.argumentCount(); ++index) {
        if (!isOfType(PyTuple_GET_ITEM(tuple, index), signature.argument(index).typeName()))
            return false;
    }
    return true;
}

/// The method that is meant by the arguments; a TypeError that lists what there is when none takes
/// as many.
const Method* chooseOverload(const BoundMethod& bound, PyObject* tuple) {
    const Class* const objectClass = bound.object()->objectClass();
    const QList<const Method*> methods =
        objectClass ? objectClass->methodsByName(bound.name()) : QList<const Method*>();
    const auto count = static_cast<int>(PyTuple_GET_SIZE(tuple));
    const Method* chosen = nullptr;
    QStringList known;
    for (const Method* method : methods) {
        const Signature& signature = method->signature();
        known.append("(" + joinArguments(signature, ", ") + ")");
        if (signature.argumentCount() != count)
            continue;
        if (fits(signature, tuple))
            return method;
        if (!chosen)
            chosen = method;
    }
    if (!chosen)
        raiseTypeError(QStringLiteral("%1() takes %2, not %3 arguments")
                           .arg(bound.displayName(), known.join(" or "), QString::number(count)));
    return chosen;
}

PyObject* callMethod(PyObject* self, PyObject* tuple, PyObject* named) {
    const SharedPtr<BoundMethod> bound = MethodHolder::unwrap(self);
    return askApplication(
               bound->displayName(),
               [&](PythonInterpreter& interpreter) {
                   refuseNamedArguments(bound->displayName(), named);
                   const Method* const method = chooseOverload(*bound, tuple);
                   const ObjectList arguments = callArguments(bound->displayName(), tuple, method);
                   if (!method->deprecationMessage().isEmpty())
                       logDeprecationWarning(&interpreter, method,
                                             "(" + joinArguments(method->signature(), ", ") + ")");
                   return callResult(
                       Inspector::self()->take(method->invoke(bound->object(), arguments)));
               })
        .release();
}

PyObject* methodRepr(PyObject* self) {
    const SharedPtr<BoundMethod> bound = MethodHolder::unwrap(self);
    return toPyString("<method " + bound->displayName() + " of " + bound->object()->realName() +
                      ">")
        .release();
}

}  // namespace

ObjectList callArguments(const QString& function, PyObject* tuple, const Method* method) {
    ObjectList arguments;
    for (Py_ssize_t index = 0; index < PyTuple_GET_SIZE(tuple); ++index) {
        const auto place = static_cast<int>(index);
        const bool typed = method && place < method->signature().argumentCount();
        const SharedPtr<ScriptArgument> value(
            new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(tuple, index))));
        SharedPtr<Object> argument = objectOfValue(
            value, typed ? method->signature().argument(place).typeName() : QString());
        if (!argument)
            raiseTypeError(
                QStringLiteral("%1() argument %2: %3")
                    .arg(function, QString::number(place + 1), Inspector::self()->lastError()));
        arguments.push_back(std::move(argument));
    }
    return arguments;
}

PyRef callResult(const SharedPtr<Object>& result) {
    if (!result) {
        raiseLastError();
        throw PythonErrorSet();
    }
    const SharedPtr<ScriptArgument> value =
        valueOfObject(&PythonInterpreter::active()->context(), result);
    return PyRef::borrow(static_cast<const PythonArgument*>(value.get())->object());
}

void refuseNamedArguments(const QString& function, PyObject* named) {
    if (named && PyDict_GET_SIZE(named) > 0)
        raiseTypeError(function + "() takes no named arguments");
}

bool addMethodType(PyObject* module) {
    const PyType_Slot slots[] = {
        {Py_tp_call, reinterpret_cast<void*>(callMethod)},
        {Py_tp_repr, reinterpret_cast<void*>(methodRepr)},
        {Py_tp_doc, const_cast<char*>("A method of an object of an application")},
        {0, nullptr}};
    PyTypeObject* const type = MethodHolder::makeType("tamrix.Method", slots);
    return type && PyModule_AddType(module, type) == 0;
}

PyRef bindMethod(SharedPtr<Object> object, const QString& name) {
    return checked(
        MethodHolder::wrap(SharedPtr<BoundMethod>(new BoundMethod(std::move(object), name)))
            .release());
}

}  // namespace Tamrix::PythonPlugin
