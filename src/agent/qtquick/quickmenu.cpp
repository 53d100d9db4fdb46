#include "agent/qtquick/quickmenu.h"

#include <QQuickItem>

#include "agent/core/mnemonic.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"

namespace Tamrix::Agent {

namespace {

MenuEntry makeEntry(QQuickItem* item) {
    MenuEntry entry;
    entry.target = Session::self()->element(item);
    entry.text = entry.target.toolkit->text(entry.target);
    entry.isShown = entry.target.toolkit->isVisible(entry.target);
    if (QObject* const below = menuBelow(item))
        entry.below = std::make_shared<QuickMenu>(below);
    return entry;
}

}  // namespace

QuickMenu::QuickMenu(QObject* menu) : Menu(Session::self()->element(menu)), m_menu(menu) {}

Menu::State QuickMenu::state() const {
    if (!m_menu || !m_menu->property("visible").toBool())
        return State::Closed;
    return m_menu->property("opened").toBool() ? State::Open : State::Opening;
}

QVector<MenuEntry> QuickMenu::entries() const {
    QVector<MenuEntry> entries;
    for (QQuickItem* item : entriesOf(m_menu))
        entries.append(makeEntry(item));
    return entries;
}

QString QuickMenu::label() const {
    const QString title =
        m_menu ? withoutMnemonic(m_menu->property("title").toString()) : QString();
    return title.isEmpty() ? QStringLiteral("the menu")
                           : QStringLiteral("the menu '%1'").arg(title);
}

QList<QQuickItem*> entriesOf(QObject* menu) {
    QList<QQuickItem*> entries;
    const int count = menu ? menu->property("count").toInt() : 0;
    for (int index = 0; index < count; ++index) {
        if (QQuickItem* const item = entryAt(menu, index))
            entries.append(item);
    }
    return entries;
}

QQuickItem* entryAt(QObject* menu, int index) {
    QQuickItem* item = nullptr;
    QMetaObject::invokeMethod(menu, "itemAt", Q_RETURN_ARG(QQuickItem*, item), Q_ARG(int, index));
    return item;
}

QObject* menuBelow(const QQuickItem* entry) {
    // The "menu" of an entry of a menu is the one around it.
    const bool isOfBar = entry->inherits("QQuickMenuBarItem");
    return entry->property(isOfBar ? "menu" : "subMenu").value<QObject*>();
}

QObject* menuOf(QQuickItem* item) {
    if (item->inherits("QQuickMenuBar"))
        return item;
    QObject* const popup = item->parent();
    return popup && popup->inherits("QQuickMenu") && item->inherits("QQuickPopupItem") ? popup
                                                                                       : nullptr;
}

}  // namespace Tamrix::Agent
