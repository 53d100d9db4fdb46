#pragma once

#include <QString>
#include <QVector>

namespace Tamrix::Wire {

/// One key of the keyboard, with the text that it gives without modifiers.
struct Key {
    int code = 0;
    QString text;
};

/// Keys pressed together: those before the last are held meanwhile.
using KeyCombination = QVector<Key>;

/// Reads "Return", "A", "Ctrl+Shift+Left", "Ctrl++"; case doesn't matter. Empty, with `*error` set,
/// for what names no key.
KeyCombination parseKeys(const QString& text, QString* error);

/// Reads "Ctrl+Shift"; an empty text is none. False, with `*error` set, for what names no
/// modifiers.
bool parseModifiers(const QString& text, Qt::KeyboardModifiers* modifiers, QString* error);

/// The text that parseKeys() reads as these keys: "Ctrl+Shift+A". Empty for a code that has no
/// name.
QString keysText(int code, Qt::KeyboardModifiers modifiers);

/// The text that parseModifiers() reads as these: "Ctrl+Shift"; empty for none.
QString modifiersText(Qt::KeyboardModifiers modifiers);

/// The key that types a character, given as a Unicode code point.
Key keyOfCharacter(uint character);

/// The modifier that a key is, none for all others.
Qt::KeyboardModifier modifierOfKey(int code);

/// The modifiers as the keys that hold them, in the order Ctrl, Alt, Meta, Shift.
QVector<Key> keysOfModifiers(Qt::KeyboardModifiers modifiers);

}  // namespace Tamrix::Wire
