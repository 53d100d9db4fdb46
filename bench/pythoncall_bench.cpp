// What one call from Python to a native function costs on the whole road: arguments to script
// values, context, the remote object model of a runner, the native function, the result. Beside it,
// in the same run, the same call to a bare C function of Python's C API, and through pybind11 where
// that is installed.
//
// Then what a property and a global function of an application cost: of objects in this process,
// where nothing but the road is measured, and of an agent on another thread, beside the same
// request without a script.
//
// Times are nanoseconds for one round of a loop "for _ in repeat: function(...)", the best of many
// interleaved turns: the fastest turn is the one that nothing else on the machine disturbed.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#ifdef TAMRIX_HAVE_PYBIND11
#include <pybind11/pybind11.h>
#endif

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/remotemodel.h"
#include "support/fakeagent.h"
#include "support/fakerunner.h"
#include "support/inmemorymodel.h"

namespace {

constexpr int callsPerTurn = 200000;
constexpr int turns = 40;
constexpr int requestsPerTurn = 2000;

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

def text(function, count):
    button = theButton()
    start = perf_counter_ns()
    for _ in repeat(None, count):
        button.text
    return perf_counter_ns() - start

def clicks(function, count):
    button = theButton()
    start = perf_counter_ns()
    for _ in repeat(None, count):
        click(button)
    return perf_counter_ns() - start
)";

struct Candidate {
    const char* name;
    PyObject* without;
    PyObject* integers;
    double bestWithout = std::numeric_limits<double>::max();
    double bestIntegers = std::numeric_limits<double>::max();
};

double turn(PyObject* loop, PyObject* function, int calls = callsPerTurn) {
    PyObject* const time = PyObject_CallFunction(loop, "Oi", function, calls);
    if (!time) {
        PyErr_Print();
        std::exit(2);
    }
    const double nanoseconds = PyLong_AsDouble(time) / calls;
    Py_DECREF(time);
    return nanoseconds;
}

// Objects

constexpr char clickParameters[] = "object[, x, y][, button][, modifiers]";

Tamrix::SharedPtr<Tamrix::Object> s_button;

bool theButton(Tamrix::ScriptContext* context) {
    context->setObjectResult(s_button);
    return true;
}

/// The class of the button, and that of the global functions.
void describe(Tamrix::Class* button, Tamrix::Class* global) {
    button->addProperty("text", "QString");
    global->addMethod("click", Tamrix::Signature({Tamrix::Argument("Object")}))
        .describe(clickParameters, "Clicks the object");
}

/// An application with a button, in this process.
struct OwnApplication {
    OwnApplication() {
        describe(model.objectClass("QPushButton"), model.editableGlobalClass());
        button = model.addObject("QPushButton", "ok");
        button->setProperty("text", QVariant("OK"));
        model.onCall = [](const auto&, const auto&, const auto&) {
            return Tamrix::Inspector::self()->createObject(QVariant());
        };
    }

    Tamrix::InMemoryModel model;
    Tamrix::SharedPtr<Tamrix::InMemoryObject> button;
};

void answer(Tamrix::Test::FakeAgent& agent, const Tamrix::Wire::Frame& frame) {
    using namespace Tamrix::Wire;
    switch (frame.type) {
        case MessageType::TopLevelObjects:
            agent.reply(frame, encode(ObjectInfoList{{7, "QPushButton", "ok"}}));
            break;
        case MessageType::DescribeClass: {
            Text name;
            decode(frame.body, &name);
            ClassInfo info;
            info.name = name.text;
            if (name.text == "QPushButton")
                info.properties = {{"text", "QString", true}};
            else
                info.methods = {
                    {"click", "void", {"Object"}, clickParameters, "Clicks the object"}};
            agent.reply(frame, encode(info));
            break;
        }
        case MessageType::ReadProperty:
            agent.reply(frame, encode(Value{"OK"}));
            break;
        case MessageType::Invoke:
            agent.reply(frame, encode(Value()));
            break;
        default:
            agent.reply(frame);
    }
}

/// An application with a button, on another thread.
struct OtherApplication {
    OtherApplication()
        : agent(Tamrix::Test::FakeAgent::serving(answer)),
          connection(std::make_shared<Tamrix::AgentConnection>(agent.runnerDescriptor(),
                                                               Tamrix::Test::FakeAgent::token)) {
        connection->waitForHello(20000);
    }

    Tamrix::Test::FakeAgent agent;
    std::shared_ptr<Tamrix::AgentConnection> connection;
};

/// Nanoseconds for one of many calls of `work`.
double plainTurn(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    for (int count = 0; count < requestsPerTurn; ++count)
        work();
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
    return time.count() / requestsPerTurn;
}

/// Makes what follows of an application: the model, and its one object for scripts.
void choose(Tamrix::Interpreter* interpreter, Tamrix::ObjectModel* model) {
    Tamrix::Inspector::self()->setModel(model);
    s_button = Tamrix::Inspector::self()->topLevelObjects().front();
    // The interpreter notices the application at the next call.
    interpreter->evaluate("theButton()", QString());
}

struct ObjectTimes {
    double script = std::numeric_limits<double>::max();
    double plain = std::numeric_limits<double>::max();
};

/// The bare call goes first in each turn.
void measureObjects(Tamrix::Interpreter* interpreter, PyObject* text, PyObject* clicks,
                    PyObject* without, PyObject* bare) {
    OwnApplication own;
    choose(interpreter, &own.model);
    double bareTime = std::numeric_limits<double>::max();
    double textTime = bareTime;
    double clickTime = bareTime;
    for (int count = 0; count < turns; ++count) {
        bareTime = std::min(bareTime, turn(without, bare));
        textTime = std::min(textTime, turn(text, bare, callsPerTurn / 10));
        clickTime = std::min(clickTime, turn(clicks, bare, callsPerTurn / 10));
    }
    std::printf("\nobjects in this process, ns\n%-14s %12s %8s\n", "", "one", "ratio");
    for (const auto& [name, time] :
         {std::pair("METH_FASTCALL", bareTime), std::pair("object.text", textTime),
          std::pair("click(object)", clickTime)})
        std::printf("%-14s %12.1f %8.2f\n", name, time, time / bareTime);

    OtherApplication other;
    Tamrix::RemoteModel model(other.connection);
    choose(interpreter, &model);
    const Tamrix::Property property("text");
    const Tamrix::Method method("click", Tamrix::Signature());
    ObjectTimes texts;
    ObjectTimes calls;
    for (int count = 0; count < turns; ++count) {
        texts.plain = std::min(texts.plain, plainTurn([&] { property.get(s_button); }));
        texts.script = std::min(texts.script, turn(text, bare, requestsPerTurn));
        calls.plain =
            std::min(calls.plain, plainTurn([&] { (void)method.invoke({}, {s_button}); }));
        calls.script = std::min(calls.script, turn(clicks, bare, requestsPerTurn));
    }
    std::printf("\nobjects of an agent, ns\n%-14s %12s %12s %8s\n", "", "bare request", "script",
                "ratio");
    for (const auto& [name, times] :
         {std::pair("object.text", texts), std::pair("click(object)", calls)})
        std::printf("%-14s %12.1f %12.1f %8.3f\n", name, times.plain, times.script,
                    times.script / times.plain);
    s_button.reset();
    Tamrix::Inspector::self()->setModel(nullptr);
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
    interpreter->addNativeFunction("theButton", theButton, {}, {}, "The button");
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
    measureObjects(interpreter.get(), loop("text"), loop("clicks"), without, bare);
    return 0;
}
