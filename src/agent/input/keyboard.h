#pragma once

#include <Qt>

#include "wire/keynames.h"

namespace Tamrix::Agent {

using Wire::Key;
using Wire::KeyCombination;
using Wire::keyOfCharacter;
using Wire::keysOfModifiers;
using Wire::modifierOfKey;
using Wire::parseKeys;

/// The keyboard: which modifiers are down. Each operation queues events of the window system and
/// returns at once; the window that has the focus when they are delivered gets them. One for each
/// process, GUI thread only.
class Keyboard {
public:
    static Keyboard& self();

    Qt::KeyboardModifiers modifiers() const { return m_modifiers; }

    /// The key gives what it would with the modifiers that are down: "A" with Shift, Backtab
    /// instead of Tab, control characters.
    void press(const Key& key);
    void release(const Key& key);
    /// Presses and releases the key for a character, with Shift for an upper-case letter.
    void type(uint character);
    /// Presses all keys in order and releases them in the reverse one.
    void pressCombination(const KeyCombination& keys);

private:
    Keyboard() = default;
    void queue(bool isPress, const Key& key);

    Qt::KeyboardModifiers m_modifiers;
};

}  // namespace Tamrix::Agent
