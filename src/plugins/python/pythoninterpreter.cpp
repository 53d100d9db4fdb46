#include "plugins/python/pythoninterpreter.h"

#include <QRegularExpression>
#include <algorithm>
#include <stdexcept>

#include "plugins/python/bddactions.h"
#include "plugins/python/bddmodule.h"
#include "plugins/python/conversion.h"
#include "plugins/python/frameevaluation.h"
#include "plugins/python/globalfunctions.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/overlay.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythonruntime.h"
#include "plugins/python/scripterror.h"
#include "plugins/python/valuetypes.h"
#include "shared/resources/testresource.h"

namespace Tamrix::PythonPlugin {

PythonInterpreter* PythonInterpreter::s_active = nullptr;
std::vector<PythonInterpreter*> PythonInterpreter::s_instances;

namespace {

/// The name under which the script's module is known to Python.
constexpr const char* moduleName = "__test__";
/// Stands for the file of code that has none.
const QString noFile = QStringLiteral("<init script>");

void setAttribute(PyObject* object, const QString& name, const PyRef& value) {
    if (!value)
        throw PythonErrorSet();
    const PyRef key = checked(toPyString(pythonName(name)).release());
    checked(PyObject_SetAttr(object, key.get(), value.get()));
}

/// The line of the first NUL in the text, counted from 1; -1 without one.
int lineOfNul(const QString& text) {
    const int place = text.indexOf(QChar(0));
    return place < 0 ? -1 : text.leftRef(place).count('\n') + 1;
}

/// A NUL is an error at its line, as any other that the compiler finds.
void raiseNul(PyObject* file, int line) {
    const PyRef text = PyRef::steal(
        PyUnicode_FromFormat("line %d holds a NUL character, which no script may have", line));
    const PyRef position = PyRef::steal(Py_BuildValue("(OiOO)", file, line, Py_None, Py_None));
    const PyRef error =
        PyRef::steal(text && position ? PyObject_CallFunctionObjArgs(PyExc_SyntaxError, text.get(),
                                                                     position.get(), nullptr)
                                      : nullptr);
    if (error)
        PyErr_SetObject(PyExc_SyntaxError, error.get());
}

/// The Python class that stands for a class of the library with member functions.
PyTypeObject* classOfMembers(const QString& className) {
    return className == "ApplicationContext" ? ApplicationContextHolder::s_type : nullptr;
}

}  // namespace

PythonInterpreter::PythonInterpreter(RunnerInterface* runner)
    : Interpreter(runner), m_scriptThread(__builtin_thread_pointer()) {
    PythonRuntime::self();
    m_threadState = PyThreadState_Get();
    s_instances.push_back(this);
    s_active = this;
    m_context = std::make_unique<PythonContext>(*this);
    m_debugger = std::make_unique<PythonDebugger>(*this);
    m_bdd = std::make_unique<BddActions>(*this);
    setDebugger(m_debugger.get());
    try {
        m_context->initFunctions();
        initNativeAPI();
        publishFunctionsOfApplication();
        if (!ScriptOutput::install(&m_output))
            throw PythonErrorSet();
    } catch (const PythonErrorSet&) {
        PyErr_Print();
        // Nothing may point to an interpreter that is not made.
        setDebugger(nullptr);
        std::erase(s_instances, this);
        s_active = s_instances.empty() ? nullptr : s_instances.back();
        throw std::runtime_error("The functions of the test system can't be made known to Python");
    }
}

PythonInterpreter::~PythonInterpreter() {
    m_output.flush();
    clearCallables();
    m_bdd->clear();
    m_debugger->shutDown();
    setDebugger(nullptr);
    if (ScriptContext::current() == m_context.get())
        ScriptContext::setCurrent(nullptr);
    std::erase(s_instances, this);
    const bool last = s_instances.empty();
    if (m_module && last) {
        // Functions keep their globals alive, and these the functions.
        PyDict_Clear(PyModule_GetDict(m_module.get()));
        if (PyDict_DelItemString(PyImport_GetModuleDict(), moduleName) < 0)
            PyErr_Clear();
    }
    m_module = PyRef();
    m_skip = PyRef();
    m_originOf = PyRef();
    m_initialNames = PyRef();
    if (last) {
        PythonRuntime::self().restore();
        m_output.flush();
    }
    s_active = last ? nullptr : s_instances.back();
    if (!ScriptOutput::install(last ? nullptr : &s_active->m_output))
        PyErr_Print();
}

// Names for scripts

void PythonInterpreter::defineGlobal(const QString& name, const PyRef& value) {
    if (!value)
        throw PythonErrorSet();
    const PyRef key = checked(toPyString(pythonName(name)).release());
    checked(PyDict_SetItem(PyEval_GetBuiltins(), key.get(), value.get()));
}

void PythonInterpreter::defineInNamespace(const QString& nameSpace, const QString& name,
                                          const PyRef& value) {
    const PyRef key = checked(toPyString(nameSpace).release());
    PyRef object = PyRef::borrow(PyDict_GetItemWithError(PyEval_GetBuiltins(), key.get()));
    if (object && !PyModule_Check(object.get())) {
        // Python's own name goes on to mean what it does.
        object = checked(overlayFor(nameSpace, object.get()).release());
        addSelfDefinedVariableName(nameSpace);
    } else if (!object) {
        // A namespace is a module object: help() and dir() know what to say of it.
        object = checked(PyModule_NewObject(key.get()));
        defineGlobal(nameSpace, object);
    }
    setAttribute(object.get(), name, value);
}

void PythonInterpreter::defineMember(const QString& className, const QString& name,
                                     const PyRef& function) {
    PyTypeObject* const type = classOfMembers(className);
    if (!type) {
        qWarning("Python has no class for the member functions of %s",
                 className.toLocal8Bit().constData());
        return;
    }
    if (!function)
        throw PythonErrorSet();
    setAttribute(reinterpret_cast<PyObject*>(type), name,
                 checked(PyInstanceMethod_New(function.get())));
}

void PythonInterpreter::addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                                          const QStringList& requiredParameters,
                                          const QStringList& optionalParameters,
                                          const QString& description) {
    defineGlobal(name, makeFunction({name, {}, requiredParameters, optionalParameters, description},
                                    function));
}

void PythonInterpreter::addNativeType(const QString& name, void* typeId,
                                      const NativeScriptType& type) {
    defineGlobal(name, makeNativeClass(name, typeId, type));
}

void PythonInterpreter::initTestFunctions(TestResult* result) {
    m_context->setTestResult(result);
    m_output.setTestResult(result);
}

QString PythonInterpreter::addToSearchPath(const QFileInfo& directory) {
    return PythonRuntime::self().addToSearchPath(directory.absoluteFilePath());
}

void PythonInterpreter::setScriptArguments(const QString& scriptPath,
                                           const QStringList& arguments) {
    Interpreter::setScriptArguments(scriptPath, arguments);
    setScriptName(scriptPath);
    startScript();
    const PyRef list = toPyList(QStringList(scriptPath) + arguments);
    if (!list || PySys_SetObject("argv", list.get()) < 0)
        PyErr_Print();
    // A module that findFile() finds is the one that import finds.
    const QString error = PythonRuntime::self().setSearchPath(
        scriptSearchFolders() + QStringList(QFileInfo(scriptPath).absolutePath()));
    if (!error.isEmpty())
        qWarning("Could not set the search path: %s", error.toLocal8Bit().constData());
}

void PythonInterpreter::startScript() {
    m_exited = false;
    m_skip = PyRef();
    m_originOf = PyRef();
    clearCallables();
    m_bdd->clear();
    try {
        const PyRef names = moduleNamespace();
        if (m_initialNames)
            restoreDictionary(names.get(), m_initialNames.get());
        else
            m_initialNames = checked(PyDict_Copy(names.get()));
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
}

void PythonInterpreter::publishFunctionsOfApplication() {
    m_knownModel = Inspector::self()->model();
    publishGlobalFunctions(*this, m_knownModel);
}

// Running

PyRef PythonInterpreter::moduleNamespace() {
    if (!m_module) {
        m_module = checked(PyModule_New(moduleName));
        PyObject* const dictionary = PyModule_GetDict(m_module.get());
        checked(PyDict_SetItemString(dictionary, "__builtins__", PyEval_GetBuiltins()));
        checked(PyDict_Update(dictionary, overlays()));
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
        raiseNul(file.get(), line);
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
    if (compile(text, fileName, Py_file_input))
        return true;
    return finish(PyRef());
}

bool PythonInterpreter::evaluate(const QString& text, const QString& fileName, int, int) {
    clearError();
    // The debugger evaluates without stops, where the script stands.
    if (fileName.isEmpty() && m_debugger->debuggerMode() == Debugger::None) {
        const std::vector<ScriptFrame> frames = m_debugger->frames();
        if (!frames.empty())
            return evaluateAt(frames, text);
    }
    PyRef result;
    try {
        const PyRef names = moduleNamespace();
        const QString file = fileName.isEmpty() ? noFile : fileName;
        if (!fileName.isEmpty())
            checked(PyDict_SetItemString(names.get(), "__file__",
                                         checked(toPyString(fileName).release()).get()));
        ScriptContext::setCurrent(m_context.get());
        if (const PyRef code = compile(text, file, Py_file_input))
            result = PyRef::steal(PyEval_EvalCode(code.get(), names.get(), names.get()));
    } catch (const PythonErrorSet&) {
        // Python refused something before the script ran; its exception tells what.
    }
    return finish(result, !fileName.isEmpty());
}

bool PythonInterpreter::evaluateAt(const std::vector<ScriptFrame>& frames, const QString& text) {
    // As in the paths of variables, "^N" in front means the frame N levels outwards.
    static const QRegularExpression s_level(QStringLiteral("^\\^(\\d+)\\s"));
    const QRegularExpressionMatch level = s_level.match(text);
    bool isNumber = true;
    const std::size_t index = level.hasMatch() ? level.captured(1).toUInt(&isNumber) : 0;
    if (!isNumber || index >= frames.size()) {
        return tellEvaluation(
            fail(FailureKind::NotFound,
                 QStringLiteral("There is no frame %1 levels outwards").arg(level.captured(1))));
    }
    const QString code = text.mid(level.capturedLength());
    // A feature file has no names of its own: those of the code that runs it are meant.
    const auto frame =
        std::find_if(frames.begin() + static_cast<std::ptrdiff_t>(index), frames.end(),
                     [](const ScriptFrame& each) { return bool(each.frame); });
    return frame != frames.end() ? tellEvaluation(evaluateInFrame(*this, frame->frame.get(), code))
                                 : evaluateInScript(code);
}

bool PythonInterpreter::evaluateInScript(const QString& text) {
    return tellEvaluation(evaluateInModule(*this, moduleNamespace().get(), text));
}

bool PythonInterpreter::tellEvaluation(const Outcome<QString>& result) {
    m_output.flush();
    setResultMessage(result ? *result : result.error().text);
    if (!result)
        setErrorMessage(result.error().text);
    return bool(result);
}

PyRef PythonInterpreter::scriptFunction(const QString& name) {
    if (!m_module)
        return {};
    const PyRef key = checked(toPyString(name).release());
    PyRef function =
        PyRef::borrow(PyDict_GetItemWithError(PyModule_GetDict(m_module.get()), key.get()));
    return function && PyCallable_Check(function.get()) ? function : PyRef();
}

bool PythonInterpreter::hasFunction(const QString& name) {
    // A script that has ended through sys.exit() lacks nothing.
    return scriptFunction(name) || m_exited;
}

bool PythonInterpreter::callFunction(const QString& name, const ObjectList& arguments) {
    clearError();
    m_skip = PyRef();
    const PyRef function = scriptFunction(name);
    // After sys.exit() only the cleaning up is left to do.
    if (m_exited && (name != "cleanup" || !function))
        return true;
    if (!function) {
        setErrorMessage("The script has no function '" + name + "'");
        return false;
    }
    const PyRef tuple = PyRef::steal(PyTuple_New(static_cast<Py_ssize_t>(arguments.size())));
    for (std::size_t index = 0; tuple && index < arguments.size(); ++index)
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index),
                         ObjectHolder::wrap(arguments[index]).release());
    ScriptContext::setCurrent(m_context.get());
    const PyRef result =
        PyRef::steal(tuple ? PyObject_Call(function.get(), tuple.get(), nullptr) : nullptr);
    return finish(result) && (!result || hasRun(name, function.get(), result.get()));
}

bool PythonInterpreter::invokeFunction(const QString& name) {
    const PyRef function = scriptFunction(name);
    if (function)
        return invoke(new PythonArgument(function));
    return m_exited || failCallback("The script has no function '" + name + "'");
}

bool PythonInterpreter::callLibraryFunction(const QString& name, const QStringList& arguments) {
    clearError();
    m_skip = PyRef();
    if (m_exited)
        return true;
    ScriptContext::setCurrent(m_context.get());
    const PyRef key = toPyString(pythonName(name));
    PyObject* const function =
        key ? PyDict_GetItemWithError(PyEval_GetBuiltins(), key.get()) : nullptr;
    const PyRef list = toPyList(arguments);
    const PyRef tuple = PyRef::steal(list ? PyList_AsTuple(list.get()) : nullptr);
    if (!function && !PyErr_Occurred())
        PyErr_SetObject(PyExc_NameError, key.get());
    return finish(
        PyRef::steal(function && tuple ? PyObject_Call(function, tuple.get(), nullptr) : nullptr));
}

PythonInterpreter::Callback PythonInterpreter::callBack(PyObject* function, PyObject* arguments,
                                                        PyObject* named) {
    clearError();
    const PyRef result = PyRef::steal(PyObject_Call(function, arguments, named));
    if (!result && !isOrdinaryError())
        throw PythonErrorSet();
    const bool isPending = !result && PyErr_ExceptionMatches(pendingStepError()) != 0;
    QString name = QStringLiteral("The function");
    if (PyFunction_Check(function))
        name = fromPyString(reinterpret_cast<PyFunctionObject*>(function)->func_name);
    if (finish(result) && hasRun(name, function, result.get()))
        return Callback::Succeeded;
    // A call that was refused has come to no line.
    if (errorCallStack().empty())
        setErrorPosition(function);
    std::vector<LineInfo> stack = errorCallStack();
    for (const ScriptFrame& frame : m_debugger->frames()) {
        stack.emplace_back(frame.frame ? m_files.path(frameFileName(frame.frame.get()).get())
                                       : m_debugger->findSourceId(frame.sourceId),
                           frame.line);
    }
    setErrorCallStack(stack);
    return isPending ? Callback::Pending : Callback::Failed;
}

bool PythonInterpreter::hasRun(const QString& name, PyObject* function, PyObject* result) {
    const bool isAsync = PyCoro_CheckExact(result) || PyAsyncGen_CheckExact(result);
    if (!isAsync && !PyGen_CheckExact(result))
        return true;
    if (PyCoro_CheckExact(result)) {
        // The error tells more than the warning of a coroutine that was never awaited.
        const PyRef closed = PyRef::steal(PyObject_CallMethod(result, "close", nullptr));
        PyErr_Clear();
    }
    setErrorMessage(
        name + (isAsync ? "() is asynchronous and nothing of it has run: let a plain function call "
                          "asyncio.run()"
                        : "() is a generator and nothing of it has run: take its 'yield' away"));
    setErrorPosition(function);
    return false;
}

void PythonInterpreter::setErrorPosition(PyObject* function) {
    if (!PyFunction_Check(function))
        return;
    auto* const code = reinterpret_cast<PyCodeObject*>(PyFunction_GET_CODE(function));
    setErrorFile(m_files.path(code->co_filename));
    setErrorLine(code->co_firstlineno);
}

bool PythonInterpreter::finish(const PyRef& result, bool hasFile) {
    m_output.flush();
    if (result)
        return true;
    m_debugger->errorUncaught();
    ScriptError error = takeScriptError(&m_files);
    if (error.isExit) {
        m_exited = true;
        return true;
    }
    if (error.exception && error.exception.get() == m_originOf.get())
        error.callStack.insert(error.callStack.begin(), m_errorOrigin);
    setErrorMessage(error.message);
    setErrorIsSkip(isSkip(error.exception.get()));
    if (error.callStack.empty() || !hasFile) {
        // Code without a file has a line all the same, which tells that it failed. Where else the
        // error stands, the message tells.
        setErrorLine(error.outermostLine);
        if (!error.callStack.empty())
            setErrorMessage(QStringLiteral("%1\nin %2:%3")
                                .arg(error.message, error.callStack.front().fileName(),
                                     QString::number(error.callStack.front().lineNumber())));
        return false;
    }
    setErrorFile(error.callStack.front().fileName());
    setErrorLine(error.callStack.front().lineNumber());
    setErrorCallStack(error.callStack);
    return false;
}

}  // namespace Tamrix::PythonPlugin
