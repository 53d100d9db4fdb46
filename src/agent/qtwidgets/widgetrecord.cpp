// What of WidgetToolkit concerns recordings: what a widget is to a person, and the way to an entry.

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSlider>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTextEdit>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/qtwidgets/actionplace.h"
#include "agent/qtwidgets/openlist.h"
#include "agent/qtwidgets/qtversionwidgets.h"
#include "agent/qtwidgets/widgettoolkit.h"

namespace Tamrix::Agent {

namespace {

using Wire::ObservedRole;

/// A longer text of a field is not told.
constexpr int longestText = 100'000;

bool isMenu(const QWidget* widget) {
    return qobject_cast<const QMenu*>(widget) || qobject_cast<const QMenuBar*>(widget);
}

ObservedRole roleOfField(const QWidget* field, bool isReadOnly, ObservedRole role) {
    if ((field->inputMethodHints() & Qt::ImhHiddenText) != 0)
        return ObservedRole::Password;
    return isReadOnly ? ObservedRole::Control : role;
}

/// A label with links in it.
bool hasLinks(const QLabel* label) {
    return label && (label->textInteractionFlags() & Qt::LinksAccessibleByMouse) != 0 &&
           label->text().contains(QLatin1String("<a "));
}

bool isControl(const QWidget* widget) {
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QGroupBox*>(widget) ||
           qobject_cast<const QLabel*>(widget) || qobject_cast<const QTabBar*>(widget) ||
           qobject_cast<const QProgressBar*>(widget) || isMenu(widget);
}

/// The menus and bars that show the action now.
QList<QWidget*> openMenusOf(const QAction* action) {
    QList<QWidget*> menus;
    for (QWidget* widget : widgetsOf(action)) {
        if (isMenu(widget) && widget->isVisible())
            menus.append(widget);
    }
    // A menu that has popped up goes before a bar.
    std::stable_partition(menus.begin(), menus.end(),
                          [](QWidget* menu) { return qobject_cast<QMenu*>(menu) != nullptr; });
    return menus;
}

bool isChoosable(const QAction* action) {
    return action && action->isEnabled() && !action->isSeparator() && !action->menu();
}

/// The one entry whose mnemonic the key is; null for none and for several.
QAction* actionOfMnemonic(const QMenu* menu, const QString& text) {
    if (text.isEmpty())
        return nullptr;
    const QKeySequence wanted(QStringLiteral("Alt+") + text.toUpper());
    QAction* found = nullptr;
    for (QAction* action : menu->actions()) {
        if (!action->isVisible() || QKeySequence::mnemonic(action->text()) != wanted)
            continue;
        if (found)
            return nullptr;
        found = action;
    }
    return found;
}

}  // namespace

Element WidgetToolkit::meant(const Element& inner) const {
    const Element around = Toolkit::meant(inner);
    auto* const widget = qobject_cast<QWidget*>(around.object);
    if (!widget || around.isItem())
        return around;
    // 1. The field in a box.
    QWidget* const parent = widget->parentWidget();
    if (qobject_cast<QLineEdit*>(widget) &&
        (qobject_cast<QAbstractSpinBox*>(parent) || qobject_cast<QComboBox*>(parent)))
        return element(parent);
    // 2. A list that belongs to a box or field.
    if (widget->window()->windowType() == Qt::Popup) {
        if (QWidget* const owner = ownerOfList(widget->window()))
            return meant(element(owner));
    }
    return around;
}

ObservedRole WidgetToolkit::role(const Element& element) const {
    const auto* const widget = qobject_cast<QWidget*>(element.object);
    if (!widget)
        return ObservedRole::MenuEntry;
    if (const auto* const field = qobject_cast<const QLineEdit*>(widget))
        return field->echoMode() != QLineEdit::Normal
                   ? ObservedRole::Password
                   : roleOfField(field, field->isReadOnly(), ObservedRole::Field);
    const auto* const rich = qobject_cast<const QTextEdit*>(widget);
    const auto* const plain = qobject_cast<const QPlainTextEdit*>(widget);
    if (rich || plain) {
        const bool isReadOnly = rich ? rich->isReadOnly() : plain->isReadOnly();
        // In what is only read there may be links.
        return isReadOnly ? ObservedRole::Place
                          : roleOfField(widget, false, ObservedRole::TextArea);
    }
    if (const auto* const box = qobject_cast<const QAbstractSpinBox*>(widget))
        return roleOfField(box, box->isReadOnly(), ObservedRole::Number);
    if (const auto* const box = qobject_cast<const QComboBox*>(widget))
        return box->isEditable() ? ObservedRole::Field : ObservedRole::Choice;
    if (qobject_cast<const QScrollBar*>(widget))
        return ObservedRole::ScrollBar;
    if (qobject_cast<const QAbstractSlider*>(widget))
        return ObservedRole::Slider;
    if (hasLinks(qobject_cast<const QLabel*>(widget)))
        return ObservedRole::Place;
    return isControl(widget) ? ObservedRole::Control : ObservedRole::Place;
}

Wire::ObservedState WidgetToolkit::state(const Element& element) const {
    const QWidget* const widget = qobject_cast<QWidget*>(element.object);
    Wire::ObservedState state;
    if (!widget)
        return state;
    switch (role(element)) {
        case ObservedRole::Field:
        case ObservedRole::TextArea: {
            const QString text = this->text(element);
            if (text.size() <= longestText)
                state.text = text.isNull() ? QStringLiteral("") : text;
            break;
        }
        case ObservedRole::Number:
            if (const auto* const box = qobject_cast<const QSpinBox*>(widget))
                state.text = box->cleanText();
            else if (const auto* const real = qobject_cast<const QDoubleSpinBox*>(widget))
                state.text = real->cleanText();
            else
                state.text = text(element);
            break;
        case ObservedRole::Choice:
            state.text = text(element);
            break;
        case ObservedRole::Slider:
            state.value = qobject_cast<const QAbstractSlider*>(widget)->value();
            break;
        case ObservedRole::Control:
            return Toolkit::state(element);
        default:
            break;
    }
    if (qobject_cast<const QComboBox*>(widget)) {
        // Asking the box for its list makes one.
        const auto* const list = widget->findChild<QAbstractItemView*>();
        state.isOpen = list && list->isVisible();
    }
    return state;
}

std::optional<RecordedWay> WidgetToolkit::wayTo(const Element& entry) const {
    const auto* const action = qobject_cast<QAction*>(entry.object);
    if (!action)
        return std::nullopt;
    QWidget* holder = nullptr;
    QStringList steps;
    // From the entry up to the bar, or to the menu that has popped up by itself.
    for (const QAction* each = action; each;) {
        const QList<QWidget*> menus = openMenusOf(each);
        if (menus.isEmpty())
            break;
        holder = menus.first();
        steps.prepend(actionText(each));
        const auto* const menu = qobject_cast<QMenu*>(holder);
        each = menu ? menu->menuAction() : nullptr;
    }
    if (!holder)
        return std::nullopt;
    RecordedWay way{element(holder), steps};
    const Outcome<Element> found = item(way.holder, ItemPath::ofSteps(steps), -1, -1);
    if (!found || *found != entry)
        way.steps.clear();
    return way;
}

Element WidgetToolkit::openPopup() const {
    QWidget* const popup = QApplication::activePopupWidget();
    if (!popup)
        return {};
    QWidget* const owner = ownerOfList(popup);
    return element(owner ? owner : popup);
}

bool WidgetToolkit::opensMenu(const Element& entry) const {
    const auto* const action = qobject_cast<QAction*>(entry.object);
    return action && action->menu();
}

Element WidgetToolkit::chosenBy(const Element& popup, const QKeyEvent& key) const {
    auto* const menu = qobject_cast<QMenu*>(popup.object);
    if (!menu)
        return {};
    const bool isChoosing =
        key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter ||
        (key.key() == Qt::Key_Space &&
         menu->style()->styleHint(QStyle::SH_Menu_SpaceActivatesItem, nullptr, menu) != 0);
    QAction* const action = isChoosing ? menu->activeAction() : actionOfMnemonic(menu, key.text());
    return isChoosable(action) ? element(action) : Element();
}

Element WidgetToolkit::clickedBy(const Element& receiver) const {
    auto* button = qobject_cast<QAbstractButton*>(receiver.object);
    const auto* const label = qobject_cast<QLabel*>(receiver.object);
    if (label)
        button = qobject_cast<QAbstractButton*>(label->buddy());
    return element(button);
}

}  // namespace Tamrix::Agent
