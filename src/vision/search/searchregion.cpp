#include "vision/search/searchregion.h"

#include <json/json.h>

#include <QStringList>
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "vision/search/imagelookupoptions.h"
#include "vision/search/jsonhelpers.h"
#include "vision/search/parsefailure.h"

namespace Tamrix::Vision {

namespace {

const char* const rectanglesKey = "rectangles";

/// Whether the coordinates of the last pixel and their distance are integers, too.
bool hasFarCorner(int left, int top, int width, int height) {
    const auto isInteger = [](qint64 value) {
        return value >= std::numeric_limits<int>::min() && value <= std::numeric_limits<int>::max();
    };
    const auto fits = [&isInteger](int first, int count) {
        return isInteger(qint64(count) - 1) && isInteger(qint64(first) + count - 1);
    };
    return fits(left, width) && fits(top, height);
}

/// Made from its corners: from a size Qt counts one pixel too far on the way. Needs hasFarCorner().
QRect rectangleOf(int left, int top, int width, int height) {
    return {QPoint(left, top), QPoint(left + (width - 1), top + (height - 1))};
}

QRect parseRectangle(const QString& text) {
    const QStringList pieces = text.split(QLatin1Char('x'), Qt::SkipEmptyParts);
    if (pieces.size() != 4)
        throw std::runtime_error("Rectangle descriptor must consist of four integers");
    const int height = parseInt(pieces.at(3));
    const int width = parseInt(pieces.at(2));
    const int top = parseInt(pieces.at(1));
    const int left = parseInt(pieces.at(0));
    if (width < 1 || height < 1 || !hasFarCorner(left, top, width, height))
        failParsing(QStringLiteral("Invalid rectangle: %1").arg(text));
    return rectangleOf(left, top, width, height);
}

QString describeRectangle(const QRect& rectangle) {
    return QStringLiteral("%1x%2x%3x%4")
        .arg(QString::number(rectangle.left()), QString::number(rectangle.top()),
             QString::number(rectangle.width()), QString::number(rectangle.height()));
}

}  // namespace

SearchRegion::SearchRegion(const QString& description) {
    const QStringList parts = description.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& part : parts)
        m_rectangles.append(parseRectangle(part));
}

QString SearchRegion::description() const {
    QStringList parts;
    for (const QRect& rectangle : m_rectangles)
        parts.append(describeRectangle(rectangle));
    return parts.join(QLatin1Char(','));
}

SearchRegion::SearchRegion(const Json::Value& value) {
    for (const Json::Value& rectangle : requireArray(value, rectanglesKey)) {
        if (!rectangle.isObject())
            throw std::runtime_error("SearchRegion rectangle descriptor must be an object");
        m_rectangles.append(rectFromJson(rectangle));
    }
}

Json::Value SearchRegion::toJson() const {
    Json::Value value(Json::objectValue);
    Json::Value& rectangles = value[rectanglesKey] = Json::Value(Json::arrayValue);
    for (const QRect& rectangle : m_rectangles)
        rectangles.append(rectToJson(rectangle));
    return value;
}

QRect SearchRegion::boundingBox() const {
    QRect box;
    for (const QRect& rectangle : m_rectangles)
        box |= rectangle;
    return box;
}

bool SearchRegion::contains(const QRect& rectangle) const {
    return std::any_of(m_rectangles.begin(), m_rectangles.end(),
                       [&](const QRect& each) { return each.contains(rectangle); });
}

bool SearchRegion::contains(QPoint point) const {
    return std::any_of(m_rectangles.begin(), m_rectangles.end(),
                       [&](const QRect& each) { return each.contains(point); });
}

Json::Value rectToJson(const QRect& rectangle) {
    Json::Value value(Json::objectValue);
    value["x"] = rectangle.x();
    value["y"] = rectangle.y();
    value["width"] = rectangle.width();
    value["height"] = rectangle.height();
    return value;
}

Json::Value pointToJson(QPoint point) {
    Json::Value value(Json::objectValue);
    value["x"] = point.x();
    value["y"] = point.y();
    return value;
}

QRect rectFromJson(const Json::Value& value) {
    const int height = requireInt(value, "height");
    const int width = requireInt(value, "width");
    const int y = requireInt(value, "y");
    const int x = requireInt(value, "x");
    if (!hasFarCorner(x, y, width, height)) {
        failParsing(QStringLiteral("Invalid rectangle: %1x%2x%3x%4")
                        .arg(QString::number(x), QString::number(y), QString::number(width),
                             QString::number(height)));
    }
    return rectangleOf(x, y, width, height);
}

QPoint pointFromJson(const Json::Value& value) {
    const int y = requireInt(value, "y");
    const int x = requireInt(value, "x");
    return {x, y};
}

}  // namespace Tamrix::Vision
