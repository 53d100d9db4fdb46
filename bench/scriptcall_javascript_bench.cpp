// What one call from JavaScript to a native function costs on the whole road, as scriptcall_bench
// measures it for Python: beside it the same call to a bare native function of the engine, in a
// context of its own on another thread.
//
// Times are nanoseconds for one round of a loop, the best of many turns.

#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/GlobalObject.h>
#include <js/Initialization.h>
#include <js/RealmOptions.h>
#include <js/SourceText.h>
#include <jsapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <thread>

#include "base/environment.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/bridge/scriptlanguage.h"
#include "support/fakerunner.h"

namespace {

constexpr int callsPerTurn = 200000;
constexpr int turns = 40;

const char* const loops = R"(
function without() { for (let i = 0; i < 200000; ++i) nothing(); }
function integers() { for (let i = 0; i < 200000; ++i) nothing(1000, 2000); }
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

bool bareNothing(JSContext*, unsigned count, JS::Value* values) {
    JS::CallArgsFromVp(count, values).rval().setUndefined();
    return true;
}

constexpr JSClass globalClass = {
    "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};

Times measureBare() {
    JSContext* const context = JS_NewContext(JS::DefaultHeapMaxBytes);
    JS::InitSelfHostedCode(context);
    Times times;
    {
        JS::RootedObject global(
            context, JS_NewGlobalObject(context, &globalClass, nullptr, JS::FireOnNewGlobalHook,
                                        JS::RealmOptions()));
        const JSAutoRealm inside(context, global);
        JS_DefineFunction(context, global, "nothing", bareNothing, 0, 0);
        JS::CompileOptions options(context);
        JS::SourceText<mozilla::Utf8Unit> text;
        JS::RootedValue ignored(context);
        if (text.init(context, loops, std::strlen(loops), JS::SourceOwnership::Borrowed) &&
            JS::Evaluate(context, options, text, &ignored))
            times = measure([&](const char* function) {
                JS_CallFunctionName(context, global, function, JS::HandleValueArray::empty(),
                                    &ignored);
            });
    }
    JS_DestroyContext(context);
    return times;
}

bool nothing(Tamrix::ScriptContext*) {
    return true;
}

}  // namespace

int main() {
    Tamrix::Environment::setVariable(Tamrix::prefixVariable, TAMRIX_BENCH_PREFIX);
    Tamrix::Test::FakeRunner runner;
    runner.hasObjectModel = true;
    const Tamrix::ScriptLanguagePlugin plugin("tamrixjavascript");
    const auto start = std::chrono::steady_clock::now();
    std::unique_ptr<Tamrix::Interpreter> interpreter(plugin.interpreter(&runner));
    const auto started = std::chrono::steady_clock::now();
    if (!interpreter) {
        std::fprintf(stderr, "%s\n", plugin.lastErrorMessage().toUtf8().constData());
        return 2;
    }
    interpreter->addNativeFunction("nothing", nothing, {}, {"a", "b"}, "Does nothing");
    if (!interpreter->evaluate(loops, "loops.js"))
        return 2;
    const Times road = measure(
        [&](const char* function) { interpreter->callFunction(function, Tamrix::ObjectList()); });
    Times bare;
    std::thread([&] { bare = measureBare(); }).join();

    interpreter.reset();
    const auto again = std::chrono::steady_clock::now();
    interpreter.reset(plugin.interpreter(&runner));
    const auto startedAgain = std::chrono::steady_clock::now();
    const auto milliseconds = [](auto from, auto to) {
        return std::chrono::duration<double, std::milli>(to - from).count();
    };

    std::printf("one call in a loop, ns\n%-14s %12s %8s %12s %8s\n", "", "no argument", "ratio",
                "two integers", "ratio");
    for (const auto& [name, times] : {std::pair("bare", bare), std::pair("Tamrix", road)})
        std::printf("%-14s %12.1f %8.2f %12.1f %8.2f\n", name, times.without,
                    times.without / bare.without, times.integers, times.integers / bare.integers);
    std::printf("\nstart of an interpreter, ms: %.1f with the engine, %.1f without\n",
                milliseconds(start, started), milliseconds(again, startedAgain));
    return 0;
}
