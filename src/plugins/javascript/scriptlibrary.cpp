#include "plugins/javascript/scriptlibrary.h"

#include <js/Conversions.h>
#include <jsfriendapi.h>

#include <QStringList>

#include "interpreter/language/prelude.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/jobqueue.h"
#include "plugins/javascript/stepfunctions.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

QString joinedTexts(const JS::CallArgs& arguments) {
    QStringList texts;
    for (unsigned index = 0; index < arguments.length(); ++index)
        texts.append(textOf(arguments[index]));
    return texts.join(' ');
}

template <ScriptOutput::Stream stream>
JS::Value writeLine(const JS::CallArgs& arguments) {
    const QString line = joinedTexts(arguments);
    auto* const interpreter = JavaScriptInterpreter::active();
    // Each line of it is one of the results.
    for (const QString& part : {line, QStringLiteral("\n")}) {
        if (interpreter)
            interpreter->output().write(stream, part);
        else
            ScriptOutput::writeToProcess(stream, part);
    }
    return JS::UndefinedValue();
}

JS::Value setTimer(const JS::CallArgs& arguments) {
    JSContext* const context = engineContext();
    if (!arguments.get(0).isObject() || !JS::IsCallable(&arguments[0].toObject()))
        throwBuiltIn("TypeError", QStringLiteral("setTimeout() requires a function"));
    double milliseconds = 0;
    checked(arguments.length() < 2 || JS::ToNumber(context, arguments[1], &milliseconds));
    JS::RootedObject function(context, &arguments[0].toObject());
    return JS::Int32Value(Engine::self().jobs().addTimer(function, milliseconds));
}

JS::Value clearTimer(const JS::CallArgs& arguments) {
    if (arguments.get(0).isInt32())
        Engine::self().jobs().removeTimer(arguments[0].toInt32());
    return JS::UndefinedValue();
}

/// Text as it is, without an end of line.
JS::Value writeText(const JS::CallArgs& arguments) {
    const QString text = fromJsString(checked(JS::ToString(engineContext(), arguments.get(0))));
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->output().write(ScriptOutput::Stdout, text);
    return JS::UndefinedValue();
}

bool exitScript(JSContext* context, unsigned count, JS::Value* values) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    int status = 0;
    if (!JS::ToInt32(context, arguments.get(0), &status))
        return false;
    return Engine::self().exitNow(status);
}

constexpr NativeRow ownFunctions[] = {{"write", native<writeText>}, {"exit", exitScript}};

constexpr NativeRow consoleFunctions[] = {
    {"log", native<writeLine<ScriptOutput::Stdout>>},
    {"info", native<writeLine<ScriptOutput::Stdout>>},
    {"debug", native<writeLine<ScriptOutput::Stdout>>},
    {"warn", native<writeLine<ScriptOutput::Stderr>>},
    {"error", native<writeLine<ScriptOutput::Stderr>>},
};

constexpr NativeRow globalFunctions[] = {
    {"print", native<writeLine<ScriptOutput::Stdout>>},
    {"setTimeout", native<setTimer>},
    {"clearTimeout", native<clearTimer>},
};

}  // namespace

JSObject* addScriptLibrary(JS::HandleObject global) {
    JSContext* const context = engineContext();
    JS::RootedObject console(context, checked(JS_NewPlainObject(context)));
    defineFunctions(console, consoleFunctions);
    defineProperty(global, QStringLiteral("console"), JS::ObjectValue(*console), 0);
    defineFunctions(global, globalFunctions);
    addStepFunctions(global);

    JS::RootedValue function(
        context,
        evaluateOwn(QString::fromUtf8(preludeSource("javascript/library.js")), "<tamrix>"));
    JS::RootedObject scopes(context, checked(JS_NewPlainObject(context)));
    addScopeFunctions(scopes);
    JS::RootedObject own(context, checked(JS_NewPlainObject(context)));
    defineFunctions(own, ownFunctions, JSPROP_ENUMERATE);
    JS::RootedValueArray<2> arguments(context);
    arguments[0].setObject(*scopes);
    arguments[1].setObject(*own);
    JS::RootedValue made(context);
    checked(JS::Call(context, JS::UndefinedHandleValue, function, arguments, &made));
    return &made.toObject();
}

}  // namespace Tamrix::JavaScriptPlugin
