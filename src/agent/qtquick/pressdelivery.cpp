#include "agent/qtquick/pressdelivery.h"

#include <QMetaMethod>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <functional>

namespace Tamrix::Agent {

namespace {

/// Child items as they are painted, the last on top.
QList<QQuickItem*> stackedChildren(const QQuickItem* item) {
    QList<QQuickItem*> children = item->childItems();
    std::stable_sort(children.begin(), children.end(),
                     [](const QQuickItem* a, const QQuickItem* b) { return a->z() < b->z(); });
    return children;
}

/// Opens what QObject tells to its own classes only.
struct SignalAccess : QObject {
    using QObject::isSignalConnected;
};

bool isClickConnected(const QQuickItem* area) {
    const QMetaObject* const metaObject = area->metaObject();
    const int index = metaObject->indexOfSignal("clicked(QQuickMouseEvent*)");
    return index >= 0 && (area->*&SignalAccess::isSignalConnected)(metaObject->method(index));
}

/// A handler that keeps what lies below its item from being clicked. Others only watch.
bool isTakingHandler(const QObject* child, Qt::MouseButton button) {
    return (child->inherits("QQuickTapHandler") || child->inherits("QQuickDragHandler")) &&
           child->property("enabled").toBool() &&
           (child->property("acceptedButtons").toInt() & button) != 0;
}

bool hasHandlers(const QQuickItem* item) {
    const QObjectList& children = item->children();
    return std::any_of(children.cbegin(), children.cend(), [](const QObject* child) {
        return child->inherits("QQuickPointerHandler");
    });
}

/// Items that handle presses by code of their own, so that their handlers come on top of that.
bool isOfPressingClass(const QQuickItem* item) {
    static const char* const s_classes[] = {"QQuickMouseArea", "QQuickControl",
                                            "QQuickFlickable", "QQuickTextInput",
                                            "QQuickTextEdit",  "QQuickMultiPointTouchArea"};
    return std::any_of(std::begin(s_classes), std::end(s_classes),
                       [item](const char* name) { return item->inherits(name); });
}

/// The popup whose item this is; null for other items.
const QObject* popupOf(const QQuickItem* item) {
    const QObject* const parent = item->parent();
    return parent && parent->inherits("QQuickPopup") ? parent : nullptr;
}

bool isOpenModal(const QQuickItem* popupItem) {
    const QObject* const popup = popupOf(popupItem);
    return popup && popup->property("visible").toBool() && popup->property("modal").toBool();
}

bool holdsOpenModal(const QQuickItem* overlay) {
    const QList<QQuickItem*> children = overlay->childItems();
    return std::any_of(children.cbegin(), children.cend(), isOpenModal);
}

/// Whether an area that composes clicks leaves them to the areas below it.
bool passesClicksOn(const QQuickItem* area) {
    return area->property("propagateComposedEvents").toBool() && !isClickConnected(area);
}

/// Goes through the items at a point in the order in which they get a press, until `isWanted`.
QQuickItem* findAt(QQuickItem* item, const QPointF& scenePoint,
                   const std::function<bool(const QQuickItem*)>& isWanted) {
    const QPointF inside = item->mapFromScene(scenePoint);
    if (!item->isVisible() || (item->clip() && !item->clipRect().contains(inside)))
        return nullptr;
    const QList<QQuickItem*> children = stackedChildren(item);
    const auto firstBelow = std::find_if(children.cbegin(), children.cend(),
                                         [](const QQuickItem* child) { return child->z() >= 0; });
    for (auto child = children.cend(); child != firstBelow;) {
        if (QQuickItem* const found = findAt(*--child, scenePoint, isWanted))
            return found;
    }
    if (item->contains(inside) && isWanted(item))
        return item;
    for (auto child = firstBelow; child != children.cbegin();) {
        if (QQuickItem* const found = findAt(*--child, scenePoint, isWanted))
            return found;
    }
    return nullptr;
}

}  // namespace

bool takesPress(const QQuickItem* item, Qt::MouseButton button) {
    if ((item->acceptedMouseButtons() & button) == 0 || !item->isEnabled() ||
        !item->property("enabled").toBool())
        return false;
    // Texts say that they do, for the links in them.
    if (item->inherits("QQuickText"))
        return false;
    if (item->inherits("QQuickOverlay"))
        return holdsOpenModal(item);
    if (item->inherits("QQuickFlickable"))
        return item->property("interactive").toBool();
    if (item->inherits("QQuickMouseArea"))
        return !passesClicksOn(item);
    // A handler makes its item accept all buttons.
    if (!isOfPressingClass(item) && hasHandlers(item)) {
        const QObjectList& children = item->children();
        return std::any_of(children.cbegin(), children.cend(), [button](const QObject* child) {
            return isTakingHandler(child, button);
        });
    }
    return true;
}

QQuickItem* pressTaker(QQuickItem* item, const QPointF& scenePoint, const Press& press) {
    return findAt(item, scenePoint, [&press](const QQuickItem* each) {
        if (takesPress(each, press.button))
            return true;
        const bool isOfTarget =
            press.target && (each == press.target || press.target->isAncestorOf(each));
        return isOfTarget && (each->acceptedMouseButtons() & press.button) != 0 &&
               hasHandlers(each) && each->isEnabled();
    });
}

QQuickItem* topmostItem(QQuickItem* item, const QPointF& scenePoint) {
    return findAt(item, scenePoint, [](const QQuickItem*) { return true; });
}

QQuickItem* modalPopupOver(const QQuickItem* item) {
    if (!item->window())
        return nullptr;
    const QList<QQuickItem*> layers = item->window()->contentItem()->childItems();
    for (const QQuickItem* layer : layers) {
        if (!layer->inherits("QQuickOverlay") || !layer->isVisible())
            continue;
        const QList<QQuickItem*> children = stackedChildren(layer);
        for (auto child = children.crbegin(); child != children.crend(); ++child) {
            if (*child == item || (*child)->isAncestorOf(item))
                return nullptr;
            if (isOpenModal(*child))
                return *child;
        }
    }
    return nullptr;
}

}  // namespace Tamrix::Agent
