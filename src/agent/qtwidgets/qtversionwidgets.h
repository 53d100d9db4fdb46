#pragma once

#include <QAbstractItemView>
#include <QAction>
#include <QWidget>

/// What Qt 5 and Qt 6 spell differently about widgets.
namespace Tamrix::Agent {

inline QList<QWidget*> widgetsOf(const QAction* action) {
#if QT_VERSION_MAJOR == 6
    QList<QWidget*> widgets;
    for (QObject* object : action->associatedObjects()) {
        if (auto* const widget = qobject_cast<QWidget*>(object))
            widgets.append(widget);
    }
    return widgets;
#else
    return action->associatedWidgets();
#endif
}

inline QAbstractItemDelegate* delegateOf(const QAbstractItemView* view, const QModelIndex& index) {
#if QT_VERSION_MAJOR == 6
    return view->itemDelegateForIndex(index);
#else
    return view->itemDelegate(index);
#endif
}

}  // namespace Tamrix::Agent
