#include "plugins/python/pythonruntime.h"

#include <cstdlib>
#include <stdexcept>

#include "base/blocking.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "plugins/python/conversion.h"
#include "plugins/python/exceptions.h"
#include "plugins/python/methodtype.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/objecttype.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythoninterpreter.h"
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

/// A module that scripts can import; borrowed.
PyObject* newModule(const char* name) {
    PyObject* const module = PyImport_AddModule(name);
    return module ? module : throw PythonErrorSet();
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

}  // namespace

PythonRuntime& PythonRuntime::self() {
    // Never destroyed: objects of Python live on after static destruction has begun.
    static auto* const s_instance = new PythonRuntime;
    return *s_instance;
}

PythonRuntime::PythonRuntime() {
    startPython();
    try {
        fillModule(newModule("tamrix"));
        runPrelude("bdd", PyModule_GetDict(newModule("bdd")));
        // Nothing of it has to be read when there is an error, or no memory.
        ownName("errors", "tell");
        // What tells the suite's files from others is there before imports ask for it.
        ownName("state", "LIBRARY_FOLDERS");
        ownName("overlay", "overlays");
        m_state = callOwn("state", "State");
        m_recursionLimit = Py_GetRecursionLimit();
    } catch (const PythonErrorSet&) {
        PyErr_Print();
        throw std::runtime_error("Python started but could not be set up");
    }
    std::atexit(runExitFunctions);
    BlockingSection::setLock(runWithoutLock);
}

void PythonRuntime::fillModule(PyObject* module) {
    checked(PyModule_SetDocString(module, "Exceptions and types of the test system"));
    addValueTypes(module);
    addObjectType(module);
    addMethodType(module);
    addNativeBase(module);
    ownName("library", "Error");
    findExceptions(module);
    PyObject* const names = PyModule_GetDict(module);
    runPrelude("remotesystem", names);
    checked(PyDict_SetItemString(PyEval_GetBuiltins(), "RemoteSystem",
                                 PyDict_GetItemString(names, "RemoteSystem")));
}

QString PythonRuntime::addToSearchPath(const QString& directory) {
    return changeSearchPath("add_search_folder", toPyString(directory));
}

QString PythonRuntime::setSearchPath(const QStringList& directories) {
    return changeSearchPath("set_search_folders", toPyList(directories));
}

QString PythonRuntime::changeSearchPath(const char* method, const PyRef& folders) {
    const PyRef problem =
        PyRef::steal(PyObject_CallMethod(m_state.get(), method, "O", folders.get()));
    if (problem)
        return fromPyString(problem.get());
    PyErr_Clear();
    return QStringLiteral("sys.path can't be changed");
}

void PythonRuntime::restore() {
    PyEval_SetTrace(nullptr, nullptr);
    PyEval_SetProfile(nullptr, nullptr);
    Py_SetRecursionLimit(m_recursionLimit);
    PyDict_Clear(ownName("overlay", "overlays"));
    if (!PyRef::steal(PyObject_CallMethod(m_state.get(), "restore", nullptr)))
        PyErr_Print();
    PyGC_Collect();
}

}  // namespace Tamrix::PythonPlugin
