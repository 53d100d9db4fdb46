#include "agent/qtquick/quicktoolkit.h"

#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>

#include "agent/core/objecttoolkit.h"
#include "agent/core/session.h"

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
    return item->mapRectToScene(QRectF(0, 0, item->width(), item->height())).toAlignedRect();
}

/// Texts say that they do, for the links in them.
bool takesClicks(const QQuickItem* item) {
    return item->acceptedMouseButtons() != Qt::NoButton && !item->inherits("QQuickText");
}

/// Child items as they are painted, the last on top.
QList<QQuickItem*> stackedChildren(const QQuickItem* item) {
    QList<QQuickItem*> children = item->childItems();
    std::stable_sort(children.begin(), children.end(),
                     [](const QQuickItem* a, const QQuickItem* b) { return a->z() < b->z(); });
    return children;
}

/// The topmost item at a point of the window, of those that take clicks if `wantsClicks`.
QQuickItem* findAt(QQuickItem* item, const QPointF& scenePoint, bool wantsClicks) {
    const QPointF inside = item->mapFromScene(scenePoint);
    if (!item->isVisible() || (item->clip() && !item->contains(inside)))
        return nullptr;
    const QList<QQuickItem*> children = stackedChildren(item);
    const auto firstBelow = std::find_if(children.cbegin(), children.cend(),
                                         [](const QQuickItem* child) { return child->z() >= 0; });
    for (auto child = children.cend(); child != firstBelow;) {
        if (QQuickItem* const found = findAt(*--child, scenePoint, wantsClicks))
            return found;
    }
    if (item->contains(inside) && (!wantsClicks || (takesClicks(item) && item->isEnabled())))
        return item;
    for (auto child = firstBelow; child != children.cbegin();) {
        if (QQuickItem* const found = findAt(*--child, scenePoint, wantsClicks))
            return found;
    }
    return nullptr;
}

/// Moves a Flickable so that the item is seen; false when it is seen already.
bool scrollFlickable(QQuickItem* flickable, const QQuickItem* item) {
    const QRectF place =
        item->mapRectToItem(flickable, QRectF(0, 0, item->width(), item->height()));
    const auto scroll = [flickable](const char* property, qreal from, qreal to, qreal size) {
        if (from >= 0 && to <= size)
            return false;
        const qreal way = from < 0 || to - from > size ? from : to - size;
        return flickable->setProperty(property, flickable->property(property).toReal() + way);
    };
    const bool hasMovedX = scroll("contentX", place.left(), place.right(), flickable->width());
    return scroll("contentY", place.top(), place.bottom(), flickable->height()) || hasMovedX;
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
    return context ? context->nameForObject(element.object) : name;
}

QString QuickToolkit::text(const Element& element) const {
    for (const char* name : {"text", "title"}) {
        const QVariant value = element.object->property(name);
        if (value.userType() == QMetaType::QString)
            return value.toString();
    }
    return {};
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
    return !item || item->isEnabled();
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

Element QuickToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint) const {
    QQuickWindow* const window = windowOf(inWindowOf);
    if (!window || !window->isVisible())
        return {};
    const QPointF point = window->mapFromGlobal(globalPoint);
    if (!QRectF(QPointF(0, 0), QSizeF(window->size())).contains(point))
        return {};
    QQuickItem* const content = window->contentItem();
    QQuickItem* hit = findAt(content, point, true);
    if (!hit)
        hit = findAt(content, point, false);
    return !hit || hit == content ? element(window) : element(hit);
}

bool QuickToolkit::receivesThrough(const Element& element, const Element& hit) const {
    if (Toolkit::receivesThrough(element, hit))
        return true;
    // What takes no clicks passes them on, to what is below it or beside it in the same control.
    const QQuickItem* const item = itemOf(element);
    const QQuickItem* const taker = hit.toolkit == this ? itemOf(hit) : nullptr;
    if (!item || takesClicks(item))
        return false;
    if (!taker)
        return hit.object == windowOf(element);
    return taker->isAncestorOf(item) || !takesClicks(taker) ||
           (taker->parentItem() && taker->parentItem()->isAncestorOf(item));
}

Element QuickToolkit::blockedBy(const Element& element) const {
    return Session::self()->element(blockingWindow(windowOf(element)));
}

bool QuickToolkit::scrollIntoView(const Element& element) const {
    const QQuickItem* const item = itemOf(element);
    bool hasMoved = false;
    for (QQuickItem* each = item ? item->parentItem() : nullptr; each; each = each->parentItem()) {
        if (each->inherits("QQuickFlickable"))
            hasMoved = scrollFlickable(each, item) || hasMoved;
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
