#include "plugins/python/codefacts.h"

#include <algorithm>
#include <memory>

namespace Tamrix::PythonPlugin {

namespace {

void deleteFacts(void* facts) {
    delete static_cast<CodeFacts*>(facts);
}

/// The place of the facts among what is kept at code objects.
Py_ssize_t placeOfFacts() {
    static const Py_ssize_t s_place = _PyEval_RequestCodeExtraIndex(deleteFacts);
    if (s_place < 0) {
        PyErr_SetString(PyExc_RuntimeError, "There is no room for a debugger at code objects");
        throw PythonErrorSet();
    }
    return s_place;
}

}  // namespace

bool CodeFacts::hasBreakPoint(int line) const {
    return std::find(breakLines.begin(), breakLines.end(), line) != breakLines.end();
}

CodeFacts& factsOf(PyCodeObject* code) {
    auto* const object = reinterpret_cast<PyObject*>(code);
    void* known = nullptr;
    if (_PyCode_GetExtra(object, placeOfFacts(), &known) == 0 && known)
        return *static_cast<CodeFacts*>(known);
    auto facts = std::make_unique<CodeFacts>();
    checked(_PyCode_SetExtra(object, placeOfFacts(), facts.get()));
    return *facts.release();
}

}  // namespace Tamrix::PythonPlugin
