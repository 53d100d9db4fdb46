#include "agent/qtwidgets/widgettoolkit.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QGraphicsProxyWidget>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPixmap>
#include <QScrollArea>
#include <QScrollBar>
#include <QWindow>

#include "agent/core/objecttoolkit.h"
#include "agent/core/session.h"
#include "agent/qtwidgets/actionplace.h"
#include "agent/qtwidgets/graphicstoolkit.h"
#include "agent/qtwidgets/hiddenreason.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/openlist.h"
#include "agent/qtwidgets/qtversionwidgets.h"
#include "agent/qtwidgets/widgettext.h"

namespace Tamrix::Agent {

namespace {

QWidget* widgetOf(const Element& element) {
    return element.object->isWidgetType() ? static_cast<QWidget*>(element.object) : nullptr;
}

/// Of an element that is no widget.
const QAction* actionOf(const Element& element) {
    return static_cast<const QAction*>(element.object);
}

/// The widget that shows the element: itself, or the place of an action; null for none.
QWidget* showingWidget(const Element& element) {
    QWidget* const widget = widgetOf(element);
    return widget ? widget : placeOf(actionOf(element)).widget;
}

/// The view that shows the graphics scene in which the widget is; null for a widget in none.
QGraphicsView* viewAround(const QWidget* widget) {
    const QGraphicsProxyWidget* const proxy = widget->window()->graphicsProxyWidget();
    const QGraphicsScene* const scene = proxy ? proxy->scene() : nullptr;
    return scene && !scene->views().isEmpty() ? scene->views().first() : nullptr;
}

/// A rectangle of a widget in a scene, in the coordinates of the view's viewport.
QRect rectInViewport(const QWidget* widget, const QRect& rect, const QGraphicsView* view) {
    const QGraphicsProxyWidget* const proxy = widget->window()->graphicsProxyWidget();
    const QRect inWindow(widget->mapTo(widget->window(), rect.topLeft()), rect.size());
    return rectInView(view, proxy->mapToScene(QRectF(inWindow)));
}

/// The label that names a field: it stands beside the field, or one level above it.
QWidget* labelOf(const QWidget* field) {
    if (!field->parentWidget() || field->isWindow())
        return nullptr;
    const QWidget* around = field->parentWidget();
    for (int level = 0; level < 2 && around; ++level, around = around->parentWidget()) {
        for (QObject* sibling : around->children()) {
            auto* const label = qobject_cast<QLabel*>(sibling);
            if (label && label->buddy() == field)
                return label;
        }
    }
    return nullptr;
}

QWidget* labelledBy(const QWidget* label) {
    return factsOf(label).textSource == TextSource::Label
               ? static_cast<const QLabel*>(label)->buddy()
               : nullptr;
}

bool hasIcon(const QObject* object) {
    return qobject_cast<const QAbstractButton*>(object) || qobject_cast<const QAction*>(object);
}

/// The name of the icon of a button or action in the desktop's theme; empty for a picture of the
/// application's own.
QString iconNameOf(const QObject* object) {
    return object->property("icon").value<QIcon>().name();
}

}  // namespace

QRect globalRect(const QWidget* widget, const QRect& rect) {
    const QGraphicsView* const view = viewAround(widget);
    return view ? globalRect(view->viewport(), rectInViewport(widget, rect, view))
                : QRect(widget->mapToGlobal(rect.topLeft()), rect.size());
}

QRect shownPart(const QWidget* widget, const QRect& rect) {
    if (!widget->isVisible())
        return {};
    QRect shown = rect & widget->rect();
    const QWidget* each = widget;
    while (!each->isWindow() && each->parentWidget()) {
        shown.translate(each->pos());
        each = each->parentWidget();
        shown &= each->rect();
    }
    if (!shown.isValid())
        return {};
    const QGraphicsView* const view = viewAround(each);
    return view ? shownPart(view->viewport(), rectInViewport(each, shown, view))
                : globalRect(each, shown);
}

QWindow* nativeWindowOf(const QWidget* widget) {
    const QGraphicsView* const view = viewAround(widget);
    return view ? nativeWindowOf(view) : widget->window()->windowHandle();
}

Element blockerOf(const QWidget* widget) {
    const QWindow* const blocker = blockingWindow(nativeWindowOf(widget));
    if (!blocker)
        return {};
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->windowHandle() == blocker)
            return Session::self()->element(each);
    }
    return Session::self()->element(const_cast<QWindow*>(blocker));
}

bool scrollWidgetIntoView(QWidget* widget, const QRect& rect) {
    bool hasMoved = false;
    for (QWidget* each = widget->parentWidget(); each; each = each->parentWidget()) {
        auto* const area = qobject_cast<QScrollArea*>(each);
        if (!area || !area->widget() ||
            (area->widget() != widget && !area->widget()->isAncestorOf(widget)))
            continue;
        const QPoint before = area->widget()->pos();
        const QPoint middle = widget->mapTo(area->widget(), rect.center());
        area->ensureVisible(middle.x(), middle.y(), rect.width() / 2, rect.height() / 2);
        hasMoved = hasMoved || area->widget()->pos() != before;
    }
    return hasMoved;
}

Element elementInWindowAt(const QWidget* widget, const QPoint& globalPoint) {
    if (const QGraphicsView* const view = viewAround(widget))
        return elementInWindowAt(view, globalPoint);
    QWidget* const window = widget->window();
    const QPoint inWindow = window->mapFromGlobal(globalPoint);
    if (!window->isVisible() || !window->rect().contains(inWindow))
        return {};
    QWidget* hit = window->childAt(inWindow);
    if (!hit)
        hit = window;
    const QPoint inHit = hit->mapFromGlobal(globalPoint);
    QAction* action = nullptr;
    if (auto* const menu = qobject_cast<QMenu*>(hit))
        action = menu->actionAt(inHit);
    else if (auto* const bar = qobject_cast<QMenuBar*>(hit))
        action = bar->actionAt(inHit);
    if (action)
        return Session::self()->element(action);
    Element item = graphicsItemAt(hit, inHit);
    if (item.isNull())
        item = itemAt(hit, inHit);
    return item.isNull() ? Session::self()->element(hit) : item;
}

bool WidgetToolkit::knows(const QObject* object) const {
    return object->isWidgetType() || qobject_cast<const QAction*>(object) ||
           (object->isWindowType() && object->inherits("QWidgetWindow"));
}

Element WidgetToolkit::element(QObject* object) const {
    if (!object || !object->isWindowType())
        return Toolkit::element(object);
    auto* const window = static_cast<QWindow*>(object);
    return Toolkit::element(window->handle() ? QWidget::find(window->winId()) : nullptr);
}

void WidgetToolkit::topLevels(QVector<Element>* elements) const {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (!widget->graphicsProxyWidget())
            elements->append(element(widget));
    }
}

void WidgetToolkit::children(const Element& parent, bool withItems,
                             QVector<Element>* elements) const {
    QWidget* const widget = widgetOf(parent);
    if (!widget)
        return;
    for (QAction* action : widget->actions()) {
        if (homeOf(action) == widget)
            elements->append(element(action));
    }
    for (QObject* child : widget->children()) {
        if (child->isWidgetType()) {
            if (!static_cast<QWidget*>(child)->isWindow())
                elements->append(element(child));
        } else if (const auto* const action = qobject_cast<QAction*>(child)) {
            if (widgetsOf(action).isEmpty() && homeOf(action) == widget)
                elements->append(element(child));
        } else if (!child->isWindowType()) {
            elements->append(Session::self()->element(child));
        }
    }
    if (factsOf(widget).holdsItems) {
        if (withItems)
            appendItems(widget, elements);
        // Always: objects and widgets can be below graphics items.
        appendGraphicsItems(widget, elements);
    }
}

Element WidgetToolkit::parent(const Element& child) const {
    QWidget* const widget = widgetOf(child);
    if (!widget) {
        QWidget* const home = homeOf(actionOf(child));
        QObject* const owner = actionOf(child)->parent();
        const bool isInGroup = !home && owner && !owner->isWidgetType();
        return isInGroup ? Session::self()->element(owner) : element(home);
    }
    if (widget->isWindow())
        return Session::self()->element(widget->graphicsProxyWidget());
    return element(widget->parentWidget());
}

Element WidgetToolkit::window(const Element& child) const {
    // Of an action the home's one: it stays when the action's menu is closed.
    QWidget* widget = widgetOf(child);
    if (!widget)
        widget = homeOf(actionOf(child));
    if (!widget)
        return {};
    const Element proxy = Session::self()->element(widget->window()->graphicsProxyWidget());
    return proxy.isNull() ? element(widget->window()) : proxy.toolkit->window(proxy);
}

Element WidgetToolkit::related(const Element& from, Relation relation) const {
    QWidget* const widget = widgetOf(from);
    if (!widget)
        return {};
    return element(relation == Relation::Label ? labelOf(widget) : labelledBy(widget));
}

TypeTraits WidgetToolkit::traitsOf(const QString& typeName) const {
    TypeTraits traits;
    // An action at home in a closed menu may be a button of a tool bar.
    traits.showBelowHidden = typeName.contains(QLatin1String("Action"));
    return traits;
}

QString WidgetToolkit::text(const Element& element) const {
    const QWidget* const widget = widgetOf(element);
    return widget ? textOf(widget) : actionText(actionOf(element));
}

ToolkitNames::Hint WidgetToolkit::hint(const Element& element) const {
    const auto* const button = qobject_cast<QAbstractButton*>(element.object);
    const QAction* const action = widgetOf(element) ? nullptr : actionOf(element);
    if ((!button && !action) || !text(element).isEmpty())
        return {};
    const QString toolTip = button ? button->toolTip() : action->toolTip();
    if (!toolTip.isEmpty())
        return {"toolTip", toolTip};
    const QString icon = iconNameOf(element.object);
    return icon.isEmpty() ? Hint() : Hint{"iconName", icon};
}

bool WidgetToolkit::isTextLasting(const Element& element) const {
    const QWidget* const widget = widgetOf(element);
    return !widget || !factsOf(widget).isEditable;
}

bool WidgetToolkit::isVisible(const Element& element) const {
    const QWidget* const widget = widgetOf(element);
    return widget ? widget->isVisible() : placeOf(actionOf(element)).widget != nullptr;
}

QString WidgetToolkit::hiddenReason(const Element& element) const {
    const QWidget* const widget = widgetOf(element);
    return widget ? reasonForHiding(widget) : reasonForHiding(actionOf(element));
}

bool WidgetToolkit::isEnabled(const Element& element) const {
    if (const QWidget* const widget = widgetOf(element))
        return widget->isEnabled();
    const QWidget* const place = placeOf(actionOf(element)).widget;
    return actionOf(element)->isEnabled() && (!place || place->isEnabled());
}

bool WidgetToolkit::isInternal(const Element& element) const {
    const QWidget* const widget = widgetOf(element);
    if (!widget)
        return actionOf(element)->isSeparator();
    if (factsOf(widget).isInternal)
        return true;
    const QString name = widget->objectName();
    return name.startsWith(QLatin1String("qt_")) &&
           (name.startsWith(QLatin1String("qt_scrollarea_")) ||
            name == QLatin1String("qt_tabwidget_stackedwidget") ||
            name == QLatin1String("qt_rubberband"));
}

QVariant WidgetToolkit::property(const Element& element, const QString& name, bool* isKnown) const {
    if (name == QLatin1String("iconName") && hasIcon(element.object)) {
        *isKnown = true;
        return iconNameOf(element.object);
    }
    if (name == QLatin1String("currentItem") && widgetOf(element)) {
        const Element item = currentItemOf(widgetOf(element));
        if (factsOf(widgetOf(element)).holdsItems) {
            *isKnown = true;
            return item.isNull() ? QVariant() : QVariant::fromValue(Session::self()->info(item));
        }
    }
    return Toolkit::property(element, name, isKnown);
}

QRect WidgetToolkit::globalBounds(const Element& element) const {
    if (const QWidget* const widget = widgetOf(element))
        return widget->isVisible() ? globalRect(widget, widget->rect()) : QRect();
    const ActionPlace place = placeOf(actionOf(element));
    return place.widget ? globalRect(place.widget, place.rect) : QRect();
}

QRect WidgetToolkit::visibleBounds(const Element& element) const {
    if (const QWidget* const widget = widgetOf(element))
        return shownPart(widget, widget->rect());
    const ActionPlace place = placeOf(actionOf(element));
    return place.widget ? shownPart(place.widget, place.rect) : QRect();
}

QWindow* WidgetToolkit::nativeWindow(const Element& element) const {
    const QWidget* const widget = showingWidget(element);
    return widget ? nativeWindowOf(widget) : nullptr;
}

Element WidgetToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                                 Qt::MouseButton /*button*/) const {
    // One that has grabbed the mouse gets all that no open popup takes.
    if (QWidget* const grabber = QWidget::mouseGrabber();
        grabber && !QApplication::activePopupWidget())
        return Toolkit::element(grabber);
    const QWidget* const widget = showingWidget(inWindowOf);
    return widget ? elementInWindowAt(widget, globalPoint) : Element();
}

bool WidgetToolkit::receivesThrough(const Element& element, const Element& hit,
                                    Qt::MouseButton button) const {
    if (Toolkit::receivesThrough(element, hit, button))
        return true;
    if (hit.isItem())
        return false;
    // An entry of a menu may be at home in another one.
    if (const QWidget* const widget = widgetOf(element)) {
        auto* const action = qobject_cast<QAction*>(hit.object);
        return action && widget->actions().contains(action);
    }
    // An action in a bar is a button.
    return hit.object == showingWidget(element);
}

Element WidgetToolkit::blockedBy(const Element& element) const {
    const QWidget* const widget = showingWidget(element);
    return widget ? blockerOf(widget) : Element();
}

Element WidgetToolkit::openListOver(const Element& element) const {
    const QWidget* const widget = showingWidget(element);
    return widget ? Toolkit::element(Agent::openListOver(widget)) : Element();
}

bool WidgetToolkit::scrollIntoView(const Element& element) const {
    QWidget* const widget = widgetOf(element);
    return widget && scrollWidgetIntoView(widget, widget->rect());
}

QImage WidgetToolkit::grab(const Element& element) const {
    if (QWidget* const widget = widgetOf(element))
        return widget->grab().toImage();
    const ActionPlace place = placeOf(actionOf(element));
    return place.widget ? place.widget->grab(place.rect).toImage() : QImage();
}

}  // namespace Tamrix::Agent
