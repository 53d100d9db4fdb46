#pragma once

#include <QRect>
#include <QString>

class QAction;
class QWidget;

namespace Tamrix::Agent {

/// Where an action is shown.
struct ActionPlace {
    /// The menu, bar or button; null for nowhere.
    QWidget* widget = nullptr;
    /// Its part that shows the action, in its own coordinates.
    QRect rect;
};

/// The label of an action as a person reads it: without mnemonic markers, and the shortcut that may
/// stand behind a tab.
QString actionText(const QAction* action);

/// The visible place of an action; of several the first, a menu or menu bar before others.
ActionPlace placeOf(const QAction* action);

/// The one widget in whose children the action is listed, whatever else shows it: its menu or menu
/// bar, else the first widget that it was added to, else its parent. Null for none.
QWidget* homeOf(const QAction* action);

}  // namespace Tamrix::Agent
