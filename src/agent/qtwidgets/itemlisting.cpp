// Which items there are in views, headers, combo boxes and tab bars.

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QTabBar>
#include <QTreeView>

#include "agent/core/itempath.h"
#include "agent/core/session.h"
#include "agent/qtwidgets/itemtoolkit.h"
#include "agent/qtwidgets/widgettext.h"

namespace Tamrix::Agent {

namespace {

/// Below one parent, so many cells are listed whether they are shown or not.
constexpr int mostCells = 1000;

/// Items are of the toolkit that knows no object; it is found by its one instance.
const Toolkit* s_toolkit = nullptr;

Element makeItem(QWidget* holder, int kind, const QModelIndex& index, int number) {
    Element item;
    item.toolkit = s_toolkit;
    item.object = holder;
    item.kind = kind;
    item.index = index;
    item.number = number;
    return item;
}

/// Some view that lists only some columns.
int firstColumn(const QAbstractItemView* view) {
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
            view->visualRect(view->model()->index(middle, firstColumn(view), parent));
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
    const int first = firstColumn(view);
    for (int row = all ? 0 : firstShownRow(view, parent, rows); row < rows; ++row) {
        const QRect rect = view->visualRect(model->index(row, first, parent));
        if (!all && rect.top() > view->viewport()->height())
            break;
        for (int column = first; column < first + columns; ++column)
            elements->append(makeItem(view, ModelItem, model->index(row, column, parent), -1));
    }
}

/// The item among the children of `parent`, followed down the path.
QModelIndex findIndex(const QAbstractItemModel* model, const QModelIndex& parent, int column,
                      const QStringList& path) {
    const int rows = model->rowCount(parent);
    const int columns = column >= 0 ? column + 1 : model->columnCount(parent);
    for (int row = 0; row < rows; ++row) {
        for (int each = std::max(column, 0); each < columns; ++each) {
            const QModelIndex index = model->index(row, each, parent);
            if (index.data(Qt::DisplayRole).toString() != path.first())
                continue;
            if (path.size() == 1)
                return index;
            const QModelIndex below = findIndex(model, index, column, path.mid(1));
            if (below.isValid())
                return below;
        }
    }
    return {};
}

QString noSuchItem(const QString& text, int row, int column) {
    return text.isNull() ? QStringLiteral("it has no item in row %1 and column %2")
                               .arg(QString::number(row), QString::number(column))
                         : QStringLiteral("it has no item '%1'").arg(text);
}

/// The item of a list of sections, tabs or entries, by text or number.
template <typename TextOf>
int findNumber(int count, const QString& text, int number, TextOf textOf) {
    if (text.isNull())
        return number < count ? number : -1;
    for (int index = 0; index < count; ++index) {
        if (textOf(index) == text)
            return index;
    }
    return -1;
}

}  // namespace

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

Element findItem(QWidget* holder, const QString& text, int row, int column, QString* reason) {
    const QStringList path = itemTexts(text);
    Element found;
    if (auto* const header = qobject_cast<QHeaderView*>(holder)) {
        const int wanted = header->orientation() == Qt::Vertical ? row : column;
        const int section = findNumber(
            header->count(), text.isNull() ? QString() : path.join('.'), wanted, [&](int index) {
                return header->model()->headerData(index, header->orientation()).toString();
            });
        if (section >= 0)
            found = makeItem(header, HeaderSection, QModelIndex(), section);
    } else if (auto* const view = qobject_cast<QAbstractItemView*>(holder)) {
        if (view->model()) {
            const int only = qobject_cast<QListView*>(view) ? firstColumn(view) : -1;
            const QModelIndex index =
                text.isNull() ? view->model()->index(row, std::max(column, only), view->rootIndex())
                              : findIndex(view->model(), view->rootIndex(), only, path);
            if (index.isValid())
                found = makeItem(view, ModelItem, index, -1);
        }
    } else if (auto* const box = qobject_cast<QComboBox*>(holder)) {
        const int entry =
            text.isNull()
                ? (row < box->count() ? row : -1)
                : box->findText(path.join('.'), Qt::MatchFixedString | Qt::MatchCaseSensitive);
        if (entry >= 0)
            found =
                makeItem(box, ComboBoxItem,
                         box->model()->index(entry, box->modelColumn(), box->rootModelIndex()), -1);
    } else if (auto* const bar = qobject_cast<QTabBar*>(holder)) {
        const int tab = findNumber(bar->count(), text.isNull() ? QString() : path.join('.'),
                                   std::max(row, column),
                                   [&](int index) { return withoutMnemonic(bar->tabText(index)); });
        if (tab >= 0)
            found = makeItem(bar, Tab, QModelIndex(), tab);
    } else {
        *reason = QStringLiteral("it has no items");
        return found;
    }
    if (found.isNull())
        *reason = noSuchItem(text, row, column);
    return found;
}

}  // namespace Tamrix::Agent
