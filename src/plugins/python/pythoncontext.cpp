#include "plugins/python/pythoncontext.h"

#include "plugins/python/nativefunction.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scripterror.h"

namespace Tamrix::PythonPlugin {

namespace {

bool isTruth(const PyRef& value) {
    const int truth = PyObject_IsTrue(value.get());
    checked(truth);
    return truth == 1;
}

/// Where code that was handed over as text is evaluated: in the calling script frame. Locals are
/// seen by expressions, while names that statements define outlast the call in the globals only.
struct Namespaces {
    PyRef globals;
    PyRef locals;
};

Namespaces callingNamespaces(PythonInterpreter& interpreter) {
    PyFrameObject* const frame = PyEval_GetFrame();
    if (!frame)
        return {interpreter.moduleNamespace(), interpreter.moduleNamespace()};
    return {checked(PyFrame_GetGlobals(frame)), checked(PyFrame_GetLocals(frame))};
}

}  // namespace

void PythonContext::clearError() {
    if (m_interpreter.isErrorSet())
        PyErr_Clear();
}

// Values

PyRef PythonContext::makeValue(const QByteArray& value) {
    return PyRef::steal(PyBytes_FromStringAndSize(value.constData(), value.size()));
}

PyRef PythonContext::makeValue(const ScriptArgument::List& values) {
    PyRef list = checked(PyList_New(static_cast<Py_ssize_t>(values.size())));
    for (std::size_t index = 0; index < values.size(); ++index)
        PyList_SET_ITEM(list.get(), static_cast<Py_ssize_t>(index),
                        Py_NewRef(objectOf(values[index])));
    return list;
}

PyRef PythonContext::makeValue(const ScriptArgument::Map& values) {
    PyRef dictionary = checked(PyDict_New());
    for (const auto& [name, value] : values) {
        const PyRef key = checkedReference(toPyString(name));
        checked(PyDict_SetItem(dictionary.get(), key.get(), objectOf(value)));
    }
    return dictionary;
}

SharedPtr<ScriptArgument> PythonContext::createLocation(const ScriptLocation& location) {
    return wrapped(callOwn("library", "Location", toPyString(location.fileName),
                           PyRef::steal(PyLong_FromLong(location.line))));
}

// Registration

void PythonContext::define(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    m_interpreter.defineIn(signature.owner, signature.name, makeFunction(function));
}

void PythonContext::defineMember(const NativeFunction& function) {
    const NativeSignature& signature = function.signature();
    const PyRef owner = checked(
        PyObject_GetAttrString(ownName("library", "tamrix"), signature.owner.toUtf8().constData()));
    const PyRef method = checked(PyInstanceMethod_New(makeFunction(function).get()));
    const PyRef name = checkedReference(toPyString(pythonName(signature.name)));
    checked(PyObject_SetAttr(owner.get(), name.get(), method.get()));
}

void PythonContext::defineConstant(const QString& owner, const QString& name, int value) {
    m_interpreter.defineIn(owner, name, checked(PyLong_FromLong(value)));
}

// Positions

bool PythonContext::lineInfoOfFrame(LineInfo& position, int ancestorLevel) const {
    CodeFiles& files = m_interpreter.files();
    PyRef frame = innermostFrame(files);
    for (int level = 0; frame && level < ancestorLevel; ++level)
        frame = outerFrame(frame.get(), files);
    if (!frame)
        return false;
    position = LineInfo(files.path(frameFileName(frame.get()).get()), frameLine(frame.get()));
    return true;
}

// The language's own judgement

QString PythonContext::scriptName(const QString& name) const {
    return pythonName(name);
}

QString PythonContext::explainArgument(const char* parameter) {
    return fromPyString(
        callOwn("condition", "explain", PyRef::steal(PyUnicode_FromString(parameter))).get());
}

bool PythonContext::valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) {
    return isTruth(checked(PyObject_RichCompare(objectOf(left), objectOf(right), Py_EQ)));
}

std::pair<QString, QString> PythonContext::evaluateForException(SharedPtr<ScriptArgument> code) {
    PyRef compiled;
    return attemptException(
        *code,
        {[&](const QString& text) {
             compiled = m_interpreter.compile(text, "<test.exception>", Py_file_input);
             if (!compiled && !isOrdinaryError())
                 throw PythonErrorSet();
             return compiled ? QString() : takeScriptError().message;
         },
         [&](const QString&) {
             const Namespaces names = callingNamespaces(m_interpreter);
             checked(PyEval_EvalCode(compiled.get(), names.globals.get(), names.locals.get()));
         },
         [&] { checked(PyObject_CallNoArgs(objectOf(code))); }});
}

bool PythonContext::evaluateCondition(const QString& expression, QString* error) {
    return attemptCondition(
        [&] {
            const PyRef code = checkedReference(
                m_interpreter.compile(expression.trimmed(), "<waitFor>", Py_eval_input));
            const Namespaces names = callingNamespaces(m_interpreter);
            return isTruth(
                checked(PyEval_EvalCode(code.get(), names.globals.get(), names.locals.get())));
        },
        error);
}

}  // namespace Tamrix::PythonPlugin
