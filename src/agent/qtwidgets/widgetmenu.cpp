#include "agent/qtwidgets/widgetmenu.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include "agent/core/session.h"
#include "agent/qtwidgets/actionplace.h"

namespace Tamrix::Agent {

namespace {

QRect placeIn(const QWidget* menu, QAction* action) {
    if (const auto* const bar = qobject_cast<const QMenuBar*>(menu))
        return bar->actionGeometry(action);
    return qobject_cast<const QMenu*>(menu)->actionGeometry(action);
}

}  // namespace

WidgetMenu::WidgetMenu(QWidget* widget)
    : Menu(Session::self()->element(widget)), m_widget(widget) {}

Menu::State WidgetMenu::state() const {
    return m_widget && m_widget->isVisible() ? State::Open : State::Closed;
}

QVector<MenuEntry> WidgetMenu::entries() const {
    QVector<MenuEntry> entries;
    if (!m_widget)
        return entries;
    const Element menu = Session::self()->element(m_widget);
    const QList<QAction*> actions = m_widget->actions();
    for (QAction* action : actions) {
        if (!action->isVisible() || action->isSeparator())
            continue;
        MenuEntry entry;
        entry.text = actionText(action);
        entry.isEnabled = action->isEnabled();
        entry.target = menu;
        entry.offset = placeIn(m_widget, action).center();
        if (action->menu())
            entry.below = std::make_shared<WidgetMenu>(action->menu());
        entries.append(entry);
    }
    return entries;
}

QString WidgetMenu::label() const {
    return Session::self()->describe(Session::self()->element(m_widget));
}

}  // namespace Tamrix::Agent
