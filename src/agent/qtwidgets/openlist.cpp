#include "agent/qtwidgets/openlist.h"

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

namespace Tamrix::Agent {

namespace {

/// The field that was filled last.
QPointer<QWidget>& closedField() {
    static QPointer<QWidget> s_field;
    return s_field;
}

/// The field that a list of completions belongs to; null for other popups.
QWidget* completedField(const QWidget* popup) {
    return qobject_cast<const QAbstractItemView*>(popup) ? popup->focusProxy() : nullptr;
}

}  // namespace

QWidget* ownerOfList(QWidget* popup) {
    if (QWidget* const field = completedField(popup))
        return field;
    return qobject_cast<QComboBox*>(popup->parentWidget());
}

namespace {

bool isPartOf(const QWidget* widget, const QWidget* popup) {
    for (const QWidget* each = widget; each; each = each->parentWidget()) {
        if (each == popup)
            return true;
    }
    return false;
}

/// Boxes have fields in them.
bool isFieldOrBox(const QWidget* widget, const QWidget* owner) {
    return widget == owner || owner->isAncestorOf(widget) ||
           (widget->isAncestorOf(owner) && (qobject_cast<const QComboBox*>(widget) ||
                                            qobject_cast<const QAbstractSpinBox*>(widget)));
}

}  // namespace

QWidget* openListOver(const QWidget* widget) {
    QWidget* const popup = QApplication::activePopupWidget();
    if (!popup || isPartOf(widget, popup))
        return nullptr;
    const bool isMenu = qobject_cast<const QMenu*>(widget) || qobject_cast<const QMenuBar*>(widget);
    if (isMenu && qobject_cast<const QMenu*>(popup))
        return nullptr;
    QWidget* const list = ownerOfList(popup);
    QWidget* const owner = list ? list : popup;
    if (isFieldOrBox(widget, owner))
        return nullptr;
    if (closedField() && completedField(popup) == closedField()) {
        popup->hide();
        return nullptr;
    }
    return owner;
}

void closeListOf(QWidget* field) {
    closedField() = field;
    QWidget* const popup = QApplication::activePopupWidget();
    if (popup && completedField(popup) == field)
        popup->hide();
}

void keepListOf(const QWidget* field) {
    if (closedField() == field)
        closedField() = nullptr;
}

}  // namespace Tamrix::Agent
