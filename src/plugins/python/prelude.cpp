#include "plugins/python/prelude.h"

#include "interpreter/language/prelude.h"

namespace Tamrix::PythonPlugin {

bool runPrelude(const char* name, PyObject* globals) {
    const QByteArray source = preludeSource(QStringLiteral("python/%1.py").arg(name));
    const QByteArray file = QByteArray("<tamrix ") + name + '>';
    const PyRef code =
        PyRef::steal(Py_CompileString(source.constData(), file.constData(), Py_file_input));
    if (!code || PyDict_SetItemString(globals, "__builtins__", PyEval_GetBuiltins()) < 0)
        return false;
    return bool(PyRef::steal(PyEval_EvalCode(code.get(), globals, globals)));
}

}  // namespace Tamrix::PythonPlugin
