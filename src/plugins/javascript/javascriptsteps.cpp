#include "plugins/javascript/javascriptsteps.h"

#include <js/BigInt.h>

#include "interpreter/language/languagedebugger.h"
#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

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

std::optional<ScriptError> JavaScriptSteps::loadFile(const QString& path, const QString& text) {
    return m_interpreter.attempt([&] {
        Modules& modules = m_interpreter.realm().modules();
        JS::RootedObject module(engineContext(), modules.add(text, path));
        modules.run(module);
    });
}

bool JavaScriptSteps::isLoaded(const QString& path) {
    return m_interpreter.realm().modules().isLoaded(path);
}

void JavaScriptSteps::forgetFiles(const QStringList& paths) {
    for (const QString& path : paths)
        m_interpreter.realm().modules().forget(path);
}

StepLanguage::Value JavaScriptSteps::contextValue() {
    return argumentOf(JS::ObjectValue(*m_interpreter.realm().stepContext()));
}

StepLanguage::Value JavaScriptSteps::tableValue(const Value& rows) {
    JS::RootedValue table(engineContext());
    JS::RootedValueVector arguments(engineContext());
    checked(arguments.append(valueOf(rows)));
    JS::RootedValue make(engineContext(), JS::ObjectValue(*m_interpreter.realm().tableMaker()));
    checked(JS::Call(engineContext(), JS::UndefinedHandleValue, make, arguments, &table));
    return argumentOf(table);
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

}  // namespace Tamrix::JavaScriptPlugin
