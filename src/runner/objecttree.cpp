#include "runner/objecttree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include "base/textescape.h"

namespace Tamrix {

namespace {

using UIAbstraction::UIElement;

/// A property with the value that is worth telling, and how it is told.
struct StateWord {
    const char* property;
    const char* value;
    const char* word;
};

constexpr StateWord stateWords[] = {{"visible", "false", "hidden"},
                                    {"enabled", "false", "disabled"},
                                    {"checked", "true", "checked"},
                                    {"readOnly", "true", "read only"}};

QString stateText(const UIElement& element) {
    QStringList words;
    for (const StateWord& state : stateWords) {
        if (element.concreteProperties().value(QLatin1String(state.property)) ==
            QLatin1String(state.value))
            words.append(QLatin1String(state.word));
    }
    return words.isEmpty() ? QString()
                           : QStringLiteral(" (%1)").arg(words.join(QLatin1String(", ")));
}

QString lineText(const UIElement& element) {
    QString line = element.concreteType();
    if (!element.text().isEmpty()) {
        QString text = element.text();
        text.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('\n'), QLatin1String("\\n"));
        line += QStringLiteral(" \"%1\"").arg(text);
    }
    line += stateText(element);
    if (!element.realName().isEmpty())
        line += QLatin1String("  ") + element.realName();
    return escapedForTerminal(line);
}

void appendText(const QList<UIElement*>& elements, int depth, QString& text) {
    for (const UIElement* element : elements) {
        text += QString(2 * depth, QLatin1Char(' ')) + lineText(*element) + QLatin1Char('\n');
        appendText(element->children(), depth + 1, text);
    }
}

QJsonObject toJson(const UIElement& element) {
    const QRect rect = element.geometry().rect();
    QJsonObject properties;
    const QHash<QString, QString> known = element.concreteProperties();
    for (auto property = known.cbegin(); property != known.cend(); ++property)
        properties.insert(property.key(), property.value());
    QJsonArray children;
    for (const UIElement* child : element.children())
        children.append(toJson(*child));
    return {
        {QStringLiteral("type"), element.concreteType()},
        {QStringLiteral("text"), element.text()},
        {QStringLiteral("name"), element.realName()},
        {QStringLiteral("geometry"), QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()}},
        {QStringLiteral("properties"), properties},
        {QStringLiteral("children"), children}};
}

}  // namespace

QString objectTreeText(const QList<const UIElement*>& elements) {
    QString text;
    for (const UIElement* element : elements) {
        text += lineText(*element) + QLatin1Char('\n');
        appendText(element->children(), 1, text);
    }
    return text;
}

QByteArray objectTreeJson(const QList<const UIElement*>& elements) {
    QJsonArray array;
    for (const UIElement* element : elements)
        array.append(toJson(*element));
    return QJsonDocument(array).toJson();
}

}  // namespace Tamrix
