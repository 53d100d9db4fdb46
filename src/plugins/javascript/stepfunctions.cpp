#include "plugins/javascript/stepfunctions.h"

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
    throwBuiltIn("TypeError", text);
}

using StepFunction = JS::Value (*)(JavaScriptInterpreter& interpreter,
                                   const JS::CallArgs& arguments);

/// A function of the script over one that works with the interpreter.
template <StepFunction function>
JS::Value withInterpreter(const JS::CallArgs& arguments) {
    JavaScriptInterpreter* const interpreter = JavaScriptInterpreter::active();
    if (!interpreter)
        refuse(
            QStringLiteral("%1() was called while no test case runs").arg(nameOfCallee(arguments)));
    try {
        return function(*interpreter, arguments);
    } catch (const Gherkin::ExpressionError& error) {
        throwBuiltIn("Error", QString::fromUtf8(error.what()));
    }
}

/// As the engine calls it.
template <StepFunction function>
constexpr JSNative step = native<withInterpreter<function>>;

std::string textOfArgument(JS::HandleValue value) {
    return fromJsString(value.toString()).toStdString();
}

SharedPtr<ScriptArgument> functionOf(JS::HandleValue value) {
    if (!value.isObject() || !JS::IsCallable(&value.toObject()))
        refuse(QStringLiteral("what is registered has to be a function"));
    return argumentOf(value);
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

JS::Value defineStep(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    const SharedPtr<ScriptArgument> function = functionOf(arguments.get(1));
    const bool isRegular = !arguments[0].isString();
    interpreter.steps().addStep(isRegular ? patternOf(arguments[0]) : textOfArgument(arguments[0]),
                                isRegular, function);
    return JS::UndefinedValue();
}

/// A hook for all, or with a tag expression in front.
JS::Value defineHook(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    const bool hasTags = arguments.get(0).isString();
    const SharedPtr<ScriptArgument> function = functionOf(arguments.get(hasTags ? 1 : 0));
    interpreter.steps().addHook(*hookKind(nameOfCallee(arguments)),
                                hasTags ? textOfArgument(arguments[0]) : std::string(), function);
    return JS::UndefinedValue();
}

JS::Value defineParameterType(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    if (!arguments.get(0).isString())
        refuse(QStringLiteral("ParameterType(name, pattern[, transformer])"));
    ScriptArgument::List patterns{argumentOf(arguments.get(1))};
    if (patterns.front()->isList())
        patterns = patterns.front()->toList();
    std::vector<std::string> texts;
    texts.reserve(patterns.size());
    for (const SharedPtr<ScriptArgument>& pattern : patterns)
        texts.push_back(pattern->isString() ? pattern->toString().toStdString()
                                            : patternOf(valueOf(pattern)));
    interpreter.steps().registry().addParameterType(textOfArgument(arguments[0]), std::move(texts),
                                                    arguments.get(2).isNullOrUndefined()
                                                        ? SharedPtr<ScriptArgument>()
                                                        : functionOf(arguments[2]));
    return JS::UndefinedValue();
}

JS::Value pending(JavaScriptInterpreter&, const JS::CallArgs& arguments) {
    throwPendingStep(arguments.get(0).isString()
                         ? fromJsString(arguments[0].toString())
                         : QStringLiteral("the step definition is to be written"));
}

constexpr NativeRow functions[] = {
    {"Given", step<defineStep>},
    {"When", step<defineStep>},
    {"Then", step<defineStep>},
    {"Step", step<defineStep>},
    {"BeforeFeature", step<defineHook>},
    {"AfterFeature", step<defineHook>},
    {"BeforeScenario", step<defineHook>},
    {"AfterScenario", step<defineHook>},
    {"BeforeStep", step<defineHook>},
    {"AfterStep", step<defineHook>},
    {"ParameterType", step<defineParameterType>},
    {"pending", step<pending>},
};

// The context of steps

JS::Value findName(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    const SharedPtr<ScriptArgument> found =
        interpreter.steps().scopes().find(fromJsString(arguments[0].toString()));
    return found ? valueOf(found).get() : JS::UndefinedValue();
}

JS::Value setName(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    interpreter.steps().scopes().set(fromJsString(arguments[0].toString()),
                                     argumentOf(arguments[1]));
    return JS::UndefinedValue();
}

JS::Value removeName(JavaScriptInterpreter& interpreter, const JS::CallArgs& arguments) {
    return JS::BooleanValue(
        interpreter.steps().scopes().remove(fromJsString(arguments[0].toString())));
}

JS::Value listNames(JavaScriptInterpreter& interpreter, const JS::CallArgs&) {
    LanguageContext& context = interpreter.context();
    ScriptArgument::List names;
    for (const auto& [name, value] : interpreter.steps().scopes().all())
        names.push_back(context.createString(name));
    return valueOf(context.createList(names));
}

constexpr NativeRow scopeFunctions[] = {{"find", step<findName>},
                                        {"set", step<setName>},
                                        {"remove", step<removeName>},
                                        {"names", step<listNames>}};

}  // namespace

void addStepFunctions(JS::HandleObject global) {
    defineFunctions(global, functions);
}

void addScopeFunctions(JS::HandleObject object) {
    defineFunctions(object, scopeFunctions);
}

}  // namespace Tamrix::JavaScriptPlugin
