#include "plugins/python/pythoninterpreter.h"

#include <stdexcept>

#include "plugins/python/bddmodule.h"
#include "plugins/python/conversion.h"
#include "plugins/python/frameevaluation.h"
#include "plugins/python/globalfunctions.h"
#include "plugins/python/nativeclasses.h"
#include "plugins/python/nativefunction.h"
#include "plugins/python/overlay.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythonruntime.h"
#include "plugins/python/pythonsteps.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/scripterror.h"
#include "plugins/python/scriptstreams.h"
#include "plugins/python/valuetypes.h"

namespace Tamrix::PythonPlugin {

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
    : LanguageInterpreter(runner, Python) {
    PythonRuntime::self();
    m_threadState = PyThreadState_Get();
    m_context = std::make_unique<PythonContext>(*this);
    m_debugger = std::make_unique<PythonDebugger>(*this);
    try {
        begin(std::make_unique<PythonSteps>(*this));
        if (!installStreams(&output())) {
            end();
            throw PythonErrorSet();
        }
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
    m_skip = PyRef();
    m_originOf = PyRef();
    m_initialNames = PyRef();
    if (last) {
        PythonRuntime::self().restore();
        output().flush();
    }
    leaveActive();
    if (!installStreams(last ? nullptr : &active()->output()))
        PyErr_Print();
}

LanguageDebugger& PythonInterpreter::languageDebugger() {
    return *m_debugger;
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
    defineGlobal(name,
                 makeFunction({context(),
                               {name, {}, requiredParameters, optionalParameters, description},
                               function}));
}

void PythonInterpreter::addNativeType(const QString& name, void* typeId,
                                      const NativeScriptType& type) {
    defineGlobal(name, makeNativeClass(context(), name, typeId, type));
}

QString PythonInterpreter::addToSearchPath(const QFileInfo& directory) {
    return PythonRuntime::self().addToSearchPath(directory.absoluteFilePath());
}

void PythonInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names)
        publishGlobalFunction(*this, name);
}

void PythonInterpreter::startScript(const QString& path, const QStringList& arguments,
                                    const QStringList& folders) {
    m_skip = PyRef();
    m_originOf = PyRef();
    try {
        const PyRef names = moduleNamespace();
        if (m_initialNames)
            restoreDictionary(names.get(), m_initialNames.get());
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
    if (failure.isSkip)
        m_skip = exception;
    if (failure.origin.line >= 0) {
        m_originOf = exception;
        m_errorOrigin =
            LineInfo(m_debugger->findSourceId(failure.origin.sourceId), failure.origin.line);
    }
    m_debugger->errorReplaced(exception.get(), failure.text);
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

bool PythonInterpreter::runScript(const QString& text, const QString& fileName) {
    PyRef result;
    try {
        const PyRef names = moduleNamespace();
        const QString file = fileName.isEmpty() ? noFile : fileName;
        if (!fileName.isEmpty())
            checked(PyDict_SetItemString(names.get(), "__file__",
                                         checked(toPyString(fileName).release()).get()));
        if (const PyRef code = compile(text, file, Py_file_input))
            result = PyRef::steal(PyEval_EvalCode(code.get(), names.get(), names.get()));
    } catch (const PythonErrorSet&) {
        // Python refused something before the script ran; its exception tells what.
    }
    return finish(result, !fileName.isEmpty());
}

Outcome<QString> PythonInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    return frame ? evaluateInFrame(*this, frameBehind(*frame), code)
                 : evaluateInModule(*this, moduleNamespace().get(), code);
}

SharedPtr<ScriptArgument> PythonInterpreter::scriptFunction(const QString& name) {
    if (!m_module)
        return {};
    const PyRef key = checked(toPyString(name).release());
    const PyRef function =
        PyRef::borrow(PyDict_GetItemWithError(PyModule_GetDict(m_module.get()), key.get()));
    if (!function || !PyCallable_Check(function.get()))
        return {};
    return new PythonArgument(function);
}

SharedPtr<ScriptArgument> PythonInterpreter::libraryFunction(const QString& name) {
    const PyRef key = checked(toPyString(pythonName(name)).release());
    const PyRef function = PyRef::borrow(PyDict_GetItemWithError(PyEval_GetBuiltins(), key.get()));
    if (!function)
        return {};
    return new PythonArgument(function);
}

PythonInterpreter::CallEnd PythonInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                                   const CallArguments& arguments,
                                                   const QString& name, bool isCallback) {
    if (!isCallback)
        m_skip = PyRef();
    const PyRef callee = pythonValue(function);
    const PyRef tuple = checked(PyTuple_New(static_cast<Py_ssize_t>(arguments.positional.size())));
    for (std::size_t index = 0; index < arguments.positional.size(); ++index)
        PyTuple_SET_ITEM(tuple.get(), static_cast<Py_ssize_t>(index),
                         pythonValue(arguments.positional[index]).release());
    const PyRef named = checked(PyDict_New());
    for (const auto& [parameter, value] : arguments.named)
        checked(PyDict_SetItem(named.get(), checked(toPyString(parameter).release()).get(),
                               pythonValue(value).get()));
    const PyRef result = PyRef::steal(PyObject_Call(callee.get(), tuple.get(), named.get()));
    if (!result && isCallback && !isOrdinaryError())
        throw PythonErrorSet();
    const bool isPending = !result && PyErr_ExceptionMatches(pendingStepError()) != 0;
    QString shownName = name;
    if (name.isEmpty())
        shownName = PyFunction_Check(callee.get())
                        ? fromPyString(reinterpret_cast<PyFunctionObject*>(callee.get())->func_name)
                        : QStringLiteral("The function");
    if (finish(result) && (!result || hasRun(shownName, callee.get(), result.get())))
        return CallEnd::Succeeded;
    return isPending ? CallEnd::Pending : CallEnd::Failed;
}

std::vector<LineInfo> PythonInterpreter::interruptedStack() {
    // The script may have let go of the interpreter's lock, as in a wait.
    const PyGILState_STATE state = PyGILState_Ensure();
    std::vector<LineInfo> stack = LanguageInterpreter::interruptedStack();
    PyGILState_Release(state);
    return stack;
}

LineInfo PythonInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    const PyRef callee = pythonValue(function);
    if (!PyFunction_Check(callee.get()))
        return {};
    auto* const code = reinterpret_cast<PyCodeObject*>(PyFunction_GET_CODE(callee.get()));
    return LineInfo(m_files.path(code->co_filename), code->co_firstlineno);
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
    const LineInfo place = placeOf(new PythonArgument(PyRef::borrow(function)));
    if (place.isValid()) {
        setErrorFile(place.fileName());
        setErrorLine(place.lineNumber());
    }
    return false;
}

bool PythonInterpreter::finish(const PyRef& result, bool hasFile) {
    if (result)
        return succeed();
    output().flush();
    m_debugger->errorUncaught();
    PythonError error = takeScriptError(&m_files);
    if (error.exception && error.exception.get() == m_originOf.get())
        error.callStack.insert(error.callStack.begin(), m_errorOrigin);
    error.isSkip = isSkip(error.exception.get());
    return failWith(error, hasFile);
}

}  // namespace Tamrix::PythonPlugin
