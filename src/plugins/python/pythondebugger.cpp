#include "plugins/python/pythondebugger.h"

#include <algorithm>

#include "interpreter/language/valuepath.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/pythonsignals.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/scripterror.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

bool isOneOf(PyObject* exception, std::initializer_list<PyObject*> types) {
    return std::any_of(types.begin(), types.end(), [exception](PyObject* type) {
        return PyErr_GivenExceptionMatches(exception, type) != 0;
    });
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
    LanguageDebugger::setInteractive(interactive);
    if (interactive) {
        m_hook.install();
        setSignalHandler(stopSignal(), s_stopHandler);
    } else {
        m_hook.uninstall();
    }
}

void PythonDebugger::setDebuggerMode(DbgMode mode) {
    LanguageDebugger::setDebuggerMode(mode);
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
    const RecursionRoom room;
    std::erase_if(lines, [code](int line) {
        const PyRef number = PyRef::steal(PyLong_FromLong(line));
        return callOwn("lines", "has_line", reinterpret_cast<PyObject*>(code), number).get() !=
               Py_True;
    });
    return lines;
}

std::vector<ScriptFrame> PythonDebugger::runningFrames() {
    return PythonPlugin::runningFrames(m_python.files());
}

int PythonDebugger::runningDepth() {
    return PythonPlugin::runningDepth(m_python.files());
}

std::unique_ptr<ValueTexts> PythonDebugger::makeValueTexts() {
    return std::make_unique<PythonTexts>();
}

std::vector<ValueTexts::Part> PythonDebugger::variablesOf(const ScriptFrame& place) {
    std::vector<ValueTexts::Part> variables;
    auto* const frame = reinterpret_cast<PyFrameObject*>(frameBehind(place));
    const PyRef locals = checked(PyFrame_GetLocals(frame));
    const PyRef globals = checked(PyFrame_GetGlobals(frame));
    for (const PyRef* names : {&locals, &globals}) {
        const PyRef items = checked(PyMapping_Items(names->get()));
        for (Py_ssize_t index = 0; index < PyList_GET_SIZE(items.get()); ++index) {
            PyObject* const item = PyList_GET_ITEM(items.get(), index);
            const QString name = fromPyString(PyTuple_GET_ITEM(item, 0));
            if (name.isNull() || name.startsWith("__"))
                continue;
            variables.push_back(
                {pathPart(name), new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(item, 1)))});
        }
    }
    return variables;
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

void PythonDebugger::errorPasses(PyObject* exception, PyObject* traceback) {
    // Some are no errors, and some are asked for by what can't be seen here.
    if (!stopsForErrors() || exception == m_toldError.get() ||
        m_python.failures().isSkip(exception) ||
        isOneOf(exception, {PyExc_StopIteration, PyExc_StopAsyncIteration, PyExc_GeneratorExit,
                            PyExc_SystemExit, PyExc_KeyboardInterrupt}))
        return;
    const RecursionRoom room;
    const bool isCaught =
        areErrorsCaught() ||
        callOwn("handlers", "is_caught", exception, traceback ? traceback : Py_None).get() ==
            Py_True;
    if (!isCaught)
        stopForError(exception, traceback);
}

void PythonDebugger::stopForError(PyObject* exception, PyObject* traceback) {
    // A script that can't be compiled has no frame to stop in.
    if (framesOfError(traceback, m_python.files()).empty())
        return;
    m_toldError = PyRef::borrow(exception);
    LanguageDebugger::stopForError(scriptErrorOf(exception, traceback).message,
                                   framesOfError(traceback, m_python.files()));
}

void PythonDebugger::errorUncaught() {
    const ErrorAside aside;
    PyObject* const exception = aside.exception();
    if (stopsForErrors() && exception && exception != m_toldError.get() &&
        !m_python.failures().isSkip(exception) &&
        !isOneOf(exception, {PyExc_SystemExit, PyExc_KeyboardInterrupt}))
        stopForError(exception, aside.traceback());
    m_toldError = PyRef();
    forgetTold();
}

void PythonDebugger::errorReplaced(PyObject* exception, const QString& text) {
    if (m_toldError && hasTold(text))
        m_toldError = PyRef::borrow(exception);
}

}  // namespace Tamrix::PythonPlugin
