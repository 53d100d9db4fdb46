#include "plugins/python/objecttype.h"

#include "interpreter/bridge/objectvalues.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/valueobject.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/objectcalls.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

template <typename Function>
void* slot(Function function) {
    return reinterpret_cast<void*>(function);
}

// Names

/// Names of the class's properties and methods, as scripts write them.
QStringList memberNames(const Class* objectClass) {
    QStringList names;
    for (int index = 0; objectClass && index < objectClass->numProperties(); ++index)
        names.append(pythonName(objectClass->property(index)->name()));
    for (int index = 0; objectClass && index < objectClass->numMethods(); ++index)
        names.append(pythonName(objectClass->method(index)->name()));
    names.removeDuplicates();
    return names;
}

/// The application's name for an attribute: keywords of Python have an underscore behind them.
QString memberName(const QString& attribute) {
    const QString withoutUnderscore = attribute.left(attribute.size() - 1);
    return attribute.endsWith('_') && pythonName(withoutUnderscore) == attribute ? withoutUnderscore
                                                                                 : attribute;
}

/// The object's class; an application that can't tell it any more raises its reason.
const Class* classOf(const SharedPtr<Object>& object) {
    Inspector::self()->setLastError(QString());
    const Class* const objectClass = object->objectClass();
    if (!objectClass && !Inspector::self()->lastError().isEmpty()) {
        raiseLastError();
        throw PythonErrorSet();
    }
    return objectClass;
}

bool hasMethod(const Class* objectClass, const QString& name) {
    return objectClass && !objectClass->methodsByName(name).isEmpty();
}

bool isPythonsOwn(const QString& attribute) {
    return attribute.startsWith("__");
}

[[noreturn]] void raiseAttributeError(const QString& text) {
    PyErr_SetString(PyExc_AttributeError, text.toUtf8().constData());
    throw PythonErrorSet();
}

/// Raises that there is no such member, with the nearest names that there are.
[[noreturn]] void raiseNoMember(const SharedPtr<Object>& object, const QString& attribute) {
    const PyRef difflib = checked(PyImport_ImportModule("difflib"));
    const PyRef name = checked(toPyString(attribute).release());
    const PyRef names = checked(toPyList(memberNames(object->objectClass())).release());
    const PyRef nearest = checked(
        PyObject_CallMethod(difflib.get(), "get_close_matches", "OO", name.get(), names.get()));
    QString text =
        QStringLiteral("'%1' has no property or method '%2'").arg(object->className(), attribute);
    QStringList quoted;
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(nearest.get()); ++index)
        quoted.append("'" + fromPyString(PyList_GET_ITEM(nearest.get(), index)) + "'");
    if (!quoted.isEmpty())
        text += "; the nearest: " + quoted.join(", ");
    raiseAttributeError(text);
}

// Attributes

PyObject* getAttribute(PyObject* self, PyObject* attribute) {
    const QString name = fromPyString(attribute);
    if (isPythonsOwn(name))
        return PyObject_GenericGetAttr(self, attribute);
    const SharedPtr<Object> object = ObjectHolder::unwrap(self);
    return askApplication(object->className() + '.' + name,
                          [&](PythonInterpreter&) {
                              const QString member = memberName(name);
                              const Class* const objectClass = classOf(object);
                              if (const Property* property =
                                      objectClass ? objectClass->property(member) : nullptr)
                                  return callResult(property->get(object));
                              if (hasMethod(objectClass, member))
                                  return bindMethod(object, member);
                              // One object may have more than its class.
                              if (const auto value = Property(member).get(object))
                                  return callResult(value);
                              raiseNoMember(object, name);
                          })
        .release();
}

PyRef writeProperty(const SharedPtr<Object>& object, const QString& name, PyObject* value) {
    const QString member = memberName(name);
    const Class* const objectClass = classOf(object);
    if (hasMethod(objectClass, member))
        raiseAttributeError(QStringLiteral("'%1' of '%2' is a method: call it instead")
                                .arg(name, object->className()));
    // One object may have more than its class.
    const Property own(member, QString(), true);
    const Property* property = objectClass ? objectClass->property(member) : nullptr;
    if (!property && own.get(object))
        property = &own;
    if (!property)
        raiseNoMember(object, name);
    if (!value || !property->isWritable())
        raiseAttributeError(
            QStringLiteral("The property '%1' of '%2' can't be %3")
                .arg(name, object->className(), QLatin1String(value ? "written" : "deleted")));
    const SharedPtr<ScriptArgument> argument(new PythonArgument(PyRef::borrow(value)));
    const SharedPtr<Object> written = objectOfValue(argument, property->typeName());
    if (!written) {
        PyErr_SetString(PyExc_TypeError, Inspector::self()->lastError().toUtf8().constData());
        throw PythonErrorSet();
    }
    if (!Inspector::self()->take(object->writeProperty(*property, written))) {
        raiseLastError();
        throw PythonErrorSet();
    }
    return PyRef::borrow(Py_None);
}

int setAttribute(PyObject* self, PyObject* attribute, PyObject* value) {
    const QString name = fromPyString(attribute);
    if (isPythonsOwn(name))
        return PyObject_GenericSetAttr(self, attribute, value);
    const SharedPtr<Object> object = ObjectHolder::unwrap(self);
    const PyRef done = askApplication(object->className() + '.' + name, [&](PythonInterpreter&) {
        return writeProperty(object, name, value);
    });
    return done ? 0 : -1;
}

PyObject* listAttributes(PyObject* self, PyObject*) {
    return askApplication(
               "dir",
               [&](PythonInterpreter&) {
                   return toPyList(memberNames(ObjectHolder::unwrap(self)->objectClass()));
               })
        .release();
}

// What else Python asks of objects

PyObject* objectRepr(PyObject* self) {
    const SharedPtr<Object> object = ObjectHolder::unwrap(self);
    return askApplication("repr",
                          [&](PythonInterpreter&) {
                              const auto* const value =
                                  dynamic_cast<const ValueObject*>(object.get());
                              const QString name = value ? value->text() : object->realName();
                              return toPyString(
                                  name.isEmpty() ? "<" + object->className() + " object>" : name);
                          })
        .release();
}

/// Two handles on one object are equal, and so are two equal values.
bool isSame(const SharedPtr<Object>& left, const SharedPtr<Object>& right) {
    const auto* const value = dynamic_cast<const ValueObject*>(left.get());
    const auto* const otherValue = dynamic_cast<const ValueObject*>(right.get());
    if (value || otherValue)
        return value && otherValue && left->className() == right->className() &&
               value->value() == otherValue->value();
    return left->handle() == right->handle();
}

PyObject* objectCompare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || !ObjectHolder::check(other))
        Py_RETURN_NOTIMPLEMENTED;
    const bool equal = isSame(ObjectHolder::unwrap(self), ObjectHolder::unwrap(other));
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

Py_hash_t objectHash(PyObject* self) {
    const auto hash = static_cast<Py_hash_t>(ObjectHolder::unwrap(self)->handle());
    return hash == -1 ? -2 : hash;  // -1 means an error
}

int objectTruth(PyObject* self) {
    return ObjectHolder::unwrap(self)->isNull() ? 0 : 1;
}

}  // namespace

bool addObjectType(PyObject* module) {
    static PyMethodDef methods[] = {
        {"__dir__", listAttributes, METH_NOARGS, "The object's properties and methods"},
        {nullptr, nullptr, 0, nullptr}};
    const PyType_Slot slots[] = {
        {Py_tp_getattro, slot(getAttribute)},
        {Py_tp_setattro, slot(setAttribute)},
        {Py_tp_methods, methods},
        {Py_tp_repr, slot(objectRepr)},
        {Py_tp_richcompare, slot(objectCompare)},
        {Py_tp_hash, slot(objectHash)},
        {Py_nb_bool, slot(objectTruth)},
        {Py_tp_doc, const_cast<char*>("An object of an application: its properties and methods "
                                      "are its attributes")},
        {0, nullptr}};
    PyTypeObject* const type = ObjectHolder::makeType("tamrix.Object", slots);
    return type && PyModule_AddType(module, type) == 0;
}

}  // namespace Tamrix::PythonPlugin
