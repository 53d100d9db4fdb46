// Items by the way to them.

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QTabBar>
#include <QTreeView>
#include <algorithm>
#include <vector>

#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/widgettext.h"

namespace Tamrix::Agent {

namespace {

/// An item that may be the first step of a path.
struct Candidate {
    ItemPath::Fit fit;
    QModelIndex index;
};

/// Those among the children of `parent`, the most likely one first. `column` -1 means all columns.
std::vector<Candidate> candidatesFor(const ItemPath& path, const QAbstractItemModel* model,
                                     const QModelIndex& parent, int column) {
    std::vector<Candidate> candidates;
    const int rows = model->rowCount(parent);
    const int columns = column >= 0 ? column + 1 : model->columnCount(parent);
    for (int row = 0; row < rows; ++row) {
        for (int each = std::max(column, 0); each < columns; ++each) {
            const QModelIndex index = model->index(row, each, parent);
            ItemPath::Fit fit = path.fit(index.data(Qt::DisplayRole).toString());
            if (!fit.isNone())
                candidates.push_back({std::move(fit), index});
        }
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto& left, const auto& right) {
        return left.fit.rank < right.fit.rank;
    });
    return candidates;
}

QModelIndex findIndex(const QAbstractItemModel* model, const QModelIndex& parent, int column,
                      const ItemPath& path) {
    for (const Candidate& candidate : candidatesFor(path, model, parent, column)) {
        if (candidate.fit.rest.isNull())
            return candidate.index;
        const QModelIndex below = findIndex(model, candidate.index, column, candidate.fit.rest);
        if (below.isValid())
            return below;
    }
    return {};
}

/// Of a list of sections, tabs or entries the one that the path means; -1 for none.
template <typename TextOf>
int findNumber(int count, const ItemPath& path, TextOf textOf) {
    int found = -1;
    int rank = 0;
    for (int index = 0; index < count; ++index) {
        const ItemPath::Fit fit = path.fit(textOf(index));
        if (fit.isNone() || !fit.rest.isNull() || (found >= 0 && fit.rank >= rank))
            continue;
        found = index;
        rank = fit.rank;
    }
    return found;
}

int numberIn(int count, int number) {
    return number < count ? number : -1;
}

Element findInHeader(QHeaderView* header, const ItemPath& path, int row, int column) {
    const int wanted = header->orientation() == Qt::Vertical ? row : column;
    const int section =
        path.isNull()
            ? numberIn(header->count(), wanted)
            : findNumber(header->count(), path, [&](int index) {
                  return header->model()->headerData(index, header->orientation()).toString();
              });
    return section < 0 ? Element() : makeItem(header, HeaderSection, QModelIndex(), section);
}

Element findInView(QAbstractItemView* view, const ItemPath& path, int row, int column) {
    if (!view->model())
        return {};
    const auto* const list = qobject_cast<QListView*>(view);
    const int only = list ? list->modelColumn() : -1;
    const QModelIndex index =
        path.isNull() ? view->model()->index(row, std::max(column, only), view->rootIndex())
                      : findIndex(view->model(), view->rootIndex(), only, path);
    return index.isValid() ? makeItem(view, ModelItem, index) : Element();
}

Element findInBox(QComboBox* box, const ItemPath& path, int row) {
    const int entry = path.isNull() ? numberIn(box->count(), row)
                                    : findNumber(box->count(), path,
                                                 [&](int index) { return box->itemText(index); });
    return entry < 0
               ? Element()
               : makeItem(box, ComboBoxItem,
                          box->model()->index(entry, box->modelColumn(), box->rootModelIndex()));
}

Element findInTabs(QTabBar* bar, const ItemPath& path, int number) {
    const int tab = path.isNull() ? numberIn(bar->count(), number)
                                  : findNumber(bar->count(), path, [&](int index) {
                                        return withoutMnemonic(bar->tabText(index));
                                    });
    return tab < 0 ? Element() : makeItem(bar, Tab, QModelIndex(), tab);
}

bool expandTowards(QTreeView* tree, const QModelIndex& parent, const ItemPath& path) {
    for (const Candidate& candidate : candidatesFor(path, tree->model(), parent, -1)) {
        if (candidate.fit.rest.isNull())
            continue;
        if (!tree->isExpanded(candidate.index)) {
            tree->expand(candidate.index);
            return true;
        }
        if (expandTowards(tree, candidate.index, candidate.fit.rest))
            return true;
    }
    return false;
}

}  // namespace

Element findItem(QWidget* holder, const ItemPath& path, int row, int column) {
    if (auto* const header = qobject_cast<QHeaderView*>(holder))
        return findInHeader(header, path, row, column);
    if (auto* const view = qobject_cast<QAbstractItemView*>(holder))
        return findInView(view, path, row, column);
    if (auto* const box = qobject_cast<QComboBox*>(holder))
        return findInBox(box, path, row);
    auto* const bar = qobject_cast<QTabBar*>(holder);
    return bar ? findInTabs(bar, path, std::max(row, column)) : Element();
}

bool expandTowards(QTreeView* tree, const ItemPath& path) {
    // The item itself may be there, in a closed one.
    const QModelIndex index = findIndex(tree->model(), tree->rootIndex(), -1, path);
    QModelIndex closed;
    for (QModelIndex above = index.parent(); above.isValid() && above != tree->rootIndex();
         above = above.parent()) {
        if (!tree->isExpanded(above))
            closed = above;
    }
    if (closed.isValid()) {
        tree->expand(closed);
        return true;
    }
    return !index.isValid() && expandTowards(tree, tree->rootIndex(), path);
}

}  // namespace Tamrix::Agent
