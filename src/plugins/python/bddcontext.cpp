#include "plugins/python/bddcontext.h"

#include "interpreter/language/stepactions.h"
#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* s_context = nullptr;

StepScopes* scopes() {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    return interpreter && interpreter->isScriptThread() ? &interpreter->steps().scopes() : nullptr;
}

PyRef allNames(const StepScopes& known) {
    PyRef names = checked(PyDict_New());
    for (const auto& [name, value] : known.all())
        checked(PyDict_SetItem(names.get(), checkedReference(toPyString(name)).get(),
                               pythonValue(value).get()));
    return names;
}

PyObject* getAttribute(PyObject* self, PyObject* name) {
    const StepScopes* const known = scopes();
    const QString text = fromPyString(name);
    if (const SharedPtr<ScriptArgument> value = known ? known->find(text) : nullptr)
        return pythonValue(value).release();
    try {
        if (known && text == "__dict__")
            return allNames(*known).release();
    } catch (const PythonErrorSet&) {
        return nullptr;
    }
    return PyObject_GenericGetAttr(self, name);
}

int setAttribute(PyObject*, PyObject* name, PyObject* value) {
    StepScopes* const known = scopes();
    if (!known) {
        PyErr_SetString(PyExc_RuntimeError,
                        "the context belongs to the thread of the test script while it runs");
        return -1;
    }
    if (value) {
        known->set(fromPyString(name), new PythonArgument(PyRef::borrow(value)));
        return 0;
    }
    if (known->remove(fromPyString(name)))
        return 0;
    PyErr_SetObject(PyExc_AttributeError, name);
    return -1;
}

PyObject* representContext(PyObject*) {
    return PyUnicode_FromString("<context of steps>");
}

}  // namespace

bool addBddContext(PyObject* module) {
    PyType_Slot slots[] = {
        {Py_tp_getattro, reinterpret_cast<void*>(getAttribute)},
        {Py_tp_setattro, reinterpret_cast<void*>(setAttribute)},
        {Py_tp_repr, reinterpret_cast<void*>(representContext)},
        {Py_tp_doc, const_cast<char*>("What steps and hooks keep for each other, by scenario, "
                                      "feature and test case; with `table` and `text` of a step")},
        {0, nullptr}};
    PyType_Spec definition{"bdd.Context", sizeof(PyObject), 0,
                           Py_TPFLAGS_DEFAULT | Py_TPFLAGS_DISALLOW_INSTANTIATION, slots};
    const PyRef type = PyRef::steal(PyType_FromSpec(&definition));
    if (!type)
        return false;
    auto* const typeObject = reinterpret_cast<PyTypeObject*>(type.get());
    s_context = typeObject->tp_alloc(typeObject, 0);
    return s_context && PyModule_AddObjectRef(module, "context", s_context) == 0 &&
           PyModule_AddObjectRef(module, "Context", type.get()) == 0;
}

PyObject* bddContext() {
    return s_context;
}

}  // namespace Tamrix::PythonPlugin
