#pragma once

#include <json/forwards.h>

#include <QList>
#include <QPoint>
#include <QRect>
#include <QString>

#include "base/export.h"

namespace Tamrix::Vision {

/// Where in an image to search: some rectangles in the image's pixels, which may overlap and may
/// leave the image. A value. Reading throws a std::runtime_error that names what was wrong.
class TAMRIX_EXPORT SearchRegion {
public:
    /// An empty region: nothing is found there.
    SearchRegion() = default;
    explicit SearchRegion(const QRect& rectangle) : m_rectangles({rectangle}) {}
    explicit SearchRegion(const QList<QRect>& rectangles) : m_rectangles(rectangles) {}
    /// From LEFTxTOPxWIDTHxHEIGHT, several separated by commas; an empty text is an empty region.
    explicit SearchRegion(const QString& description);
    /// From an object with an array "rectangles" of what rectToJson() makes.
    explicit SearchRegion(const Json::Value& value);

    /// The form that the constructor from a text reads.
    QString description() const;
    /// The form that the constructor from JSON reads.
    Json::Value toJson() const;

    const QList<QRect>& rectangles() const { return m_rectangles; }
    bool isEmpty() const { return m_rectangles.isEmpty(); }

    /// What encloses all rectangles; the null rectangle for an empty region.
    QRect boundingBox() const;
    /// Whether a single rectangle contains the whole of this one.
    bool contains(const QRect& rectangle) const;
    /// Whether a rectangle contains the point.
    bool contains(QPoint point) const;

private:
    QList<QRect> m_rectangles;
};

/// An object with the integers "x", "y", "width" and "height".
TAMRIX_EXPORT Json::Value rectToJson(const QRect& rectangle);
/// An object with the integers "x" and "y".
TAMRIX_EXPORT Json::Value pointToJson(QPoint point);
/// What rectToJson() made. Throws a std::runtime_error that names a member that is missing or no
/// integer, or a rectangle whose far corner is no pair of integers.
TAMRIX_EXPORT QRect rectFromJson(const Json::Value& value);
/// What pointToJson() made. Throws as rectFromJson() does.
TAMRIX_EXPORT QPoint pointFromJson(const Json::Value& value);

}  // namespace Tamrix::Vision
