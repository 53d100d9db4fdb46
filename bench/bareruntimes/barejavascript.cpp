#include <js/CompilationAndEvaluation.h>
#include <js/CompileOptions.h>
#include <js/Conversions.h>
#include <js/Initialization.h>
#include <js/RealmOptions.h>
#include <js/SourceText.h>
#include <jsapi.h>

#include <cstring>

#include "bareruntime.h"

namespace Tamrix::Bench {

namespace {

bool nothing(JSContext*, unsigned count, JS::Value* values) {
    JS::CallArgsFromVp(count, values).rval().setUndefined();
    return true;
}

bool plus(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    if (!arguments.requireAtLeast(context, "plus", 2))
        return false;
    if (!arguments[0].isInt32() || !arguments[1].isInt32()) {
        JS_ReportErrorASCII(context, "plus takes two integers");
        return false;
    }
    const double left = arguments[0].toInt32();
    arguments.rval().setNumber(left + arguments[1].toInt32());
    return true;
}

bool now(JSContext*, unsigned count, JS::Value* values) {
    JS::CallArgsFromVp(count, values).rval().setNumber(static_cast<double>(nanosecondsNow()));
    return true;
}

bool report(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    if (!arguments.requireAtLeast(context, "report", 2) || !arguments[1].isNumber())
        return false;
    JS::RootedString name(context, JS::ToString(context, arguments[0]));
    const JS::UniqueChars what = name ? JS_EncodeStringToUTF8(context, name) : nullptr;
    if (!what)
        return false;
    keepReport(what.get(), arguments[1].toNumber());
    return true;
}

constexpr JSClass globalClass = {
    "global", JSCLASS_GLOBAL_FLAGS, &JS::DefaultGlobalClassOps, nullptr, nullptr, nullptr};

void evaluate(JSContext* context, const char* text) {
    JS::CompileOptions options(context);
    options.setFileAndLine("calls.js", 1);
    JS::SourceText<mozilla::Utf8Unit> source;
    JS::RootedValue result(context);
    if (!source.init(context, text, std::strlen(text), JS::SourceOwnership::Borrowed) ||
        !JS::Evaluate(context, options, source, &result))
        giveUp("The script has failed in JavaScript");
}

}  // namespace

void runBareJavaScript(const char* script, const std::function<void()>& onStarted) {
    if (!JS_Init())
        giveUp("The script engine can't be started");
    JSContext* const context = JS_NewContext(JS::DefaultHeapMaxBytes);
    if (!context || !JS::InitSelfHostedCode(context))
        giveUp("The script engine can't be set up");
    JS::RootedObject global(
        context, JS_NewGlobalObject(context, &globalClass, nullptr, JS::FireOnNewGlobalHook,
                                    JS::RealmOptions()));
    if (!global)
        giveUp("The script engine has no memory");
    const JSAutoRealm inside(context, global);
    onStarted();
    JS_DefineFunction(context, global, "nothing", nothing, 0, 0);
    JS_DefineFunction(context, global, "plus", plus, 2, 0);
    JS_DefineFunction(context, global, "now", now, 0, 0);
    JS_DefineFunction(context, global, "report", report, 2, 0);
    evaluate(context, script);
    evaluate(context, "main()");
}

}  // namespace Tamrix::Bench
