#include "plugins/javascript/javascriptsteps.h"

#include <QRegularExpression>
#include <string>
#include <vector>

#include "platform/gherkin/expressions/expressionerror.h"
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

// The functions of scripts

[[noreturn]] void refuse(const char* text) {
    throwBuiltIn(JSProto_TypeError, QString::fromLatin1(text));
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
        throwBuiltIn(JSProto_Error, QString::fromUtf8(error.what()));
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
    if (!object || !given<bool>(JS::ObjectIsRegExp, object))
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
    const JavaScriptArgument pattern(arguments.get(1));
    std::vector<std::string> patterns;
    for (const SharedPtr<ScriptArgument>& each : pattern.toList())
        patterns.push_back(patternOf(valueOf(each)));
    if (!pattern.isList())
        patterns.push_back(patternOf(pattern.value()));
    steps.registry().addParameterType(patternOf(arguments[0]), std::move(patterns),
                                      arguments.get(2).isNullOrUndefined()
                                          ? SharedPtr<ScriptArgument>()
                                          : functionOf(arguments[2]));
}

void pending(StepActions&, const JS::CallArgs& arguments) {
    throwPendingStep(arguments.get(0).isString()
                         ? fromJsText(arguments[0])
                         : QStringLiteral("the step definition is to be written"));
}

constexpr JSFunctionSpec functions[] = {
    JS_FN("Given", step<defineStep>, 2, 0),
    JS_FN("When", step<defineStep>, 2, 0),
    JS_FN("Then", step<defineStep>, 2, 0),
    JS_FN("Step", step<defineStep>, 2, 0),
    JS_FN("BeforeFeature", step<defineHook>, 1, 0),
    JS_FN("AfterFeature", step<defineHook>, 1, 0),
    JS_FN("BeforeScenario", step<defineHook>, 1, 0),
    JS_FN("AfterScenario", step<defineHook>, 1, 0),
    JS_FN("BeforeStep", step<defineHook>, 1, 0),
    JS_FN("AfterStep", step<defineHook>, 1, 0),
    JS_FN("ParameterType", step<defineParameterType>, 2, 0),
    JS_FN("pending", step<pending>, 1, 0),
    JS_FS_END,
};

class JavaScriptSteps final : public StepLanguage {
public:
    explicit JavaScriptSteps(JavaScriptInterpreter& interpreter)
        : StepLanguage(interpreter), m_interpreter(interpreter) {}

    std::optional<ScriptError> loadFile(const QString& path, const QString& text) override {
        return interpreter().attempt([&] { modules().load(text, path); });
    }
    bool isLoaded(const QString& path) override { return modules().isLoaded(path); }
    void forgetFiles(const QStringList& paths) override {
        for (const QString& path : paths)
            modules().forget(path);
    }
    LineInfo definitionOf(const Value& function) override {
        return interpreter().placeOf(function);
    }
    Value contextValue() override { return argumentOf(m_interpreter.realm().ofLibrary("context")); }
    /// An array of objects by the names of the first row, with `headers`, `rows` and `raw`.
    Value tableValue(const Value& rows) override {
        const ValueRoot makeTable(m_interpreter.realm().ofLibrary("makeTable"));
        return argumentOf(resultOf(makeTable, ArgumentValues({rows})));
    }
    /// A BigInt.
    Value bigInteger(const QString& text) override {
        const QByteArray digits = text.toLatin1();
        const mozilla::Span<const char> span(digits.constData(), std::size_t(digits.size()));
        return argumentOf(
            JS::BigIntValue(checked(JS::SimpleStringToBigInt(engineContext(), span, 10))));
    }
    QString snippetText(const StepSnippet& snippet) override {
        QStringList parameters{QStringLiteral("context")};
        for (const QString& name : snippet.parameters)
            parameters += camelCase(name);
        const QString function = snippet.keyword.left(1).toUpper() + snippet.keyword.mid(1);
        return QStringLiteral("%1(%2, (%3) => {\n    pending();\n});\n")
            .arg(function, quoted(snippet.expression), parameters.join(QLatin1String(", ")));
    }

private:
    Modules& modules() { return m_interpreter.realm().modules(); }

    JavaScriptInterpreter& m_interpreter;
};

}  // namespace

std::unique_ptr<StepLanguage> makeStepLanguage(JavaScriptInterpreter& interpreter) {
    return std::make_unique<JavaScriptSteps>(interpreter);
}

void addStepFunctions(JS::HandleObject global) {
    checked(JS_DefineFunctions(engineContext(), global, functions));
}

}  // namespace Tamrix::JavaScriptPlugin
