#include "agent/qtquick/quicktoolkit.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>

#include "agent/core/objecttoolkit.h"
#include "agent/core/session.h"
#include "agent/qtquick/pressdelivery.h"
#include "agent/qtquick/quickitems.h"
#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

namespace {

QQuickItem* itemOf(const Element& element) {
    return qobject_cast<QQuickItem*>(element.object);
}

QQuickWindow* windowOf(const Element& element) {
    const QQuickItem* const item = itemOf(element);
    return item ? item->window() : qobject_cast<QQuickWindow*>(element.object);
}

/// In coordinates of the window.
QRect rectInWindow(const QQuickItem* item) {
    return boundedAlignedRect(item->mapRectToScene(QRectF(0, 0, item->width(), item->height())));
}

/// Moves a Flickable so that the item is seen; false when it is seen already.
bool scrollFlickable(QQuickItem* flickable, const QQuickItem* item, const QRectF& part) {
    const QRectF place = item->mapRectToItem(flickable, part);
    const auto scroll = [flickable](const char* property, qreal from, qreal to, qreal size) {
        if (from >= 0 && to <= size)
            return false;
        const qreal way = from < 0 || to - from > size ? from : to - size;
        return flickable->setProperty(property, flickable->property(property).toReal() + way);
    };
    const bool hasMovedX = scroll("contentX", place.left(), place.right(), flickable->width());
    return scroll("contentY", place.top(), place.bottom(), flickable->height()) || hasMovedX;
}

/// The object's id. Where it has none, Qt 6 takes a property that holds the object, which may soon
/// hold another, such as the item with the focus: that is no name.
QString idOf(QObject* object, const QQmlContext& context) {
    const QString name = context.nameForObject(object);
    const QObject* const holder = context.contextObject();
    const bool isProperty = holder && holder->metaObject()->indexOfProperty(name.toUtf8()) >= 0;
    return isProperty ? QString() : name;
}

}  // namespace

bool QuickToolkit::knows(const QObject* object) const {
    return qobject_cast<const QQuickItem*>(object) || qobject_cast<const QQuickWindow*>(object);
}

void QuickToolkit::topLevels(QVector<Element>* elements) const {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (qobject_cast<QQuickWindow*>(window))
            elements->append(element(window));
    }
}

void QuickToolkit::children(const Element& parent, bool /*withItems*/,
                            QVector<Element>* elements) const {
    const QQuickItem* item = itemOf(parent);
    if (!item)
        item = windowOf(parent)->contentItem();
    for (QQuickItem* child : item->childItems())
        elements->append(element(child));
}

Element QuickToolkit::parent(const Element& child) const {
    const QQuickItem* const item = itemOf(child);
    if (!item)
        return {};
    QQuickItem* const above = item->parentItem();
    const bool isTop = item->window() && above == item->window()->contentItem();
    return isTop ? element(item->window()) : element(above);
}

Element QuickToolkit::window(const Element& item) const {
    return element(windowOf(item));
}

QString QuickToolkit::name(const Element& element) const {
    const QString name = element.object->objectName();
    const QQmlContext* const context = name.isEmpty() ? qmlContext(element.object) : nullptr;
    return context ? idOf(element.object, *context) : name;
}

QString QuickToolkit::text(const Element& element) const {
    return quickTextOf(element.object);
}

bool QuickToolkit::isTextLasting(const Element& element) const {
    return !element.object->inherits("QQuickTextInput") &&
           !element.object->inherits("QQuickTextEdit");
}

bool QuickToolkit::isVisible(const Element& element) const {
    const QQuickWindow* const window = windowOf(element);
    const QQuickItem* const item = itemOf(element);
    return window && window->isVisible() && (!item || item->isVisible());
}

bool QuickToolkit::isEnabled(const Element& element) const {
    const QQuickItem* const item = itemOf(element);
    // The enabled of a mouse area is another one than that of items.
    return !item || (item->isEnabled() && item->property("enabled").toBool());
}

QRect QuickToolkit::globalBounds(const Element& element) const {
    const QQuickWindow* const window = windowOf(element);
    const QQuickItem* const item = itemOf(element);
    if (!isVisible(element))
        return {};
    const QRect rect = item ? rectInWindow(item) : QRect(QPoint(0, 0), window->size());
    return {window->mapToGlobal(rect.topLeft()), rect.size()};
}

QRect QuickToolkit::visibleBounds(const Element& element) const {
    const QQuickWindow* const window = windowOf(element);
    const QQuickItem* const item = itemOf(element);
    if (!item || !isVisible(element))
        return globalBounds(element);
    QRect rect = rectInWindow(item) & QRect(QPoint(0, 0), window->size());
    for (const QQuickItem* each = item->parentItem(); each; each = each->parentItem()) {
        if (each->clip())
            rect &= rectInWindow(each);
    }
    return rect.isValid() ? QRect(window->mapToGlobal(rect.topLeft()), rect.size()) : QRect();
}

QWindow* QuickToolkit::nativeWindow(const Element& element) const {
    return windowOf(element);
}

Element QuickToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                                Qt::MouseButton button) const {
    QQuickWindow* const window = windowOf(inWindowOf);
    if (!window || !window->isVisible())
        return {};
    const QPointF point = window->mapFromGlobal(globalPoint);
    if (!QRectF(QPointF(0, 0), QSizeF(window->size())).contains(point))
        return {};
    QQuickItem* const content = window->contentItem();
    QQuickItem* hit = pressTaker(content, point, Press{button, itemOf(inWindowOf)});
    if (!hit)
        hit = topmostItem(content, point);
    return !hit || hit == content ? element(window) : element(hit);
}

bool QuickToolkit::receivesThrough(const Element& element, const Element& hit,
                                   Qt::MouseButton button) const {
    if (Toolkit::receivesThrough(element, hit, button))
        return true;
    // What takes no clicks passes them on, to what is below it or beside it in the same control.
    const QQuickItem* const item = itemOf(element);
    const QQuickItem* const taker = hit.toolkit == this ? itemOf(hit) : nullptr;
    if (!item || takesPress(item, button))
        return false;
    if (!taker)
        return hit.object == windowOf(element);
    return taker->isAncestorOf(item) || !takesPress(taker, button) ||
           (taker->parentItem() && taker->parentItem()->isAncestorOf(item));
}

Element QuickToolkit::blockedBy(const Element& element) const {
    // A popup is part of its window, which can be closed and activated all the same.
    if (const QQuickItem* const item = itemOf(element)) {
        if (QQuickItem* const popup = modalPopupOver(item))
            return Toolkit::element(popup);
    }
    return Session::self()->element(blockingWindow(windowOf(element)));
}

bool QuickToolkit::scrollIntoView(const Element& element,
                                  const std::optional<QPoint>& point) const {
    const QQuickItem* const item = itemOf(element);
    if (!item)
        return false;
    const QRectF whole(0, 0, item->width(), item->height());
    const QRectF part = point ? around(*point, whole.toAlignedRect()) : whole;
    bool hasMoved = false;
    for (QQuickItem* each = item->parentItem(); each; each = each->parentItem()) {
        if (each->inherits("QQuickFlickable"))
            hasMoved = scrollFlickable(each, item, part) || hasMoved;
    }
    return hasMoved;
}

QImage QuickToolkit::grab(const Element& element) const {
    QQuickWindow* const window = windowOf(element);
    const QQuickItem* const item = itemOf(element);
    if (!isVisible(element))
        return {};
    const QImage image = window->grabWindow();
    if (!item)
        return image;
    const QRect rect = rectInWindow(item) & QRect(QPoint(0, 0), window->size());
    const qreal density = image.devicePixelRatio();
    return image.copy(QRectF(rect.x() * density, rect.y() * density, rect.width() * density,
                             rect.height() * density)
                          .toRect());
}

}  // namespace Tamrix::Agent
