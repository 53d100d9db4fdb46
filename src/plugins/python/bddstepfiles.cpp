#include "plugins/python/bddstepfiles.h"

#include <QDir>
#include <QFileInfo>

#include "base/utf8file.h"
#include "plugins/python/bddregistry.h"
#include "plugins/python/conversion.h"
#include "plugins/python/overlay.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/pythonruntime.h"
#include "plugins/python/scripterror.h"

namespace Tamrix::PythonPlugin {

namespace {

/// Relative to the folder of the case.
constexpr const char* folders[] = {"steps", "../shared/steps"};

/// The module that the name leads to; null when there is none. Borrowed.
PyObject* loadedModule(const QString& name) {
    const PyRef key = checked(toPyString(name).release());
    return PyDict_GetItemWithError(PyImport_GetModuleDict(), key.get());
}

/// Whether the module is that of the file.
bool isModuleOf(PyObject* module, const QString& path) {
    const PyRef file = PyRef::steal(PyObject_GetAttrString(module, "__file__"));
    PyErr_Clear();
    return file && PyUnicode_Check(file.get()) &&
           Debugger::sanitizedFilePath(fromPyString(file.get())) == path;
}

/// The name under which others can import the file, unless something else has it.
QString moduleName(const QString& path) {
    const QString name = QFileInfo(path).completeBaseName();
    PyObject* const loaded = loadedModule(name);
    return !loaded || isModuleOf(loaded, path) ? name : QStringLiteral("steps in ") + path;
}

/// A new module for the code of a file, known to Python.
PyRef makeModule(const QString& path) {
    const PyRef key = checked(toPyString(moduleName(path)).release());
    PyRef module = checked(PyModule_NewObject(key.get()));
    PyObject* const names = PyModule_GetDict(module.get());
    checked(PyDict_SetItemString(names, "__builtins__", PyEval_GetBuiltins()));
    checked(PyDict_SetItemString(names, "__file__", checked(toPyString(path).release()).get()));
    checked(PyDict_Update(names, overlays()));
    checked(PyDict_SetItem(PyImport_GetModuleDict(), key.get(), module.get()));
    return module;
}

/// While it exists, stepping does not lead into the code of files that are loaded: what a person
/// steps through is the feature. Break points stop there all the same, and what is commanded then
/// holds.
class StepsOverLoading {
public:
    explicit StepsOverLoading(Debugger& debugger)
        : m_debugger(debugger), m_mode(debugger.debuggerMode()) {
        if (m_mode == Debugger::Step || m_mode == Debugger::Next)
            m_debugger.setDebuggerMode(Debugger::Run);
    }
    ~StepsOverLoading() {
        if (m_debugger.debuggerMode() == Debugger::Run)
            m_debugger.setDebuggerMode(m_mode);
    }
    StepsOverLoading(const StepsOverLoading&) = delete;
    StepsOverLoading& operator=(const StepsOverLoading&) = delete;

private:
    Debugger& m_debugger;
    Debugger::DbgMode m_mode;
};

}  // namespace

BddStepFiles::State BddStepFiles::stateOf(const QString& path) {
    const QFileInfo info(path);
    return {info.lastModified(), info.size()};
}

QStringList BddStepFiles::files() const {
    QStringList paths;
    for (const char* const folder : folders) {
        const QDir directory(QDir::cleanPath(QDir(m_caseFolder).filePath(QLatin1String(folder))));
        const QStringList names = directory.entryList(QStringList(QStringLiteral("*.py")),
                                                      QDir::Files | QDir::Readable, QDir::Name);
        for (const QString& name : names)
            paths += Debugger::sanitizedFilePath(directory.filePath(name));
    }
    return paths;
}

QString BddStepFiles::load(const QString& featureFile) {
    const QString script = m_interpreter.scriptName();
    m_caseFolder = QFileInfo(script.isEmpty() ? featureFile : script).absolutePath();
    // What the files import of each other lies beside them.
    for (const char* const folder : folders) {
        const QFileInfo directory(
            QDir::cleanPath(QDir(m_caseFolder).filePath(QLatin1String(folder))));
        if (directory.isDir())
            m_interpreter.addToSearchPath(directory);
    }
    for (const QString& path : files()) {
        if (m_loaded.contains(path))
            continue;
        // Another file may have imported it, by which it has registered what it has.
        PyObject* const module = loadedModule(QFileInfo(path).completeBaseName());
        if (module && isModuleOf(module, path)) {
            m_loaded[path] = stateOf(path);
            continue;
        }
        const QString error = loadFile(path);
        if (!error.isEmpty())
            return error;
    }
    return {};
}

QString BddStepFiles::loadChanged() {
    for (const QString& path : files()) {
        const auto loaded = m_loaded.constFind(path);
        if (loaded != m_loaded.constEnd() && *loaded == stateOf(path))
            continue;
        const QString error = loadFile(path);
        if (!error.isEmpty())
            return error;
    }
    return {};
}

QString BddStepFiles::loadFile(const QString& path) {
    m_registry.forget(path);
    m_loaded[path] = stateOf(path);
    const Outcome<Utf8Text> content = readUtf8File(path);
    if (!content)
        return QStringLiteral("%1: %2").arg(path, content.error().text);
    if (content->faultyLine > 0)
        return QStringLiteral("%1:%2: the file is not encoded in UTF-8")
            .arg(path, QString::number(content->faultyLine));
    const StepsOverLoading stepsOver(m_interpreter.debugger());
    PyRef result;
    if (const PyRef code = m_interpreter.compile(content->text, path, Py_file_input)) {
        const PyRef module = makeModule(path);
        PyObject* const names = PyModule_GetDict(module.get());
        result = PyRef::steal(PyEval_EvalCode(code.get(), names, names));
    }
    if (result)
        return {};
    if (!isOrdinaryError())
        throw PythonErrorSet();
    const ScriptError error = takeScriptError(&m_interpreter.files());
    const LineInfo position = error.callStack.empty() ? LineInfo(path, 0) : error.callStack.front();
    return QStringLiteral("%1:%2: %3")
        .arg(position.fileName(), QString::number(position.lineNumber()), error.message);
}

}  // namespace Tamrix::PythonPlugin
