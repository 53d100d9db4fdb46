#include "agent/qtwidgets/actionplace.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>
#include <QToolButton>

#include "agent/qtwidgets/qtversionwidgets.h"
#include "agent/qtwidgets/widgettext.h"

namespace Tamrix::Agent {

namespace {

bool isMenu(const QWidget* widget) {
    return qobject_cast<const QMenu*>(widget) || qobject_cast<const QMenuBar*>(widget);
}

ActionPlace placeIn(QWidget* widget, const QAction* action) {
    auto* const mutableAction = const_cast<QAction*>(action);  // Qt's getters take it so
    if (!widget->isVisible())
        return {};
    if (auto* const menu = qobject_cast<QMenu*>(widget))
        return {menu, menu->actionGeometry(mutableAction)};
    if (auto* const bar = qobject_cast<QMenuBar*>(widget))
        return {bar, bar->actionGeometry(mutableAction)};
    if (auto* const bar = qobject_cast<QToolBar*>(widget)) {
        QWidget* const button = bar->widgetForAction(mutableAction);
        return button && button->isVisible() ? ActionPlace{button, button->rect()} : ActionPlace();
    }
    if (qobject_cast<QToolButton*>(widget))
        return {widget, widget->rect()};
    return {};
}

}  // namespace

QString actionText(const QAction* action) {
    return withoutMnemonic(action->text().section('\t', 0, 0));
}

ActionPlace placeOf(const QAction* action) {
    ActionPlace place;
    if (!action->isVisible())
        return place;
    for (QWidget* widget : widgetsOf(action)) {
        if (place.widget && !isMenu(widget))
            continue;
        const ActionPlace here = placeIn(widget, action);
        if (here.widget && here.rect.isValid())
            place = here;
        if (place.widget && isMenu(place.widget))
            break;
    }
    return place;
}

QWidget* homeOf(const QAction* action) {
    const QList<QWidget*> widgets = widgetsOf(action);
    for (QWidget* widget : widgets) {
        if (isMenu(widget))
            return widget;
    }
    if (!widgets.isEmpty())
        return widgets.first();
    QWidget* const parent = qobject_cast<QWidget*>(action->parent());
    // The action that stands for a menu is no entry of it.
    return parent && parent == action->menu() ? nullptr : parent;
}

}  // namespace Tamrix::Agent
