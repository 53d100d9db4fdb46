#include "runner/applications/objecttree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "base/textescape.h"

namespace Tamrix {

namespace {

using Wire::ListedObject;
using Wire::ObjectListing;

bool isVisible(const ListedObject& object) {
    return (object.state & ListedObject::Visible) != 0;
}

bool isEnabled(const ListedObject& object) {
    return (object.state & ListedObject::Enabled) != 0;
}

void appendLine(const ObjectListing& listing, const ListedObject& object, QString* tree) {
    tree->append(QString(2 * object.depth, QLatin1Char(' ')));
    tree->append(escapedForTerminal(listing.types.at(object.type)));
    if (!object.text.isEmpty()) {
        QString text = object.text;
        text.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('\n'), QLatin1String("\\n"));
        tree->append(QLatin1String(" \""));
        tree->append(escapedForTerminal(text));
        tree->append(QLatin1Char('"'));
    }
    if (!isVisible(object))
        tree->append(QLatin1String(isEnabled(object) ? " (hidden)" : " (hidden, disabled)"));
    else if (!isEnabled(object))
        tree->append(QLatin1String(" (disabled)"));
    if (!object.name.isEmpty()) {
        tree->append(QLatin1String("  "));
        tree->append(escapedForTerminal(object.name));
    }
    tree->append(QLatin1Char('\n'));
}

QString boolText(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

/// The object at `*index` with all below it; `*index` is behind these afterwards.
QJsonObject toJson(const ObjectListing& listing, int* index) {
    const ListedObject& object = listing.objects.at((*index)++);
    const QRect rect = object.geometry;
    QJsonArray children;
    while (*index < listing.objects.size() && listing.objects.at(*index).depth > object.depth)
        children.append(toJson(listing, index));
    return {
        {QStringLiteral("type"), listing.types.at(object.type)},
        {QStringLiteral("text"), object.text},
        {QStringLiteral("name"), object.name},
        {QStringLiteral("geometry"), QJsonArray{rect.x(), rect.y(), rect.width(), rect.height()}},
        {QStringLiteral("properties"),
         QJsonObject{{QStringLiteral("visible"), boolText(isVisible(object))},
                     {QStringLiteral("enabled"), boolText(isEnabled(object))}}},
        {QStringLiteral("children"), children}};
}

}  // namespace

QString objectTreeText(const ObjectListing& listing) {
    QString text;
    constexpr int usualLine = 96;
    text.reserve(usualLine * listing.objects.size());
    for (const ListedObject& object : listing.objects)
        appendLine(listing, object, &text);
    return text;
}

QByteArray objectTreeJson(const ObjectListing& listing) {
    QJsonArray array;
    for (int index = 0; index < listing.objects.size();)
        array.append(toJson(listing, &index));
    return QJsonDocument(array).toJson();
}

}  // namespace Tamrix
