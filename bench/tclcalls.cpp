#include "tclcalls.h"

#include <tcl.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <memory>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/fakerunner.h"

namespace {

constexpr int callsPerTurn = 200000;
constexpr int turns = 40;

double s_time = 0;

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

/// Takes the nanoseconds that a loop has measured.
bool takeTime(Tamrix::ScriptContext* context) {
    s_time = context->argument(0)->toDouble();
    return true;
}

int bareNothing(void*, Tcl_Interp*, int, Tcl_Obj* const*) {
    return TCL_OK;
}

/// Makes the bare command: loaded into the interpreter as an extension would be.
int initBare(Tcl_Interp* interp) {
    Tcl_CreateObjCommand(interp, "bareNothing", bareNothing, nullptr, nullptr);
    return TCL_OK;
}

const char* const loops = R"tcl(load {} Bare
proc without {function count} {
    set start [clock microseconds]
    for {set i 0} {$i < $count} {incr i} { $function }
    takeTime [expr {1000.0 * ([clock microseconds] - $start) / $count}]
}
proc integers {function count} {
    set start [clock microseconds]
    for {set i 0} {$i < $count} {incr i} { $function 1000 2000 }
    takeTime [expr {1000.0 * ([clock microseconds] - $start) / $count}]
}
)tcl";

double turn(Tamrix::Interpreter& interpreter, const char* loop, const char* function) {
    interpreter.evaluate(
        QStringLiteral("%1 %2 %3")
            .arg(QLatin1String(loop), QLatin1String(function), QString::number(callsPerTurn)),
        QString());
    return s_time;
}

}  // namespace

void measureTclCalls() {
    Tamrix::Test::FakeRunner runner;
    runner.hasObjectModel = true;
    const Tamrix::ScriptLanguagePlugin plugin("tamrixtcl");
    const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
    if (!interpreter)
        return;
    Tamrix::Interpreter::setSelf(interpreter.get());
    interpreter->addNativeFunction("tamrixNothing", nothing, {}, {"a", "b"}, "Does nothing");
    interpreter->addNativeFunction("takeTime", takeTime, {"time"}, {}, "Takes a time");
    Tcl_StaticPackage(nullptr, "Bare", initBare, initBare);
    if (!interpreter->evaluate(loops, "loops.tcl")) {
        std::fprintf(stderr, "%s\n", interpreter->errorMessage().toUtf8().constData());
        return;
    }
    struct {
        const char* name;
        const char* function;
        double without = std::numeric_limits<double>::max();
        double integers = std::numeric_limits<double>::max();
    } candidates[] = {{"Tcl command", "bareNothing"}, {"Tamrix", "tamrixNothing"}};
    for (int count = 0; count < turns; ++count) {
        for (auto& each : candidates) {
            each.without = std::min(each.without, turn(*interpreter, "without", each.function));
            each.integers = std::min(each.integers, turn(*interpreter, "integers", each.function));
        }
    }
    std::printf("\none call in a loop of Tcl, ns\n%-14s %12s %8s %12s %8s\n", "", "no argument",
                "ratio", "two integers", "ratio");
    for (const auto& each : candidates)
        std::printf("%-14s %12.1f %8.2f %12.1f %8.2f\n", each.name, each.without,
                    each.without / candidates[0].without, each.integers,
                    each.integers / candidates[0].integers);
}
