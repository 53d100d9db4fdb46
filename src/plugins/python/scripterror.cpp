#include "plugins/python/scripterror.h"

#include <algorithm>

#include "plugins/python/bddmodule.h"
#include "plugins/python/conversion.h"
#include "plugins/python/pythoninterpreter.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Exceptions that led to others, before the list is cut.
constexpr int maximumCauses = 5;

/// The attribute of an object, null without an error when it can't be read.
PyRef attribute(PyObject* object, const char* name) {
    PyRef value = PyRef::steal(PyObject_GetAttrString(object, name));
    if (!value)
        PyErr_Clear();
    return value;
}

bool isNone(const PyRef& value) {
    return !value || value.get() == Py_None;
}

/// str(object) where nothing may be raised: an exception is being reported already.
QString plainText(PyObject* object) {
    const PyRef text = PyRef::steal(PyObject_Str(object));
    if (!text)
        PyErr_Clear();
    return text ? fromPyString(text.get()) : QString();
}

/// The class's name, with its module in front unless it is Python's or the test script's own.
QString className(PyObject* exception) {
    PyObject* const type = reinterpret_cast<PyObject*>(Py_TYPE(exception));
    const QString name = plainText(attribute(type, "__qualname__").get());
    const PyRef module = attribute(type, "__module__");
    const QString moduleName = isNone(module) ? QString() : plainText(module.get());
    if (moduleName.isEmpty() || moduleName == "builtins" || moduleName == "__test__")
        return name;
    return moduleName + '.' + name;
}

QString ownText(PyObject* exception) {
    QString text = className(exception);
    const QString words = plainText(exception);
    if (!words.isEmpty())
        text += ": " + words;
    const PyRef notes = attribute(exception, "__notes__");
    if (notes && PyList_Check(notes.get())) {
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(notes.get()); ++index)
            text += '\n' + plainText(PyList_GET_ITEM(notes.get(), index));
    }
    return text;
}

/// The exception that led to this one, and the words that join them; null when there is none.
PyRef causeOf(PyObject* exception, const char** words) {
    PyRef cause = attribute(exception, "__cause__");
    *words = "\ncaused by ";
    if (!isNone(cause))
        return cause;
    const PyRef suppressed = attribute(exception, "__suppress_context__");
    if (suppressed.get() == Py_True)
        return {};
    *words = "\nwhile handling ";
    cause = attribute(exception, "__context__");
    return isNone(cause) ? PyRef() : cause;
}

QString fullText(PyObject* exception) {
    QString text = ownText(exception);
    const char* words = nullptr;
    PyRef cause = causeOf(exception, &words);
    for (int count = 0; cause && count < maximumCauses; ++count) {
        text += words + ownText(cause.get());
        cause = causeOf(cause.get(), &words);
    }
    return text;
}

int lineOf(const PyRef& number) {
    if (!number || !PyLong_Check(number.get()))
        return -1;
    const long line = PyLong_AsLong(number.get());
    PyErr_Clear();
    return static_cast<int>(line);
}

/// The place that a SyntaxError tells of, which no frame runs.
LineInfo syntaxErrorPosition(PyObject* exception, CodeFiles& files) {
    if (!PyErr_GivenExceptionMatches(exception, PyExc_SyntaxError))
        return {};
    const PyRef file = attribute(exception, "filename");
    if (!file || !PyUnicode_Check(file.get()))
        return {};
    return LineInfo(files.path(file.get()), lineOf(attribute(exception, "lineno")));
}

std::vector<LineInfo> callStackOf(PyObject* exception, CodeFiles& files) {
    struct Line {
        LineInfo position;
        bool script;
    };
    // A traceback runs from the outermost call inwards.
    std::vector<Line> lines;
    for (PyRef entry = attribute(exception, "__traceback__"); !isNone(entry);
         entry = attribute(entry.get(), "tb_next")) {
        const PyRef frame = attribute(entry.get(), "tb_frame");
        if (isNone(frame))
            continue;
        const PyRef name = frameFileName(frame.get());
        const QString path = files.path(name.get());
        if (!path.isNull())
            lines.push_back({LineInfo(path, lineOf(attribute(entry.get(), "tb_lineno"))),
                             files.isScript(name.get())});
    }
    const LineInfo syntaxError = syntaxErrorPosition(exception, files);
    if (syntaxError.isValid())
        lines.push_back({syntaxError, true});
    std::reverse(lines.begin(), lines.end());

    std::vector<LineInfo> stack;
    for (const Line& line : lines) {
        if (line.script)
            stack.push_back(line.position);
    }
    if (stack.empty() && !lines.empty())
        stack.push_back(lines.front().position);
    return stack;
}

int outermostLineOf(PyObject* exception) {
    const PyRef traceback = attribute(exception, "__traceback__");
    int line = isNone(traceback) ? -1 : lineOf(attribute(traceback.get(), "tb_lineno"));
    if (line < 0 && PyErr_GivenExceptionMatches(exception, PyExc_SyntaxError))
        line = lineOf(attribute(exception, "lineno"));
    return std::max(line, 0);
}

/// Whether the exception is a sys.exit() that tells of no failure.
bool isCleanExit(PyObject* exception) {
    if (!PyErr_GivenExceptionMatches(exception, PyExc_SystemExit))
        return false;
    const PyRef code = attribute(exception, "code");
    return isNone(code) || (PyLong_Check(code.get()) && lineOf(code) == 0);
}

}  // namespace

ScriptError takeScriptError() {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    const PyRef typeReference = PyRef::steal(type);
    const PyRef exception = PyRef::steal(value);
    const PyRef tracebackReference = PyRef::steal(traceback);
    ScriptError error;
    if (!exception)
        return error;
    if (traceback)
        PyException_SetTraceback(value, traceback);
    error.isExit = isCleanExit(value);
    error.message = fullText(value);
    error.outermostLine = outermostLineOf(value);
    error.isPendingStep = PyErr_GivenExceptionMatches(value, pendingStepError()) != 0;
    if (PythonInterpreter* const interpreter = PythonInterpreter::active()) {
        error.callStack = callStackOf(value, interpreter->files());
        interpreter->failures().complete(value, &error);
    }
    return error;
}

}  // namespace Tamrix::PythonPlugin
