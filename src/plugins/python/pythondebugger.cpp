#include "plugins/python/pythondebugger.h"

#include <algorithm>

#include "plugins/python/conversion.h"
#include "plugins/python/exceptionhandlers.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/pythonsignals.h"
#include "plugins/python/pythonvariables.h"
#include "plugins/python/scripterror.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Keeps an exception that is on its way while the debugger asks Python something.
class ErrorAside {
public:
    ErrorAside() { PyErr_Fetch(&m_type, &m_value, &m_traceback); }
    ~ErrorAside() {
        if (m_type)
            PyErr_Restore(m_type, m_value, m_traceback);
    }
    ErrorAside(const ErrorAside&) = delete;
    ErrorAside& operator=(const ErrorAside&) = delete;

private:
    PyObject* m_type = nullptr;
    PyObject* m_value = nullptr;
    PyObject* m_traceback = nullptr;
};

PyRef runningFrame() {
    return PyRef::borrow(reinterpret_cast<PyObject*>(PyEval_GetFrame()));
}

PyRef nextOutwards(const PyRef& frame) {
    return PyRef::steal(reinterpret_cast<PyObject*>(
        PyFrame_GetBack(reinterpret_cast<PyFrameObject*>(frame.get()))));
}

bool isOneOf(PyObject* exception, std::initializer_list<PyObject*> types) {
    return std::any_of(types.begin(), types.end(), [exception](PyObject* type) {
        return PyErr_GivenExceptionMatches(exception, type) != 0;
    });
}

/// Whether Python itself, which has no frames, may be waiting for the exception as an answer: code
/// of an operator such as `__getitem__`, or an attribute that somebody asks after.
bool mayBeAnswer(PyObject* exception, const PyRef& code) {
    auto* const object = reinterpret_cast<PyCodeObject*>(code.get());
    const QString name = fromPyString(object->co_name);
    if (name.startsWith("__") && name.endsWith("__"))
        return name != "__init__" && name != "__call__" && name != "__enter__";
    if (!isOneOf(exception, {PyExc_AttributeError}))
        return false;
    for (Py_ssize_t index = 0; index < PyTuple_GET_SIZE(object->co_names); ++index) {
        PyObject* const used = PyTuple_GET_ITEM(object->co_names, index);
        if (PyUnicode_CompareWithASCIIString(used, "hasattr") == 0 ||
            PyUnicode_CompareWithASCIIString(used, "getattr") == 0)
            return true;
    }
    return false;
}

PyObject* stopAtNextLine(PyObject*, PyObject*) {
    if (PythonInterpreter* const interpreter = PythonInterpreter::active())
        interpreter->debugger().step();
    Py_RETURN_NONE;
}

PyMethodDef s_stopHandler = {"stopAtNextLine", stopAtNextLine, METH_VARARGS, nullptr};

}  // namespace

PythonDebugger::PythonDebugger(PythonInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_python(interpreter) {}

PythonDebugger::~PythonDebugger() = default;

void PythonDebugger::setInteractive(bool interactive) {
    Debugger::setInteractive(interactive);
    if (interactive) {
        m_hook.install();
        setSignalHandler(stopSignal(), s_stopHandler);
    } else {
        m_hook.uninstall();
    }
}

void PythonDebugger::setDebuggerMode(DbgMode mode) {
    Debugger::setDebuggerMode(mode);
    m_hook.redecide();
}

void PythonDebugger::stopSoon() {
    // Python goes on to where it can be told.
    PyErr_SetInterruptEx(stopSignal());
}

void PythonDebugger::shutDown() {
    m_toldError = PyRef();
    LanguageDebugger::shutDown();
}

// Stops

void PythonDebugger::enterSilence() {
    m_pause.emplace(m_hook);
}

void PythonDebugger::leaveSilence() {
    m_pause.reset();
    m_hook.redecide();
}

bool PythonDebugger::stopsAtEachLine(const RunningFrame* caller) {
    // Counted inside out, and no further than to where the call is known to be too deep.
    int below = 0;
    for (; caller && debuggerMode() == Next && LanguageDebugger::stopsAtEachLine(below);
         caller = callerOf(caller)) {
        if (currentFacts(codeOf(caller)).isScript)
            ++below;
    }
    return LanguageDebugger::stopsAtEachLine(below);
}

bool PythonDebugger::wantsLines(PyCodeObject* code, const RunningFrame* caller) {
    if (debuggerMode() == None)
        return false;
    const CodeFacts& facts = currentFacts(code);
    return facts.isScript && (!facts.breakLines.empty() || stopsAtEachLine(caller));
}

void PythonDebugger::lineReached(PyObject* frame, const RunningFrame* caller) {
    const PyRef code = frameCode(frame);
    const CodeFacts& facts = currentFacts(reinterpret_cast<PyCodeObject*>(code.get()));
    if (facts.isScript && debuggerMode() != None &&
        (facts.hasBreakPoint(frameLine(frame)) || stopsAtEachLine(caller)))
        stop();
}

// Sources and frames

CodeFacts& PythonDebugger::currentFacts(PyCodeObject* code) {
    CodeFacts& facts = factsOf(code);
    if (facts.state == breakPointState())
        return facts;
    const ErrorAside aside;
    facts.isScript = m_python.files().isScript(code->co_filename);
    // A source that becomes known here may have break points, with which the state changes.
    facts.breakLines = facts.isScript ? breakLinesOf(code) : std::vector<int>();
    facts.state = breakPointState();
    return facts;
}

std::vector<int> PythonDebugger::breakLinesOf(PyCodeObject* code) {
    std::vector<int> lines = breakLines(sourceIdOf(m_python.files().path(code->co_filename)));
    if (lines.empty())
        return lines;
    const std::vector<int> own = linesOf(code);
    std::erase_if(lines,
                  [&own](int line) { return !std::binary_search(own.begin(), own.end(), line); });
    return lines;
}

std::vector<ScriptFrame> PythonDebugger::runningFrames() {
    return PythonPlugin::runningFrames(m_python.files());
}

int PythonDebugger::runningDepth() {
    return PythonPlugin::runningDepth(m_python.files());
}

std::unique_ptr<VariableWatcher> PythonDebugger::makeVariableWatcher() {
    return std::make_unique<PythonVariables>(m_python);
}

Debugger::VariableBindings PythonDebugger::variables(const QString& path) {
    try {
        return LanguageDebugger::variables(path);
    } catch (const PythonErrorSet&) {
        // Python has no memory left for its own containers.
        PyErr_Print();
        return {};
    }
}

// Errors

PythonDebugger::CatchesErrors::CatchesErrors(PythonDebugger& debugger) : m_debugger(debugger) {
    m_debugger.m_catching.push_back(reinterpret_cast<PyObject*>(PyEval_GetFrame()));
}

PythonDebugger::CatchesErrors::~CatchesErrors() {
    m_debugger.m_catching.pop_back();
}

void PythonDebugger::errorPasses(PyObject* exception, PyObject* traceback) {
    // Some are no errors, and some are asked for by what can't be seen here.
    if (!stopsForErrors() || exception == m_toldError.get() ||
        m_python.failures().isSkip(exception) ||
        isOneOf(exception, {PyExc_StopIteration, PyExc_StopAsyncIteration, PyExc_GeneratorExit,
                            PyExc_SystemExit, PyExc_KeyboardInterrupt}))
        return;
    if (!isCaught(exception, traceback))
        stopForError(exception, traceback);
}

bool PythonDebugger::isCaught(PyObject* exception, PyObject* traceback) {
    for (auto* entry = reinterpret_cast<PyTracebackObject*>(traceback); entry;
         entry = entry->tb_next) {
        if (mayBeAnswer(exception, frameCode(reinterpret_cast<PyObject*>(entry->tb_frame))))
            return true;
    }
    for (PyRef frame = runningFrame(); frame; frame = nextOutwards(frame)) {
        if (std::find(m_catching.begin(), m_catching.end(), frame.get()) != m_catching.end() ||
            mayBeAnswer(exception, frameCode(frame.get())) || mayCatch(frame.get(), exception))
            return true;
    }
    return false;
}

void PythonDebugger::stopForError(PyObject* exception, PyObject* traceback) {
    // A script that can't be compiled has no frame to stop in.
    if (framesOfError(traceback, m_python.files()).empty())
        return;
    m_toldError = PyRef::borrow(exception);
    PyErr_Restore(Py_NewRef(reinterpret_cast<PyObject*>(Py_TYPE(exception))), Py_NewRef(exception),
                  Py_XNewRef(traceback));
    LanguageDebugger::stopForError(takeScriptError().message,
                                   framesOfError(traceback, m_python.files()));
}

void PythonDebugger::errorUncaught() {
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (stopsForErrors() && value && value != m_toldError.get() &&
        !m_python.failures().isSkip(value) &&
        !isOneOf(value, {PyExc_SystemExit, PyExc_KeyboardInterrupt}))
        stopForError(value, traceback);
    PyErr_Restore(type, value, traceback);
    m_toldError = PyRef();
    forgetTold();
}

void PythonDebugger::errorReplaced(PyObject* exception, const QString& text) {
    if (m_toldError && hasTold(text))
        m_toldError = PyRef::borrow(exception);
}

}  // namespace Tamrix::PythonPlugin
