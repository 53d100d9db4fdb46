// What one call of a native function costs in each language, with two integers, beside a function
// of the language's own runtime, and how long a case takes to start: the first one of the process,
// with which the runtime starts, and the best of others, each behind a case that has run.
//
// The loops are scripts, bench/languages/calls.SUFFIX: each reports nanoseconds for a round of an
// empty loop, of one with a call of a function that the runtime has in C, and of one with a call of
// the native function "nothing". The best of many turns counts.

#include <QFile>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <memory>

#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"

namespace {

using Clock = std::chrono::steady_clock;

/// Each measures calls, the last one counts.
constexpr int cases = 4;

std::map<QString, double> s_reported;

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

bool now(Tamrix::ScriptContext* context) {
    context->setInt64Result(
        std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
            .count());
    return true;
}

bool report(Tamrix::ScriptContext* context) {
    s_reported[context->argument(0)->toString()] = context->argument(1)->toDouble();
    return true;
}

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Runs the language's script; false, with what is wrong on standard error, when it can't.
bool measure(const Tamrix::ScriptLanguageInformation& language) {
    const QString script = QString(TAMRIX_BENCH_SOURCE_DIR "/languages/calls.") + language.suffix;
    const Tamrix::ScriptLanguagePlugin plugin(language.pluginName);
    if (!QFile::exists(script) || !plugin.lastErrorMessage().isEmpty())
        return true;
    Tamrix::Test::FakeRunner runner;
    double firstStart = 0;
    double bestStart = std::numeric_limits<double>::max();
    for (int count = 0; count < cases; ++count) {
        const Clock::time_point start = Clock::now();
        const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
        if (!interpreter) {
            std::fprintf(stderr, "%s\n", qPrintable(plugin.lastErrorMessage()));
            return false;
        }
        interpreter->setScriptArguments(script, {});
        const double milliseconds = millisecondsSince(start);
        if (count == 0)
            firstStart = milliseconds;
        else
            bestStart = std::min(bestStart, milliseconds);
        interpreter->addNativeFunction("nothing", nothing, {}, {"a", "b"}, "Does nothing");
        interpreter->addNativeFunction("now", now, {}, {}, "Nanoseconds of a clock");
        interpreter->addNativeFunction("report", report, {"what", "nanoseconds"}, {}, "Reports");
        const QString text = QString::fromUtf8(Tamrix::Test::readFile(script));
        if (!interpreter->evaluate(text, script) || !interpreter->callFunction("main", {})) {
            std::fprintf(stderr, "%s\n", qPrintable(interpreter->errorMessage()));
            return false;
        }
    }
    const double bare = s_reported["bare"] - s_reported["empty"];
    const double call = s_reported["call"] - s_reported["empty"];
    std::printf("%-12s %10.1f %10.1f %8.2f %12.1f %12.1f\n", qPrintable(language.name), bare, call,
                call / bare, firstStart, bestStart);
    return true;
}

}  // namespace

int main() {
    setenv(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX, 1);
    std::printf("%-12s %10s %10s %8s %12s %12s\n", "", "bare, ns", "call, ns", "ratio", "first, ms",
                "next, ms");
    bool isComplete = true;
    for (const Tamrix::ScriptLanguageInformation* language :
         Tamrix::ScriptLanguageInformation::knownLanguages())
        isComplete = measure(*language) && isComplete;
    return isComplete ? 0 : 2;
}
