#include "plugins/python/nativeclasses.h"

#include "interpreter/generic/imageobjects.h"
#include "interpreter/language/nativeclasses.h"
#include "plugins/python/conversion.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/prelude.h"

namespace Tamrix::PythonPlugin {

namespace {

using Classes = NativeClasses<PyRef>;

/// A row of make_class() in prelude/library.py.
PyRef rowOf(const NativeMember& member) {
    PyRef function = makeFunction(member.function);
    if (member.kind == NativeMember::Kind::Method)
        // A descriptor through which a builtin function becomes a method.
        function = checked(PyInstanceMethod_New(function.get()));
    const PyRef setter = member.setter ? makeFunction(*member.setter) : PyRef::borrow(Py_None);
    return checked(Py_BuildValue("(NOOii)", toPyString(pythonName(member.name)).release(),
                                 function.get(), setter.get(), int{member.isProperty()},
                                 int{member.isStatic()}));
}

/// The Python class of the type, or of the next base type that has one.
PyTypeObject* pythonClassOf(void* typeId) {
    const PyRef* const made = Classes::self().find(typeId);
    return made ? reinterpret_cast<PyTypeObject*>(made->get()) : NativeHolder::s_type;
}

/// What the Python class of the type derives from; borrowed.
PyObject* baseOf(void* typeId, const NativeScriptType& type) {
    if (!type.super() && typeId == ImageScriptObject::staticTypeId())
        return ownName("library", "Pixels");
    return reinterpret_cast<PyObject*>(pythonClassOf(type.super()));
}

/// The view of an image's pixels that prelude/library.py makes.
int getBuffer(PyObject* self, Py_buffer* view, int flags) {
    view->obj = nullptr;
    if ((flags & PyBUF_WRITABLE) == PyBUF_WRITABLE) {
        PyErr_SetString(PyExc_BufferError, "An image's pixels are written with setPixel()");
        return -1;
    }
    const PyRef array = PyRef::steal(PyObject_CallMethod(self, "_array", nullptr));
    return array ? PyObject_GetBuffer(array.get(), view, flags) : -1;
}

/// The base of what is written in Python of the class Image: no other has a buffer.
void addPixelBuffer(PyObject* module) {
    PyType_Slot slots[] = {{Py_bf_getbuffer, slot(getBuffer)}, {0, nullptr}};
    PyType_Spec definition{
        "tamrix._PixelBuffer", sizeof(NativeHolder), 0,
        Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    const PyRef type = checked(
        PyType_FromSpecWithBases(&definition, reinterpret_cast<PyObject*>(NativeHolder::s_type)));
    checked(PyModule_AddObjectRef(module, "_PixelBuffer", type.get()));
}

}  // namespace

void addNativeBase(PyObject* module) {
    const PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>("Base of all classes of the test system")}, {0, nullptr}};
    NativeHolder::addType(module, "tamrix.NativeObject", slots,
                          Py_TPFLAGS_BASETYPE | Py_TPFLAGS_DISALLOW_INSTANTIATION);
    addPixelBuffer(module);
}

PyRef makeNativeClass(const ScriptContext& context, const QString& name, void* typeId,
                      const NativeScriptType& type) {
    const PyRef rows = checked(PyList_New(0));
    for (const NativeMember& member : nativeMembers(context, name, type))
        checked(PyList_Append(rows.get(), rowOf(member).get()));
    PyRef made = callOwn("library", "make_class", toPyString(name), baseOf(typeId, type),
                         makeFunction(nativeConstructor(context, name, type)), rows);
    Classes::self().add(typeId, type.super(), made);
    return made;
}

PyRef wrapNative(SharedPtr<NativeScriptObject> object) {
    PyTypeObject* const type = object ? pythonClassOf(object->typeId()) : NativeHolder::s_type;
    return NativeHolder::wrap(std::move(object), type);
}

}  // namespace Tamrix::PythonPlugin
