#include "agent/qtwidgets/itemtoolkit.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QPixmap>
#include <QStyledItemDelegate>
#include <QTabBar>
#include <QTableView>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/qtwidgets/clickarea.h"
#include "agent/qtwidgets/itemplace.h"
#include "agent/qtwidgets/openlist.h"
#include "agent/qtwidgets/qtversionwidgets.h"
#include "agent/qtwidgets/widgettext.h"
#include "agent/qtwidgets/widgettoolkit.h"

namespace Tamrix::Agent {

namespace {

/// A type of items. They are no QObjects, so the names are ours.
struct ItemType {
    const char* name;
    ItemKind kind;
    /// What the view is; null for any.
    const QMetaObject* view;
};

/// Of several that fit the first one counts.
const ItemType itemTypes[] = {
    {"QListViewItem", ModelItem, &QListView::staticMetaObject},
    // Below it are the entries that it expands to.
    {"QTreeViewItem", ModelItem, &QTreeView::staticMetaObject},
    // A cell.
    {"QTableViewItem", ModelItem, &QTableView::staticMetaObject},
    {"QItemViewItem", ModelItem, nullptr},
    {"QHeaderViewItem", HeaderSection, nullptr},
    // Visible while the list of the box is open.
    {"QComboBoxItem", ComboBoxItem, nullptr},
    {"QTabBarItem", Tab, nullptr},
};
/// The type that every item is of, too.
constexpr char commonType[] = "QModelItem";

const char* typeOf(const Element& item) {
    const auto* const found =
        std::find_if(std::begin(itemTypes), std::end(itemTypes), [&item](const ItemType& type) {
            return type.kind == item.kind && (!type.view || type.view->cast(item.object));
        });
    return found == std::end(itemTypes) ? commonType : found->name;
}

QWidget* holderOf(const Element& item) {
    return static_cast<QWidget*>(item.object);
}

QAbstractItemView* viewOf(const Element& item) {
    return item.kind == ModelItem ? static_cast<QAbstractItemView*>(item.object) : nullptr;
}

QTabBar* tabBarOf(const Element& item) {
    return static_cast<QTabBar*>(item.object);
}

/// The text that the view's delegate draws: dates and numbers in the form of the locale.
QString modelText(const QAbstractItemView* view, const QModelIndex& index) {
    const QVariant value = index.data(Qt::DisplayRole);
    if (value.userType() == QMetaType::QString || !view)
        return value.toString();
    const auto* const delegate = qobject_cast<const QStyledItemDelegate*>(delegateOf(view, index));
    return delegate ? delegate->displayText(value, view->locale()) : value.toString();
}

QVariant viewProperty(const Element& item, QAbstractItemView* view, const QString& name) {
    if (name == QLatin1String("selected"))
        return view->selectionModel() && view->selectionModel()->isSelected(item.index);
    if (name == QLatin1String("current"))
        return view->currentIndex() == item.index;
    const auto* const tree = qobject_cast<QTreeView*>(view);
    if (name == QLatin1String("expanded") && tree)
        return tree->isExpanded(item.index);
    return {};
}

QVariant itemProperty(const Element& item, const QString& name) {
    if (item.index.isValid()) {
        if (name == QLatin1String("row"))
            return item.index.row();
        if (name == QLatin1String("column"))
            return item.index.column();
        if (name == QLatin1String("toolTip"))
            return item.index.data(Qt::ToolTipRole).toString();
        const QVariant check = item.index.data(Qt::CheckStateRole);
        if (name == QLatin1String("checked") && check.isValid())
            return check.toInt() == Qt::Checked;
        if (QAbstractItemView* const view = viewOf(item))
            return viewProperty(item, view, name);
        if (name == QLatin1String("current"))
            return static_cast<QComboBox*>(item.object)->currentIndex() == item.index.row();
        return {};
    }
    const auto* const header = qobject_cast<QHeaderView*>(item.object);
    const bool isRow = header && header->orientation() == Qt::Vertical;
    if (name == (isRow ? QLatin1String("row") : QLatin1String("column")))
        return item.number;
    if (item.kind == Tab && name == QLatin1String("current"))
        return tabBarOf(item)->currentIndex() == item.number;
    if (item.kind == Tab && name == QLatin1String("toolTip"))
        return tabBarOf(item)->tabToolTip(item.number);
    return {};
}

/// The buttons that scroll a tab bar, and what they leave of it for tabs. Without buttons all of
/// it.
struct TabScroller {
    QToolButton* backward = nullptr;
    QToolButton* forward = nullptr;
    /// Along the bar: the first and the last pixel that a tab can show at.
    int first = 0;
    int last = 0;
    bool isVertical = false;
};

TabScroller scrollerOf(const QTabBar* bar) {
    TabScroller scroller;
    const QList<QToolButton*> buttons =
        bar->findChildren<QToolButton*>(QString(), Qt::FindDirectChildrenOnly);
    for (QToolButton* button : buttons) {
        const Qt::ArrowType arrow = button->arrowType();
        if (!button->isVisible() || arrow == Qt::NoArrow)
            continue;
        scroller.isVertical = arrow == Qt::UpArrow || arrow == Qt::DownArrow;
        const bool isBackward = arrow == Qt::LeftArrow || arrow == Qt::UpArrow;
        (isBackward ? scroller.backward : scroller.forward) = button;
    }
    scroller.last = (scroller.isVertical ? bar->height() : bar->width()) - 1;
    for (const QToolButton* button : {scroller.backward, scroller.forward}) {
        if (!button)
            continue;
        const QRect place = button->geometry();
        const int begin = scroller.isVertical ? place.top() : place.left();
        const int end = scroller.isVertical ? place.bottom() : place.right();
        // Styles put both at one end, or one at each.
        if (begin + end < scroller.last)
            scroller.first = std::max(scroller.first, end + 1);
        else
            scroller.last = std::min(scroller.last, begin - 1);
    }
    return scroller;
}

/// The button that brings the tab nearer; null when it shows, or can't be brought. It shows when
/// its middle does, where it is clicked: there may be no room for more.
QToolButton* buttonTowards(const QTabBar* bar, int tab, const TabScroller& scroller) {
    const QPoint center = bar->tabRect(tab).center();
    const int middle = scroller.isVertical ? center.y() : center.x();
    QToolButton* const button = middle < scroller.first  ? scroller.backward
                                : middle > scroller.last ? scroller.forward
                                                         : nullptr;
    return button && button->isEnabled() ? button : nullptr;
}

bool scrollTabIntoView(const QTabBar* bar, int tab) {
    bool hasMoved = false;
    for (int i = 0; i < bar->count(); ++i) {
        QToolButton* const button = buttonTowards(bar, tab, scrollerOf(bar));
        if (!button)
            break;
        button->click();
        hasMoved = true;
    }
    return hasMoved;
}

}  // namespace

bool ItemToolkit::knows(const QObject* /*object*/) const {
    return false;
}

void ItemToolkit::topLevels(QVector<Element>* /*elements*/) const {}

Element ItemToolkit::parent(const Element& item) const {
    if (item.kind == ModelItem && item.index.parent().isValid() &&
        item.index.parent() != viewOf(item)->rootIndex()) {
        Element parent = item;
        parent.index = item.index.parent();
        return parent;
    }
    return Session::self()->element(item.object);
}

Element ItemToolkit::window(const Element& item) const {
    const Element holder = Session::self()->element(item.object);
    return holder.toolkit->window(holder);
}

bool ItemToolkit::isAlive(const Element& item) const {
    switch (item.kind) {
        case HeaderSection:
            return item.number < static_cast<QHeaderView*>(item.object)->count();
        case Tab:
            return item.number < tabBarOf(item)->count();
        case ModelItem:
            return item.index.isValid() && item.index.model() == viewOf(item)->model();
        default:
            return item.index.isValid();
    }
}

QString ItemToolkit::typeName(const Element& item) const {
    return QString::fromLatin1(typeOf(item));
}

QStringList ItemToolkit::superTypes(const Element& /*item*/) const {
    return {QString::fromLatin1(commonType)};
}

QString ItemToolkit::text(const Element& item) const {
    if (item.index.isValid())
        return modelText(viewOf(item), item.index);
    if (item.kind == Tab)
        return withoutMnemonic(tabBarOf(item)->tabText(item.number));
    const auto* const header = static_cast<QHeaderView*>(item.object);
    return header->model()
               ? header->model()->headerData(item.number, header->orientation()).toString()
               : QString();
}

bool ItemToolkit::isVisible(const Element& item) const {
    return placeOfItem(item).widget != nullptr;
}

QString ItemToolkit::hiddenReason(const Element& item) const {
    const Element holder = Session::self()->element(item.object);
    return holder.toolkit->hiddenReason(holder);
}

bool ItemToolkit::isEnabled(const Element& item) const {
    if (!holderOf(item)->isEnabled())
        return false;
    if (item.index.isValid())
        return item.index.flags().testFlag(Qt::ItemIsEnabled);
    return item.kind != Tab || tabBarOf(item)->isTabEnabled(item.number);
}

QVariant ItemToolkit::property(const Element& item, const QString& name, bool* isKnown) const {
    const QVariant value = itemProperty(item, name);
    *isKnown = value.isValid();
    return value;
}

QStringList ItemToolkit::propertyNames(const Element& item) const {
    QStringList names;
    for (const char* each :
         {"row", "column", "checked", "selected", "current", "expanded", "toolTip"}) {
        const QString name = QString::fromLatin1(each);
        if (itemProperty(item, name).isValid())
            names.append(name);
    }
    return names;
}

QRect ItemToolkit::globalBounds(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return place.widget ? globalRect(place.widget, place.rect) : QRect();
}

QRect ItemToolkit::visibleBounds(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return place.widget ? shownPart(place.widget, place.rect) : QRect();
}

QWindow* ItemToolkit::nativeWindow(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return nativeWindowOf(place.widget ? place.widget : holderOf(item));
}

Element ItemToolkit::elementAt(const Element& inWindowOf, const QPoint& globalPoint,
                               Qt::MouseButton /*button*/) const {
    const ItemPlace place = placeOfItem(inWindowOf);
    return elementInWindowAt(place.widget ? place.widget : holderOf(inWindowOf), globalPoint);
}

bool ItemToolkit::receivesThrough(const Element& item, const Element& hit,
                                  Qt::MouseButton button) const {
    if (Toolkit::receivesThrough(item, hit, button))
        return true;
    // In the list of a combo box, the entries are those of the list's own view.
    if (item.kind == ComboBoxItem && hit.kind == ModelItem)
        return item.index == hit.index;
    // A widget set for the item, or its editor; over a tab it is a button that scrolls.
    if (item.kind == Tab && qobject_cast<const QToolButton*>(hit.object) != nullptr)
        return false;
    const ItemPlace place = placeOfItem(item);
    const auto* const widget = qobject_cast<const QWidget*>(hit.object);
    return place.widget && widget && !hit.isItem() && place.widget->isAncestorOf(widget);
}

Element ItemToolkit::blockedBy(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return blockerOf(place.widget ? place.widget : holderOf(item));
}

Element ItemToolkit::openListOver(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return Session::self()->element(
        Agent::openListOver(place.widget ? place.widget : holderOf(item)));
}

bool ItemToolkit::scrollIntoView(const Element& item,
                                 const std::optional<QPoint>& /*point*/) const {
    bool hasMoved = false;
    QAbstractItemView* const view = viewOf(item);
    const ItemPlace before = placeOfItem(item);
    if (view && !(before.widget && before.widget->rect().contains(before.rect.center()))) {
        view->scrollTo(item.index);
        hasMoved = placeOfItem(item).rect != before.rect;
    } else if (item.kind == ComboBoxItem && before.widget &&
               !before.widget->rect().contains(before.rect.center())) {
        static_cast<QComboBox*>(item.object)->view()->scrollTo(item.index);
        hasMoved = true;
    }
    if (item.kind == Tab)
        hasMoved = scrollTabIntoView(tabBarOf(item), item.number);
    const ItemPlace place = placeOfItem(item);
    return (place.widget && scrollWidgetIntoView(place.widget, place.rect)) || hasMoved;
}

QImage ItemToolkit::grab(const Element& item) const {
    const ItemPlace place = placeOfItem(item);
    return place.widget ? place.widget->grab(place.rect).toImage() : QImage();
}

TypeTraits ItemToolkit::traitsOf(const QString& typeName) const {
    TypeTraits traits;
    traits.areItems = std::any_of(
        std::begin(itemTypes), std::end(itemTypes),
        [&typeName](const ItemType& each) { return typeName == QLatin1String(each.name); });
    return traits;
}

Outcome<CheckMark> ItemToolkit::checkMark(const Element& item) const {
    const QVariant state = item.index.data(Qt::CheckStateRole);
    const bool isCheckable = item.index.flags().testFlag(Qt::ItemIsUserCheckable);
    if (isCheckable && state.isValid())
        return CheckMark{checkStateOf(state)};
    return fail(FailureKind::Refused,
                QStringLiteral("%1 can't be checked").arg(Session::self()->describe(item)));
}

QRect ItemToolkit::clickArea(const Element& item, ClickPurpose purpose) const {
    const QRect bounds = globalBounds(item);
    const QAbstractItemView* const view = viewOf(item);
    const QRect mark = view && item.index.isValid() && purpose == ClickPurpose::Mark
                           ? markOfItem(view, item.index, bounds) & bounds
                           : QRect();
    return mark.isEmpty() ? bounds : mark;
}

void ItemToolkit::takeFocus(const Element& item, Qt::FocusReason reason) const {
    focusWidget(holderOf(item), reason);
}

void ItemToolkit::tellTyping(const Element& item, Typing typing) const {
    tellTypingInto(holderOf(item), typing);
}

bool ItemToolkit::isWithinClosed(const Element& item) const {
    const auto* const tree = qobject_cast<QTreeView*>(item.object);
    if (!tree || !item.index.isValid())
        return false;
    for (QModelIndex above = item.index.parent(); above.isValid() && above != tree->rootIndex();
         above = above.parent()) {
        if (!tree->isExpanded(above))
            return true;
    }
    return false;
}

}  // namespace Tamrix::Agent
