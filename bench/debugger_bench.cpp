// What a script costs while a debugger looks on: a loop of a million lines in mode Run with a break
// point in another file, in another function of its file, and in the function itself, where no line
// of the loop has it. Beside it, in the same run, the same loop without a debugger and under `bdb`
// of Python's standard library with the same break point.
//
// Then how long the listing of a list of 100,000 elements takes, and that of slow values.
//
// Times are milliseconds, the best of several interleaved turns.

#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "base/environment.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "interpreter/debugger/frontend.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/scriptedfrontend.h"

namespace {

using Tamrix::Debugger;

constexpr int turns = 7;

/// Each round of a loop has four lines.
const char* const loops = R"(
def lines(count):
    total = 0
    for number in range(count):
        half = number & 1
        total += half
        total ^= number
    return total

def one(number):
    half = number & 1
    return half

def calls(count):
    total = 0
    for number in range(count):
        total += one(number)
    return total

def elsewhere():
    return 1  # line 21

def here(count):
    total = 0
    for number in range(count):
        half = number & 1
        total += half
        total ^= number
    return total  # line 29

import bdb

class Peer(bdb.Bdb):
    """Goes on from the line at which it stops first."""
    def user_line(self, frame):
        self.set_continue()

def withBdb(function, count, file, line):
    peer = Peer()
    peer.set_break(file, line)
    def begin():
        pass
        function(count)
    peer.runcall(begin)

def withBdbFromTheFirstLine(function, count, file, line):
    peer = Peer()
    peer.set_break(file, line)
    peer.runcall(function, count)

large = list(range(100000))

class Slow:
    def __repr__(self):
        while True: pass

slow = [Slow() for _ in range(100)]

def look():
    lookAround()
)";

PyObject* attribute(const char* name) {
    PyObject* const module = PyDict_GetItemString(PyImport_GetModuleDict(), "__test__");
    return PyObject_GetAttrString(module, name);
}

/// Milliseconds of a call, the reference to whose arguments is given away.
double timeOf(PyObject* function, PyObject* arguments) {
    const auto start = std::chrono::steady_clock::now();
    PyObject* const result = PyObject_Call(function, arguments, nullptr);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (!result) {
        PyErr_Print();
        std::exit(2);
    }
    Py_DECREF(result);
    Py_DECREF(arguments);
    return time.count();
}

/// Goes on to the next break point.
class GoingOn : public Tamrix::Test::ScriptedFrontEnd {
public:
    void stopped(const Tamrix::ScriptPosition&, const Tamrix::StopReason&) override {
        Debugger::self()->setDebuggerMode(Debugger::Run);
    }
};

struct Row {
    const char* name;
    const char* function;
    int count;
    /// Of the break point.
    QString file;
    int line;
    /// Stops at the function's first line before it goes on.
    bool isFromFirstLine = false;
    double without = std::numeric_limits<double>::max();
    double debugged = without;
    double byBdb = without;
};

void measure(Row& row, Debugger& debugger) {
    PyObject* const function = attribute(row.function);
    const QByteArray file = row.file.toUtf8();
    row.without = std::min(row.without, timeOf(function, Py_BuildValue("(i)", row.count)));

    const int id = debugger.findSourceId(row.file);
    if (id > 0)
        debugger.setBreakPoint(row.line, id, true);
    else
        debugger.bufferBreakPoint(row.file, row.line);
    debugger.setInteractive(true);
    debugger.setDebuggerMode(row.isFromFirstLine ? Debugger::Step : Debugger::Run);
    row.debugged = std::min(row.debugged, timeOf(function, Py_BuildValue("(i)", row.count)));
    debugger.setInteractive(false);
    if (id > 0)
        debugger.setBreakPoint(row.line, id, false);

    row.byBdb =
        std::min(row.byBdb,
                 timeOf(attribute(row.isFromFirstLine ? "withBdbFromTheFirstLine" : "withBdb"),
                        Py_BuildValue("(Oisi)", function, row.count, file.constData(), row.line)));
}

/// The time of one listing, of which the connections to applications have no part.
double listingTime(Debugger& debugger, const char* path) {
    const auto start = std::chrono::steady_clock::now();
    const std::size_t count = debugger.variables(path).size();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (count == 0)
        std::printf("nothing is listed for %s\n", path);
    return time.count();
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX);
    const QTemporaryDir folder;
    const QString file = folder.filePath("loops.py");
    const QString other = folder.filePath("other.py");
    Tamrix::Test::writeFile(file, loops);
    Tamrix::Test::writeFile(other, "first = 1\nsecond = 2\n");

    Tamrix::Test::FakeRunner runner;
    const Tamrix::ScriptLanguagePlugin plugin("tamrixpython-3");
    const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
    if (!interpreter) {
        std::fprintf(stderr, "%s\n", plugin.lastErrorMessage().toUtf8().constData());
        return 2;
    }
    interpreter->addNativeFunction(
        "lookAround",
        [](Tamrix::ScriptContext*) {
            Debugger& debugger = *Debugger::self();
            std::printf("\nlistings, ms\n");
            for (const char* path : {"", "large", "large.@99800", "slow"})
                std::printf("%-14s %8.2f\n", path, listingTime(debugger, path));
            return true;
        },
        {}, {}, "Lists variables");
    Debugger& debugger = *interpreter->debugger();
    debugger.setFrontEnd(std::make_unique<GoingOn>());
    debugger.setInteractive(true);
    if (!interpreter->evaluate(loops, file)) {
        std::fprintf(stderr, "%s\n", interpreter->errorMessage().toUtf8().constData());
        return 2;
    }
    debugger.setInteractive(false);

    constexpr int rounds = 250000;
    std::vector<Row> rows{
        {"lines, break point in another file", "lines", rounds, other, 2},
        {"the same from the first line on", "lines", rounds, other, 2, true},
        {"calls, break point in another file", "calls", rounds, other, 2},
        {"lines, in another function", "lines", rounds, file, 21},
        {"calls, in another function", "calls", rounds, file, 21},
        {"lines, in the function", "here", rounds, file, 29},
    };
    for (int turn = 0; turn < turns; ++turn) {
        for (Row& row : rows)
            measure(row, debugger);
    }
    std::printf("%-36s %8s %9s %7s %8s %7s\n", "", "without", "debugged", "ratio", "bdb", "ratio");
    for (const Row& row : rows)
        std::printf("%-36s %8.1f %9.1f %7.2f %8.1f %7.3f\n", row.name, row.without, row.debugged,
                    row.debugged / row.without, row.byBdb, row.debugged / row.byBdb);

    interpreter->callFunction("look", Tamrix::ObjectList());
    return 0;
}
