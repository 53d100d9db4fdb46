// What of ItemToolkit concerns recordings: the way to an item.

#include <QAbstractItemView>
#include <QComboBox>
#include <QTabBar>
#include <QTabWidget>

#include "agent/core/session.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/openlist.h"

namespace Tamrix::Agent {

namespace {

/// Among more items below one parent, none is looked for by its text.
constexpr int mostItems = 20'000;

/// The view's own widget, or what it is the list of.
QWidget* ownerOf(const Element& item) {
    auto* const holder = static_cast<QWidget*>(item.object);
    QWidget* const window = holder->window();
    return window->windowType() == Qt::Popup ? ownerOfList(window) : nullptr;
}

QStringList stepsTo(const QModelIndex& index) {
    QStringList steps;
    for (QModelIndex each = index; each.isValid(); each = each.parent()) {
        const QAbstractItemModel* const model = each.model();
        if (model->rowCount(each.parent()) > mostItems)
            return {};
        steps.prepend(each.data(Qt::DisplayRole).toString());
    }
    return steps;
}

RecordedWay wayInView(const Element& item) {
    const auto* const view = static_cast<QAbstractItemView*>(item.object);
    RecordedWay way;
    way.holder = Session::self()->element(item.object);
    const QModelIndex root = view->rootIndex();
    // The view shows a part of its model only.
    if (!root.isValid())
        way.steps = stepsTo(item.index);
    else if (item.index.parent() == root)
        way.steps = QStringList{item.index.data(Qt::DisplayRole).toString()};
    return way;
}

RecordedWay wayInTabs(const Element& item, const QString& text) {
    auto* const bar = static_cast<QTabBar*>(item.object);
    auto* const tabs = qobject_cast<QTabWidget*>(bar->parentWidget());
    QWidget* const holder = tabs && tabs->tabBar() == bar ? static_cast<QWidget*>(tabs) : bar;
    return {Session::self()->element(holder), QStringList{text}};
}

}  // namespace

Element ItemToolkit::meant(const Element& item) const {
    QWidget* const owner = ownerOf(item);
    if (!owner)
        return item;
    auto* const box = qobject_cast<QComboBox*>(owner);
    if (box && item.kind == ModelItem)
        return makeItem(box, ComboBoxItem, item.index);
    // Of a list of completions.
    const Element field = Session::self()->element(owner);
    return field.toolkit->meant(field);
}

Wire::ObservedRole ItemToolkit::role(const Element& /*item*/) const {
    return Wire::ObservedRole::Item;
}

std::optional<RecordedWay> ItemToolkit::wayTo(const Element& item) const {
    RecordedWay way;
    switch (item.kind) {
        case ModelItem:
            way = wayInView(item);
            break;
        case ComboBoxItem:
            way = {Session::self()->element(item.object), QStringList{text(item)}};
            break;
        case Tab:
            way = wayInTabs(item, text(item));
            break;
        default:
            return std::nullopt;
    }
    if (way.steps.contains(QString()))
        way.steps.clear();
    if (way.steps.isEmpty())
        return way;
    const Outcome<Element> found =
        way.holder.toolkit->item(way.holder, ItemPath::ofSteps(way.steps), -1, -1);
    if (!found || *found != item)
        way.steps.clear();
    return way;
}

}  // namespace Tamrix::Agent
