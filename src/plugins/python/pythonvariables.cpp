#include "plugins/python/pythonvariables.h"

#include <QSet>

#include "interpreter/language/valuepath.h"
#include "plugins/python/conversion.h"
#include "plugins/python/prelude.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"

namespace Tamrix::PythonPlugin {

PythonVariables::PythonVariables(PythonInterpreter& interpreter)
    : LanguageVariables(interpreter.debugger(), std::make_unique<PythonTexts>()),
      m_python(interpreter) {}

std::vector<LanguageVariables::Member> PythonVariables::variablesOf(int level) {
    std::vector<Member> variables;
    const std::optional<ScriptFrame> place = codeFrame(level);
    if (!place)
        return variables;
    auto* const frame = reinterpret_cast<PyFrameObject*>(frameBehind(*place));
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

LanguageVariables::Value PythonVariables::memberNamed(const Value& value, const QString& name) {
    PyObject* const own = objectOf(value);
    if (PyDict_Check(own)) {
        // Whoever writes the path may write keys in another way than they are listed.
        const QString text = name.startsWith('[') ? name : textOfPathPart(name);
        const PyRef found = callOwn("evaluation", "entry_of", own, toPyString(text));
        if (found.get() != Py_None)
            return new PythonArgument(PyRef::borrow(PyTuple_GET_ITEM(found.get(), 0)));
    }
    return LanguageVariables::memberNamed(value, name);
}

}  // namespace Tamrix::PythonPlugin
