#include "agent/qtwidgets/graphicstoolkit.h"

#include <QGraphicsObject>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QGraphicsView>
#include <QPixmap>
#include <QScrollBar>
#include <iterator>

#include "agent/core/session.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/openlist.h"
#include "agent/qtwidgets/widgettoolkit.h"
#include "base/boundedgeometry.h"

namespace Tamrix::Agent {

namespace {

const Toolkit* s_toolkit = nullptr;

/// Names of Qt's own classes, by QGraphicsItem::type().
constexpr const char* typeNames[] = {
    nullptr,
    "QGraphicsItem",
    "QGraphicsPathItem",
    "QGraphicsRectItem",
    "QGraphicsEllipseItem",
    "QGraphicsPolygonItem",
    "QGraphicsLineItem",
    "QGraphicsPixmapItem",
    "QGraphicsTextItem",
    "QGraphicsSimpleTextItem",
    "QGraphicsItemGroup",
};

QGraphicsItem* itemOf(const Element& element) {
    return element.isItem() ? static_cast<QGraphicsItem*>(element.pointer)
                            : static_cast<QGraphicsObject*>(element.object);
}

QGraphicsView* viewOf(const Element& element) {
    if (element.isItem())
        return static_cast<QGraphicsView*>(element.object);
    const QGraphicsScene* const scene = itemOf(element)->scene();
    return scene && !scene->views().isEmpty() ? scene->views().first() : nullptr;
}

Element makeElement(QGraphicsItem* item, QGraphicsView* view) {
    if (QGraphicsObject* const object = item->toGraphicsObject())
        return s_toolkit->element(object);
    Element element;
    element.toolkit = s_toolkit;
    element.object = view;
    element.kind = GraphicsItem;
    element.pointer = item;
    return element;
}

/// In coordinates of the view's viewport.
QRect boundsInView(const Element& element) {
    const QGraphicsView* const view = viewOf(element);
    const QGraphicsItem* const item = itemOf(element);
    return view ? rectInView(view, item->mapToScene(item->boundingRect())) : QRect();
}

}  // namespace

GraphicsToolkit::GraphicsToolkit() {
    s_toolkit = this;
}

GraphicsToolkit::~GraphicsToolkit() {
    s_toolkit = nullptr;
}

bool GraphicsToolkit::knows(const QObject* object) const {
    return qobject_cast<const QGraphicsObject*>(object) != nullptr;
}

void GraphicsToolkit::topLevels(QVector<Element>* /*elements*/) const {}

void GraphicsToolkit::children(const Element& element, bool /*withItems*/,
                               QVector<Element>* elements) const {
    QGraphicsItem* const item = itemOf(element);
    if (QGraphicsView* const view = viewOf(element)) {
        for (QGraphicsItem* child : item->childItems())
            elements->append(makeElement(child, view));
    }
    if (const auto* const proxy = qobject_cast<QGraphicsProxyWidget*>(element.object)) {
        if (proxy->widget())
            elements->append(Session::self()->element(proxy->widget()));
    }
}

Element GraphicsToolkit::parent(const Element& element) const {
    QGraphicsView* const view = viewOf(element);
    if (!view)
        return {};
    QGraphicsItem* const above = itemOf(element)->parentItem();
    return above ? makeElement(above, view) : Session::self()->element(view);
}

Element GraphicsToolkit::window(const Element& element) const {
    const Element view = Session::self()->element(viewOf(element));
    return view.isNull() ? Element() : view.toolkit->window(view);
}

bool GraphicsToolkit::isAlive(const Element& element) const {
    // The pointer is compared only: there may be nothing behind it.
    const auto* const view = static_cast<QGraphicsView*>(element.object);
    return !element.isItem() ||
           (view->scene() &&
            view->scene()->items().contains(static_cast<QGraphicsItem*>(element.pointer)));
}

QString GraphicsToolkit::typeName(const Element& element) const {
    if (!element.isItem())
        return Toolkit::typeName(element);
    const int type = itemOf(element)->type();
    const bool isKnown = type > 0 && type < static_cast<int>(std::size(typeNames));
    return QString::fromLatin1(typeNames[isKnown ? type : 1]);
}

QStringList GraphicsToolkit::superTypes(const Element& element) const {
    if (!element.isItem())
        return Toolkit::superTypes(element);
    const QString base = QString::fromLatin1(typeNames[1]);
    return typeName(element) == base ? QStringList() : QStringList{base};
}

QString GraphicsToolkit::text(const Element& element) const {
    if (const auto* const text = qobject_cast<QGraphicsTextItem*>(element.object))
        return text->toPlainText();
    if (const auto* const widget = qobject_cast<QGraphicsWidget*>(element.object))
        return widget->windowTitle();
    if (const auto* const text = qgraphicsitem_cast<QGraphicsSimpleTextItem*>(itemOf(element)))
        return text->text();
    return element.isItem() ? QString() : element.object->property("text").toString();
}

bool GraphicsToolkit::isVisible(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view && view->isVisible() && itemOf(element)->isVisible();
}

QString GraphicsToolkit::hiddenReason(const Element& element) const {
    const Element view = Session::self()->element(viewOf(element));
    return view.isNull() ? QString() : view.toolkit->hiddenReason(view);
}

bool GraphicsToolkit::isEnabled(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view && view->isEnabled() && itemOf(element)->isEnabled();
}

QVariant GraphicsToolkit::property(const Element& element, const QString& name,
                                   bool* isKnown) const {
    *isKnown = true;
    if (name == QLatin1String("selected"))
        return itemOf(element)->isSelected();
    if (element.isItem() && name == QLatin1String("toolTip"))
        return itemOf(element)->toolTip();
    return Toolkit::property(element, name, isKnown);
}

QStringList GraphicsToolkit::propertyNames(const Element& element) const {
    QStringList names = Toolkit::propertyNames(element);
    names.append(QStringLiteral("selected"));
    if (element.isItem())
        names.append(QStringLiteral("toolTip"));
    return names;
}

QRect GraphicsToolkit::globalBounds(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    if (!view || !view->isVisible())
        return {};
    const QRect bounds = boundsInView(element);
    return {view->viewport()->mapToGlobal(bounds.topLeft()), bounds.size()};
}

QRect GraphicsToolkit::visibleBounds(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view ? shownPart(view->viewport(), boundsInView(element)) : QRect();
}

QWindow* GraphicsToolkit::nativeWindow(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view ? nativeWindowOf(view) : nullptr;
}

Element GraphicsToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                                   Qt::MouseButton /*button*/) const {
    const QGraphicsView* const view = viewOf(inWindowOf);
    return view ? elementInWindowAt(view, globalPoint) : Element();
}

Element GraphicsToolkit::blockedBy(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view ? blockerOf(view) : Element();
}

Element GraphicsToolkit::openListOver(const Element& element) const {
    const QGraphicsView* const view = viewOf(element);
    return view ? Session::self()->element(Agent::openListOver(view)) : Element();
}

bool GraphicsToolkit::scrollIntoView(const Element& element,
                                     const std::optional<QPoint>& point) const {
    QGraphicsView* const view = viewOf(element);
    if (!view)
        return false;
    const QRect before = boundsInView(element);
    if (point)
        view->ensureVisible(QRectF(view->mapToScene(before.topLeft() + *point), QSizeF(1, 1)));
    else if (!view->viewport()->rect().contains(before.center()))
        view->ensureVisible(itemOf(element));
    const bool hasMoved = boundsInView(element) != before;
    const QRect bounds = boundsInView(element);
    const QRect wanted = point ? around(bounds.topLeft() + *point, bounds) : bounds;
    return scrollWidgetIntoView(view->viewport(), wanted) || hasMoved;
}

QImage GraphicsToolkit::grab(const Element& element) const {
    QGraphicsView* const view = viewOf(element);
    const QRect shown = view ? boundsInView(element) & view->viewport()->rect() : QRect();
    return shown.isValid() ? view->viewport()->grab(shown).toImage() : QImage();
}

TypeTraits GraphicsToolkit::traitsOf(const QString& typeName) const {
    TypeTraits traits;
    traits.areItems = typeName.startsWith(QLatin1String("QGraphics"));
    return traits;
}

void GraphicsToolkit::takeFocus(const Element& element, Qt::FocusReason reason) const {
    // Keys for an item go to the view that shows it.
    if (element.isItem())
        focusWidget(viewOf(element), reason);
}

QRect rectInView(const QGraphicsView* view, const QPolygonF& scenePolygon) {
    QPolygon polygon;
    for (const QPointF& point : view->viewportTransform().map(scenePolygon))
        polygon.append(boundedPoint(point));
    return polygon.boundingRect();
}

void appendGraphicsItems(QWidget* widget, QVector<Element>* elements) {
    auto* const view = qobject_cast<QGraphicsView*>(widget);
    if (!view || !view->scene() || view->scene()->views().first() != view)
        return;
    for (QGraphicsItem* item : view->scene()->items(Qt::AscendingOrder)) {
        if (!item->parentItem())
            elements->append(makeElement(item, view));
    }
}

Element graphicsItemAt(const QWidget* widget, const QPoint& point) {
    auto* const view = qobject_cast<QGraphicsView*>(widget->parentWidget());
    if (!view || view->viewport() != widget)
        return {};
    QGraphicsItem* const item = view->itemAt(point);
    if (!item)
        return {};
    const auto* const proxy = qgraphicsitem_cast<QGraphicsProxyWidget*>(item);
    if (!proxy || !proxy->widget())
        return makeElement(item, view);
    const QPoint inside = boundedPoint(proxy->mapFromScene(view->mapToScene(point)));
    QWidget* const child = proxy->widget()->childAt(inside);
    return Session::self()->element(child ? child : proxy->widget());
}

}  // namespace Tamrix::Agent
