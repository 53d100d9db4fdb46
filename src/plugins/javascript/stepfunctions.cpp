#include "plugins/javascript/stepfunctions.h"

#include <js/Array.h>
#include <js/Conversions.h>
#include <js/RegExp.h>
#include <js/RegExpFlags.h>

#include <string>
#include <vector>

#include "interpreter/language/stepactions.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/values.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

[[noreturn]] void refuse(const QString& text) {
    raiseBuiltIn("TypeError", text);
    throw ScriptErrorSet();
}

/// Runs `work` with the interpreter and the arguments of a call. What it refuses is thrown.
template <typename Work>
bool withInterpreter(const char* function, unsigned count, JS::Value* values, Work work) {
    const JS::CallArgs arguments = JS::CallArgsFromVp(count, values);
    return guarded([&] { return QString::fromLatin1(function); },
                   [&] {
                       JavaScriptInterpreter* const interpreter = JavaScriptInterpreter::active();
                       if (!interpreter)
                           refuse(QStringLiteral("%1() was called while no test case runs")
                                      .arg(QLatin1String(function)));
                       arguments.rval().setUndefined();
                       try {
                           work(*interpreter, arguments);
                       } catch (const Gherkin::ExpressionError& error) {
                           raiseBuiltIn("Error", QString::fromUtf8(error.what()));
                           return false;
                       }
                       return true;
                   });
}

std::string textOfArgument(JS::HandleValue value) {
    return fromJsString(value.toString()).toStdString();
}

SharedPtr<ScriptArgument> functionOf(JS::HandleValue value) {
    if (!value.isObject() || !JS::IsCallable(&value.toObject()))
        refuse(QStringLiteral("what is registered has to be a function"));
    return argumentOf(value);
}

Gherkin::ScriptLocation locationOf(JavaScriptInterpreter& interpreter,
                                   const SharedPtr<ScriptArgument>& function) {
    LineInfo place = interpreter.placeOf(function);
    if (!place.isValid())
        interpreter.context().lineInfoOfFrame(place, 0);
    return {place.fileName().toStdString(), place.lineNumber()};
}

// Expressions

constexpr struct {
    std::uint8_t flag;
    char letter;
} regularFlags[] = {{JS::RegExpFlag::IgnoreCase, 'i'},
                    {JS::RegExpFlag::Multiline, 'm'},
                    {JS::RegExpFlag::DotAll, 's'}};

bool isRegExp(JS::HandleValue value) {
    JSContext* const context = engineContext();
    bool holds = false;
    if (value.isObject()) {
        JS::RootedObject object(context, &value.toObject());
        checked(JS::ObjectIsRegExp(context, object, &holds));
    }
    return holds;
}

/// The pattern of a regular expression, with its flags in front.
std::string patternOf(JS::HandleValue value) {
    JSContext* const context = engineContext();
    if (!isRegExp(value))
        refuse(QStringLiteral("a step is given as a text or as a regular expression"));
    JS::RootedObject object(context, &value.toObject());
    // Whether letters are those of Unicode is no question here.
    std::uint8_t rest = JS::GetRegExpFlags(context, object).value() & ~JS::RegExpFlag::Unicode;
    std::string letters;
    for (const auto& row : regularFlags) {
        if (rest & row.flag)
            letters += row.letter;
        rest &= ~row.flag;
    }
    if (rest != 0)
        refuse(QStringLiteral("steps know the flags i, m, s and u of regular expressions only"));
    const std::string pattern =
        fromJsString(checked(JS::GetRegExpSource(context, object))).toStdString();
    return letters.empty() ? pattern : "(?" + letters + ")" + pattern;
}

bool defineStep(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter(
        "Step", count, values,
        [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
            const SharedPtr<ScriptArgument> function = functionOf(arguments.get(1));
            const bool isRegular = !arguments[0].isString();
            interpreter.steps().registry().addStep(
                isRegular ? patternOf(arguments[0]) : textOfArgument(arguments[0]), isRegular,
                function, locationOf(interpreter, function));
        });
}

/// A hook for all, or with a tag expression in front.
template <Gherkin::HookType type, Gherkin::HookOrder order>
bool defineHook(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter(
        "hook", count, values,
        [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
            const bool hasTags = arguments.get(0).isString();
            const SharedPtr<ScriptArgument> function = functionOf(arguments.get(hasTags ? 1 : 0));
            interpreter.steps().registry().addHook(
                type, order, hasTags ? textOfArgument(arguments[0]) : std::string(), function,
                QString::fromStdString(locationOf(interpreter, function).fileName));
        });
}

bool defineParameterType(JSContext* context, unsigned count, JS::Value* values) {
    return withInterpreter(
        "ParameterType", count, values,
        [context](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
            if (!arguments.get(0).isString())
                refuse(QStringLiteral("ParameterType(name, pattern[, transformer])"));
            JS::RootedValueVector patterns(context);
            bool isArray = false;
            if (arguments.get(1).isObject())
                checked(JS::IsArrayObject(context, arguments[1], &isArray));
            if (isArray) {
                JS::RootedObject array(context, &arguments[1].toObject());
                elementsOf(array, &patterns);
            } else {
                checked(patterns.append(arguments.get(1)));
            }
            std::vector<std::string> texts;
            for (std::size_t index = 0; index < patterns.length(); ++index)
                texts.push_back(patterns[index].isString() ? textOfArgument(patterns[index])
                                                           : patternOf(patterns[index]));
            interpreter.steps().registry().addParameterType(
                textOfArgument(arguments[0]), std::move(texts),
                arguments.get(2).isNullOrUndefined() ? SharedPtr<ScriptArgument>()
                                                     : functionOf(arguments[2]));
        });
}

bool pending(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter(
        "pending", count, values, [](JavaScriptInterpreter&, const JS::CallArgs& arguments) {
            raisePendingStep(arguments.get(0).isString()
                                 ? fromJsString(arguments[0].toString())
                                 : QStringLiteral("the step definition is to be written"));
            throw ScriptErrorSet();
        });
}

using Gherkin::AfterHook;
using Gherkin::BeforeHook;
using Gherkin::FeatureHook;
using Gherkin::ScenarioHook;
using Gherkin::StepHook;

constexpr struct {
    const char* name;
    JSNative function;
} functions[] = {
    {"Given", defineStep},
    {"When", defineStep},
    {"Then", defineStep},
    {"Step", defineStep},
    {"BeforeFeature", defineHook<FeatureHook, BeforeHook>},
    {"AfterFeature", defineHook<FeatureHook, AfterHook>},
    {"BeforeScenario", defineHook<ScenarioHook, BeforeHook>},
    {"AfterScenario", defineHook<ScenarioHook, AfterHook>},
    {"BeforeStep", defineHook<StepHook, BeforeHook>},
    {"AfterStep", defineHook<StepHook, AfterHook>},
    {"ParameterType", defineParameterType},
    {"pending", pending},
};

// The context of steps

StepScopes& scopesOf(JavaScriptInterpreter& interpreter) {
    return interpreter.steps().scopes();
}

bool findName(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter(
        "context", count, values,
        [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
            const SharedPtr<ScriptArgument> found =
                scopesOf(interpreter).find(fromJsString(arguments[0].toString()));
            if (found)
                arguments.rval().set(valueOf(found));
        });
}

bool setName(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter("context", count, values,
                           [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
                               scopesOf(interpreter)
                                   .set(fromJsString(arguments[0].toString()),
                                        argumentOf(arguments[1]));
                           });
}

bool removeName(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter(
        "context", count, values,
        [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
            arguments.rval().setBoolean(
                scopesOf(interpreter).remove(fromJsString(arguments[0].toString())));
        });
}

bool listNames(JSContext*, unsigned count, JS::Value* values) {
    return withInterpreter("context", count, values,
                           [](JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
                               LanguageContext& context = interpreter.context();
                               ScriptArgument::List names;
                               for (const auto& [name, value] : scopesOf(interpreter).all())
                                   names.push_back(context.createString(name));
                               arguments.rval().set(valueOf(context.createList(names)));
                           });
}

constexpr struct {
    const char* name;
    JSNative function;
} scopeFunctions[] = {
    {"find", findName}, {"set", setName}, {"remove", removeName}, {"names", listNames}};

}  // namespace

void addStepFunctions(JS::HandleObject global) {
    for (const auto& row : functions)
        checked(JS_DefineFunction(engineContext(), global, row.name, row.function, 1, 0));
}

void addScopeFunctions(JS::HandleObject object) {
    for (const auto& row : scopeFunctions)
        checked(JS_DefineFunction(engineContext(), object, row.name, row.function, 1, 0));
}

}  // namespace Tamrix::JavaScriptPlugin
