// What of WidgetToolkit concerns items: of views, boxes and tab bars, and the entries of menus.

#include <QAbstractItemView>
#include <QComboBox>
#include <QMenuBar>
#include <QPointer>
#include <QStyleOptionComboBox>
#include <QTabWidget>
#include <QToolBar>
#include <QTreeView>
#include <algorithm>
#include <vector>

#include "agent/core/session.h"
#include "agent/qtwidgets/actionplace.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/widgetmenu.h"
#include "agent/qtwidgets/widgettext.h"
#include "agent/qtwidgets/widgettoolkit.h"

namespace Tamrix::Agent {

namespace {

QWidget* widgetOf(const Element& element) {
    return qobject_cast<QWidget*>(element.object);
}

/// The action that the path means, in the menus below too. Null for none.
QAction* findAction(const QList<QAction*>& actions, const ItemPath& path) {
    std::vector<std::pair<ItemPath::Fit, QAction*>> candidates;
    for (QAction* action : actions) {
        ItemPath::Fit fit = path.fit(actionText(action));
        if (!fit.isNone() && !action->isSeparator())
            candidates.emplace_back(std::move(fit), action);
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto& left, const auto& right) {
        return left.first.rank < right.first.rank;
    });
    for (const auto& [fit, action] : candidates) {
        if (fit.rest.isNull())
            return action;
        if (!action->menu())
            continue;
        if (QAction* const below = findAction(action->menu()->actions(), fit.rest))
            return below;
    }
    return nullptr;
}

/// Where a click opens the box: an editable one has a field in its middle.
QPoint arrowOf(const QComboBox* box) {
    QStyleOptionComboBox option;
    option.initFrom(box);
    option.editable = box->isEditable();
    option.frame = box->hasFrame();
    option.subControls = QStyle::SC_All;
    return box->style()
        ->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxArrow, box)
        .center();
}

}  // namespace

Outcome<Element> WidgetToolkit::item(const Element& view, const ItemPath& path, int row,
                                     int column) const {
    QWidget* const widget = widgetOf(view);
    const auto* const tabs = qobject_cast<QTabWidget*>(widget);
    const bool isMenu = qobject_cast<QMenu*>(widget) || qobject_cast<QMenuBar*>(widget) ||
                        qobject_cast<QToolBar*>(widget);
    if (!widget || !(isMenu || tabs || factsOf(widget).holdsItems))
        return Toolkit::item(view, path, row, column);
    Element found;
    if (isMenu)
        found = element(path.isNull() ? widget->actions().value(row)
                                      : findAction(widget->actions(), path));
    else
        found = findItem(tabs ? tabs->tabBar() : widget, path, row, column);
    if (!found.isNull())
        return found;
    const QString name = Session::self()->describe(view);
    return fail(FailureKind::NotFound,
                path.isNull() ? QStringLiteral("%1 has no item in row %2 and column %3")
                                    .arg(name, QString::number(row), QString::number(column))
                              : QStringLiteral("%1 has no item '%2'").arg(name, path.text()));
}

Outcome<ViewCells> WidgetToolkit::cells(const Element& view, const CellRange& range) const {
    auto* const itemView = qobject_cast<QAbstractItemView*>(view.object);
    if (!itemView || !itemView->model())
        return Toolkit::cells(view, range);
    return cellsOf(itemView, range);
}

void WidgetToolkit::openTowards(const Element& view, const ItemPath& path) const {
    if (auto* const tree = qobject_cast<QTreeView*>(view.object)) {
        if (tree->model())
            expandTowards(tree, path);
    } else if (auto* const box = qobject_cast<QComboBox*>(view.object)) {
        // An item that shows in part would move when the mouse comes over it.
        box->view()->scrollTo(findItem(box, path, -1, -1).index,
                              QAbstractItemView::PositionAtCenter);
    }
}

std::optional<ItemPopup> WidgetToolkit::itemPopup(const Element& view) const {
    const auto* const box = qobject_cast<QComboBox*>(view.object);
    if (!box)
        return std::nullopt;
    return ItemPopup{box->view()->isVisible(), arrowOf(box), true};
}

std::shared_ptr<const Menu> WidgetToolkit::menu(const Element& element) const {
    QWidget* const widget = widgetOf(element);
    const bool isMenu = qobject_cast<QMenu*>(widget) || qobject_cast<QMenuBar*>(widget);
    return isMenu ? std::make_shared<WidgetMenu>(widget) : nullptr;
}

}  // namespace Tamrix::Agent
