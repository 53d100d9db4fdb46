// Which items there are in views, headers, combo boxes and tab bars.

#include <QAbstractItemView>
#include <QBrush>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QTabBar>
#include <QTreeView>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/qtwidgets/itemtoolkit.h"

namespace Tamrix::Agent {

namespace {

/// Below one parent, so many cells are listed whether they are shown or not.
constexpr int mostCells = 1000;

/// Items are of the toolkit that knows no object; it is found by its one instance.
const Toolkit* s_toolkit = nullptr;

/// Some view that lists only some columns.
int shownColumn(const QAbstractItemView* view) {
    const auto* const list = qobject_cast<const QListView*>(view);
    return list ? list->modelColumn() : 0;
}

int columnCount(const QAbstractItemView* view, const QModelIndex& parent) {
    return qobject_cast<const QListView*>(view) ? 1 : view->model()->columnCount(parent);
}

/// The first row that is not above the view; rows below each other lie below each other.
int firstShownRow(const QAbstractItemView* view, const QModelIndex& parent, int count) {
    int low = 0;
    int high = count;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        const QRect rect =
            view->visualRect(view->model()->index(middle, shownColumn(view), parent));
        if (rect.bottom() < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

void appendModelItems(QAbstractItemView* view, const QModelIndex& parent,
                      QVector<Element>* elements) {
    const QAbstractItemModel* const model = view->model();
    if (!model)
        return;
    const int rows = model->rowCount(parent);
    const int columns = columnCount(view, parent);
    const bool all = static_cast<qint64>(rows) * columns <= mostCells;
    const int first = shownColumn(view);
    for (int row = all ? 0 : firstShownRow(view, parent, rows); row < rows; ++row) {
        const QRect rect = view->visualRect(model->index(row, first, parent));
        if (!all && rect.top() > view->viewport()->height())
            break;
        for (int column = first; column < first + columns; ++column)
            elements->append(makeItem(view, ModelItem, model->index(row, column, parent), -1));
    }
}

/// The colour that the model gives the cell; 0 for none.
QRgb backgroundOf(const QModelIndex& index) {
    const QVariant value = index.data(Qt::BackgroundRole);
    if (value.userType() == QMetaType::QColor)
        return value.value<QColor>().rgba();
    const QBrush brush = value.canConvert<QBrush>() ? value.value<QBrush>() : QBrush();
    return brush.style() == Qt::NoBrush ? 0 : brush.color().rgba();
}

/// How many of `there`, counted from `first`, are wanted; -1 for all.
int clippedCount(int first, int wanted, int there) {
    const int left = std::max(there - first, 0);
    return wanted < 0 ? left : std::min(wanted, left);
}

}  // namespace

Element makeItem(QWidget* holder, ItemKind kind, const QModelIndex& index, int number) {
    Element item;
    item.toolkit = s_toolkit;
    item.object = holder;
    item.kind = kind;
    item.index = index;
    item.number = number;
    return item;
}

ItemToolkit::ItemToolkit() {
    s_toolkit = this;
}

ItemToolkit::~ItemToolkit() {
    s_toolkit = nullptr;
}

void ItemToolkit::children(const Element& item, bool withItems, QVector<Element>* elements) const {
    // What is not expanded is not asked for: a model may read it from afar.
    const auto* const tree = qobject_cast<QTreeView*>(item.object);
    if (withItems && tree && item.kind == ModelItem && item.index.column() == 0 &&
        tree->isExpanded(item.index))
        appendModelItems(static_cast<QAbstractItemView*>(item.object), item.index, elements);
}

void appendItems(QWidget* holder, QVector<Element>* elements) {
    if (auto* const header = qobject_cast<QHeaderView*>(holder)) {
        for (int section = 0; section < std::min(header->count(), mostCells); ++section) {
            if (!header->isSectionHidden(section))
                elements->append(makeItem(holder, HeaderSection, QModelIndex(), section));
        }
    } else if (auto* const view = qobject_cast<QAbstractItemView*>(holder)) {
        appendModelItems(view, view->rootIndex(), elements);
    } else if (auto* const box = qobject_cast<QComboBox*>(holder)) {
        for (int row = 0; row < std::min(box->count(), mostCells); ++row)
            elements->append(
                makeItem(holder, ComboBoxItem,
                         box->model()->index(row, box->modelColumn(), box->rootModelIndex()), -1));
    } else if (auto* const bar = qobject_cast<QTabBar*>(holder)) {
        for (int tab = 0; tab < bar->count(); ++tab)
            elements->append(makeItem(holder, Tab, QModelIndex(), tab));
    }
}

Outcome<ViewCells> cellsOf(QAbstractItemView* view, const CellRange& range) {
    const QAbstractItemModel* const model = view->model();
    const QModelIndex root = view->rootIndex();
    ViewCells cells;
    cells.rowCount = model->rowCount(root);
    cells.columnCount = columnCount(view, root);
    const int firstRow = std::max(range.firstRow, 0);
    const int firstColumn = std::max(range.firstColumn, 0);
    const int rows = clippedCount(firstRow, range.rowCount, cells.rowCount);
    cells.columns = clippedCount(firstColumn, range.columnCount, cells.columnCount);
    const qint64 count = static_cast<qint64>(rows) * cells.columns;
    if (count > ViewCells::most)
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 has %2 cells there; at most %3 are told at once")
                        .arg(Session::self()->describe(Session::self()->element(view)),
                             QString::number(count), QString::number(ViewCells::most)));
    const int shift = shownColumn(view);
    for (int row = firstRow; row < firstRow + rows; ++row) {
        for (int column = firstColumn; column < firstColumn + cells.columns; ++column) {
            const QModelIndex index = model->index(row, shift + column, root);
            cells.texts.append(s_toolkit->text(makeItem(view, ModelItem, index)));
            cells.backgrounds.append(backgroundOf(index));
        }
    }
    return cells;
}

Element itemAt(const QWidget* widget, const QPoint& point) {
    if (auto* const bar = qobject_cast<QTabBar*>(const_cast<QWidget*>(widget))) {
        const int tab = bar->tabAt(point);
        return tab >= 0 ? makeItem(bar, Tab, QModelIndex(), tab) : Element();
    }
    auto* const view = qobject_cast<QAbstractItemView*>(widget->parentWidget());
    if (!view || view->viewport() != widget)
        return {};
    if (auto* const header = qobject_cast<QHeaderView*>(view)) {
        const int section = header->logicalIndexAt(point);
        return section >= 0 ? makeItem(header, HeaderSection, QModelIndex(), section) : Element();
    }
    const QModelIndex index = view->indexAt(point);
    return index.isValid() ? makeItem(view, ModelItem, index, -1) : Element();
}

Element currentItemOf(QWidget* holder) {
    if (auto* const view = qobject_cast<QAbstractItemView*>(holder)) {
        const QModelIndex index = view->currentIndex();
        return index.isValid() ? makeItem(view, ModelItem, index, -1) : Element();
    }
    if (auto* const box = qobject_cast<QComboBox*>(holder)) {
        const QModelIndex index =
            box->model()->index(box->currentIndex(), box->modelColumn(), box->rootModelIndex());
        return index.isValid() ? makeItem(box, ComboBoxItem, index, -1) : Element();
    }
    if (auto* const bar = qobject_cast<QTabBar*>(holder))
        return bar->currentIndex() >= 0 ? makeItem(bar, Tab, QModelIndex(), bar->currentIndex())
                                        : Element();
    return {};
}

}  // namespace Tamrix::Agent
