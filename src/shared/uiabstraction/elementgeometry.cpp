#include "shared/uiabstraction/elementgeometry.h"

#include <QDataStream>
#include <algorithm>
#include <array>

namespace Tamrix::UIAbstraction {

namespace {

constexpr int edgeLimit = 1 << 29;

}  // namespace

ElementGeometry::ElementGeometry() : ElementGeometry(QRect(), false) {}

ElementGeometry::ElementGeometry(const QRect& rect, bool relative)
    : m_rect(rect), m_isRelative(relative) {
    // No value is made by this: it only names the functions that would.
    static const bool s_registered = [] {
        const char* name = "Tamrix::UIAbstraction::ElementGeometry";
        qRegisterMetaType<ElementGeometry>(name);
        qRegisterMetaTypeStreamOperators<ElementGeometry>(name);
        return true;
    }();
    Q_UNUSED(s_registered)
}

ElementGeometry ElementGeometry::relativeTo(const ElementGeometry& parent) const {
    QPoint position;
    if (m_isRelative)
        position = m_rect.topLeft();
    else if (parent.m_rect.isValid())
        position = m_rect.topLeft() - parent.m_rect.topLeft();
    return {QRect(position, m_rect.size()), true};
}

QDataStream& operator<<(QDataStream& stream, const ElementGeometry& geometry) {
    return stream << geometry.rect() << geometry.isRelative();
}

QDataStream& operator>>(QDataStream& stream, ElementGeometry& geometry) {
    geometry = ElementGeometry();
    std::array<qint32, 4> edges = {};
    for (qint32& edge : edges)
        stream >> edge;
    bool isRelative = false;
    stream >> isRelative;
    const bool isSensible = std::all_of(edges.begin(), edges.end(), [](qint32 edge) {
        return edge >= -edgeLimit && edge <= edgeLimit;
    });
    if (stream.status() == QDataStream::Ok && isSensible) {
        const auto [left, top, right, bottom] = edges;
        geometry = ElementGeometry(QRect(QPoint(left, top), QPoint(right, bottom)), isRelative);
    }
    return stream;
}

}  // namespace Tamrix::UIAbstraction
