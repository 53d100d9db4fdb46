// What one call of a native function costs in each language, without arguments and with two
// integers that it adds, beside the same functions as people write them in that language's C
// interface (bareruntimes/), and how long a case takes to start: the first one of the process, with
// which the runtime starts, and the best of others, each behind a case that has run.
//
// The loops are scripts, bench/languages/calls.SUFFIX, which run in a bare runtime and in ours,
// each in a process of its own, by turns: a script reports nanoseconds for a round of an empty
// loop, of one that calls `nothing`, and of one that calls `plus`. The best of all turns counts.
//
// scriptcall_bench [LANGUAGE]

#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <string_view>

#include "bareruntimes/bareruntime.h"
#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int rounds = 3;
/// In each process; each measures calls.
constexpr int cases = 4;
constexpr double never = std::numeric_limits<double>::max();

/// Nanoseconds of a round of each loop, milliseconds of a start.
struct Times {
    double empty = never;
    double nothing = never;
    double plus = never;
    double firstStart = never;
    double nextStart = never;

    void takeBest(const Times& other) {
        empty = std::min(empty, other.empty);
        nothing = std::min(nothing, other.nothing);
        plus = std::min(plus, other.plus);
        firstStart = std::min(firstStart, other.firstStart);
        nextStart = std::min(nextStart, other.nextStart);
    }
};

/// Of this process.
Times s_times;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

}  // namespace

namespace Tamrix::Bench {

long long nanosecondsNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now().time_since_epoch())
        .count();
}

void keepReport(const char* what, double nanoseconds) {
    const std::string_view name(what);
    double& time = name == "empty"     ? s_times.empty
                   : name == "nothing" ? s_times.nothing
                                       : s_times.plus;
    time = std::min(time, nanoseconds);
}

void giveUp(const char* text) {
    std::fprintf(stderr, "%s\n", text);
    _exit(2);
}

}  // namespace Tamrix::Bench

namespace {

using namespace Tamrix::Bench;

// Native functions

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

bool plus(Tamrix::ScriptContext* context) {
    if (context->argumentCount() != 2 || !context->argument(0)->isInteger() ||
        !context->argument(1)->isInteger()) {
        context->setError("plus() takes two integers");
        return false;
    }
    context->setInt64Result(context->argument(0)->toInt() + context->argument(1)->toInt());
    return true;
}

bool now(Tamrix::ScriptContext* context) {
    context->setInt64Result(nanosecondsNow());
    return true;
}

bool report(Tamrix::ScriptContext* context) {
    keepReport(context->argument(0)->toString().toUtf8().constData(),
               context->argument(1)->toDouble());
    return true;
}

/// What is measured of a language.
struct Language {
    const char* suffix;
    RunBare runBare;
};

constexpr Language languages[] = {
    {"py", runBarePython},
#ifdef TAMRIX_HAVE_JAVASCRIPT
    {"js", runBareJavaScript},
#endif
#ifdef TAMRIX_HAVE_TCL
    {"tcl", runBareTcl},
#endif
#ifdef TAMRIX_HAVE_PERL
    {"pl", runBarePerl},
#endif
#ifdef TAMRIX_HAVE_RUBY
    {"rb", runBareRuby},
#endif
};

void runOurs(const Tamrix::ScriptLanguageInformation& language, const QString& script) {
    const Tamrix::ScriptLanguagePlugin plugin(language.pluginName);
    Tamrix::Test::FakeRunner runner;
    runner.hasObjectModel = true;
    for (int count = 0; count < cases; ++count) {
        const Clock::time_point start = Clock::now();
        const std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
        if (!interpreter)
            giveUp(qPrintable(plugin.lastErrorMessage()));
        interpreter->setScriptArguments(script, {});
        double& time = count == 0 ? s_times.firstStart : s_times.nextStart;
        time = std::min(time, millisecondsSince(start));
        interpreter->addNativeFunction("nothing", nothing, {}, {}, "Does nothing");
        interpreter->addNativeFunction("plus", plus, {"left", "right"}, {}, "Adds");
        interpreter->addNativeFunction("now", now, {}, {}, "Nanoseconds of a clock");
        interpreter->addNativeFunction("report", report, {"what", "nanoseconds"}, {}, "Reports");
        const QString text = QString::fromUtf8(Tamrix::Test::readFile(script));
        if (!interpreter->evaluate(text, script) || !interpreter->callFunction("main", {}))
            giveUp(qPrintable(interpreter->errorMessage()));
    }
}

void runBare(const Language& language, const QString& script) {
    const Clock::time_point start = Clock::now();
    language.runBare(Tamrix::Test::readFile(script).constData(),
                     [start] { s_times.firstStart = millisecondsSince(start); });
}

/// What `work` measures in a process of its own.
Times timesOf(const std::function<void()>& work) {
    int ends[2];
    if (pipe(ends) != 0)
        giveUp("There is no pipe");
    const pid_t child = fork();
    if (child == 0) {
        work();
        const bool isTold = write(ends[1], &s_times, sizeof s_times) == sizeof s_times;
        // Without what runtimes do at the end of a process.
        _exit(isTold ? 0 : 2);
    }
    close(ends[1]);
    Times times;
    const bool isThere = read(ends[0], &times, sizeof times) == sizeof times;
    close(ends[0]);
    waitpid(child, nullptr, 0);
    if (!isThere)
        std::exit(2);
    return times;
}

void measure(const Language& language, const Tamrix::ScriptLanguageInformation& information) {
    const QString script = TAMRIX_BENCH_SOURCE_DIR "/languages/calls." + information.suffix;
    Times bare;
    Times ours;
    for (int round = 0; round < rounds; ++round) {
        bare.takeBest(timesOf([&] { runBare(language, script); }));
        ours.takeBest(timesOf([&] { runOurs(information, script); }));
    }
    const double bareNothing = bare.nothing - bare.empty;
    const double barePlus = bare.plus - bare.empty;
    const double ourNothing = ours.nothing - ours.empty;
    const double ourPlus = ours.plus - ours.empty;
    std::printf("%-10s %8.1f %7.1f %6.2f  %8.1f %7.1f %6.2f  %8.1f %7.1f %7.1f\n",
                qPrintable(information.name), bareNothing, ourNothing, ourNothing / bareNothing,
                barePlus, ourPlus, ourPlus / barePlus, bare.firstStart, ours.firstStart,
                ours.nextStart);
    std::fflush(stdout);
}

}  // namespace

int main(int count, char** arguments) {
    setenv(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX, 1);
    std::printf("%-10s %-24s %-24s %s\n", "", "   no argument, ns", "   two integers, ns",
                "  start of a case, ms");
    std::printf("%-10s %8s %7s %6s  %8s %7s %6s  %8s %7s %7s\n", "", "bare", "ours", "ratio",
                "bare", "ours", "ratio", "bare", "first", "next");
    std::fflush(stdout);
    for (const Tamrix::ScriptLanguageInformation* information :
         Tamrix::ScriptLanguageInformation::knownLanguages()) {
        const auto* const language = std::find_if(
            std::begin(languages), std::end(languages), [information](const Language& each) {
                return information->suffix == QLatin1String(each.suffix);
            });
        if (language != std::end(languages) &&
            (count < 2 || information->name == QLatin1String(arguments[1])))
            measure(*language, *information);
    }
    return 0;
}
