#include "plugins/python/pythonsteps.h"

#include <QFileInfo>

#include "interpreter/language/literals.h"
#include "plugins/python/bddcontext.h"
#include "plugins/python/conversion.h"
#include "plugins/python/overlay.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/scripterror.h"

namespace Tamrix::PythonPlugin {

namespace {

/// The module that the name leads to; null when there is none. Borrowed.
PyObject* loadedModule(const QString& name) {
    const PyRef key = checkedReference(toPyString(name));
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
    const PyRef key = checkedReference(toPyString(moduleName(path)));
    PyRef module = checked(PyModule_NewObject(key.get()));
    PyObject* const names = PyModule_GetDict(module.get());
    checked(PyDict_SetItemString(names, "__builtins__", PyEval_GetBuiltins()));
    checked(PyDict_SetItemString(names, "__file__", checkedReference(toPyString(path)).get()));
    checked(PyDict_Update(names, overlays()));
    checked(PyDict_SetItem(PyImport_GetModuleDict(), key.get(), module.get()));
    return module;
}

QString pythonLiteral(const QString& text) {
    const bool isRaw = text.contains(QLatin1Char('\\')) && !text.contains(QLatin1Char('"')) &&
                       !text.endsWith(QLatin1Char('\\'));
    return isRaw ? QStringLiteral("r\"%1\"").arg(text) : literalOf(text);
}

}  // namespace

PythonSteps::PythonSteps(PythonInterpreter& interpreter)
    : StepLanguage(interpreter), m_python(interpreter) {}

std::optional<ScriptError> PythonSteps::loadFile(const QString& path, const QString& text) {
    return m_python.attempt([&] {
        const PyRef code = checkedReference(m_python.compile(text, path, Py_file_input));
        const PyRef module = makeModule(path);
        PyObject* const names = PyModule_GetDict(module.get());
        checked(PyEval_EvalCode(code.get(), names, names));
    });
}

bool PythonSteps::isLoaded(const QString& path) {
    PyObject* const module = loadedModule(QFileInfo(path).completeBaseName());
    return module && isModuleOf(module, path);
}

void PythonSteps::forgetFiles(const QStringList& paths) {
    PyObject* const modules = PyImport_GetModuleDict();
    try {
        for (const QString& path : paths) {
            const PyRef name = checkedReference(toPyString(moduleName(path)));
            if (PyDict_Contains(modules, name.get()) == 1)
                checked(PyDict_DelItem(modules, name.get()));
        }
    } catch (const PythonErrorSet&) {
        PyErr_Print();
    }
}

StepLanguage::Value PythonSteps::contextValue() {
    return new PythonArgument(PyRef::borrow(bddContext()));
}

StepLanguage::Value PythonSteps::tableValue(const Value& rows) {
    const PyRef module = checked(PyImport_ImportModule("bdd"));
    return new PythonArgument(
        checked(PyObject_CallMethod(module.get(), "_make_table", "O", pythonValue(rows).get())));
}

StepLanguage::Value PythonSteps::bigInteger(const QString& text) {
    return new PythonArgument(
        PyRef::steal(PyLong_FromString(text.toUtf8().constData(), nullptr, 10)));
}

StepLanguage::Value PythonSteps::bigDecimal(const QString& text) {
    const PyRef module = checked(PyImport_ImportModule("decimal"));
    return new PythonArgument(
        PyRef::steal(PyObject_CallMethod(module.get(), "Decimal", "s", text.toUtf8().constData())));
}

QString PythonSteps::snippetText(const StepSnippet& snippet) {
    const QStringList parameters = QStringList(QStringLiteral("context")) + snippet.parameters;
    return QStringLiteral("from bdd import %1, pending\n\n@%1(%2)\ndef %3(%4):\n    pending()\n")
        .arg(snippet.keyword, pythonLiteral(snippet.expression), snippet.functionName,
             parameters.join(QLatin1String(", ")));
}

}  // namespace Tamrix::PythonPlugin
