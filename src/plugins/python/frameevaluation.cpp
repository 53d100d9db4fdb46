#include "plugins/python/frameevaluation.h"

#include <frameobject.h>

#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

/// The file of the code: not one of a script, so that its frame is none of the script's.
const QString fileName = QStringLiteral("<debugger>");

/// Whether a function in the code, such as a comprehension, uses a variable of the frame. Python
/// looks names up in globals there.
bool hasFunctionUsing(PyCodeObject* code, PyObject* locals) {
    for (Py_ssize_t index = 0; index < PyTuple_GET_SIZE(code->co_consts); ++index) {
        PyObject* const constant = PyTuple_GET_ITEM(code->co_consts, index);
        if (!PyCode_Check(constant))
            continue;
        auto* const inner = reinterpret_cast<PyCodeObject*>(constant);
        for (Py_ssize_t name = 0; name < PyTuple_GET_SIZE(inner->co_names); ++name) {
            if (PyMapping_HasKey(locals, PyTuple_GET_ITEM(inner->co_names, name)) != 0)
                return true;
        }
        if (hasFunctionUsing(inner, locals))
            return true;
    }
    return false;
}

/// Carries over to `names` what code has changed in `changed`, which began as `before`.
void carryOver(PyObject* names, PyObject* before, PyObject* changed) {
    PyObject* key = nullptr;
    PyObject* value = nullptr;
    Py_ssize_t position = 0;
    while (PyDict_Next(changed, &position, &key, &value)) {
        if (PyDict_GetItemWithError(before, key) != value)
            checked(PyDict_SetItem(names, key, value));
    }
    position = 0;
    while (PyDict_Next(before, &position, &key, &value)) {
        if (PyDict_Contains(changed, key) == 0 && PyDict_Contains(names, key) == 1)
            checked(PyDict_DelItem(names, key));
    }
}

PyRef runCode(PyObject* code, PyObject* globals, PyObject* locals) {
    if (globals == locals || !hasFunctionUsing(reinterpret_cast<PyCodeObject*>(code), locals))
        return PyRef::steal(PyEval_EvalCode(code, globals, locals));
    // Functions in the code see globals only: these get the frame's variables for once.
    const PyRef before = checked(PyDict_Copy(globals));
    checked(PyDict_Update(before.get(), locals));
    const PyRef mixed = checked(PyDict_Copy(before.get()));
    PyRef result = PyRef::steal(PyEval_EvalCode(code, mixed.get(), locals));
    if (result)
        carryOver(globals, before.get(), mixed.get());
    return result;
}

/// Runs statements one after another, so that functions in a later one see what an earlier one has
/// assigned. False with the error indicator set when one failed.
bool runStatements(const QString& text, PyObject* globals, PyObject* locals) {
    const PyRef file = checkedReference(toPyString(fileName));
    const PyRef ast = checked(PyImport_ImportModule("ast"));
    const PyRef globalType = checked(PyObject_GetAttrString(ast.get(), "Global"));
    const PyRef compile = PyRef::borrow(PyDict_GetItemString(PyEval_GetBuiltins(), "compile"));
    const PyRef tree = checked(
        PyObject_CallMethod(ast.get(), "parse", "NO", toPyString(text).release(), file.get()));
    const PyRef statements = checked(PyObject_GetAttrString(tree.get(), "body"));
    // A declaration holds for all statements behind it.
    const PyRef body = checked(PyList_New(0));
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(statements.get()); ++index) {
        PyObject* const statement = PyList_GET_ITEM(statements.get(), index);
        checked(PyList_Append(body.get(), statement));
        const int isDeclaration = PyObject_IsInstance(statement, globalType.get());
        checked(isDeclaration);
        if (isDeclaration == 1)
            continue;
        const PyRef module = checked(PyObject_CallMethod(ast.get(), "Module", "O[]", body.get()));
        const PyRef code =
            checked(PyObject_CallFunction(compile.get(), "OOs", module.get(), file.get(), "exec"));
        if (!runCode(code.get(), globals, locals))
            return false;
        const Py_ssize_t last = PyList_GET_SIZE(body.get()) - 1;
        checked(PyList_SetSlice(body.get(), last, last + 1, nullptr));
    }
    return true;
}

/// The text that the code gives; null with the error indicator set when it failed.
PyRef run(PythonInterpreter& interpreter, PyObject* globals, PyObject* locals,
          const QString& text) {
    const PyRef code = interpreter.compile(text.trimmed(), fileName, Py_eval_input);
    PyRef result;
    bool passed = false;
    if (code) {
        result = runCode(code.get(), globals, locals);
        passed = bool(result);
    } else if (PyErr_ExceptionMatches(PyExc_SyntaxError)) {
        PyErr_Clear();
        passed = runStatements(text, globals, locals);
    }
    if (!passed)
        return {};
    return result ? timedRepresentation(result.get()) : toPyString(QString());
}

}  // namespace

QString evaluateInFrame(PythonInterpreter& interpreter, PyObject* frame, const QString& code) {
    auto* const running = reinterpret_cast<PyFrameObject*>(frame);
    const PyRef globals = checked(PyFrame_GetGlobals(running));
    const PyRef locals = checked(PyFrame_GetLocals(running));
    // Variables of functions are kept elsewhere than in what code is given as its names. Code that
    // fails may have assigned some before.
    struct TakeOver {
        PyFrameObject* frame;
        ~TakeOver() { PyFrame_LocalsToFast(frame, 1); }
    } const takeOver{running};
    return fromPyString(
        checkedReference(run(interpreter, globals.get(), locals.get(), code)).get());
}

QString evaluateInModule(PythonInterpreter& interpreter, PyObject* globals, const QString& code) {
    return fromPyString(checkedReference(run(interpreter, globals, globals, code)).get());
}

}  // namespace Tamrix::PythonPlugin
