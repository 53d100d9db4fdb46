#pragma once

#include <qnamespace.h>
#include <QPointF>

class QQuickItem;

namespace Tamrix::Agent {

// Which item of a Qt Quick window gets a press of the mouse: what Qt decides when it delivers one,
// told without delivering it. What the handlers of an application say at that moment
// (`mouse.accepted = false`) can't be known: they count as taking it.

/// Whether the item keeps a press at one of its points from what lies below.
bool takesPress(const QQuickItem* item, Qt::MouseButton button);

/// A press that is meant for an item.
struct Press {
    Qt::MouseButton button;
    const QQuickItem* target;
};

/// The first item below `item`, itself included, that takes the press at a point of the scene, or
/// gets it and passes it on while it is the target or a part of it. Null for none.
QQuickItem* pressTaker(QQuickItem* item, const QPointF& scenePoint, const Press& press);

/// The topmost item at a point of the scene, whether it takes clicks or not. Null for none.
QQuickItem* topmostItem(QQuickItem* item, const QPointF& scenePoint);

/// The item of the open modal popup, dialog or drawer that keeps input from the item; null for
/// none.
QQuickItem* modalPopupOver(const QQuickItem* item);

}  // namespace Tamrix::Agent
