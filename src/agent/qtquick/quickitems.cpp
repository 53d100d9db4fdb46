#include "agent/qtquick/quickitems.h"

#include <QAbstractItemModel>
#include <QElapsedTimer>
#include <QJSValue>
#include <QQuickItem>
#include <algorithm>
#include <vector>

#include "agent/core/mnemonic.h"

namespace Tamrix::Agent {

namespace {

/// For views of which only the shown items tell their texts: so long they are scrolled through.
constexpr int longestScan = 500;
/// ItemView.Contain: as little scrolling as shows all of the item.
constexpr int contain = 4;
constexpr int beginning = 0;

struct Found {
    QQuickItem* item = nullptr;
    int rank = 0;
};

/// Looks for the text on what is shown below `root`; of several the best, of equal ones the first.
void findText(QQuickItem* root, const ItemPath& path, Found* found) {
    const QList<QQuickItem*> children = root->childItems();
    for (QQuickItem* child : children) {
        if (!child->isVisible())
            continue;
        const ItemPath::Fit fit = path.fit(quickTextOf(child));
        if (!fit.isNone() && fit.rest.isNull() && (!found->item || fit.rank < found->rank))
            *found = Found{child, fit.rank};
        findText(child, path, found);
    }
}

QQuickItem* shownItem(QQuickItem* root, const ItemPath& path) {
    Found found;
    findText(root, path, &found);
    return found.item;
}

bool isView(const QQuickItem* item) {
    return item->inherits("QQuickItemView") || item->inherits("QQuickPathView");
}

/// The holder itself or the first view in it.
QQuickItem* viewIn(QQuickItem* holder) {
    if (isView(holder))
        return holder;
    const QList<QQuickItem*> children = holder->childItems();
    for (QQuickItem* child : children) {
        if (!child->isVisible())
            continue;
        if (QQuickItem* const view = viewIn(child))
            return view;
    }
    return nullptr;
}

QQuickItem* itemAt(QQuickItem* view, const char* method, int row) {
    QQuickItem* item = nullptr;
    QMetaObject::invokeMethod(view, method, Q_RETURN_ARG(QQuickItem*, item), Q_ARG(int, row));
    return item;
}

QQuickItem* itemAtRow(QQuickItem* view, int row) {
    return itemAt(view, "itemAtIndex", row);
}

void scrollTo(QQuickItem* view, int row, int mode) {
    QMetaObject::invokeMethod(view, "positionViewAtIndex", Q_ARG(int, row), Q_ARG(int, mode));
}

int fitRank(const QVariant& value, const ItemPath& path) {
    const ItemPath::Fit fit = path.fit(value.toString());
    return fit.rest.isNull() ? fit.rank : -1;
}

/// The rank of a row of a model by any of its values; -1 for none that fits.
int rowRank(const QAbstractItemModel* model, int row, const ItemPath& path) {
    const QModelIndex index = model->index(row, 0);
    const QHash<int, QByteArray> roles = model->roleNames();
    int best = -1;
    for (auto role = roles.cbegin(); role != roles.cend(); ++role) {
        const int rank = fitRank(index.data(role.key()), path);
        if (rank >= 0 && (best < 0 || rank < best))
            best = rank;
    }
    return best;
}

int entryRank(const QVariant& entry, const ItemPath& path) {
    if (entry.userType() != QMetaType::QVariantMap)
        return fitRank(entry, path);
    const QVariantMap values = entry.toMap();
    int best = -1;
    for (const QVariant& value : values) {
        const int rank = fitRank(value, path);
        if (rank >= 0 && (best < 0 || rank < best))
            best = rank;
    }
    return best;
}

/// The rows of the view's model that have the text in a value, the best first.
std::vector<int> rowsWithText(const QQuickItem* view, const ItemPath& path) {
    QVariant model = view->property("model");
    if (model.userType() == qMetaTypeId<QJSValue>())
        model = model.value<QJSValue>().toVariant();
    std::vector<std::pair<int, int>> ranked;
    const auto add = [&ranked](int rank, int row) {
        if (rank >= 0)
            ranked.emplace_back(rank, row);
    };
    if (const auto* const items = qobject_cast<QAbstractItemModel*>(model.value<QObject*>())) {
        for (int row = 0; row < items->rowCount(); ++row)
            add(rowRank(items, row, path), row);
    } else {
        const QVariantList entries = model.toList();
        for (int row = 0; row < entries.size(); ++row)
            add(entryRank(entries[row], path), row);
    }
    std::sort(ranked.begin(), ranked.end());
    std::vector<int> rows(ranked.size());
    std::transform(ranked.begin(), ranked.end(), rows.begin(),
                   [](const auto& each) { return each.second; });
    return rows;
}

/// The delegate of a row, or what in it shows the text.
QQuickItem* itemOfRow(QQuickItem* view, int row, const ItemPath& path) {
    if (!itemAtRow(view, row))
        scrollTo(view, row, contain);
    QQuickItem* const item = itemAtRow(view, row);
    if (!item || path.isNull() || path.fit(quickTextOf(item)).rank >= 0)
        return item;
    QQuickItem* const shown = shownItem(item, path);
    return shown ? shown : item;
}

/// Scrolls from the first row to the last, and back when no item shows the text.
QQuickItem* scanView(QQuickItem* view, const ItemPath& path) {
    const int count = view->property("count").toInt();
    const QVariant x = view->property("contentX");
    const QVariant y = view->property("contentY");
    QElapsedTimer clock;
    clock.start();
    for (int row = 0; row < count && !clock.hasExpired(longestScan);) {
        scrollTo(view, row, beginning);
        if (QQuickItem* const item = shownItem(view, path))
            return item;
        do
            ++row;
        while (row < count && itemAtRow(view, row));
    }
    view->setProperty("contentX", x);
    view->setProperty("contentY", y);
    return nullptr;
}

QQuickItem* findByRow(QQuickItem* holder, int row) {
    if (row < 0)
        return nullptr;
    if (QQuickItem* const view = viewIn(holder))
        return row < view->property("count").toInt() ? itemOfRow(view, row, ItemPath()) : nullptr;
    return holder->inherits("QQuickContainer") ? itemAt(holder, "itemAt", row) : nullptr;
}

QQuickItem* findByText(QQuickItem* holder, const ItemPath& path) {
    if (QQuickItem* const item = shownItem(holder, path))
        return item;
    QQuickItem* const view = viewIn(holder);
    if (!view)
        return nullptr;
    for (const int row : rowsWithText(view, path)) {
        if (QQuickItem* const item = itemOfRow(view, row, path))
            return item;
    }
    return scanView(view, path);
}

}  // namespace

QString quickTextOf(const QObject* item) {
    // Only this kind of label underlines the character behind an "&".
    const auto* const label = item->property("contentItem").value<QObject*>();
    if (label && label->inherits("QQuickIconLabel"))
        return withoutMnemonic(item->property("text").toString());
    // A hidden password stays hidden, also while it is edited; of TextInput.EchoMode, 0 shows what
    // is typed.
    if (item->property("echoMode").toInt() != 0) {
        const QString sign = item->property("passwordCharacter").toString();
        return sign.repeated(item->property("displayText").toString().size());
    }
    for (const char* name : {"text", "title"}) {
        const QVariant value = item->property(name);
        if (value.userType() == QMetaType::QString)
            return value.toString();
    }
    return {};
}

QQuickItem* findQuickItem(QQuickItem* holder, const ItemPath& path, int row) {
    // The items of a box are those of its list.
    if (holder->inherits("QQuickComboBox")) {
        const auto* const popup = holder->property("popup").value<QObject*>();
        holder = popup ? popup->property("contentItem").value<QQuickItem*>() : nullptr;
    }
    if (!holder)
        return nullptr;
    return path.isNull() ? findByRow(holder, row) : findByText(holder, path);
}

}  // namespace Tamrix::Agent
