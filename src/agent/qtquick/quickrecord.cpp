// What of QuickToolkit concerns recordings: what an item is to a person, and the way to it.

#include <QGuiApplication>
#include <QKeyEvent>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>

#include "agent/core/session.h"
#include "agent/qtquick/quickitems.h"
#include "agent/qtquick/quickmenu.h"
#include "agent/qtquick/quicktoolkit.h"

namespace Tamrix::Agent {

namespace {

using Wire::ObservedRole;

constexpr int longestText = 100'000;

struct RoleRow {
    const char* className;
    ObservedRole role;
};

/// Of several that fit the first one counts.
constexpr RoleRow roles[] = {
    {"QQuickMenuItem", ObservedRole::MenuEntry},
    {"QQuickMenuBarItem", ObservedRole::MenuEntry},
    {"QQuickComboBox", ObservedRole::Choice},
    {"QQuickSlider", ObservedRole::Slider},
    {"QQuickDial", ObservedRole::Slider},
    {"QQuickScrollBar", ObservedRole::ScrollBar},
    {"QQuickAbstractButton", ObservedRole::Control},
    {"QQuickLabel", ObservedRole::Control},
    {"QQuickText", ObservedRole::Control},
};

bool isText(const QObject* item) {
    return item->inherits("QQuickTextInput") || item->inherits("QQuickTextEdit");
}

ObservedRole roleOfText(const QObject* item) {
    // Of TextInput.EchoMode, 0 shows what is typed.
    if (item->property("echoMode").toInt() != 0)
        return ObservedRole::Password;
    const bool isArea = item->inherits("QQuickTextEdit");
    if (item->property("readOnly").toBool())
        return isArea ? ObservedRole::Place : ObservedRole::Control;
    return isArea ? ObservedRole::TextArea : ObservedRole::Field;
}

/// The control that the item is the inner field of; null for others.
QQuickItem* boxAround(const QQuickItem* item) {
    QQuickItem* const parent = item->parentItem();
    const bool isBox =
        parent && (parent->inherits("QQuickSpinBox") || parent->inherits("QQuickComboBox"));
    return isBox && isText(item) ? parent : nullptr;
}

/// The text that a person reads where a mouse area is, and means to click.
QQuickItem* textIn(QQuickItem* around, const QRectF& area) {
    const QList<QQuickItem*> children = around->childItems();
    for (QQuickItem* child : children) {
        if (!child->isVisible())
            continue;
        const QPointF middle = child->mapToScene(QPointF(child->width() / 2, child->height() / 2));
        if (child->inherits("QQuickText") && !quickTextOf(child).isEmpty() && area.contains(middle))
            return child;
        if (QQuickItem* const found = textIn(child, area))
            return found;
    }
    return nullptr;
}

/// The box whose list the item is in; null for none.
QQuickItem* boxOfList(const QQuickItem* item) {
    for (const QQuickItem* each = item; each; each = each->parentItem()) {
        const QObject* const popup = each->inherits("QQuickPopupItem") ? each->parent() : nullptr;
        auto* const box = popup ? qobject_cast<QQuickItem*>(popup->parent()) : nullptr;
        if (box && box->inherits("QQuickComboBox"))
            return box;
    }
    return nullptr;
}

QQuickWindow* focusWindow() {
    return qobject_cast<QQuickWindow*>(QGuiApplication::focusWindow());
}

/// The item of the open menu that the item is in; null for none.
QQuickItem* menuAround(QQuickItem* item) {
    for (QQuickItem* each = item; each; each = each->parentItem()) {
        if (each->inherits("QQuickPopupItem") && menuOf(each))
            return each;
    }
    return nullptr;
}

/// Appends the visible items below `root`, itself included, that are menu bars or open menus.
void addMenus(QQuickItem* root, QList<QQuickItem*>* menus) {
    if (!root->isVisible())
        return;
    if (menuOf(root)) {
        menus->append(root);
        return;
    }
    for (QQuickItem* child : root->childItems())
        addMenus(child, menus);
}

QList<QQuickItem*> shownMenus(const QQuickWindow* window) {
    QList<QQuickItem*> menus;
    addMenus(window->contentItem(), &menus);
    return menus;
}

/// Whether a menu has the entry; then `*way` are the entries that lead there, itself included.
bool leadsTo(QObject* menu, const QQuickItem* target, QList<QQuickItem*>* way) {
    for (QQuickItem* entry : entriesOf(menu)) {
        QObject* const below = menuBelow(entry);
        if (entry != target && !(below && leadsTo(below, target, way)))
            continue;
        way->prepend(entry);
        return true;
    }
    return false;
}

/// The texts of the entries; none where another entry beside one has the same.
QStringList textsOf(QObject* menu, const QList<QQuickItem*>& way) {
    QStringList texts;
    for (QQuickItem* step : way) {
        const QString text = quickTextOf(step);
        const QList<QQuickItem*> entries = entriesOf(menu);
        const auto same =
            std::count_if(entries.cbegin(), entries.cend(),
                          [&text](const QQuickItem* each) { return quickTextOf(each) == text; });
        if (text.isEmpty() || same != 1)
            return {};
        texts.append(text);
        menu = menuBelow(step);
    }
    return texts;
}

QQuickItem* viewAround(const QQuickItem* item) {
    for (QQuickItem* each = item->parentItem(); each; each = each->parentItem()) {
        if (each->inherits("QQuickItemView"))
            return each;
    }
    return nullptr;
}

}  // namespace

Element QuickToolkit::meant(const Element& inner) const {
    auto* const item = qobject_cast<QQuickItem*>(inner.object);
    if (!item)
        return inner;
    if (QQuickItem* const box = boxAround(item))
        return element(box);
    // A mouse area without a name stands for what is seen there.
    if (!item->inherits("QQuickMouseArea") || !name(inner).isEmpty() || !item->parentItem())
        return inner;
    const QRectF area = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
    if (QQuickItem* const text = textIn(item->parentItem(), area))
        return element(text);
    return inner;
}

ObservedRole QuickToolkit::role(const Element& element) const {
    const QObject* const object = element.object;
    if (isText(object))
        return roleOfText(object);
    // Without a field, a value is all that a spin box has.
    if (object->inherits("QQuickSpinBox"))
        return object->property("editable").toBool() ? ObservedRole::Number : ObservedRole::Slider;
    for (const RoleRow& row : roles) {
        if (object->inherits(row.className))
            return row.role;
    }
    return ObservedRole::Place;
}

Wire::ObservedState QuickToolkit::state(const Element& element) const {
    const QObject* const object = element.object;
    Wire::ObservedState state;
    switch (role(element)) {
        case ObservedRole::Field:
        case ObservedRole::TextArea: {
            const QString text = object->property("text").toString();
            if (text.size() <= longestText)
                state.text = text.isNull() ? QStringLiteral("") : text;
            break;
        }
        case ObservedRole::Number: {
            const auto* const field = object->property("contentItem").value<QObject*>();
            state.text =
                field ? field->property("text").toString() : object->property("value").toString();
            break;
        }
        case ObservedRole::Slider:
            state.value = object->property("value");
            break;
        case ObservedRole::Choice: {
            const auto* const popup = object->property("popup").value<QObject*>();
            state.text = object->property("displayText").toString();
            state.isOpen = popup && popup->property("visible").toBool();
            break;
        }
        case ObservedRole::Control:
            return Toolkit::state(element);
        default:
            break;
    }
    return state;
}

std::optional<RecordedWay> QuickToolkit::wayTo(const Element& entry) const {
    auto* const item = qobject_cast<QQuickItem*>(entry.object);
    if (item && role(entry) == ObservedRole::MenuEntry)
        return wayInMenus(item);
    QQuickItem* holder = item ? boxOfList(item) : nullptr;
    if (!holder && item)
        holder = viewAround(item);
    const QString text = item ? quickTextOf(item) : QString();
    if (!holder || text.isEmpty())
        return std::nullopt;
    const ItemPath path = ItemPath::ofSteps(QStringList{text});
    RecordedWay way{element(holder), {}};
    if (findQuickItem(holder, path, -1) == item)
        way.steps.append(text);
    return way;
}

/// The longest way begins at a bar, or at the menu that has popped up by itself.
std::optional<RecordedWay> QuickToolkit::wayInMenus(QQuickItem* entry) const {
    QQuickItem* holder = nullptr;
    QList<QQuickItem*> longest;
    for (QQuickItem* menu : shownMenus(entry->window())) {
        QList<QQuickItem*> way;
        if (!leadsTo(menuOf(menu), entry, &way) || way.size() <= longest.size())
            continue;
        holder = menu;
        longest = way;
    }
    if (!holder)
        return std::nullopt;
    return RecordedWay{element(holder), textsOf(menuOf(holder), longest)};
}

Element QuickToolkit::openPopup() const {
    const QQuickWindow* const window = focusWindow();
    QQuickItem* const focus = window ? window->activeFocusItem() : nullptr;
    QQuickItem* const menu = menuAround(focus);
    return element(menu ? menu : boxOfList(focus));
}

bool QuickToolkit::opensMenu(const Element& entry) const {
    const auto* const item = qobject_cast<QQuickItem*>(entry.object);
    return item && role(entry) == ObservedRole::MenuEntry && menuBelow(item);
}

Element QuickToolkit::chosenBy(const Element& popup, const QKeyEvent& key) const {
    auto* const item = qobject_cast<QQuickItem*>(popup.object);
    QObject* const menu = item ? menuOf(item) : nullptr;
    // Return does nothing in these menus.
    if (!menu || key.key() != Qt::Key_Space)
        return {};
    return element(entryAt(menu, menu->property("currentIndex").toInt()));
}

Element QuickToolkit::clickedBy(const Element& receiver) const {
    return receiver.object->inherits("QQuickAbstractButton") ? receiver : Element();
}

}  // namespace Tamrix::Agent
