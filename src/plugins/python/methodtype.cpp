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

void addMethodType(PyObject* module) {
    const PyType_Slot slots[] = {
        {Py_tp_call, slot(callMethod)},
        {Py_tp_repr, slot(methodRepr)},
        {Py_tp_doc, const_cast<char*>("A method of an object of an application")},
        {0, nullptr}};
    MethodHolder::addType(module, "tamrix.Method", slots);
}

}  // namespace Tamrix::PythonPlugin
