#include "plugins/python/nativeclasses.h"

#include <algorithm>

#include "interpreter/generic/imageobjects.h"
#include "interpreter/language/nativeclasses.h"
#include "plugins/python/conversion.h"
#include "plugins/python/imageclass.h"
#include "plugins/python/nativefunction.h"

namespace Tamrix::PythonPlugin {

namespace {

using Classes = NativeClasses<PyRef>;

void setItem(const PyRef& dictionary, const QString& name, const PyRef& value) {
    if (!value)
        throw PythonErrorSet();
    const PyRef key = checkedReference(toPyString(pythonName(name)));
    checked(PyDict_SetItem(dictionary.get(), key.get(), value.get()));
}

/// property(getter, setter); a null setter makes it read-only.
PyRef makeProperty(const PyRef& getter, const PyRef& setter) {
    return checked(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(&PyProperty_Type),
                                                getter.get(), setter ? setter.get() : Py_None,
                                                nullptr));
}

/// What a class, or for a static property its class, has under the member's name.
PyRef attributeOf(const NativeMember& member) {
    const PyRef function = checkedReference(makeFunction(member.function));
    switch (member.kind) {
        case NativeMember::Kind::Method:
            // A descriptor through which a builtin function becomes a method.
            return checked(PyInstanceMethod_New(function.get()));
        case NativeMember::Kind::StaticMethod:
            break;
        case NativeMember::Kind::Property:
        case NativeMember::Kind::StaticProperty:
            return makeProperty(
                function, member.setter ? checkedReference(makeFunction(*member.setter)) : PyRef());
    }
    return function;
}

/// Setting an attribute of a class object. The classes that the test system defines itself take
/// nothing but their properties: a slip in a name is no new attribute.
int setClassAttribute(PyObject* pythonClass, PyObject* name, PyObject* value) {
    const QHash<void*, PyRef>& all = Classes::self().all();
    const bool isOwn = std::any_of(all.cbegin(), all.cend(),
                                   [&](const PyRef& each) { return each.get() == pythonClass; });
    if (isOwn && !PyObject_HasAttr(reinterpret_cast<PyObject*>(Py_TYPE(pythonClass)), name)) {
        PyErr_Format(PyExc_AttributeError, "%s has no property '%U'",
                     reinterpret_cast<PyTypeObject*>(pythonClass)->tp_name, name);
        return -1;
    }
    return PyType_Type.tp_setattro(pythonClass, name, value);
}

/// The class of the class objects, base of those that have static properties.
PyObject* baseMetaclass() {
    static PyObject* const s_metaclass = [] {
        PyType_Slot slots[] = {{Py_tp_setattro, reinterpret_cast<void*>(setClassAttribute)},
                               {0, nullptr}};
        PyType_Spec definition{"tamrix.NativeClass", 0, 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE,
                               slots};
        return PyType_FromSpecWithBases(&definition, reinterpret_cast<PyObject*>(&PyType_Type));
    }();
    return s_metaclass;
}

/// The attributes of the class or, with `isOfMetaclass`, of its class, which has static properties.
PyRef classNamespace(const std::vector<NativeMember>& members, bool isOfMetaclass) {
    const PyRef attributes = checked(PyDict_New());
    setItem(attributes, "__module__", toPyString("tamrix"));
    for (const NativeMember& member : members) {
        if ((member.kind == NativeMember::Kind::StaticProperty) == isOfMetaclass)
            setItem(attributes, member.name, attributeOf(member));
    }
    return attributes;
}

/// A class from name, base and attributes, of the class that is given.
PyRef makeClass(PyObject* metaclass, const QString& name, PyObject* base, const PyRef& attributes) {
    const PyRef text = checkedReference(toPyString(name));
    return checked(PyObject_CallFunction(metaclass, "O(O)O", text.get(), base, attributes.get()));
}

/// The Python class of the type, or of the next base type that has one.
PyTypeObject* pythonClassOf(void* typeId) {
    const PyRef* const made = Classes::self().find(typeId);
    return made ? reinterpret_cast<PyTypeObject*>(made->get()) : NativeHolder::s_type;
}

/// What the Python class of the type derives from; borrowed. Null with the error indicator set.
PyTypeObject* baseOf(void* typeId, const NativeScriptType& type) {
    if (type.super())
        return pythonClassOf(type.super());
    return typeId == ImageScriptObject::staticTypeId() ? imageBase() : NativeHolder::s_type;
}

}  // namespace

bool addNativeBase(PyObject* module) {
    const PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("Base of all classes of the test system")}, {0, nullptr}};
    PyTypeObject* const type = NativeHolder::makeType(
        "tamrix.NativeObject", slots, Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION);
    return type && PyModule_AddType(module, type) == 0;
}

PyRef makeNativeClass(const ScriptContext& context, const QString& name, void* typeId,
                      const NativeScriptType& type) {
    try {
        auto* const base = reinterpret_cast<PyObject*>(baseOf(typeId, type));
        if (!base)
            return {};
        const std::vector<NativeMember> members = nativeMembers(context, name, type);
        auto* const ordinaryClass = reinterpret_cast<PyObject*>(&PyType_Type);
        auto* const metaBase = reinterpret_cast<PyObject*>(Py_TYPE(base));
        const PyRef metaclass = makeClass(ordinaryClass, name + "Type",
                                          metaBase == ordinaryClass ? baseMetaclass() : metaBase,
                                          classNamespace(members, true));
        const PyRef attributes = classNamespace(members, false);
        // Objects of the class have its properties and no others.
        setItem(attributes, "__slots__", PyRef::steal(PyTuple_New(0)));
        setItem(attributes, "__new__", makeFunction(nativeConstructor(context, name, type)));
        PyRef made = makeClass(metaclass.get(), name, base, attributes);
        Classes::self().add(typeId, type.super(), made);
        return made;
    } catch (const PythonErrorSet&) {
        return {};
    }
}

PyRef wrapNative(SharedPtr<NativeScriptObject> object) {
    PyTypeObject* const type = object ? pythonClassOf(object->typeId()) : NativeHolder::s_type;
    return NativeHolder::wrap(std::move(object), type);
}

}  // namespace Tamrix::PythonPlugin
