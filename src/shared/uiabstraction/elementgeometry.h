#pragma once

#include <QMetaType>
#include <QRect>

#include "base/export.h"

QT_BEGIN_NAMESPACE
class QDataStream;
QT_END_NAMESPACE

namespace Tamrix::UIAbstraction {

/// Position and size of an element, in pixels of the screen or relative to the parent's position.
/// The first value that is made registers the type with Qt.
class TAMRIX_EXPORT ElementGeometry {
public:
    /// A null rectangle, not relative.
    ElementGeometry();
    ElementGeometry(const QRect& rect, bool relative);

    QRect rect() const { return m_rect; }
    bool isRelative() const { return m_isRelative; }

    /// The same size at a relative position: at this one when it is relative already, else at this
    /// one minus the parent's. The parent's invalid rectangle gives (0, 0).
    ElementGeometry relativeTo(const ElementGeometry& parent) const;

    bool operator==(const ElementGeometry& other) const = default;

private:
    QRect m_rect;
    bool m_isRelative = false;
};

TAMRIX_EXPORT QDataStream& operator<<(QDataStream& stream, const ElementGeometry& geometry);
/// A stream with too few bytes leaves a null rectangle and not relative. So does a rectangle with
/// an edge beyond 2^29: its width, or its distance to another, might not fit into an int.
TAMRIX_EXPORT QDataStream& operator>>(QDataStream& stream, ElementGeometry& geometry);

}  // namespace Tamrix::UIAbstraction

Q_DECLARE_METATYPE(Tamrix::UIAbstraction::ElementGeometry)
