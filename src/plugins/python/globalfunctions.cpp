#include "plugins/python/globalfunctions.h"

#include "interpreter/objects/globalfunctions.h"
#include "plugins/python/conversion.h"
#include "plugins/python/holder.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

class GlobalFunction : public Shared {
public:
    explicit GlobalFunction(const QString& name) : m_name(name) {}
    /// The application's name, also where scripts write an underscore behind it.
    QString name() const { return m_name; }

private:
    QString m_name;
};

using GlobalFunctionHolder = Holder<GlobalFunction>;

PyObject* callGlobal(PyObject* self, PyObject* tuple, PyObject* named) {
    const QString name = GlobalFunctionHolder::unwrap(self)->name();
    return useObject([&] {
               return Tamrix::callGlobal(PythonInterpreter::active(), name,
                                         callArguments(tuple, named));
           })
        .release();
}

PyObject* functionRepr(PyObject* self) {
    return toPyString("<global function " + GlobalFunctionHolder::unwrap(self)->name() + ">")
        .release();
}

PyObject* functionName(PyObject* self, void*) {
    return toPyString(pythonName(GlobalFunctionHolder::unwrap(self)->name())).release();
}

PyObject* functionDoc(PyObject* self, void*) {
    return toPyString(globalFunctionHelp(GlobalFunctionHolder::unwrap(self)->name())).release();
}

}  // namespace

bool addGlobalFunctionType(PyObject* module) {
    static PyGetSetDef s_attributes[] = {{"__name__", functionName, nullptr, nullptr, nullptr},
                                         {"__doc__", functionDoc, nullptr, nullptr, nullptr},
                                         {nullptr, nullptr, nullptr, nullptr, nullptr}};
    const PyType_Slot slots[] = {{Py_tp_call, reinterpret_cast<void*>(callGlobal)},
                                 {Py_tp_repr, reinterpret_cast<void*>(functionRepr)},
                                 {Py_tp_getset, s_attributes},
                                 {0, nullptr}};
    PyTypeObject* const type = GlobalFunctionHolder::makeType("tamrix.GlobalFunction", slots);
    return type && PyModule_AddType(module, type) == 0;
}

void publishGlobalFunction(PythonInterpreter& interpreter, const QString& name) {
    const PyRef key = checkedReference(toPyString(pythonName(name)));
    const int defined = PyDict_Contains(PyEval_GetBuiltins(), key.get());
    checked(defined);
    if (defined == 0)
        interpreter.defineIn(QString(), name, GlobalFunctionHolder::wrap(new GlobalFunction(name)));
}

}  // namespace Tamrix::PythonPlugin
