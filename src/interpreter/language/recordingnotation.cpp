#include "interpreter/language/recordingnotation.h"

#include <QRegularExpression>
#include <algorithm>
#include <iterator>
#include <utility>

#include "base/overloaded.h"
#include "platform/objectmodel/scriptnotation.h"
#include "wire/applicationfunctions.h"

namespace Tamrix {

namespace {

QString latin1(const char* text) {
    return QString::fromLatin1(text);
}

/// Always with a point or an exponent: it stays a floating-point number.
QString numberText(double number) {
    const QString text = QString::number(number, 'g', 17);
    const QString shortText = QString::number(number, 'g', 15);
    const QString best = shortText.toDouble() == number ? shortText : text;
    const bool isWhole = std::all_of(best.cbegin(), best.cend(), [](QChar character) {
        return character.isDigit() || character == u'-';
    });
    return isWhole ? best + QStringLiteral(".0") : best;
}

/// The parameters of a function behind the object; none for an unknown one.
QStringList parametersOf(const QString& function) {
    for (const Wire::ApplicationFunction& each : Wire::applicationFunctions) {
        if (function != QLatin1String(each.name))
            continue;
        static const QRegularExpression s_others(QStringLiteral("\\W+"));
        return latin1(each.parameters).split(s_others, Qt::SkipEmptyParts).mid(1);
    }
    return {};
}

}  // namespace

QString NotatedRecorder::header() const {
    return m_namesModule.isEmpty() ? latin1(m_notation.header)
                                   : latin1(m_notation.importingHeader).arg(m_namesModule);
}

QString NotatedRecorder::footer() const {
    return latin1(m_notation.footer);
}

QString NotatedRecorder::lines(const ScriptAction& action) const {
    const QString text = std::visit([this](const auto& each) { return statement(each); }, action);
    return latin1(m_notation.indentation) + text + u'\n';
}

QString NotatedRecorder::statement(const FunctionAction& action) const {
    QStringList arguments;
    if (!action.object.isEmpty())
        arguments.append(objectText(action.object));
    bool isMarked = !m_notation.dashMark;
    for (const ActionValue& value : action.arguments) {
        const QString* const text = std::get_if<QString>(&value);
        if (!isMarked && text && text->startsWith(u'-')) {
            arguments.append(latin1(m_notation.dashMark));
            isMarked = true;
        }
        arguments.append(valueText(value));
    }
    arguments += namedArguments(action);
    return latin1(m_notation.call)
        .arg(action.function, arguments.join(latin1(m_notation.betweenArguments)))
        .trimmed();
}

QStringList NotatedRecorder::namedArguments(const FunctionAction& action) const {
    QStringList arguments;
    if (m_notation.named) {
        for (const auto& [name, value] : action.named)
            arguments.append(latin1(m_notation.named).arg(name, valueText(value)));
        return arguments;
    }
    // At their places, behind the arguments that are there already.
    for (const QString& parameter : parametersOf(action.function).mid(action.arguments.size())) {
        const auto given = std::find_if(action.named.cbegin(), action.named.cend(),
                                        [&](const auto& each) { return each.first == parameter; });
        arguments.append(given == action.named.cend() ? latin1(m_notation.leftOut)
                                                      : valueText(given->second));
    }
    while (!arguments.isEmpty() && arguments.constLast() == QLatin1String(m_notation.leftOut))
        arguments.removeLast();
    return arguments;
}

QString NotatedRecorder::statement(const AssignmentAction& action) const {
    return latin1(m_notation.assignment)
        .arg(objectText(action.object), action.property, valueText(action.value));
}

QString NotatedRecorder::statement(const ExpectAction& action) const {
    QStringList properties;
    for (const auto& [name, value] : action.properties) {
        const bool isPlainName = isPlainIdentifier(name);
        properties.append(latin1(isPlainName ? m_notation.property : m_notation.quotedProperty)
                              .arg(isPlainName ? name : literal(name), valueText(value)));
    }
    return latin1(m_notation.expectation)
        .arg(objectText(action.object), properties.join(latin1(m_notation.betweenProperties)));
}

QString NotatedRecorder::statement(const CommentAction& action) const {
    const QString text = action.text.simplified();
    return latin1(m_notation.comment) + (m_notation.remark ? m_notation.remark(text) : text);
}

QString NotatedRecorder::valueText(const ActionValue& value) const {
    return std::visit(
        Overloaded{
            [this](bool truth) { return latin1(m_notation.truths[truth ? 1 : 0]); },
            [](qint64 number) { return QString::number(number); },
            [](double number) { return numberText(number); },
            [this](const QString& text) { return literal(text); },
            [this](const QStringList& texts) {
                QStringList items;
                items.reserve(texts.size());
                std::transform(texts.cbegin(), texts.cend(), std::back_inserter(items),
                               [this](const QString& text) { return literal(text); });
                return latin1(m_notation.list).arg(items.join(latin1(m_notation.betweenItems)));
            },
            [this](const PasswordKey& password) {
                return latin1(m_notation.password).arg(literal(password.key));
            },
            [this](const LaunchedContext&) { return latin1(m_notation.launchedContext); },
            [this](const NamedContext& context) {
                return latin1(m_notation.namedContext).arg(literal(context.name));
            }},
        value);
}

QString NotatedRecorder::objectText(const QString& name) const {
    const QString variable = name.startsWith(u':') ? name.mid(1) : QString();
    if (!m_namesModule.isEmpty() && isPlainIdentifier(variable)) {
        const QString module =
            m_notation.moduleOfFile ? m_notation.moduleOfFile(m_namesModule) : m_namesModule;
        return latin1(m_notation.variable).arg(module, variable);
    }
    return m_notation.name ? m_notation.name(name) : literal(name);
}

QString NotatedRecorder::literal(const QString& text) const {
    return m_notation.text ? m_notation.text(text) : literalOf(text, m_notation.quoting);
}

}  // namespace Tamrix
