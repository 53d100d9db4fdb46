#include "agent/qtwidgets/itemplace.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QTabBar>

#include "agent/qtwidgets/itemtoolkit.h"

namespace Tamrix::Agent {

namespace {

ItemPlace placeInView(QAbstractItemView* view, const QModelIndex& index) {
    const QRect rect = view->visualRect(index);
    return view->isVisible() && rect.isValid() ? ItemPlace{view->viewport(), rect} : ItemPlace();
}

ItemPlace placeInHeader(QHeaderView* header, int section) {
    if (!header->isVisible() || section >= header->count() || header->isSectionHidden(section))
        return {};
    const int position = header->sectionViewportPosition(section);
    const int size = header->sectionSize(section);
    const QRect rect = header->orientation() == Qt::Horizontal
                           ? QRect(position, 0, size, header->viewport()->height())
                           : QRect(0, position, header->viewport()->width(), size);
    return {header->viewport(), rect};
}

}  // namespace

ItemPlace placeOfItem(const Element& item) {
    switch (item.kind) {
        case ModelItem:
            return placeInView(static_cast<QAbstractItemView*>(item.object), item.index);
        case HeaderSection:
            return placeInHeader(static_cast<QHeaderView*>(item.object), item.number);
        case ComboBoxItem: {
            // Asking for the list makes one: only an open one shows its entries.
            auto* const box = static_cast<QComboBox*>(item.object);
            auto* const view = box->findChild<QAbstractItemView*>();
            return view ? placeInView(view, item.index) : ItemPlace();
        }
        case Tab: {
            auto* const bar = static_cast<QTabBar*>(item.object);
            const bool isShown =
                bar->isVisible() && item.number < bar->count() && bar->isTabVisible(item.number);
            return isShown ? ItemPlace{bar, bar->tabRect(item.number)} : ItemPlace();
        }
        default:
            return {};
    }
}

}  // namespace Tamrix::Agent
