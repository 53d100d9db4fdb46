#include "plugins/javascript/javascriptsteps.h"

#include <js/BigInt.h>
#include <js/RegExp.h>

#include <QRegularExpression>
#include <string>
#include <vector>

#include "platform/gherkin/expressions/expressionerror.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// "some_words" as "someWords".
QString camelCase(const QString& words) {
    QString name;
    for (const QString& word : words.split('_', Qt::SkipEmptyParts))
        name += name.isEmpty() ? word : word.left(1).toUpper() + word.mid(1);
    return name;
}

}  // namespace

JavaScriptSteps::JavaScriptSteps(JavaScriptInterpreter& interpreter)
    : StepLanguage(interpreter), m_interpreter(interpreter) {}

ScriptRealm& JavaScriptSteps::realm() {
    return m_interpreter.realm();
}

std::optional<ScriptError> JavaScriptSteps::loadFile(const QString& path, const QString& text) {
    return interpreter().attempt([&] {
        const ObjectRoot module(realm().modules().add(text, path));
        realm().modules().run(module);
    });
}

bool JavaScriptSteps::isLoaded(const QString& path) {
    return realm().modules().isLoaded(path);
}

void JavaScriptSteps::forgetFiles(const QStringList& paths) {
    for (const QString& path : paths)
        realm().modules().forget(path);
}

StepLanguage::Value JavaScriptSteps::contextValue() {
    return argumentOf(realm().ofLibrary("context"));
}

StepLanguage::Value JavaScriptSteps::tableValue(const Value& rows) {
    return argumentOf(resultOf(ValueRoot(realm().ofLibrary("makeTable")), ArgumentValues({rows})));
}

StepLanguage::Value JavaScriptSteps::bigInteger(const QString& text) {
    const QByteArray digits = text.toLatin1();
    const mozilla::Range<const JS::Latin1Char> range(
        reinterpret_cast<const JS::Latin1Char*>(digits.constData()),
        static_cast<std::size_t>(digits.size()));
    return argumentOf(JS::BigIntValue(checked(JS::StringToBigInt(engineContext(), range))));
}

QString JavaScriptSteps::snippetText(const StepSnippet& snippet) {
    QStringList parameters{QStringLiteral("context")};
    for (const QString& name : snippet.parameters)
        parameters += camelCase(name);
    const QString function = snippet.keyword.left(1).toUpper() + snippet.keyword.mid(1);
    return QStringLiteral("%1(%2, (%3) => {\n    pending();\n});\n")
        .arg(function, quoted(snippet.expression), parameters.join(QLatin1String(", ")));
}

// The functions of scripts

namespace {

[[noreturn]] void refuse(const char* text) {
    throwBuiltIn(JSEXN_TYPEERR, QString::fromLatin1(text));
}

/// A function of the script over one that works with the steps of the running case.
template <auto function>
auto withSteps(const JS::CallArgs& arguments) {
    JavaScriptInterpreter* const interpreter = JavaScriptInterpreter::active();
    if (!interpreter)
        throwFailure(refusedCall(nameOfCallee(arguments), false));
    try {
        return function(interpreter->steps(), arguments);
    } catch (const Gherkin::ExpressionError& error) {
        throwBuiltIn(JSEXN_ERR, QString::fromUtf8(error.what()));
    }
}

/// As the engine calls it.
template <auto function>
constexpr JSNative step = native<withSteps<function>>;

SharedPtr<ScriptArgument> functionOf(const JS::Value& value) {
    if (!isFunction(value))
        refuse("what is registered has to be a function");
    return argumentOf(value);
}

/// A text, or the pattern of a regular expression with its flags in front.
std::string patternOf(const JS::Value& value) {
    if (value.isString())
        return fromJsText(value).toStdString();
    const ObjectRoot object(value);
    bool isRegular = false;
    checked(!object || JS::ObjectIsRegExp(engineContext(), object, &isRegular));
    if (!isRegular)
        refuse("a step is given as a text or as a regular expression");
    // Whether letters are those of Unicode is no question here.
    const QString flags = plainText(ValueRoot(propertyOf(object, "flags"))).remove('u');
    if (flags.contains(QRegularExpression(QStringLiteral("[^ims]"))))
        refuse("steps know the flags i, m, s and u of regular expressions only");
    const QString pattern = fromJsString(checked(JS::GetRegExpSource(engineContext(), object)));
    return (flags.isEmpty() ? pattern : "(?" + flags + ")" + pattern).toStdString();
}

void defineStep(StepActions& steps, const JS::CallArgs& arguments) {
    const SharedPtr<ScriptArgument> function = functionOf(arguments.get(1));
    steps.addStep(patternOf(arguments[0]), !arguments[0].isString(), function);
}

/// A hook for all, or with a tag expression in front.
void defineHook(StepActions& steps, const JS::CallArgs& arguments) {
    const bool hasTags = arguments.get(0).isString();
    steps.addHook(*hookKind(nameOfCallee(arguments)),
                  hasTags ? patternOf(arguments[0]) : std::string(),
                  functionOf(arguments.get(hasTags ? 1 : 0)));
}

void defineParameterType(StepActions& steps, const JS::CallArgs& arguments) {
    if (!arguments.get(0).isString())
        refuse("ParameterType(name, pattern[, transformer])");
    ScriptArgument::List patterns{argumentOf(arguments.get(1))};
    if (patterns.front()->isList())
        patterns = patterns.front()->toList();
    std::vector<std::string> texts;
    texts.reserve(patterns.size());
    for (const SharedPtr<ScriptArgument>& pattern : patterns)
        texts.push_back(patternOf(valueOf(pattern)));
    steps.registry().addParameterType(patternOf(arguments[0]), std::move(texts),
                                      arguments.get(2).isNullOrUndefined()
                                          ? SharedPtr<ScriptArgument>()
                                          : functionOf(arguments[2]));
}

void pending(StepActions&, const JS::CallArgs& arguments) {
    throwPendingStep(arguments.get(0).isString()
                         ? fromJsText(arguments[0])
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

JS::Value findName(StepActions& steps, const JS::CallArgs& arguments) {
    const SharedPtr<ScriptArgument> found = steps.scopes().find(fromJsText(arguments[0]));
    return found ? valueOf(found).get() : JS::UndefinedValue();
}

void setName(StepActions& steps, const JS::CallArgs& arguments) {
    steps.scopes().set(fromJsText(arguments[0]), argumentOf(arguments[1]));
}

JS::Value removeName(StepActions& steps, const JS::CallArgs& arguments) {
    return JS::BooleanValue(steps.scopes().remove(fromJsText(arguments[0])));
}

JS::Value listNames(StepActions& steps, const JS::CallArgs&) {
    ValueRoots names;
    for (const auto& [name, value] : steps.scopes().all())
        names.add(toJsText(name));
    return JS::ObjectValue(*newArray(names));
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
