#include "plugins/python/bddmodule.h"

#include <QString>
#include <string>
#include <vector>

#include "interpreter/language/stepactions.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/python/bddcontext.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* s_pendingStepError = nullptr;

/// Runs `work` for the interpreter whose scripts run, on their thread. What it refuses is raised.
template <typename Work>
PyObject* withInterpreter(const char* function, Work work) {
    PythonInterpreter* const interpreter = PythonInterpreter::active();
    if (!interpreter || !interpreter->isScriptThread()) {
        raiseFailure(
            refusedCall(QStringLiteral("bdd.") + QLatin1String(function), interpreter != nullptr));
        return nullptr;
    }
    try {
        return work(*interpreter);
    } catch (const Gherkin::ExpressionError& error) {
        PyErr_SetString(PyExc_ValueError, error.what());
    } catch (const PythonErrorSet&) {
        // The script gets the exception that is set.
    }
    return nullptr;
}

std::string utf8Of(PyObject* text) {
    Py_ssize_t size = 0;
    const char* const bytes = PyUnicode_AsUTF8AndSize(text, &size);
    if (!bytes)
        throw PythonErrorSet();
    return {bytes, static_cast<std::size_t>(size)};
}

// What the module's own functions have checked comes here.

PyObject* addStep(PyObject*, PyObject* arguments) {
    return withInterpreter("step", [&](PythonInterpreter& interpreter) -> PyObject* {
        PyObject* expression = nullptr;
        int isRegular = 0;
        PyObject* function = nullptr;
        if (!PyArg_ParseTuple(arguments, "UpO", &expression, &isRegular, &function))
            return nullptr;
        const SharedPtr<ScriptArgument> value(new PythonArgument(PyRef::borrow(function)));
        interpreter.steps().addStep(utf8Of(expression), isRegular != 0, value);
        return Py_NewRef(function);
    });
}

PyObject* addHook(PyObject*, PyObject* arguments) {
    return withInterpreter("hook", [&](PythonInterpreter& interpreter) -> PyObject* {
        const char* name = nullptr;
        PyObject* tags = nullptr;
        PyObject* function = nullptr;
        if (!PyArg_ParseTuple(arguments, "sUO", &name, &tags, &function))
            return nullptr;
        const SharedPtr<ScriptArgument> value(new PythonArgument(PyRef::borrow(function)));
        if (const HookKind* const hook = hookKind(name))
            interpreter.steps().addHook(*hook, utf8Of(tags), value);
        return Py_NewRef(function);
    });
}

PyObject* addType(PyObject*, PyObject* arguments) {
    return withInterpreter("parameter_type", [&](PythonInterpreter& interpreter) -> PyObject* {
        PyObject* name = nullptr;
        PyObject* patterns = nullptr;
        PyObject* function = nullptr;
        if (!PyArg_ParseTuple(arguments, "UO!O", &name, &PyList_Type, &patterns, &function))
            return nullptr;
        std::vector<std::string> texts;
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(patterns); ++index)
            texts.push_back(utf8Of(PyList_GET_ITEM(patterns, index)));
        interpreter.steps().registry().addParameterType(
            utf8Of(name), std::move(texts),
            function == Py_None ? nullptr : new PythonArgument(PyRef::borrow(function)));
        return Py_NewRef(function);
    });
}

PyMethodDef s_functions[] = {{"_add_step", addStep, METH_VARARGS, nullptr},
                             {"_add_hook", addHook, METH_VARARGS, nullptr},
                             {"_add_type", addType, METH_VARARGS, nullptr},
                             {nullptr, nullptr, 0, nullptr}};

}  // namespace

bool addBddModule() {
    PyObject* const module = PyImport_AddModule("bdd");
    if (!module || PyModule_AddFunctions(module, s_functions) != 0 ||
        !runPrelude("bdd", PyModule_GetDict(module)))
        return false;
    s_pendingStepError =
        Py_XNewRef(PyDict_GetItemString(PyModule_GetDict(module), "PendingStepError"));
    return s_pendingStepError && addBddContext(module);
}

PyObject* pendingStepError() {
    return s_pendingStepError;
}

}  // namespace Tamrix::PythonPlugin
