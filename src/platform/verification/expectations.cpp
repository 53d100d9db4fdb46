#include "platform/verification/expectations.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cmath>

#include "base/overloaded.h"
#include "wire/textmatch.h"

namespace Tamrix {

namespace {

/// The text that patterns and columns are compared with.
QString plainText(const QJsonValue& value) {
    return value.isString() ? value.toString() : describedValue(value);
}

bool isWithin(double observed, double expected, double tolerance) {
    return observed == expected || std::abs(observed - expected) <= tolerance;
}

bool isEqual(const QJsonValue& observed, const QJsonValue& expected, double tolerance) {
    if (observed.isDouble() && expected.isDouble())
        return isWithin(observed.toDouble(), expected.toDouble(), tolerance);
    return observed == expected;
}

/// Columns hold texts; that of a number is compared as one.
bool isEqualToText(const QJsonValue& observed, const QString& expected, double tolerance) {
    bool isNumber = false;
    const double number = expected.toDouble(&isNumber);
    if (observed.isDouble() && isNumber)
        return isWithin(observed.toDouble(), number, tolerance);
    if (tolerance > 0 && isNumber) {
        const double observedNumber = plainText(observed).toDouble(&isNumber);
        return isNumber && isWithin(observedNumber, number, tolerance);
    }
    return plainText(observed) == expected;
}

QString toleranceNote(double tolerance) {
    return tolerance > 0 ? QStringLiteral(" within %1").arg(tolerance) : QString();
}

}  // namespace

QString describedValue(const QJsonValue& value) {
    if (value.isString())
        return QStringLiteral("'%1'").arg(value.toString());
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

QString differenceFrom(const ExpectedValue& expected, const QJsonValue& observed) {
    const auto unless = [&observed](bool isAsExpected, const QString& wanted) {
        return isAsExpected
                   ? QString()
                   : QStringLiteral("is %1, expected %2").arg(describedValue(observed), wanted);
    };
    using Wire::TextMatch;
    return std::visit(
        Overloaded{
            [&](const PlainValue& value) {
                return unless(isEqual(observed, value.value, value.tolerance),
                              describedValue(value.value) + toleranceNote(value.tolerance));
            },
            [&](const WildcardText& wildcard) {
                return unless(
                    TextMatch(wildcard.text, TextMatch::Wildcard).matches(plainText(observed)),
                    QStringLiteral("what the wildcard '%1' matches").arg(wildcard.text));
            },
            [&](const PatternText& pattern) {
                return unless(
                    TextMatch(pattern.text, TextMatch::Pattern).matches(plainText(observed)),
                    QStringLiteral("what the regular expression '%1' matches").arg(pattern.text));
            },
            [&](const ColumnValue& column) {
                return unless(isEqualToText(observed, column.text, column.tolerance),
                              QStringLiteral("'%1'%2 of the column '%3'")
                                  .arg(column.text, toleranceNote(column.tolerance), column.name));
            }},
        expected);
}

bool isRenewable(const ExpectedValue& expected) {
    return std::holds_alternative<PlainValue>(expected);
}

QString colorText(const CellColor& color) {
    if (color == CellColor())
        return QStringLiteral("none");
    return QString::asprintf("#%02X%02X%02X%02X", unsigned(color.alpha), unsigned(color.red),
                             unsigned(color.green), unsigned(color.blue));
}

QString describedElement(const VisualElement& element) {
    QString text = element.type;
    if (!element.name.isEmpty())
        text += QStringLiteral(" '%1'").arg(element.name);
    if (!element.text.isEmpty())
        text += QStringLiteral(" \"%1\"").arg(element.text);
    return text;
}

QString describedPlace(const QRect& place) {
    return QStringLiteral("%1,%2 with %3x%4 pixels")
        .arg(QString::number(place.x()), QString::number(place.y()), QString::number(place.width()),
             QString::number(place.height()));
}

}  // namespace Tamrix
