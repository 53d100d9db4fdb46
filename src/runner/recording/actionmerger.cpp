#include "runner/recording/actionmerger.h"

#include <QRegularExpression>
#include <algorithm>
#include <utility>

#include "base/overloaded.h"
#include "runner/recording/clickactions.h"

namespace Tamrix {

namespace {

using Wire::ObservedObject;
using Wire::ObservedRole;
using Wire::ObservedState;

/// So long a click waits for the second one, in ms: longer than desktops take two for a double
/// click.
constexpr int clickPatience = 600;
/// So long a value may stand still before it is written.
constexpr int valuePatience = 1000;

bool isField(ObservedRole role) {
    return role == ObservedRole::Field || role == ObservedRole::TextArea ||
           role == ObservedRole::Password || role == ObservedRole::Number;
}

/// Keys that leave a field, or do something with what is in it.
bool endsTyping(const ObservedObject& focus, const QString& keys) {
    if (keys == QLatin1String("Escape"))
        return true;
    return focus.role != ObservedRole::TextArea &&
           (keys == QLatin1String("Return") || keys == QLatin1String("Tab") ||
            keys == QLatin1String("Shift+Tab"));
}

/// Keys by which buttons and the like act: they are pressed, not typed.
bool isPressed(const ObservedObject& focus, const Wire::ObservedKey& key) {
    return key.text.isEmpty() || focus.role == ObservedRole::Control ||
           focus.role == ObservedRole::Choice || focus.role == ObservedRole::Slider;
}

}  // namespace

ActionMerger::ActionMerger(Take take, NameOf nameOf)
    : m_take(std::move(take)), m_nameOf(std::move(nameOf)) {}

void ActionMerger::add(const Wire::Observation& observation, qint64 now) {
    std::visit([&](const auto& each) { take(each, now); }, observation);
}

void ActionMerger::idle(qint64 now) {
    const bool isDone = std::visit(
        Overloaded{[&](const HeldClick& click) {
                       return !click.isFocusing && now - click.time >= clickPatience;
                   },
                   [&](const HeldValue& value) { return now - value.time >= valuePatience; },
                   [](const auto&) { return false; }},
        m_held);
    if (isDone)
        flush();
}

void ActionMerger::finish() {
    if (m_press && m_press->isReleased)
        endPress(0);
    m_press.reset();
    endTouched(0);
    flush();
    m_isFirst = true;
}

// The mouse

void ActionMerger::take(const ObservedState& state, qint64 /*now*/) {
    m_states.insert(state.handle, state);
    const auto* const list = std::get_if<OpenList>(&m_held);
    if (!list || list->box.handle != state.handle || state.isOpen)
        return;
    // What is pressed in the list is written when it is released.
    if (m_press && m_press->observed.holder.handle == state.handle)
        m_held = {};
    else
        flush();
}

void ActionMerger::take(const Wire::ObservedPress& press, qint64 now) {
    endTouched(now);
    if (m_press && m_press->isReleased)
        endPress(now);
    const auto* const typing = std::get_if<Typing>(&m_held);
    if (typing && typing->focus.handle != press.object.handle)
        flush();
    m_press = Press{press, stateOf(press.object)};
    m_press->isFirst = std::exchange(m_isFirst, false);
}

void ActionMerger::take(const Wire::ObservedDoubleClick& /*doubleClick*/, qint64 /*now*/) {
    // The program takes for a double click what are two clicks of the script, with another line
    // between them.
    if (!m_press || m_press->isFirst)
        return;
    m_press->isDouble = true;
    const auto* const click = std::get_if<HeldClick>(&m_held);
    if (click && click->handle == m_press->observed.object.handle)
        m_held = {};
}

void ActionMerger::take(const Wire::ObservedRelease& release, qint64 /*now*/) {
    if (!m_press)
        return;
    m_press->release = release;
    m_press->isReleased = true;
}

void ActionMerger::take(const Wire::ObservedWheel& wheel, qint64 now) {
    const auto* const typing = std::get_if<Typing>(&m_held);
    if (typing && typing->focus.handle == wheel.object.handle)
        return;
    if (m_touched && m_touched->object.handle != wheel.object.handle)
        endTouched(now);
    if (!m_touched)
        m_touched = Touched{wheel.object, stateOf(wheel.object), QString()};
}

void ActionMerger::take(const Wire::ObservedRest& /*rest*/, qint64 now) {
    if (m_press && m_press->isReleased)
        endPress(now);
    endTouched(now);
}

void ActionMerger::endPress(qint64 now) {
    const Press press = *std::exchange(m_press, std::nullopt);
    const ObservedRole role = press.observed.object.role;
    if (role == ObservedRole::ScrollBar || takeChange(press, now))
        return;
    // A slider that did not move was not used, or got the focus only.
    if (role == ObservedRole::Slider && press.observed.button == Qt::LeftButton)
        return;
    // Within a field that is typed into, only the cursor has moved.
    const auto* const typing = std::get_if<Typing>(&m_held);
    if (typing && typing->focus.handle == press.observed.object.handle &&
        press.observed.button == Qt::LeftButton)
        return;
    holdClick(press, now);
}

bool ActionMerger::takeChange(const Press& press, qint64 now) {
    const ObservedObject& object = press.observed.object;
    const ObservedState before = press.before;
    const ObservedState after = stateOf(object);
    // 1. A list that opens is nothing yet; nor is one that closes again.
    if (after.isOpen || before.isOpen) {
        if (after.isOpen && !before.isOpen) {
            flush();
            m_held = OpenList{object, before.text};
        }
        return true;
    }
    // 2. Values.
    const bool isNumber = object.role == ObservedRole::Number && after.text != before.text;
    const bool isChosen = object.role == ObservedRole::Choice && after.text != before.text;
    if (isNumber || isChosen || after.value != before.value) {
        holdValue(object, now);
        return true;
    }
    // 3. Checks.
    if (after.check != before.check && after.check != Qt::PartiallyChecked && after.check >= 0 &&
        before.check >= 0) {
        flush();
        if (press.observed.hovered.handle != 0)
            giveCall("hover", press.observed.hovered);
        giveCall(after.check == Qt::Checked ? "check" : "uncheck", object);
        return true;
    }
    // 4. A text that was completed.
    if (object.role == ObservedRole::Field && after.text != before.text) {
        if (!std::holds_alternative<Typing>(m_held)) {
            flush();
            startTyping(object, before.text);
        }
        return true;
    }
    return false;
}

void ActionMerger::holdClick(const Press& press, qint64 now) {
    flush();
    HeldClick click;
    click.handle = press.observed.object.handle;
    click.time = now;
    const ObservedRole role = press.observed.object.role;
    click.isFocusing =
        isField(role) && press.observed.button == Qt::LeftButton && press.observed.modifiers == 0;
    const auto name = [this](const ObservedObject& object) { return nameOf(object); };
    if (press.observed.hovered.handle != 0)
        click.actions.append(
            FunctionAction{QStringLiteral("hover"), nameOf(press.observed.hovered), {}});
    if (press.release.isDrag)
        click.actions.append(dragAction(press.observed, press.release.distance, name));
    else
        click.actions.append(clickAction(
            press.observed, press.isDouble ? ClickCount::Double : ClickCount::Single, name));
    m_held = click;
}

void ActionMerger::holdValue(const ObservedObject& object, qint64 now) {
    auto* const held = std::get_if<HeldValue>(&m_held);
    if (!held || held->object.handle != object.handle)
        flush();
    m_held = HeldValue{object, now};
}

void ActionMerger::take(const Wire::ObservedChoice& choice, qint64 now) {
    endTouched(now);
    // What the menu was opened with, when it is still held down.
    if (m_press)
        endPress(now);
    flush();
    giveCall("selectItem", choice.holder, {itemPathValue(choice.steps)});
}

void ActionMerger::take(const Wire::ObservedClose& close, qint64 /*now*/) {
    finish();
    giveCall("closeWindow", close.window);
}

void ActionMerger::take(const Wire::ObservedVerdict& verdict, qint64 /*now*/) {
    finish();
    ExpectAction action;
    action.object = nameOf(verdict.object);
    for (auto it = verdict.properties.cbegin(); it != verdict.properties.cend(); ++it) {
        const QVariant& value = it.value();
        ActionValue expected = value.toString();
        if (value.userType() == QMetaType::Bool)
            expected = value.toBool();
        else if (value.userType() == QMetaType::Double)
            expected = value.toDouble();
        else if (value.userType() == QMetaType::Int || value.userType() == QMetaType::LongLong)
            expected = value.toLongLong();
        action.properties.append({it.key(), expected});
    }
    if (!action.object.isEmpty())
        give(action);
}

void ActionMerger::take(const Wire::ObservedMode& /*mode*/, qint64 /*now*/) {
    finish();
}

// Keys

void ActionMerger::take(const Wire::ObservedKey& key, qint64 now) {
    endTouched(now);
    if (m_press && m_press->isReleased)
        endPress(now);
    const ObservedObject& focus = key.focus;
    const ObservedState state = stateOf(focus);
    // 1. What is chosen in an open list is told by the list's end.
    if (state.isOpen)
        return;
    // 2. A click that gave the focus is not needed, unless something else came between.
    const auto* const click = std::get_if<HeldClick>(&m_held);
    const bool isFocused = click && click->isFocusing && click->handle == focus.handle;
    const auto* const typing = std::get_if<Typing>(&m_held);
    const auto* const value = std::get_if<HeldValue>(&m_held);
    const bool goesOn = (typing && typing->focus.handle == focus.handle) ||
                        (value && value->object.handle == focus.handle && !isField(focus.role));
    if (isFocused)
        m_held = {};
    else if (!goesOn)
        flush();
    // 3. What may change a value.
    if (focus.role == ObservedRole::Choice || focus.role == ObservedRole::Slider) {
        m_touched = Touched{focus, state, key.keys};
        return;
    }
    // 4. What ends the typing, or acts by itself.
    if (endsTyping(focus, key.keys) || (!isField(focus.role) && isPressed(focus, key))) {
        flush();
        if (!key.keys.isEmpty())
            giveCall("press", focus, {key.keys});
        return;
    }
    // 5. Typing.
    if (!std::holds_alternative<Typing>(m_held))
        startTyping(focus, isField(focus.role) ? state.text : QString());
    std::get<Typing>(m_held).strokes.append({key.text.isEmpty() ? key.keys : QString(), key.text});
}

void ActionMerger::take(const Wire::ObservedShortcut& shortcut, qint64 now) {
    endTouched(now);
    if (m_press && m_press->isReleased)
        endPress(now);
    // One that closes an open list is told by the list's end.
    if (stateOf(shortcut.focus).isOpen)
        return;
    flush();
    if (shortcut.button.handle != 0) {
        giveCall("click", shortcut.button);
        return;
    }
    for (const QString& keys : shortcut.keys)
        giveCall("press", shortcut.focus, {keys});
}

void ActionMerger::startTyping(const ObservedObject& focus, const QString& before) {
    m_held = Typing{focus, before, {}};
}

void ActionMerger::endTouched(qint64 now) {
    if (!m_touched)
        return;
    const Touched touched = *std::exchange(m_touched, std::nullopt);
    const ObservedState after = stateOf(touched.object);
    if (after.text != touched.before.text || after.value != touched.before.value) {
        holdValue(touched.object, now);
    } else if (after.isOpen && !touched.before.isOpen) {
        flush();
        m_held = OpenList{touched.object, touched.before.text};
    } else if (!touched.keys.isEmpty()) {
        flush();
        giveCall("press", touched.object, {touched.keys});
    }
}

// What is written

void ActionMerger::flush() {
    const Held held = std::exchange(m_held, {});
    std::visit([this](const auto& each) { flush(each); }, held);
}

void ActionMerger::flush(const HeldClick& click) {
    for (const ScriptAction& action : click.actions)
        give(action);
}

void ActionMerger::flush(const HeldValue& value) {
    const ObservedState state = stateOf(value.object);
    if (value.object.role == ObservedRole::Slider) {
        const QString name = nameOf(value.object);
        const bool isReal = state.value.userType() == QMetaType::Double;
        const ActionValue number =
            isReal ? ActionValue(state.value.toDouble()) : ActionValue(state.value.toLongLong());
        if (!name.isEmpty())
            give(AssignmentAction{name, QStringLiteral("value"), number});
    } else if (value.object.role == ObservedRole::Number) {
        giveCall("fill", value.object, {state.text});
    } else {
        giveCall("selectItem", value.object, {itemPathValue({state.text})});
    }
}

void ActionMerger::flush(const OpenList& list) {
    const QString text = stateOf(list.box).text;
    if (text != list.before)
        giveCall("selectItem", list.box, {itemPathValue({text})});
}

void ActionMerger::flush(const Typing& typing) {
    if (typing.focus.role == ObservedRole::Password) {
        givePassword(typing);
        return;
    }
    const QString text = stateOf(typing.focus).text;
    const bool isKnown = !typing.before.isNull() && !text.isNull();
    if (isKnown && text != typing.before)
        giveText(typing, text);
    else if (!isKnown || std::all_of(typing.strokes.cbegin(), typing.strokes.cend(),
                                     [](const Stroke& each) { return each.text.isEmpty(); }))
        giveStrokes(typing);
}

void ActionMerger::givePassword(const Typing& typing) {
    if (typing.strokes.isEmpty())
        return;
    const QString key = passwordKeyOf(typing.focus.name);
    give(CommentAction{
        QStringLiteral("The run gets this password from the variable TAMRIX_PASSWORD_%1.")
            .arg(key)});
    giveCall("fill", typing.focus, {PasswordKey{key}});
}

void ActionMerger::giveText(const Typing& typing, const QString& text) {
    const bool isAppended =
        typing.focus.role == ObservedRole::TextArea && text.startsWith(typing.before);
    if (!isAppended) {
        giveCall("fill", typing.focus, {text});
    } else {
        // The text goes on at its end, wherever the cursor is when the script comes here.
        if (!typing.before.isEmpty() && m_lastTyped != typing.focus.handle)
            giveCall("press", typing.focus, {QStringLiteral("Ctrl+End")});
        giveCall("typeText", typing.focus, {text.mid(typing.before.size())});
    }
    m_lastTyped = typing.focus.role == ObservedRole::TextArea ? typing.focus.handle : 0;
}

void ActionMerger::giveStrokes(const Typing& typing) {
    QString text;
    const auto giveTyped = [&] {
        if (!text.isEmpty())
            giveCall("typeText", typing.focus, {std::exchange(text, QString())});
    };
    for (const Stroke& stroke : typing.strokes) {
        text += stroke.text;
        if (stroke.keys.isEmpty())
            continue;
        giveTyped();
        giveCall("press", typing.focus, {stroke.keys});
    }
    giveTyped();
}

ObservedState ActionMerger::stateOf(const ObservedObject& object) const {
    return m_states.value(object.handle);
}

QString ActionMerger::nameOf(const ObservedObject& object) {
    const QString name = m_nameOf(object.name);
    if (name.isEmpty())
        m_take(CommentAction{
            QStringLiteral("Something was done here to an object that no name finds.")});
    return name;
}

void ActionMerger::give(const ScriptAction& action) {
    m_lastTyped = 0;
    const auto* const call = std::get_if<FunctionAction>(&action);
    // Of an object without name a comment tells.
    if (!call || !call->object.isEmpty())
        m_take(action);
}

void ActionMerger::giveCall(const char* function, const ObservedObject& object,
                            const QList<ActionValue>& arguments) {
    give(FunctionAction{QString::fromLatin1(function), nameOf(object), arguments});
}

ActionValue itemPathValue(const QStringList& steps) {
    const bool hasDots = std::any_of(steps.cbegin(), steps.cend(), [](const QString& step) {
        QString text = step;
        // Those at the end of a text part nothing.
        while (text.endsWith(u'.'))
            text.chop(1);
        return text.contains(u'.') || text.contains(u'\\');
    });
    if (hasDots)
        return steps;
    return steps.join(u'.');
}

QString passwordKeyOf(const Wire::Query& name) {
    static const QRegularExpression s_others(QStringLiteral("[^A-Za-z0-9]+"));
    for (const char* const property : {"name", "buddy", "text"}) {
        for (const Wire::Criterion& criterion : name.criteria) {
            const QString key =
                criterion.property == QLatin1String(property)
                    ? QString(criterion.text).replace(s_others, QStringLiteral(" ")).trimmed()
                    : QString();
            if (!key.isEmpty())
                return QString(key).replace(u' ', u'_');
        }
    }
    return QStringLiteral("password");
}

}  // namespace Tamrix
