#include "plugins/javascript/javascriptsteps.h"

#include <js/Array.h>
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

JSObject* rowArray(const std::vector<Gherkin::TableCell>& row) {
    JS::RootedValueVector cells(engineContext());
    for (const Gherkin::TableCell& cell : row)
        checked(cells.append(toJsText(QString::fromStdString(cell.text))));
    return checked(JS::NewArrayObject(engineContext(), cells));
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

StepLanguage::Value JavaScriptSteps::tableValue(const Gherkin::Step& step) {
    JSContext* const context = engineContext();
    JS::RootedValueVector raw(context);
    JS::RootedValueVector rows(context);
    for (const std::vector<Gherkin::TableCell>& row : step.table) {
        checked(raw.append(JS::ObjectValue(*rowArray(row))));
        if (raw.length() == 1)
            continue;
        JS::RootedObject object(context, checked(JS_NewPlainObject(context)));
        for (std::size_t column = 0; column < row.size(); ++column)
            defineProperty(object, QString::fromStdString(step.table[0][column].text),
                           toJsText(QString::fromStdString(row[column].text)));
        checked(rows.append(JS::ObjectValue(*object)));
    }
    JS::RootedObject table(context, checked(JS::NewArrayObject(context, rows)));
    defineProperty(table, QStringLiteral("headers"), raw[0], 0);
    defineProperty(table, QStringLiteral("raw"),
                   JS::ObjectValue(*checked(JS::NewArrayObject(context, raw))), 0);
    // No reference to itself: a list of the same rows.
    defineProperty(table, QStringLiteral("rows"),
                   JS::ObjectValue(*checked(JS::NewArrayObject(context, rows))), 0);
    return argumentOf(JS::ObjectValue(*table));
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
