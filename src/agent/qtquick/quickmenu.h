#pragma once

#include <QList>
#include <QPointer>

#include "agent/core/contract/items.h"

class QQuickItem;

namespace Tamrix::Agent {

/// A menu or menu bar of Qt Quick Controls: a bar holds entries with a menu each, a menu is a popup
/// whose entries may have menus of their own.
class QuickMenu : public Menu {
public:
    /// The menu is a bar or the popup of a menu.
    explicit QuickMenu(QObject* menu);

    State state() const override;
    QVector<MenuEntry> entries() const override;
    QString label() const override;

private:
    QPointer<QObject> m_menu;
};

/// The entries of a menu or bar, which may be null, separators among them; the menu that an entry
/// opens, null for none.
QList<QQuickItem*> entriesOf(QObject* menu);
QQuickItem* entryAt(QObject* menu, int index);
QObject* menuBelow(const QQuickItem* entry);

/// The bar that the item is, or the menu whose popup's item it is; null for other items.
QObject* menuOf(QQuickItem* item);

}  // namespace Tamrix::Agent
