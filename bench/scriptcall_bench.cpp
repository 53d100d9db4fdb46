// What one call from Python to a native function costs on the whole road: arguments to script
// values, context, the remote object model of a runner, the native function, the result. Beside it,
// in the same run, the same call to a bare C function of Python's C API, and through pybind11 where
// that is installed.
//
// Times are nanoseconds for one round of a loop "for _ in repeat: function(...)", the best of many
// interleaved turns: the fastest turn is the one that nothing else on the machine disturbed.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#ifdef TAMRIX_HAVE_PYBIND11
#include <pybind11/pybind11.h>
#endif

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/fakerunner.h"

namespace {

constexpr int callsPerTurn = 200000;
constexpr int turns = 40;

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

PyObject* bareNothing(PyObject*, PyObject* const*, Py_ssize_t) {
    Py_RETURN_NONE;
}

PyMethodDef bareDefinition = {"bareNothing",
                              reinterpret_cast<PyCFunction>(reinterpret_cast<void*>(bareNothing)),
                              METH_FASTCALL, nullptr};

const char* const loops = R"(
from itertools import repeat
from time import perf_counter_ns

def empty(function, count):
    start = perf_counter_ns()
    for _ in repeat(None, count):
        pass
    return perf_counter_ns() - start

def without(function, count):
    start = perf_counter_ns()
    for _ in repeat(None, count):
        function()
    return perf_counter_ns() - start

def integers(function, count):
    start = perf_counter_ns()
    for _ in repeat(None, count):
        function(1000, 2000)
    return perf_counter_ns() - start
)";

struct Candidate {
    const char* name;
    PyObject* without;
    PyObject* integers;
    double bestWithout = std::numeric_limits<double>::max();
    double bestIntegers = std::numeric_limits<double>::max();
};

double turn(PyObject* loop, PyObject* function) {
    PyObject* const time = PyObject_CallFunction(loop, "Oi", function, callsPerTurn);
    if (!time) {
        PyErr_Print();
        std::exit(2);
    }
    const double nanoseconds = PyLong_AsDouble(time) / callsPerTurn;
    Py_DECREF(time);
    return nanoseconds;
}

}  // namespace

int main() {
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX);
    Tamrix::Test::FakeRunner runner;
    runner.hasObjectModel = true;
    const Tamrix::ScriptLanguagePlugin plugin("tamrixpython-3");
    const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
    if (!interpreter) {
        std::fprintf(stderr, "%s\n", plugin.lastErrorMessage().toUtf8().constData());
        return 2;
    }
    interpreter->addNativeFunction("tamrixNothing", nothing, {}, {"a", "b"}, "Does nothing");
    if (!interpreter->evaluate(loops, "loops.py")) {
        std::fprintf(stderr, "%s\n", interpreter->errorMessage().toUtf8().constData());
        return 2;
    }
    PyObject* const module = PyDict_GetItemString(PyImport_GetModuleDict(), "__test__");
    const auto loop = [module](const char* name) { return PyObject_GetAttrString(module, name); };
    PyObject* const empty = loop("empty");
    PyObject* const without = loop("without");
    PyObject* const integers = loop("integers");

    PyObject* const road = PyDict_GetItemString(PyEval_GetBuiltins(), "tamrixNothing");
    PyObject* const bare = PyCFunction_New(&bareDefinition, nullptr);
    std::vector<Candidate> candidates{{"METH_FASTCALL", bare, bare}, {"Tamrix", road, road}};
#ifdef TAMRIX_HAVE_PYBIND11
    const pybind11::cpp_function boundWithout([] {});
    const pybind11::cpp_function boundIntegers([](long long, long long) {});
    candidates.push_back({"pybind11", boundWithout.ptr(), boundIntegers.ptr()});
#endif

    double bestEmpty = std::numeric_limits<double>::max();
    for (int count = 0; count < turns; ++count) {
        bestEmpty = std::min(bestEmpty, turn(empty, bare));
        for (Candidate& candidate : candidates) {
            candidate.bestWithout =
                std::min(candidate.bestWithout, turn(without, candidate.without));
            candidate.bestIntegers =
                std::min(candidate.bestIntegers, turn(integers, candidate.integers));
        }
    }

    std::printf("one call in a loop, ns (the empty loop: %.1f)\n", bestEmpty);
    std::printf("%-14s %12s %8s %12s %8s\n", "", "no argument", "ratio", "two integers", "ratio");
    for (const Candidate& candidate : candidates)
        std::printf("%-14s %12.1f %8.2f %12.1f %8.2f\n", candidate.name, candidate.bestWithout,
                    candidate.bestWithout / candidates.front().bestWithout, candidate.bestIntegers,
                    candidate.bestIntegers / candidates.front().bestIntegers);
    return 0;
}
