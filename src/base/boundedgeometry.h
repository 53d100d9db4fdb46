#pragma once

#include <QPoint>
#include <QRect>
#include <cmath>

namespace Tamrix {

// Reals as integers. Unlike Qt's own roundings these are defined for every real: what is beyond the
// bound becomes the bound, and what is no number becomes 0.

/// Sums and differences of two such numbers are integers, too.
inline constexpr int geometryBound = 1 << 29;

/// The nearest integer, halves away from zero.
inline int boundedInt(double value) {
    if (std::isnan(value))
        return 0;
    return static_cast<int>(
        std::round(std::fmin(std::fmax(value, -double(geometryBound)), double(geometryBound))));
}

inline QPoint boundedPoint(const QPointF& point) {
    return {boundedInt(point.x()), boundedInt(point.y())};
}

/// The rectangle between the rounded edges.
inline QRect boundedRect(const QRectF& rect) {
    const QPoint from = boundedPoint(rect.topLeft());
    const QPoint to = boundedPoint(rect.topLeft() + QPointF(rect.width(), rect.height()));
    return {from, to - QPoint(1, 1)};
}

/// The smallest rectangle of whole pixels around it.
inline QRect boundedAlignedRect(const QRectF& rect) {
    const QPoint from = boundedPoint(QPointF(std::floor(rect.left()), std::floor(rect.top())));
    const QPoint to = boundedPoint(
        QPointF(std::ceil(rect.left() + rect.width()), std::ceil(rect.top() + rect.height())));
    return {from, to - QPoint(1, 1)};
}

}  // namespace Tamrix
