#include "platform/verification/pointtext.h"

#include <QStringList>

#include "base/overloaded.h"
#include "platform/verification/expectations.h"

namespace Tamrix {

namespace {

QString expectedText(const ExpectedValue& expected) {
    const auto tolerance = [](double value) {
        return value > 0 ? QStringLiteral(", off by %1 at most").arg(value) : QString();
    };
    return std::visit(
        Overloaded{
            [&](const PlainValue& value) {
                return QStringLiteral("is %1%2").arg(describedValue(value.value),
                                                     tolerance(value.tolerance));
            },
            [](const WildcardText& wildcard) {
                return QStringLiteral("matches the wildcard '%1'").arg(wildcard.text);
            },
            [](const PatternText& pattern) {
                return QStringLiteral("matches the regular expression '%1'").arg(pattern.text);
            },
            [&](const ColumnValue& column) {
                return QStringLiteral("is the value of the column '%1'%2")
                    .arg(column.name, tolerance(column.tolerance));
            }},
        expected);
}

void appendProperties(const PropertiesPoint& point, QStringList& lines) {
    for (const ExpectedObject& object : point.objects) {
        lines.append(QStringLiteral("Properties of %1").arg(object.name));
        for (const ExpectedProperty& property : object.properties)
            lines.append(
                QStringLiteral("  %1 %2").arg(property.name, expectedText(property.expected)));
    }
}

void appendTables(const TablePoint& point, QStringList& lines) {
    for (const ExpectedTable& table : point.tables) {
        lines.append(QStringLiteral("%1 of %2, %3 rows and %4 columns from row %5, column %6")
                         .arg(table.isWhole ? QStringLiteral("All cells") : QStringLiteral("Cells"),
                              table.name, QString::number(table.rows.size()),
                              QString::number(table.rows.empty() ? 0 : table.rows.front().size()),
                              QString::number(table.firstRow), QString::number(table.firstColumn)));
        for (std::size_t row = 0; row < table.rows.size(); ++row) {
            for (std::size_t column = 0; column < table.rows[row].size(); ++column) {
                const ExpectedCell& cell = table.rows[row][column];
                const QString background =
                    cell.background ? QStringLiteral(", on %1").arg(colorText(*cell.background))
                                    : QString();
                lines.append(QStringLiteral("  row %1, column %2 %3%4")
                                 .arg(QString::number(table.firstRow + static_cast<int>(row)),
                                      QString::number(table.firstColumn + static_cast<int>(column)),
                                      expectedText(cell.text), background));
            }
        }
    }
}

void appendElement(const VisualElement& element, int level, QStringList& lines) {
    lines.append(QStringLiteral("%1%2 at %3")
                     .arg(QString(level * 2, QLatin1Char(' ')), describedElement(element),
                          describedPlace(element.place)));
    for (const VisualElement& child : element.children)
        appendElement(child, level + 1, lines);
}

void appendVisual(const VisualPoint& point, QStringList& lines) {
    const VisualRules& rules = point.rules;
    lines.append(QStringLiteral("What %1 looks like").arg(point.name));
    if (rules.compareTexts)
        lines.append(QStringLiteral("  texts are compared"));
    if (rules.comparePlaces)
        lines.append(QStringLiteral("  places are compared, off by %1 pixels at most")
                         .arg(rules.placeTolerance));
    if (rules.comparePictures)
        lines.append(QStringLiteral("  pictures are compared with %1: colours off by %2 at most, "
                                    "in %3 % of the pixels any")
                         .arg(point.pictureFile, QString::number(rules.colorTolerance),
                              QString::number(rules.pixelTolerance)));
    appendElement(point.root, 1, lines);
}

}  // namespace

QString verificationPointText(const VerificationPoint& point) {
    QStringList lines;
    std::visit(Overloaded{[&lines](const PropertiesPoint& properties) {
                              appendProperties(properties, lines);
                          },
                          [&lines](const TablePoint& table) { appendTables(table, lines); },
                          [&lines](const VisualPoint& visual) { appendVisual(visual, lines); }},
               point);
    return lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

}  // namespace Tamrix
