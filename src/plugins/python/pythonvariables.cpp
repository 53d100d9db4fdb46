#include "plugins/python/pythonvariables.h"

#include <QSet>

#include "interpreter/language/valuepath.h"
#include "plugins/python/conversion.h"
#include "plugins/python/pythondebugger.h"
#include "plugins/python/pythoninterpreter.h"
#include "plugins/python/scriptcall.h"
#include "plugins/python/valuemembers.h"

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
    PyRef found = PythonPlugin::memberNamed(pythonValue(value).get(), name);
    if (!found)
        return {};
    return new PythonArgument(std::move(found));
}

}  // namespace Tamrix::PythonPlugin
