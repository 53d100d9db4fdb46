// What one call from Perl to a native function costs on the whole road, as scriptcall_bench
// measures it for Python: beside it the same call to a bare function of Perl's C interface, in a
// runtime of its own.
//
// Times are nanoseconds for one round of a loop, the best of many turns.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>

#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "plugins/perl/perlheaders.h"
#include "support/fakerunner.h"

namespace {

constexpr int callsPerTurn = 200000;
constexpr int turns = 40;

const char* const loops = R"(
sub without { for my $i (1 .. 200000) { nothing() } }
sub integers { for my $i (1 .. 200000) { nothing(1000, 2000) } }
1;
)";

struct Times {
    double without = std::numeric_limits<double>::max();
    double integers = std::numeric_limits<double>::max();
};

Times measure(const std::function<void(const char*)>& call) {
    const auto turn = [&](const char* function) {
        const auto start = std::chrono::steady_clock::now();
        call(function);
        const std::chrono::duration<double, std::nano> time =
            std::chrono::steady_clock::now() - start;
        return time.count() / callsPerTurn;
    };
    Times best;
    for (int count = 0; count < turns; ++count) {
        best.without = std::min(best.without, turn("without"));
        best.integers = std::min(best.integers, turn("integers"));
    }
    return best;
}

void bareNothing(pTHX_ CV* cv) {
    dXSARGS;
    PERL_UNUSED_VAR(cv);
    PERL_UNUSED_VAR(items);
    XSRETURN_EMPTY;
}

/// Before the plug-in is there, whose hooks are in the operations of all runtimes.
Times measureBare() {
    PerlInterpreter* const my_perl = perl_alloc();
    PERL_SET_CONTEXT(my_perl);
    perl_construct(my_perl);
    static char s_name[] = "bare";
    static char s_option[] = "-e";
    static char s_text[] = "0";
    static char* s_arguments[] = {s_name, s_option, s_text, nullptr};
    perl_parse(my_perl, nullptr, 3, s_arguments, nullptr);
    newXS("main::nothing", bareNothing, __FILE__);
    eval_pv(loops, 1);
    const Times times = measure([&](const char* function) {
        dSP;
        PUSHMARK(SP);
        call_pv(function, G_DISCARD | G_NOARGS);
    });
    perl_destruct(my_perl);
    perl_free(my_perl);
    return times;
}

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

}  // namespace

int main(int count, char** arguments, char** variables) {
    PERL_SYS_INIT3(&count, &arguments, &variables);
    const Times bare = measureBare();
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX);
    Tamrix::Test::FakeRunner runner;
    runner.hasObjectModel = true;
    const Tamrix::ScriptLanguagePlugin plugin("tamrixperl");
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
    const auto started = std::chrono::steady_clock::now();
    if (!interpreter) {
        std::fprintf(stderr, "%s\n", plugin.lastErrorMessage().toUtf8().constData());
        return 2;
    }
    interpreter->addNativeFunction("nothing", nothing, {}, {"a", "b"}, "Does nothing");
    if (!interpreter->evaluate(loops, "loops.pl"))
        return 2;
    const Times road = measure(
        [&](const char* function) { interpreter->callFunction(function, Tamrix::ObjectList()); });

    std::printf("one call in a loop, ns\n%-14s %12s %8s %12s %8s\n", "", "no argument", "ratio",
                "two integers", "ratio");
    for (const auto& [name, times] : {std::pair("bare", bare), std::pair("Tamrix", road)})
        std::printf("%-14s %12.1f %8.2f %12.1f %8.2f\n", name, times.without,
                    times.without / bare.without, times.integers, times.integers / bare.integers);
    std::printf("\nstart of an interpreter with a runtime of its own, ms: %.1f\n",
                std::chrono::duration<double, std::milli>(started - start).count());
    return 0;
}
