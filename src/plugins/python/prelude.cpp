#include "plugins/python/prelude.h"

#include <QHash>

#include "interpreter/language/prelude.h"
#include "plugins/python/conversion.h"

namespace Tamrix::PythonPlugin {

namespace {

/// The globals from which each file begins, made before the first script runs.
const PyRef& commonNames() {
    static const auto* const s_names = [] {
        const PyRef module = checked(PyModule_New("tamrix"));
        checked(PyModule_AddFunctions(module.get(), ownFunctions()));
        PyObject* const names = PyModule_GetDict(module.get());
        checked(PyDict_SetItemString(names, "__builtins__",
                                     checked(PyDict_Copy(PyEval_GetBuiltins())).get()));
        return new PyRef(PyRef::borrow(names));
    }();
    return *s_names;
}

}  // namespace

void runPrelude(const char* file, PyObject* globals) {
    const QByteArray source = preludeSource(QStringLiteral("python/%1.py").arg(file));
    const QByteArray shownName = QByteArray("<tamrix ") + file + '>';
    const PyRef code =
        checked(Py_CompileString(source.constData(), shownName.constData(), Py_file_input));
    // Whatever code imports asks for them.
    const PyRef key = checkedReference(toPyString(QStringLiteral("__builtins__")));
    if (!PyDict_SetDefault(globals, key.get(), PyEval_GetBuiltins()))
        throw PythonErrorSet();
    checked(PyEval_EvalCode(code.get(), globals, globals));
}

PyObject* ownName(const char* file, const char* name) {
    static auto* const s_files = new QHash<QByteArray, PyRef>;
    const auto known = s_files->constFind(QByteArray::fromRawData(file, qstrlen(file)));
    if (known != s_files->constEnd())
        return PyDict_GetItemString(known->get(), name);
    const PyRef names = checked(PyDict_Copy(commonNames().get()));
    runPrelude(file, names.get());
    s_files->insert(file, names);
    return PyDict_GetItemString(names.get(), name);
}

}  // namespace Tamrix::PythonPlugin
