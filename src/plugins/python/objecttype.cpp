#include "plugins/python/objecttype.h"

#include "interpreter/objects/objectidentity.h"
#include "plugins/python/conversion.h"
#include "plugins/python/methodtype.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/pythonargument.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

// Attributes

/// The application's name for an attribute: keywords of Python have an underscore behind them.
QString memberName(const QString& attribute) {
    if (!attribute.endsWith('_'))
        return attribute;
    const QString keyword = attribute.chopped(1);
    return pythonName(keyword) == attribute ? keyword : attribute;
}

bool isPythonsOwn(const QString& attribute) {
    return attribute.startsWith("__");
}

PyObject* getAttribute(PyObject* self, PyObject* attribute) {
    const QString name = fromPyString(attribute);
    if (isPythonsOwn(name))
        return PyObject_GenericGetAttr(self, attribute);
    const SharedPtr<Object> object = ObjectHolder::unwrap(self);
    return useObject(
               [&] { return getMember(PythonInterpreter::active(), object, memberName(name)); })
        .release();
}

int setAttribute(PyObject* self, PyObject* attribute, PyObject* value) {
    const QString name = fromPyString(attribute);
    if (isPythonsOwn(name))
        return PyObject_GenericSetAttr(self, attribute, value);
    const SharedPtr<Object> object = ObjectHolder::unwrap(self);
    const SharedPtr<ScriptArgument> written(value ? new PythonArgument(PyRef::borrow(value))
                                                  : nullptr);
    const PyRef done = useObject([&] {
        return setMember(PythonInterpreter::active(), object, memberName(name), written).map([] {
            return QString();
        });
    });
    return done ? 0 : -1;
}

PyObject* listAttributes(PyObject* self, PyObject*) {
    return useObject(
               [&] { return listMembers(PythonInterpreter::active(), ObjectHolder::unwrap(self)); })
        .release();
}

// What else Python asks of objects

PyObject* objectRepr(PyObject* self) {
    return useObject([&] {
               return writtenObject(PythonInterpreter::active(), ObjectHolder::unwrap(self));
           })
        .release();
}

PyObject* objectCompare(PyObject* self, PyObject* other, int operation) {
    if ((operation != Py_EQ && operation != Py_NE) || !ObjectHolder::check(other))
        Py_RETURN_NOTIMPLEMENTED;
    const bool equal = isSameObject(ObjectHolder::unwrap(self), ObjectHolder::unwrap(other));
    return PyBool_FromLong(equal == (operation == Py_EQ));
}

Py_hash_t objectHash(PyObject* self) {
    const auto hash = static_cast<Py_hash_t>(Tamrix::objectHash(ObjectHolder::unwrap(self)));
    return hash == -1 ? -2 : hash;  // -1 means an error
}

int objectTruth(PyObject* self) {
    return isTrueObject(ObjectHolder::unwrap(self)) ? 1 : 0;
}

}  // namespace

void addObjectType(PyObject* module) {
    static PyMethodDef s_methods[] = {
        {"__dir__", listAttributes, METH_NOARGS, "The object's properties and methods"},
        {nullptr, nullptr, 0, nullptr}};
    const PyType_Slot slots[] = {
        {Py_tp_getattro, slot(getAttribute)},
        {Py_tp_setattro, slot(setAttribute)},
        {Py_tp_methods, s_methods},
        {Py_tp_repr, slot(objectRepr)},
        {Py_tp_richcompare, slot(objectCompare)},
        {Py_tp_hash, slot(objectHash)},
        {Py_nb_bool, slot(objectTruth)},
        {Py_tp_doc, const_cast<char*>("An object of an application: its properties and methods "
                                      "are its attributes")},
        {0, nullptr}};
    ObjectHolder::addType(module, "tamrix.Object", slots);
}

}  // namespace Tamrix::PythonPlugin
