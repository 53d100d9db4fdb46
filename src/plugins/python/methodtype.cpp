#include "plugins/python/methodtype.h"

#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* callMethod(PyObject* self, PyObject* tuple, PyObject* named) {
    const SharedPtr<BoundMethod> method = MethodHolder::unwrap(self);
    return useObject([&] {
               return Tamrix::callMethod(PythonInterpreter::active(), method,
                                         callArguments(tuple, named));
           })
        .release();
}

PyObject* methodRepr(PyObject* self) {
    return toPyString(MethodHolder::unwrap(self)->text()).release();
}

}  // namespace

bool addMethodType(PyObject* module) {
    const PyType_Slot slots[] = {
        {Py_tp_call, reinterpret_cast<void*>(callMethod)},
        {Py_tp_repr, reinterpret_cast<void*>(methodRepr)},
        {Py_tp_doc, const_cast<char*>("A method of an object of an application")},
        {0, nullptr}};
    PyTypeObject* const type = MethodHolder::makeType("tamrix.Method", slots);
    return type && PyModule_AddType(module, type) == 0;
}

}  // namespace Tamrix::PythonPlugin
