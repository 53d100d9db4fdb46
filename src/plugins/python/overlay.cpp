#include "plugins/python/overlay.h"

#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

struct OverlayObject {
    PyObject_HEAD PyObject* members;
    PyObject* hidden;
};

PyTypeObject* s_type = nullptr;
PyObject* s_overlays = nullptr;

OverlayObject* asOverlay(PyObject* self) {
    return reinterpret_cast<OverlayObject*>(self);
}

PyObject* hiddenBy(PyObject* self) {
    return asOverlay(self)->hidden;
}

template <typename Function>
void* slot(Function function) {
    return reinterpret_cast<void*>(function);
}

void deallocate(PyObject* self) {
    PyTypeObject* const own = Py_TYPE(self);
    Py_CLEAR(asOverlay(self)->members);
    Py_CLEAR(asOverlay(self)->hidden);
    own->tp_free(self);
    Py_DECREF(own);
}

PyObject* getAttribute(PyObject* self, PyObject* name) {
    if (PyObject* const member = PyDict_GetItemWithError(asOverlay(self)->members, name))
        return Py_NewRef(member);
    if (PyErr_Occurred())
        return nullptr;
    // How it stands for what lies below is the overlay's own affair.
    const QString text = fromPyString(name);
    if (text == "__mro_entries__" || text == "__dir__")
        return PyObject_GenericGetAttr(self, name);
    return PyObject_GetAttr(hiddenBy(self), name);
}

int setAttribute(PyObject* self, PyObject* name, PyObject* value) {
    PyObject* const members = asOverlay(self)->members;
    return value ? PyDict_SetItem(members, name, value) : PyDict_DelItem(members, name);
}

PyObject* call(PyObject* self, PyObject* arguments, PyObject* named) {
    return PyObject_Call(hiddenBy(self), arguments, named);
}

PyObject* repr(PyObject* self) {
    return PyObject_Repr(hiddenBy(self));
}

Py_hash_t hash(PyObject* self) {
    return PyObject_Hash(hiddenBy(self));
}

PyObject* compare(PyObject* self, PyObject* other, int operation) {
    PyObject* const right = Py_IS_TYPE(other, s_type) ? hiddenBy(other) : other;
    return PyObject_RichCompare(hiddenBy(self), right, operation);
}

PyObject* unionOf(PyObject* left, PyObject* right) {
    return PyNumber_Or(Py_IS_TYPE(left, s_type) ? hiddenBy(left) : left,
                       Py_IS_TYPE(right, s_type) ? hiddenBy(right) : right);
}

PyObject* baseClasses(PyObject* self, PyObject*) {
    return PyTuple_Pack(1, hiddenBy(self));
}

PyObject* truth(int value) {
    return value < 0 ? nullptr : PyBool_FromLong(value);
}

PyObject* checkInstance(PyObject* self, PyObject* instance) {
    return truth(PyObject_IsInstance(instance, hiddenBy(self)));
}

PyObject* checkSubclass(PyObject* self, PyObject* derived) {
    return truth(PyObject_IsSubclass(derived, hiddenBy(self)));
}

PyObject* listAttributes(PyObject* self, PyObject*) {
    PyRef names = PyRef::steal(PyDict_Keys(asOverlay(self)->members));
    const PyRef others = PyRef::steal(PyObject_Dir(hiddenBy(self)));
    if (!names || !others)
        return nullptr;
    return PySequence_Concat(names.get(), others.get());
}

bool makeOverlayType() {
    static PyMethodDef s_methods[] = {
        {"__mro_entries__", baseClasses, METH_O, "What derived classes derive from"},
        {"__instancecheck__", checkInstance, METH_O, "isinstance()"},
        {"__subclasscheck__", checkSubclass, METH_O, "issubclass()"},
        {"__dir__", listAttributes, METH_NOARGS, "dir()"},
        {nullptr, nullptr, 0, nullptr}};
    PyType_Slot slots[] = {{Py_tp_dealloc, slot(deallocate)},
                           {Py_tp_getattro, slot(getAttribute)},
                           {Py_tp_setattro, slot(setAttribute)},
                           {Py_tp_call, slot(call)},
                           {Py_tp_repr, slot(repr)},
                           {Py_tp_hash, slot(hash)},
                           {Py_tp_richcompare, slot(compare)},
                           {Py_nb_or, slot(unionOf)},
                           {Py_tp_methods, s_methods},
                           {0, nullptr}};
    PyType_Spec definition{"tamrix.Namespace", sizeof(OverlayObject), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    s_type = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&definition));
    return s_type != nullptr;
}

/// Gives a module the overlays before its code runs, when its file is the suite's.
PyObject* prepareModule(PyObject*, PyObject* module) {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (!interpreter)
        Py_RETURN_NONE;
    try {
        const PyRef file = checked(PyObject_GetAttrString(module, "__file__"));
        if (PyUnicode_Check(file.get()) && interpreter->files().isScript(file.get()))
            checked(PyDict_Update(PyModule_GetDict(module), s_overlays));
    } catch (const PythonErrorSet&) {
        return nullptr;
    }
    Py_RETURN_NONE;
}

/// Every module that comes from a source file passes here before it runs. What tells the suite's
/// files from others is imported first: it can't be told while it is being imported.
bool hookIntoImport() {
    static PyMethodDef s_prepare = {"prepareModule", prepareModule, METH_O, nullptr};
    static constexpr const char* hook = R"py(
import sysconfig
sysconfig.get_paths()
from importlib.machinery import SourceFileLoader
def hook(prepare, run=SourceFileLoader.exec_module):
    def exec_module(self, module):
        prepare(module)
        run(self, module)
    SourceFileLoader.exec_module = exec_module
hook(prepare)
)py";
    const PyRef function = PyRef::steal(PyCFunction_New(&s_prepare, nullptr));
    const PyRef names = PyRef::steal(PyDict_New());
    if (!function || !names || PyDict_SetItemString(names.get(), "prepare", function.get()) < 0 ||
        PyDict_SetItemString(names.get(), "__builtins__", PyEval_GetBuiltins()) < 0)
        return false;
    return bool(PyRef::steal(PyRun_String(hook, Py_file_input, names.get(), names.get())));
}

}  // namespace

bool addOverlays(PyObject* module) {
    s_overlays = PyDict_New();
    return s_overlays && makeOverlayType() && PyModule_AddType(module, s_type) == 0 &&
           hookIntoImport();
}

PyObject* overlays() {
    return s_overlays;
}

PyRef overlayFor(const QString& name, PyObject* hidden) {
    const PyRef key = toPyString(name);
    if (!key)
        return {};
    if (PyObject* const known = PyDict_GetItemWithError(s_overlays, key.get()))
        return PyRef::borrow(known);
    PyRef made = PyRef::steal(PyErr_Occurred() ? nullptr : s_type->tp_alloc(s_type, 0));
    if (!made)
        return {};
    asOverlay(made.get())->members = PyDict_New();
    asOverlay(made.get())->hidden = Py_NewRef(hidden);
    if (!asOverlay(made.get())->members || PyDict_SetItem(s_overlays, key.get(), made.get()) < 0)
        return {};
    return made;
}

void dropOverlays() {
    PyDict_Clear(s_overlays);
}

}  // namespace Tamrix::PythonPlugin
