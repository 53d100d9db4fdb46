#include "plugins/python/pythonruntime.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "base/blocking.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "plugins/python/bddmodule.h"
#include "plugins/python/conversion.h"
#include "plugins/python/exceptions.h"
#include "plugins/python/frames.h"
#include "plugins/python/globalfunctions.h"
#include "plugins/python/methodtype.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/overlay.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/remotesystem.h"
#include "plugins/python/valuetypes.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Debian's interpreter: its name decides where Python looks for its library, whatever stands first
/// in PATH.
constexpr const wchar_t* programName = L"" TAMRIX_PYTHON_EXECUTABLE;

void check(const PyStatus& status) {
    if (PyStatus_Exception(status))
        throw std::runtime_error(status.err_msg ? status.err_msg : "Python can't be started");
}

/// The configured home of Python; empty for the one that belongs to the interpreter.
QString configuredHome() {
    const ScriptLanguageInformation* language =
        ScriptLanguageInformation::forLanguage(Interpreter::Python);
    return language ? language->home.filePath() : QString();
}

void startPython() {
    PyPreConfig preConfig;
    PyPreConfig_InitPythonConfig(&preConfig);
    // Files and streams are UTF-8 whatever the locale says.
    preConfig.utf8_mode = 1;
    check(Py_PreInitialize(&preConfig));

    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    struct Clear {
        PyConfig* config;
        ~Clear() { PyConfig_Clear(config); }
    } const clear{&config};
    config.parse_argv = 0;
    // No cache folders among the suite's scripts.
    config.write_bytecode = 0;
    check(PyConfig_SetString(&config, &config.program_name, programName));
    const QString home = configuredHome();
    if (!home.isEmpty())
        check(PyConfig_SetString(&config, &config.home, home.toStdWString().c_str()));
    check(Py_InitializeFromConfig(&config));
}

/// Functions that scripts registered with atexit run while the process still has its streams.
void runExitFunctions() {
    if (!Py_IsInitialized())
        return;
    const PyRef atexit = PyRef::steal(PyImport_ImportModule("atexit"));
    const PyRef result = PyRef::steal(
        atexit ? PyObject_CallMethod(atexit.get(), "_run_exitfuncs", nullptr) : nullptr);
    if (!result)
        PyErr_Print();
}

/// Other threads of the script run while its own one waits. Every other thread of the process, and
/// the time outside of test cases, has nothing to give up.
void runWithoutLock(void (*work)(void* data), void* data) {
    const PythonInterpreter* const interpreter = PythonInterpreter::active();
    const bool isHeld = interpreter && interpreter->isScriptThread() && PyGILState_Check();
    PyThreadState* const state = isHeld ? PyEval_SaveThread() : nullptr;
    work(data);
    if (state)
        PyEval_RestoreThread(state);
}

PyRef import(const char* name) {
    return checked(PyImport_ImportModule(name));
}

PyRef get(const PyRef& object, const char* name) {
    return checked(PyObject_GetAttrString(object.get(), name));
}

/// The handlers of the signals below those that are ours, by number. None is one that is not
/// Python's.
PyRef signalHandlers() {
    const PyRef module = import("signal");
    PyRef handlers = checked(PyDict_New());
    for (int signal = 1; signal < SIGRTMIN; ++signal) {
        const PyRef number = checked(PyLong_FromLong(signal));
        const PyRef handler =
            PyRef::steal(PyObject_CallMethod(module.get(), "getsignal", "O", number.get()));
        // Some numbers are no signals.
        if (handler)
            PyDict_SetItem(handlers.get(), number.get(), handler.get());
        PyErr_Clear();
    }
    return handlers;
}

void restoreSignalHandlers(PyObject* before) {
    const PyRef module = import("signal");
    const PyRef now = signalHandlers();
    PyObject* number = nullptr;
    PyObject* handler = nullptr;
    for (Py_ssize_t position = 0; PyDict_Next(now.get(), &position, &number, &handler) != 0;) {
        PyObject* const wanted = PyDict_GetItem(before, number);
        if (!wanted || wanted == handler)
            continue;
        // One that is not Python's comes back with the state of the process.
        if (wanted == Py_None)
            checked(PyObject_CallMethod(module.get(), "signal", "Oi", number, 0));
        else
            checked(PyObject_CallMethod(module.get(), "signal", "OO", number, wanted));
    }
}

PyRef environment() {
    return get(import("os"), "environ");
}

PyRef copyOfEnvironment() {
    return checked(PyObject_CallMethod(environment().get(), "copy", nullptr));
}

/// An attribute that is text; empty when there is none.
QString textAttribute(PyObject* object, const char* name) {
    const PyRef text = PyRef::steal(object ? PyObject_GetAttrString(object, name) : nullptr);
    PyErr_Clear();
    return text && PyUnicode_Check(text.get()) ? fromPyString(text.get()) : QString();
}

bool isBuiltIn(PyObject* module) {
    const PyRef moduleSpec = PyRef::steal(PyObject_GetAttrString(module, "__spec__"));
    PyErr_Clear();
    const QString origin = textAttribute(moduleSpec.get(), "origin");
    return origin == "built-in" || origin == "frozen";
}

/// Whether a module belongs to Python's library. Such modules stay: they would only be loaded
/// again. The others are the suite's own, folders of it, and stand-ins that a script made.
bool isOfLibrary(PyObject* modules, PyObject* name, CodeFiles& files) {
    PyObject* const module = PyDict_GetItemWithError(modules, name);
    if (!module)
        return false;
    const PyRef file = PyRef::steal(PyObject_GetAttrString(module, "__file__"));
    PyErr_Clear();
    if (file && PyUnicode_Check(file.get()))
        return !files.isScript(file.get());
    if (isBuiltIn(module))
        return true;
    // The library makes some modules by hand, below the one that makes them.
    const QString fullName = PyUnicode_Check(name) ? fromPyString(name) : QString();
    const int point = fullName.lastIndexOf('.');
    if (point < 0)
        return false;
    const PyRef parent = checkedReference(toPyString(fullName.left(point)));
    return isOfLibrary(modules, parent.get(), files);
}

}  // namespace

void restoreDictionary(PyObject* dictionary, PyObject* snapshot) {
    const PyRef keys = checked(PyDict_Keys(dictionary));
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(keys.get()); ++index) {
        PyObject* const key = PyList_GET_ITEM(keys.get(), index);
        if (PyDict_Contains(snapshot, key) == 0)
            checked(PyDict_DelItem(dictionary, key));
    }
    checked(PyDict_Update(dictionary, snapshot));
}

PythonRuntime& PythonRuntime::self() {
    // Never destroyed: objects of Python live on after static destruction has begun.
    static auto* const s_instance = new PythonRuntime;
    return *s_instance;
}

PythonRuntime::PythonRuntime() {
    startPython();
    try {
        m_module = checked(PyImport_AddModule("tamrix") ? Py_NewRef(PyImport_AddModule("tamrix"))
                                                        : nullptr);
        if (!addTamrixModule() || !addBddModule())
            throw PythonErrorSet();
        takeSnapshot();
    } catch (const PythonErrorSet&) {
        PyErr_Print();
        throw std::runtime_error("Python started but could not be set up");
    }
    std::atexit(runExitFunctions);
    BlockingSection::setLock(runWithoutLock);
}

bool PythonRuntime::addTamrixModule() {
    return PyModule_SetDocString(m_module.get(), "Exceptions and types of the test system") == 0 &&
           addExceptions(m_module.get()) && addValueTypes(m_module.get()) &&
           addObjectType(m_module.get()) && addMethodType(m_module.get()) &&
           addGlobalFunctionType(m_module.get()) && addNativeBase(m_module.get()) &&
           addOverlays(m_module.get()) && addRemoteSystem(m_module.get());
}

void PythonRuntime::takeSnapshot() {
    m_path = checked(PyList_AsTuple(PySys_GetObject("path")));
    m_builtins = checked(PyDict_Copy(PyEval_GetBuiltins()));
    m_modules = checked(PyDict_Copy(PyImport_GetModuleDict()));
    m_environment = copyOfEnvironment();
    m_signalHandlers = signalHandlers();
    m_recursionLimit = Py_GetRecursionLimit();
}

QString PythonRuntime::addToSearchPath(const QString& directory) {
    return changeSearchPath(m_searchPath + QStringList(directory));
}

QString PythonRuntime::setSearchPath(const QStringList& directories) {
    return changeSearchPath(directories + m_searchPath);
}

QString PythonRuntime::changeSearchPath(QStringList directories) {
    directories.removeDuplicates();
    PyObject* const path = PySys_GetObject("path");
    if (!path || !PyList_Check(path))
        return QStringLiteral("sys.path is no list");
    const PyRef entries = toPyList(directories);
    if (!entries || PyList_SetSlice(path, 0, m_searchPath.size(), entries.get()) < 0) {
        PyErr_Clear();
        return QStringLiteral("sys.path can't be changed");
    }
    m_searchPath = directories;
    return {};
}

void PythonRuntime::restore() {
    try {
        PyEval_SetTrace(nullptr, nullptr);
        PyEval_SetProfile(nullptr, nullptr);
        Py_SetRecursionLimit(m_recursionLimit);
        // Module path and arguments.
        const PyRef path = checked(PySequence_List(m_path.get()));
        checked(PySys_SetObject("path", path.get()));
        const PyRef arguments = checked(Py_BuildValue("[s]", ""));
        checked(PySys_SetObject("argv", arguments.get()));
        m_searchPath.clear();
        // Hooks.
        for (const char* name : {"excepthook", "displayhook", "unraisablehook"})
            checked(
                PySys_SetObject(name, PySys_GetObject(("__" + std::string(name) + "__").c_str())));
        checked(PySys_SetObject("stdin", PySys_GetObject("__stdin__")));
        // Names that every module sees.
        restoreDictionary(PyEval_GetBuiltins(), m_builtins.get());
        dropOverlays();
        // The environment.
        const PyRef current = copyOfEnvironment();
        const int same = PyObject_RichCompareBool(current.get(), m_environment.get(), Py_EQ);
        checked(same);
        if (same == 0) {
            checked(PyObject_CallMethod(environment().get(), "clear", nullptr));
            checked(PyObject_CallMethod(environment().get(), "update", "O", m_environment.get()));
            checked(PyObject_CallMethod(import("time").get(), "tzset", nullptr));
        }
        // What Ctrl-C and other signals do.
        restoreSignalHandlers(m_signalHandlers.get());
        dropImportedModules();
        PyGC_Collect();
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
}

void PythonRuntime::dropImportedModules() {
    PyObject* const modules = PyImport_GetModuleDict();
    // What stands under another name than it did before is put right as well.
    checked(PyDict_Update(modules, m_modules.get()));
    CodeFiles files;
    const PyRef names = checked(PyDict_Keys(modules));
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(names.get()); ++index) {
        PyObject* const name = PyList_GET_ITEM(names.get(), index);
        if (PyDict_Contains(m_modules.get(), name) == 0 && !isOfLibrary(modules, name, files))
            checked(PyDict_DelItem(modules, name));
    }
    // Files may be others when they are looked for again.
    checked(PyObject_CallMethod(import("importlib").get(), "invalidate_caches", nullptr));
}

}  // namespace Tamrix::PythonPlugin
