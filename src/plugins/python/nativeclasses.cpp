#include "plugins/python/nativeclasses.h"

#include <QMap>
#include <algorithm>

#include "interpreter/generic/imageobjects.h"
#include "plugins/python/conversion.h"
#include "plugins/python/imageclass.h"
#include "plugins/python/nativefunction.h"

namespace Tamrix::PythonPlugin {

namespace {

struct NativeClass {
    void* super = nullptr;
    PyRef pythonClass;
};

/// By type identifier. The classes live for the process: their objects may outlive a test case.
QMap<void*, NativeClass>& classes() {
    static auto* const s_instance = new QMap<void*, NativeClass>;
    return *s_instance;
}

void setItem(const PyRef& dictionary, const QString& name, const PyRef& value) {
    if (!value)
        throw PythonErrorSet();
    const PyRef key = checked(toPyString(pythonName(name)).release());
    checked(PyDict_SetItem(dictionary.get(), key.get(), value.get()));
}

/// property(getter, setter); a null setter makes it read-only.
PyRef makeProperty(const PyRef& getter, const PyRef& setter) {
    return checked(PyObject_CallFunctionObjArgs(reinterpret_cast<PyObject*>(&PyProperty_Type),
                                                getter.get(), setter ? setter.get() : Py_None,
                                                nullptr));
}

/// A descriptor through which a builtin function becomes a method.
PyRef bound(const PyRef& function) {
    return checked(PyInstanceMethod_New(function.get()));
}

/// Setting an attribute of a class object. The classes that the test system defines itself take
/// nothing but their properties: a slip in a name is no new attribute.
int setClassAttribute(PyObject* pythonClass, PyObject* name, PyObject* value) {
    const auto all = classes();
    const bool isOwn = std::any_of(all.cbegin(), all.cend(), [&](const NativeClass& entry) {
        return entry.pythonClass.get() == pythonClass;
    });
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

/// The class's attributes: constructor, methods, static methods, properties.
PyRef classNamespace(const ScriptContext& context, const QString& name,
                     const NativeScriptType& type) {
    const PyRef attributes = checked(PyDict_New());
    setItem(attributes, "__module__", toPyString("tamrix"));
    // Objects of the class have its properties and no others.
    setItem(attributes, "__slots__", PyRef::steal(PyTuple_New(0)));
    setItem(attributes, "__new__",
            makeFunction({context, {name, {}, {}, {}, {}}, type.constructor()}));
    const auto methods = type.methods();
    for (auto it = methods.cbegin(); it != methods.cend(); ++it)
        setItem(attributes, it.key(),
                bound(makeFunction({context,
                                    {it.key(), name, it->requiredParameters, it->optionalParameters,
                                     it->description},
                                    it->function})));
    const auto staticMethods = type.staticMethods();
    for (auto it = staticMethods.cbegin(); it != staticMethods.cend(); ++it)
        setItem(attributes, it.key(),
                makeFunction({context,
                              {it.key(), name, it->requiredParameters, it->optionalParameters,
                               it->description},
                              it->function}));
    const auto properties = type.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        setItem(
            attributes, it.key(),
            makeProperty(makeFunction({context, signature, it->getter}),
                         it->setter ? makeFunction({context, signature, it->setter}) : PyRef()));
    }
    return attributes;
}

/// The class of the class: static properties are properties of the class object.
PyRef makeMetaclass(const ScriptContext& context, const QString& name, const NativeScriptType& type,
                    PyTypeObject* base) {
    const PyRef attributes = checked(PyDict_New());
    setItem(attributes, "__module__", toPyString("tamrix"));
    const auto properties = type.staticProperties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        const auto accessor = [&](NativeScriptType::StaticFunction function) {
            return makeFunction(
                {context, signature, function, NativeFunction::Kind::StaticAccessor});
        };
        setItem(attributes, it.key(),
                makeProperty(accessor(it->getter), it->setter ? accessor(it->setter) : PyRef()));
    }
    const PyRef metaName = checked(toPyString(name + "Type").release());
    const PyRef metaBase = checked(
        PyRef::borrow(base == &PyType_Type ? baseMetaclass() : reinterpret_cast<PyObject*>(base))
            .release());
    return checked(PyObject_CallFunction(reinterpret_cast<PyObject*>(&PyType_Type), "O(O)O",
                                         metaName.get(), metaBase.get(), attributes.get()));
}

/// The Python class of the type, or of the next base type that has one.
PyTypeObject* pythonClassOf(void* typeId) {
    while (typeId) {
        const auto found = classes().constFind(typeId);
        if (found == classes().constEnd())
            break;
        if (found->pythonClass)
            return reinterpret_cast<PyTypeObject*>(found->pythonClass.get());
        typeId = found->super;
    }
    return NativeHolder::s_type;
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
        NativeClass& entry = classes()[typeId];
        entry.super = type.super();
        auto* const base = reinterpret_cast<PyObject*>(baseOf(typeId, type));
        if (!base)
            return {};
        const PyRef metaclass = makeMetaclass(context, name, type, Py_TYPE(base));
        const PyRef attributes = classNamespace(context, name, type);
        const PyRef pyName = checked(toPyString(name).release());
        entry.pythonClass = checked(
            PyObject_CallFunction(metaclass.get(), "O(O)O", pyName.get(), base, attributes.get()));
        return entry.pythonClass;
    } catch (const PythonErrorSet&) {
        return {};
    }
}

PyRef wrapNative(SharedPtr<NativeScriptObject> object) {
    PyTypeObject* const type = object ? pythonClassOf(object->typeId()) : NativeHolder::s_type;
    return NativeHolder::wrap(std::move(object), type);
}

bool isNativeTypeDerivedFrom(void* typeId, void* wanted) {
    while (typeId && typeId != wanted)
        typeId = classes().value(typeId).super;
    return typeId && typeId == wanted;
}

}  // namespace Tamrix::PythonPlugin
