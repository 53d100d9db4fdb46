#include "agent/qtwidgets/hiddenreason.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QMenu>
#include <QTabWidget>

#include "agent/qtwidgets/actionplace.h"
#include "agent/qtwidgets/widgettext.h"

namespace Tamrix::Agent {

namespace {

/// The page of a tab widget behind another one.
QString hiddenPage(const QTabWidget* tabs, const QWidget* page) {
    const int index = tabs->indexOf(const_cast<QWidget*>(page));  // Qt's getter takes it so
    if (index < 0 || index == tabs->currentIndex())
        return {};
    return QStringLiteral("it is on the tab '%1', which is not the current one")
        .arg(withoutMnemonic(tabs->tabText(index)));
}

/// A dock that shares its place with others lies beside the window while another one is on top.
QString hiddenDock(const QDockWidget* dock) {
    const auto* const window = qobject_cast<QMainWindow*>(dock->parentWidget());
    if (!window || dock->isFloating() || dock->isHidden() ||
        dock->geometry().intersects(window->rect()))
        return {};
    const QList<QDockWidget*> others =
        window->tabifiedDockWidgets(const_cast<QDockWidget*>(dock));  // likewise
    for (const QDockWidget* other : others) {
        if (!other->isHidden() && other->geometry().intersects(window->rect()))
            return QStringLiteral("the dock '%1' is behind the tab of '%2'")
                .arg(textOf(dock), textOf(other));
    }
    return {};
}

}  // namespace

QString reasonForHiding(const QWidget* widget) {
    for (const QWidget* each = widget; each && !each->isWindow(); each = each->parentWidget()) {
        QString reason;
        if (const auto* const dock = qobject_cast<const QDockWidget*>(each))
            reason = hiddenDock(dock);
        const QWidget* const around = each->parentWidget();
        const auto* const tabs =
            around ? qobject_cast<const QTabWidget*>(around->parentWidget()) : nullptr;
        if (tabs && reason.isEmpty())
            reason = hiddenPage(tabs, each);
        if (!reason.isEmpty())
            return reason;
    }
    return {};
}

QString reasonForHiding(const QAction* action) {
    const auto* const menu = qobject_cast<const QMenu*>(homeOf(action));
    return action->isVisible() && menu && !menu->isVisible() && !menu->title().isEmpty()
               ? QStringLiteral("its menu '%1' is closed").arg(textOf(menu))
               : QString();
}

}  // namespace Tamrix::Agent
