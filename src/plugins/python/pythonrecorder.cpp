#include "plugins/python/pythonrecorder.h"

#include <algorithm>
#include <iterator>

#include "base/overloaded.h"
#include "interpreter/language/literals.h"

namespace Tamrix::PythonPlugin {

namespace {

constexpr char indentation[] = "    ";

QString literal(const QString& text) {
    return literalOf(text);
}

QString literal(const ActionValue& value);

QString literal(const QStringList& texts) {
    QStringList items;
    std::transform(texts.cbegin(), texts.cend(), std::back_inserter(items),
                   [](const QString& text) { return literal(text); });
    return QStringLiteral("[%1]").arg(items.join(QStringLiteral(", ")));
}

/// Always with a point or an exponent: it stays a floating-point number.
QString literal(double number) {
    const QString text = QString::number(number, 'g', 17);
    const QString shortText = QString::number(number, 'g', 15);
    const QString best = shortText.toDouble() == number ? shortText : text;
    const bool isWhole = std::all_of(best.cbegin(), best.cend(), [](QChar character) {
        return character.isDigit() || character == u'-';
    });
    return isWhole ? best + QStringLiteral(".0") : best;
}

QString literal(const ActionValue& value) {
    return std::visit(
        Overloaded{
            [](bool truth) { return truth ? QStringLiteral("True") : QStringLiteral("False"); },
            [](qint64 number) { return QString::number(number); },
            [](double number) { return literal(number); },
            [](const QString& text) { return literal(text); },
            [](const QStringList& texts) { return literal(texts); },
            [](const PasswordKey& password) {
                return QStringLiteral("testSettings.getPassword(%1)").arg(literal(password.key));
            }},
        value);
}

QString line(const FunctionAction& action) {
    QStringList arguments;
    if (!action.object.isEmpty())
        arguments.append(literal(action.object));
    for (const ActionValue& argument : action.arguments)
        arguments.append(literal(argument));
    for (const auto& [name, value] : action.named)
        arguments.append(QStringLiteral("%1=%2").arg(name, literal(value)));
    return QStringLiteral("%1(%2)").arg(action.function, arguments.join(QStringLiteral(", ")));
}

QString line(const AssignmentAction& action) {
    return QStringLiteral("waitForObject(%1).%2 = %3")
        .arg(literal(action.object), action.property, literal(action.value));
}

QString line(const ExpectAction& action) {
    QStringList properties;
    for (const auto& [name, value] : action.properties)
        properties.append(QStringLiteral("%1: %2").arg(literal(name), literal(value)));
    return QStringLiteral("test.expect(%1, {%2})")
        .arg(literal(action.object), properties.join(QStringLiteral(", ")));
}

QString line(const CommentAction& action) {
    return QStringLiteral("# ") + action.text.simplified();
}

}  // namespace

QString PythonRecorder::header() const {
    return QStringLiteral("def main():\n");
}

QString PythonRecorder::lines(const ScriptAction& action) const {
    const QString text = std::visit([](const auto& each) { return line(each); }, action);
    return QLatin1String(indentation) + text + QLatin1Char('\n');
}

QString PythonRecorder::footer() const {
    return {};
}

}  // namespace Tamrix::PythonPlugin
