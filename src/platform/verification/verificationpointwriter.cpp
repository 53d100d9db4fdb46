// Members stand in the order in which a person reads them, which JSON libraries don't keep, and
// what belongs together on one line.

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>
#include <QStringList>

#include "base/overloaded.h"
#include "platform/verification/verificationpointfile.h"

namespace Tamrix {

namespace {

/// A value as JSON text.
QString json(const QJsonValue& value) {
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

QString member(const char* name, const QJsonValue& value) {
    return QStringLiteral("\"%1\": %2").arg(QLatin1String(name), json(value));
}

QString indent(int level) {
    return QString(level * 4, QLatin1Char(' '));
}

QString inBraces(const QStringList& members) {
    return QStringLiteral("{%1}").arg(members.join(QStringLiteral(", ")));
}

/// A list with an entry a line, the entries one level deeper.
QString listOfLines(const QStringList& entries, int level) {
    if (entries.isEmpty())
        return QStringLiteral("[]");
    const QString separator = QStringLiteral(",\n") + indent(level + 1);
    return QStringLiteral("[\n%1%2\n%3]")
        .arg(indent(level + 1), entries.join(separator), indent(level));
}

/// An object with a member a line.
QString objectOfLines(const QStringList& members, int level) {
    const QString separator = QStringLiteral(",\n") + indent(level + 1);
    return QStringLiteral("{\n%1%2\n%3}")
        .arg(indent(level + 1), members.join(separator), indent(level));
}

template <typename Entries, typename Write>
QStringList writeEach(const Entries& entries, Write write) {
    QStringList texts;
    for (const auto& entry : entries)
        texts.append(write(entry));
    return texts;
}

QStringList expectedMembers(const ExpectedValue& expected) {
    return std::visit(Overloaded{[](const PlainValue& value) {
                                     QStringList members{member("value", value.value)};
                                     if (value.tolerance > 0)
                                         members.append(member("tolerance", value.tolerance));
                                     return members;
                                 },
                                 [](const WildcardText& wildcard) {
                                     return QStringList{member("wildcard", wildcard.text)};
                                 },
                                 [](const PatternText& pattern) {
                                     return QStringList{member("regex", pattern.text)};
                                 },
                                 [](const ColumnValue& column) {
                                     QStringList members{member("column", column.name)};
                                     if (column.tolerance > 0)
                                         members.append(member("tolerance", column.tolerance));
                                     return members;
                                 }},
                      expected);
}

QString objectText(const ExpectedObject& object) {
    const QStringList properties =
        writeEach(object.properties, [](const ExpectedProperty& property) {
            return inBraces(QStringList{member("property", property.name)} +
                            expectedMembers(property.expected));
        });
    return objectOfLines({member("name", object.name),
                          QStringLiteral("\"properties\": ") + listOfLines(properties, 3)},
                         2);
}

/// Also of no colour, which has none of the bytes set.
QString backgroundText(const CellColor& color) {
    return QString::asprintf("#%02X%02X%02X%02X", unsigned(color.alpha), unsigned(color.red),
                             unsigned(color.green), unsigned(color.blue));
}

QString cellText(const ExpectedCell& cell) {
    const auto* const value = std::get_if<PlainValue>(&cell.text);
    if (value && value->value.isString() && !cell.background)
        return json(value->value);
    QStringList members = expectedMembers(cell.text);
    if (cell.background)
        members.append(member("background", backgroundText(*cell.background)));
    return inBraces(members);
}

QString tableText(const ExpectedTable& table) {
    QStringList members{member("name", table.name)};
    if (table.firstRow != 0)
        members.append(member("firstRow", table.firstRow));
    if (table.firstColumn != 0)
        members.append(member("firstColumn", table.firstColumn));
    if (!table.isWhole)
        members.append(member("whole", false));
    const QStringList rows = writeEach(table.rows, [](const std::vector<ExpectedCell>& row) {
        return QStringLiteral("[%1]").arg(writeEach(row, cellText).join(QStringLiteral(", ")));
    });
    members.append(QStringLiteral("\"rows\": ") + listOfLines(rows, 3));
    return objectOfLines(members, 2);
}

QString elementText(const VisualElement& element, int level) {
    QStringList members{member("type", element.type)};
    if (!element.name.isEmpty())
        members.append(member("name", element.name));
    if (!element.text.isEmpty())
        members.append(member("text", element.text));
    const QRect& place = element.place;
    members.append(QStringLiteral("\"place\": [%1, %2, %3, %4]")
                       .arg(QString::number(place.x()), QString::number(place.y()),
                            QString::number(place.width()), QString::number(place.height())));
    if (!element.children.empty()) {
        const QStringList children = writeEach(
            element.children,
            [level](const VisualElement& child) { return elementText(child, level + 1); });
        members.append(QStringLiteral("\"children\": ") + listOfLines(children, level));
    }
    return inBraces(members);
}

QStringList visualMembers(const VisualPoint& point) {
    const VisualRules& rules = point.rules;
    QStringList compared;
    for (const auto& [isCompared, name] :
         {std::pair(rules.compareTexts, "text"), std::pair(rules.comparePlaces, "place"),
          std::pair(rules.comparePictures, "picture")}) {
        if (isCompared)
            compared.append(json(QLatin1String(name)));
    }
    QStringList members{
        member("object", point.name),
        QStringLiteral("\"compare\": [%1]").arg(compared.join(QStringLiteral(", "))),
        QStringLiteral("\"tolerance\": ") +
            inBraces({member("place", rules.placeTolerance), member("color", rules.colorTolerance),
                      member("pixels", rules.pixelTolerance)})};
    if (!point.pictureFile.isEmpty())
        members.append(member("picture", point.pictureFile));
    members.append(QStringLiteral("\"element\": ") + elementText(point.root, 1));
    return members;
}

template <typename Entries, typename Write>
QStringList objectsMember(const Entries& entries, Write write) {
    return {QStringLiteral("\"objects\": ") + listOfLines(writeEach(entries, write), 1)};
}

Outcome<> writeWhole(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return {};
    return fail(FailureKind::Failed,
                QStringLiteral("The file '%1' can't be written: %2").arg(path, file.errorString()));
}

}  // namespace

QByteArray verificationPointJson(const VerificationPoint& point) {
    QStringList members{QStringLiteral("\"tamrixVerificationPoint\": 1")};
    std::visit(Overloaded{[&members](const PropertiesPoint& properties) {
                              members.append(member("kind", QStringLiteral("properties")));
                              members += objectsMember(properties.objects, objectText);
                          },
                          [&members](const TablePoint& table) {
                              members.append(member("kind", QStringLiteral("table")));
                              members += objectsMember(table.tables, tableText);
                          },
                          [&members](const VisualPoint& visual) {
                              members.append(member("kind", QStringLiteral("visual")));
                              members += visualMembers(visual);
                          }},
               point);
    return (objectOfLines(members, 0) + QLatin1Char('\n')).toUtf8();
}

Outcome<> writeVerificationPoint(const QString& path, const VerificationPoint& point) {
    const QDir folder = QFileInfo(path).dir();
    if (!folder.mkpath(QStringLiteral(".")))
        return fail(FailureKind::Failed,
                    QStringLiteral("The folder '%1' can't be made").arg(folder.path()));
    // The picture comes first: the point names it.
    const auto* const visual = std::get_if<VisualPoint>(&point);
    if (visual && !visual->pictureFile.isEmpty()) {
        QBuffer bytes;
        bytes.open(QIODevice::WriteOnly);
        if (!visual->picture.save(&bytes, "PNG"))
            return fail(FailureKind::Failed,
                        QStringLiteral("The picture of '%1' can't be stored: there is none")
                            .arg(visual->name));
        const Outcome<> written = writeWhole(folder.filePath(visual->pictureFile), bytes.data());
        if (!written)
            return written;
    }
    return writeWhole(path, verificationPointJson(point));
}

}  // namespace Tamrix
