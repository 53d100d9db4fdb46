#include "agent/input/keyboard.h"

#include "agent/input/pointer.h"
#include "agent/input/windowsystem.h"

namespace Tamrix::Agent {

namespace {

/// What the key gives while modifiers are down.
Key modified(Key key, Qt::KeyboardModifiers modifiers) {
    if ((modifiers & Qt::ShiftModifier) != 0) {
        if (key.code == Qt::Key_Tab)
            return Key{Qt::Key_Backtab, QString()};
        key.text = key.text.toUpper();
    }
    if ((modifiers & Qt::ControlModifier) != 0 && key.code >= Qt::Key_At &&
        key.code <= Qt::Key_Underscore)
        key.text = QChar(key.code - Qt::Key_At);
    return key;
}

}  // namespace

Keyboard& Keyboard::self() {
    static Keyboard s_self;
    return s_self;
}

// Window systems report a modifier's own key with the modifiers from before the event.

void Keyboard::press(const Key& key) {
    queue(true, modified(key, m_modifiers));
    m_modifiers |= modifierOfKey(key.code);
}

void Keyboard::release(const Key& key) {
    queue(false, modified(key, m_modifiers));
    m_modifiers &= ~Qt::KeyboardModifiers(modifierOfKey(key.code));
}

void Keyboard::type(uint character) {
    const Key key = keyOfCharacter(character);
    const bool isUpper = QChar::isUpper(character);
    const Key shift{Qt::Key_Shift, QString()};
    if (isUpper)
        press(shift);
    queue(true, key);
    queue(false, key);
    if (isUpper)
        release(shift);
}

void Keyboard::pressCombination(const KeyCombination& keys) {
    for (const Key& key : keys)
        press(key);
    for (auto it = keys.rbegin(); it != keys.rend(); ++it)
        release(*it);
}

void Keyboard::queue(bool isPress, const Key& key) {
    if (isPress)
        Pointer::self().leaveToPopup();
    WindowSystem::self().key(isPress ? QEvent::KeyPress : QEvent::KeyRelease, key.code, m_modifiers,
                             key.text);
}

}  // namespace Tamrix::Agent
