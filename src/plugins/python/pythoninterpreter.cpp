#include "plugins/python/pythoninterpreter.h"

#include <frameobject.h>

#include <stdexcept>

#include "plugins/python/conversion.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythonruntime.h"
#include "plugins/python/pythonsteps.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/scripterror.h"
#include "plugins/python/valuetext.h"

namespace Tamrix::PythonPlugin {

namespace {

/// The name under which the script's module is known to Python.
constexpr const char* moduleName = "__test__";
/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("<init script>");

/// Lets scripts print to the results, or to the process's own streams.
void setStreams(bool areOurs) {
    callOwn("output", "set_streams", areOurs ? Py_True : Py_False);
}

/// The line of the first NUL in the text, counted from 1; -1 without one.
int lineOfNul(const QString& text) {
    const int place = text.indexOf(QChar(0));
    return place < 0 ? -1 : text.leftRef(place).count('\n') + 1;
}

}  // namespace

PythonInterpreter::PythonInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, Python) {
    PythonRuntime::self();
    m_threadState = PyThreadState_Get();
    m_context = std::make_unique<PythonContext>(*this);
    m_debugger = std::make_unique<PythonDebugger>(*this);
    try {
        setStreams(true);
        m_context->defineValueMembers();
        m_context->defineStepMembers();
        begin(*m_context, *m_debugger, std::make_unique<PythonSteps>(*this));
    } catch (const PythonErrorSet&) {
        PyErr_Print();
        throw std::runtime_error("The functions of the test system can't be made known to Python");
    }
}

PythonInterpreter::~PythonInterpreter() {
    const bool last = end();
    if (m_module && last) {
        // Functions keep their globals alive, and these the functions.
        PyDict_Clear(PyModule_GetDict(m_module.get()));
        if (PyDict_DelItemString(PyImport_GetModuleDict(), moduleName) < 0)
            PyErr_Clear();
    }
    m_module = PyRef();
    m_failures.clear();
    m_initialNames = PyRef();
    if (last) {
        PythonRuntime::self().restore();
        output().flush();
    }
    leaveActive();
    try {
        setStreams(!last);
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
}

// Names for scripts

void PythonInterpreter::defineIn(const QString& nameSpace, const QString& name,
                                 const PyRef& value) {
    if (!value)
        throw PythonErrorSet();
    const PyRef key = checkedReference(toPyString(pythonName(name)));
    if (nameSpace.isEmpty())
        checked(PyDict_SetItem(PyEval_GetBuiltins(), key.get(), value.get()));
    else
        checked(PyObject_SetAttr(nameSpaceObject(nameSpace).get(), key.get(), value.get()));
}

PyRef PythonInterpreter::nameSpaceObject(const QString& name) {
    const PyRef key = checkedReference(toPyString(name));
    const PyRef known = PyRef::borrow(PyDict_GetItemWithError(PyEval_GetBuiltins(), key.get()));
    if (known && PyModule_Check(known.get()))
        return known;
    if (known) {
        // Python's own name goes on to mean what it does.
        addSelfDefinedVariableName(name);
        return callOwn("overlay", "overlay_for", key, known);
    }
    // A namespace is a module object: help() and dir() know what to say of it.
    PyRef made = checked(PyModule_NewObject(key.get()));
    defineIn(QString(), name, made);
    return made;
}

void PythonInterpreter::addNativeType(const QString& name, void* typeId,
                                      const NativeScriptType& type) {
    defineIn(QString(), name, makeNativeClass(context(), name, typeId, type));
}

QString PythonInterpreter::addToSearchPath(const QFileInfo& directory) {
    return PythonRuntime::self().addToSearchPath(directory.absoluteFilePath());
}

void PythonInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names) {
        const PyRef shownName = checkedReference(toPyString(pythonName(name)));
        if (PyDict_Contains(PyEval_GetBuiltins(), shownName.get()) == 0)
            defineIn(QString(), name,
                     callOwn("library", "GlobalFunction", toPyString(name), shownName));
    }
}

void PythonInterpreter::startScript(const QString& path, const QStringList& arguments,
                                    const QStringList& folders) {
    m_failures.clear();
    try {
        const PyRef names = moduleNamespace();
        if (m_initialNames)
            callOwn("state", "set_back", names, m_initialNames);
        else
            m_initialNames = checked(PyDict_Copy(names.get()));
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
    const PyRef list = toPyList(QStringList(path) + arguments);
    if (!list || PySys_SetObject("argv", list.get()) < 0)
        PyErr_Print();
    const QString error = PythonRuntime::self().setSearchPath(folders);
    if (!error.isEmpty())
        qWarning("Could not set the search path: %s", error.toLocal8Bit().constData());
}

void PythonInterpreter::noticeFailure(const PyRef& exception, const ScriptFailure& failure) {
    m_failures.notice(failure, *m_debugger, exception);
    m_debugger->errorReplaced(exception.get(), failure.text);
}

// Running

PyRef PythonInterpreter::moduleNamespace() {
    if (!m_module) {
        m_module = checked(PyModule_New(moduleName));
        PyObject* const dictionary = PyModule_GetDict(m_module.get());
        checked(PyDict_SetItemString(dictionary, "__builtins__", PyEval_GetBuiltins()));
        checked(PyDict_Update(dictionary, ownName("overlay", "overlays")));
        checked(PyDict_SetItemString(PyImport_GetModuleDict(), moduleName, m_module.get()));
    }
    return PyRef::borrow(PyModule_GetDict(m_module.get()));
}

PyRef PythonInterpreter::compile(const QString& text, const QString& fileName, int start) {
    if (m_compiledCode && start == Py_file_input && text == m_compiledText &&
        fileName == m_compiledFile)
        return m_compiledCode;
    const PyRef file = toPyString(fileName);
    if (!file)
        return {};
    if (const int line = lineOfNul(text); line >= 0) {
        // An error at its line, as any other that the compiler finds.
        PyErr_Format(PyExc_SyntaxError, "line %d holds a NUL character, which no script may have",
                     line);
        PyErr_SyntaxLocationObject(file.get(), line, -1);
        return {};
    }
    // The text is decoded already: a coding line in it means nothing any more.
    PyCompilerFlags flags = _PyCompilerFlags_INIT;
    flags.cf_flags = PyCF_IGNORE_COOKIE;
    PyRef code = PyRef::steal(
        Py_CompileStringObject(text.toUtf8().constData(), file.get(), start, &flags, -1));
    if (code && start == Py_file_input)
        rememberCode(text, fileName, code);
    return code;
}

bool PythonInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    return compile(text, fileName, Py_file_input) || failWithPending(true);
}

bool PythonInterpreter::runScript(const QString& text, const QString& fileName) {
    return runCode(!fileName.isEmpty(), [&] {
        const PyRef names = moduleNamespace();
        if (!fileName.isEmpty())
            checked(PyDict_SetItemString(names.get(), "__file__",
                                         checkedReference(toPyString(fileName)).get()));
        const PyRef code =
            checkedReference(compile(text, fileName.isEmpty() ? noFile : fileName, Py_file_input));
        checked(PyEval_EvalCode(code.get(), names.get(), names.get()));
    });
}

QString PythonInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    auto* const running = frame ? reinterpret_cast<PyFrameObject*>(frameBehind(*frame)) : nullptr;
    const PyRef globals = running ? checked(PyFrame_GetGlobals(running)) : moduleNamespace();
    const PyRef locals = running ? checked(PyFrame_GetLocals(running)) : globals;
    // Variables of functions are kept elsewhere than in what code is given as its names. Code that
    // fails may have assigned some before.
    struct TakeOver {
        PyFrameObject* frame;
        ~TakeOver() {
            if (frame)
                PyFrame_LocalsToFast(frame, 1);
        }
    } const takeOver{running};
    const RecursionRoom room;
    return fromPyString(callOwn("evaluation", "evaluate", toPyString(code), globals, locals).get());
}

TimeLimit::Expired PythonInterpreter::endOfEvaluation() {
    return readyTimeLimit();
}

SharedPtr<ScriptArgument> PythonInterpreter::scriptFunction(const QString& name) {
    if (!m_module)
        return {};
    const PyRef key = checkedReference(toPyString(name));
    const PyRef function =
        PyRef::borrow(PyDict_GetItemWithError(PyModule_GetDict(m_module.get()), key.get()));
    if (!function || !PyCallable_Check(function.get()))
        return {};
    return new PythonArgument(function);
}

SharedPtr<ScriptArgument> PythonInterpreter::libraryFunction(const QString& name) {
    const PyRef key = checkedReference(toPyString(pythonName(name)));
    const PyRef function = PyRef::borrow(PyDict_GetItemWithError(PyEval_GetBuiltins(), key.get()));
    if (!function)
        return {};
    return new PythonArgument(function);
}

PythonInterpreter::CallEnd PythonInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                   const CallArguments& arguments,
                                                   const QString& name, bool isCallback) {
    if (!isCallback)
        m_failures.clearSkip();
    const PyRef callee = pythonValue(function);
    PyRef result;
    const CallEnd end = runCall(isCallback, [&] { result = callObject(callee.get(), arguments); });
    if (!result)
        return end;
    QString shownName = name;
    if (name.isEmpty())
        shownName = PyFunction_Check(callee.get())
                        ? fromPyString(reinterpret_cast<PyFunctionObject*>(callee.get())->func_name)
                        : QStringLiteral("The function");
    return hasRun(shownName, callee.get(), result.get()) ? end : CallEnd::Failed;
}

std::vector<LineInfo> PythonInterpreter::interruptedStack() {
    // The script may have let go of the interpreter's lock, as in a wait.
    const PyGILState_STATE state = PyGILState_Ensure();
    std::vector<LineInfo> stack = LanguageInterpreter::interruptedStack();
    PyGILState_Release(state);
    return stack;
}

LineInfo PythonInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    const PyRef value = pythonValue(function);
    PyObject* const callee =
        PyMethod_Check(value.get()) ? PyMethod_GET_FUNCTION(value.get()) : value.get();
    if (!PyFunction_Check(callee))
        return {};
    auto* const code = reinterpret_cast<PyCodeObject*>(PyFunction_GET_CODE(callee));
    return LineInfo(m_files.path(code->co_filename), code->co_firstlineno);
}

bool PythonInterpreter::hasRun(const QString& name, PyObject* function, PyObject* result) {
    if (!PyCoro_CheckExact(result) && !PyAsyncGen_CheckExact(result) && !PyGen_CheckExact(result))
        return true;
    setErrorMessage(name + fromPyString(callOwn("errors", "why_not_run", result).get()));
    const LineInfo place = placeOf(new PythonArgument(PyRef::borrow(function)));
    if (place.isValid()) {
        setErrorFile(place.fileName());
        setErrorLine(place.lineNumber());
    }
    return false;
}

void PythonInterpreter::errorUncaught() {
    m_debugger->errorUncaught();
}

void PythonInterpreter::runFile(const QString& text, const QString& path) {
    const PyRef code = checkedReference(compile(text, path, Py_file_input));
    PyFrameObject* const frame = PyEval_GetFrame();
    const PyRef globals = frame ? checked(PyFrame_GetGlobals(frame)) : moduleNamespace();
    checked(PyEval_EvalCode(code.get(), globals.get(), globals.get()));
}

bool PythonInterpreter::isErrorOrdinary() {
    return isOrdinaryError();
}

ScriptError PythonInterpreter::takeError() {
    return takeScriptError();
}

}  // namespace Tamrix::PythonPlugin
