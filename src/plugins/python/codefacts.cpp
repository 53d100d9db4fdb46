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

std::vector<int> linesOf(PyCodeObject* code) {
    std::vector<int> lines;
    const PyRef table =
        checked(PyObject_CallMethod(reinterpret_cast<PyObject*>(code), "co_lines", nullptr));
    const PyRef ranges = checked(PySequence_List(table.get()));
    for (Py_ssize_t index = 0; index < PyList_GET_SIZE(ranges.get()); ++index) {
        // Start, end and line, which is None for instructions that belong to no line.
        PyObject* const line = PyTuple_GET_ITEM(PyList_GET_ITEM(ranges.get(), index), 2);
        if (line != Py_None)
            lines.push_back(static_cast<int>(PyLong_AsLong(line)));
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    return lines;
}

}  // namespace Tamrix::PythonPlugin
