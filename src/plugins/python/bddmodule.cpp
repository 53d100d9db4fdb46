#include "plugins/python/bddmodule.h"

#include <QString>
#include <string>
#include <vector>

#include "interpreter/language/stepactions.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/python/bddcontext.h"
#include "plugins/python/conversion.h"
#include "plugins/python/frames.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

namespace {

PyObject* s_pendingStepError = nullptr;

/// The flags of a compiled regular expression that the library knows, with what stands for them.
constexpr struct {
    long flag;
    char letter;
} regularFlags[] = {{2, 'i'}, {8, 'm'}, {16, 's'}};
/// Those that change nothing: a text is always Unicode.
constexpr long neutralFlags = 32;

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

/// Where a function is defined, or the running line for what is none.
Gherkin::ScriptLocation locationOf(PythonInterpreter& interpreter, PyObject* function) {
    PyObject* const plain = PyMethod_Check(function) ? PyMethod_GET_FUNCTION(function) : function;
    if (PyFunction_Check(plain)) {
        auto* const code = reinterpret_cast<PyCodeObject*>(PyFunction_GET_CODE(plain));
        return {interpreter.files().path(code->co_filename).toStdString(), code->co_firstlineno};
    }
    const PyRef frame = innermostFrame(interpreter.files());
    if (!frame)
        return {};
    return {interpreter.files().path(frameFileName(frame.get()).get()).toStdString(),
            frameLine(frame.get())};
}

std::string utf8Of(PyObject* text) {
    Py_ssize_t size = 0;
    const char* const bytes = PyUnicode_AsUTF8AndSize(text, &size);
    if (!bytes)
        throw PythonErrorSet();
    return {bytes, static_cast<std::size_t>(size)};
}

[[noreturn]] void raiseTypeError(const char* text) {
    PyErr_SetString(PyExc_TypeError, text);
    throw PythonErrorSet();
}

/// The pattern of a compiled regular expression, with its flags in front.
std::string patternOf(PyObject* expression) {
    const PyRef pattern = PyRef::steal(PyObject_GetAttrString(expression, "pattern"));
    const PyRef flags = PyRef::steal(PyObject_GetAttrString(expression, "flags"));
    if (!pattern || !flags || !PyUnicode_Check(pattern.get()) || !PyLong_Check(flags.get())) {
        PyErr_Clear();
        raiseTypeError("a step is given as a text or as a compiled regular expression of texts");
    }
    long rest = PyLong_AsLong(flags.get()) & ~neutralFlags;
    std::string letters;
    for (const auto& row : regularFlags) {
        if (rest & row.flag)
            letters += row.letter;
        rest &= ~row.flag;
    }
    if (rest != 0)
        raiseTypeError("steps know the flags re.I, re.M and re.S of regular expressions only");
    const std::string text = utf8Of(pattern.get());
    // A pattern that names its flags itself has them in both.
    const bool namesThem = text.starts_with("(?") && text.find_first_of("imsu") == 2;
    return letters.empty() || namesThem ? text : "(?" + letters + ")" + text;
}

PyObject* checkCallable(PyObject* function) {
    if (!PyCallable_Check(function))
        raiseTypeError("what is registered has to be a function");
    return function;
}

// Steps. The decorator is a function bound to the expression.

PyObject* registerStep(PyObject* expression, PyObject* function) {
    return withInterpreter("step", [&](PythonInterpreter& interpreter) {
        const Gherkin::ScriptLocation location = locationOf(interpreter, checkCallable(function));
        const bool isRegular = !PyUnicode_Check(expression);
        interpreter.steps().registry().addStep(
            isRegular ? patternOf(expression) : utf8Of(expression), isRegular,
            new PythonArgument(PyRef::borrow(function)), location);
        return Py_NewRef(function);
    });
}

PyMethodDef s_registerStep = {"register", registerStep, METH_O, nullptr};

PyObject* step(PyObject*, PyObject* expression) {
    return withInterpreter("step", [&](PythonInterpreter&) -> PyObject* {
        if (!PyUnicode_Check(expression))
            patternOf(expression);
        return PyCFunction_New(&s_registerStep, expression);
    });
}

// Hooks. Each is a function that is given what it runs for by its template's arguments.

template <Gherkin::HookType type, Gherkin::HookOrder order>
PyObject* registerHook(PyObject* tags, PyObject* function) {
    return withInterpreter("hook", [&](PythonInterpreter& interpreter) {
        const Gherkin::ScriptLocation location = locationOf(interpreter, checkCallable(function));
        interpreter.steps().registry().addHook(
            type, order, PyUnicode_Check(tags) ? utf8Of(tags) : std::string(),
            new PythonArgument(PyRef::borrow(function)), QString::fromStdString(location.fileName));
        return Py_NewRef(function);
    });
}

template <Gherkin::HookType type, Gherkin::HookOrder order>
PyMethodDef s_registerHook = {"register", registerHook<type, order>, METH_O, nullptr};

/// "@hook" above a function, or "@hook(tags)".
template <Gherkin::HookType type, Gherkin::HookOrder order>
PyObject* hook(PyObject*, PyObject* tagsOrFunction) {
    if (PyUnicode_Check(tagsOrFunction))
        return (PyCFunction_New)(&s_registerHook<type, order>, tagsOrFunction);
    return registerHook<type, order>(Py_None, tagsOrFunction);
}

// Parameter types.

std::vector<std::string> patternsOf(PyObject* pattern) {
    if (!PyList_Check(pattern) && !PyTuple_Check(pattern))
        return {PyUnicode_Check(pattern) ? utf8Of(pattern) : patternOf(pattern)};
    std::vector<std::string> patterns;
    for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(pattern); ++i) {
        PyObject* const each = PySequence_Fast_GET_ITEM(pattern, i);
        patterns.push_back(PyUnicode_Check(each) ? utf8Of(each) : patternOf(each));
    }
    return patterns;
}

PyObject* registerType(PyObject* nameAndPattern, PyObject* transformer) {
    return withInterpreter("parameter_type", [&](PythonInterpreter& interpreter) {
        SharedPtr<ScriptArgument> called;
        if (transformer != Py_None)
            called = new PythonArgument(PyRef::borrow(checkCallable(transformer)));
        interpreter.steps().registry().addParameterType(
            utf8Of(PyTuple_GET_ITEM(nameAndPattern, 0)),
            patternsOf(PyTuple_GET_ITEM(nameAndPattern, 1)), called);
        return Py_NewRef(transformer);
    });
}

PyMethodDef s_registerType = {"register", registerType, METH_O, nullptr};

/// Registers a type with a transformer, or with one that follows as the function below a decorator.
PyObject* parameterType(PyObject*, PyObject* arguments, PyObject* named) {
    static const char* s_names[] = {"name", "pattern", "transformer", nullptr};
    PyObject* name = nullptr;
    PyObject* pattern = nullptr;
    PyObject* transformer = nullptr;
    if (!PyArg_ParseTupleAndKeywords(arguments, named, "UO|O:parameter_type",
                                     const_cast<char**>(s_names), &name, &pattern, &transformer))
        return nullptr;
    const PyRef nameAndPattern = PyRef::steal(PyTuple_Pack(2, name, pattern));
    if (!nameAndPattern)
        return nullptr;
    const PyRef registered =
        PyRef::steal(registerType(nameAndPattern.get(), transformer ? transformer : Py_None));
    if (!registered)
        return nullptr;
    return transformer ? Py_NewRef(transformer)
                       : PyCFunction_New(&s_registerType, nameAndPattern.get());
}

PyObject* pending(PyObject*, PyObject* arguments) {
    PyObject* reason = nullptr;
    if (!PyArg_ParseTuple(arguments, "|U:pending", &reason))
        return nullptr;
    const PyRef text =
        reason ? PyRef::borrow(reason)
               : PyRef::steal(PyUnicode_FromString("the step definition is to be written"));
    if (text)
        PyErr_SetObject(s_pendingStepError, text.get());
    return nullptr;
}

using Gherkin::AfterHook;
using Gherkin::BeforeHook;
using Gherkin::FeatureHook;
using Gherkin::ScenarioHook;
using Gherkin::StepHook;

PyMethodDef s_functions[] = {
    {"given", step, METH_O, "Registers a function for steps that an expression fits"},
    {"when", step, METH_O, "Registers a function for steps that an expression fits"},
    {"then", step, METH_O, "Registers a function for steps that an expression fits"},
    {"step", step, METH_O, "Registers a function for steps that an expression fits"},
    {"before_feature", hook<FeatureHook, BeforeHook>, METH_O, "Runs before each feature"},
    {"after_feature", hook<FeatureHook, AfterHook>, METH_O, "Runs after each feature"},
    {"before_scenario", hook<ScenarioHook, BeforeHook>, METH_O, "Runs before each scenario"},
    {"after_scenario", hook<ScenarioHook, AfterHook>, METH_O, "Runs after each scenario"},
    {"before_step", hook<StepHook, BeforeHook>, METH_O, "Runs before each step"},
    {"after_step", hook<StepHook, AfterHook>, METH_O, "Runs after each step"},
    {"parameter_type", reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(parameterType)),
     METH_VARARGS | METH_KEYWORDS,
     "parameter_type(name, pattern[, transformer]): what may stand in braces in an expression"},
    {"pending", pending, METH_VARARGS, "Says that the running step is still to be written"},
    {nullptr, nullptr, 0, nullptr}};

}  // namespace

bool addBddModule() {
    PyObject* const module = PyImport_AddModule("bdd");
    if (!module)
        return false;
    if (!s_pendingStepError) {
        s_pendingStepError = PyErr_NewExceptionWithDoc(
            "bdd.PendingStepError", "A step is still to be written", nullptr, nullptr);
        if (!s_pendingStepError)
            return false;
    }
    return PyModule_SetDocString(module,
                                 "Step definitions, hooks and parameter types for "
                                 "feature files") == 0 &&
           PyModule_AddFunctions(module, s_functions) == 0 &&
           PyModule_AddObjectRef(module, "PendingStepError", s_pendingStepError) == 0 &&
           addBddContext(module);
}

PyObject* pendingStepError() {
    return s_pendingStepError;
}

}  // namespace Tamrix::PythonPlugin
