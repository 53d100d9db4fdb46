#include "wire/keynames.h"

#include <QHash>
#include <QMetaEnum>
#include <QStringList>

namespace Tamrix::Wire {

namespace {

struct Alias {
    const char* name;
    int code;
};

// Names besides those of Qt::Key, in lower case.
constexpr Alias aliases[] = {
    {"ctrl", Qt::Key_Control},   {"win", Qt::Key_Meta},           {"super", Qt::Key_Meta},
    {"windows", Qt::Key_Meta},   {"esc", Qt::Key_Escape},         {"del", Qt::Key_Delete},
    {"ins", Qt::Key_Insert},     {"pgup", Qt::Key_PageUp},        {"pgdown", Qt::Key_PageDown},
    {"pgdn", Qt::Key_PageDown},  {"page_up", Qt::Key_PageUp},     {"page_down", Qt::Key_PageDown},
    {"bksp", Qt::Key_Backspace}, {"caps_lock", Qt::Key_CapsLock},
};

struct ModifierKey {
    int code;
    Qt::KeyboardModifier modifier;
};

// The order in which a combination presses them.
constexpr ModifierKey modifierKeys[] = {
    {Qt::Key_Control, Qt::ControlModifier},   {Qt::Key_Alt, Qt::AltModifier},
    {Qt::Key_Meta, Qt::MetaModifier},         {Qt::Key_Shift, Qt::ShiftModifier},
    {Qt::Key_AltGr, Qt::GroupSwitchModifier},
};

QHash<QString, int> makeNames() {
    QHash<QString, int> names;
    const QMetaEnum keys = QMetaEnum::fromType<Qt::Key>();
    for (int i = 0; i < keys.keyCount(); ++i) {
        const QString name = QString::fromLatin1(keys.key(i));
        names.insert(name.mid(name.indexOf(u'_') + 1).toLower(), keys.value(i));
    }
    names.remove(QStringLiteral("unknown"));
    for (const Alias& alias : aliases)
        names.insert(QString::fromLatin1(alias.name), alias.code);
    return names;
}

/// The text of keys that have one but are not named by it.
QString textOfKey(int code) {
    switch (code) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            return QStringLiteral("\r");
        case Qt::Key_Tab:
            return QStringLiteral("\t");
        case Qt::Key_Backspace:
            return QStringLiteral("\b");
        case Qt::Key_Escape:
            return QStringLiteral("\x1b");
        case Qt::Key_Delete:
            return QStringLiteral("\x7f");
        default:
            break;
    }
    if (code >= Qt::Key_Space && code <= Qt::Key_ydiaeresis)
        return QString(QChar(code)).toLower();
    return QString();
}

/// Code 0 for what names no key.
Key parseKey(const QString& name) {
    static const QHash<QString, int> s_names = makeNames();
    const QVector<uint> characters = name.toUcs4();
    if (characters.size() == 1) {
        Key key = keyOfCharacter(characters.first());
        key.text = key.text.toLower();
        return key;
    }
    const int code = s_names.value(name.toLower(), 0);
    return Key{code, textOfKey(code)};
}

QStringList splitAtPlus(const QString& text) {
    QStringList names;
    int begin = 0;
    // A "+" at a place where a name has to begin is the key itself.
    for (int end = text.indexOf(u'+', 1); end > 0; end = text.indexOf(u'+', begin + 1)) {
        names.append(text.mid(begin, end - begin));
        begin = end + 1;
    }
    names.append(text.mid(begin));
    return names;
}

}  // namespace

KeyCombination parseKeys(const QString& text, QString* error) {
    KeyCombination keys;
    const QStringList names = splitAtPlus(text);
    for (const QString& name : names) {
        const bool isBare = name.size() == 1;
        const Key key = parseKey(isBare ? name : name.trimmed());
        if (key.code == 0) {
            *error = QStringLiteral("unknown key '%1' in '%2'").arg(name, text);
            return KeyCombination();
        }
        keys.append(key);
    }
    return keys;
}

bool parseModifiers(const QString& text, Qt::KeyboardModifiers* modifiers, QString* error) {
    *modifiers = Qt::NoModifier;
    if (text.trimmed().isEmpty())
        return true;
    const QStringList names = splitAtPlus(text);
    for (const QString& name : names) {
        const Qt::KeyboardModifier modifier = modifierOfKey(parseKey(name.trimmed()).code);
        if (modifier == Qt::NoModifier) {
            *error = QStringLiteral("unknown modifier '%1' in '%2'").arg(name, text);
            return false;
        }
        *modifiers |= modifier;
    }
    return true;
}

QString keysText(int code, Qt::KeyboardModifiers modifiers) {
    QString name;
    if (code > Qt::Key_Space && code <= Qt::Key_ydiaeresis) {
        name = QString(QChar(code));
    } else {
        const char* const key = QMetaEnum::fromType<Qt::Key>().valueToKey(code);
        name = key ? QString::fromLatin1(key).section(u'_', 1) : QString();
    }
    if (name.isEmpty())
        return name;
    const QString held = modifiersText(modifiers);
    return held.isEmpty() ? name : held + u'+' + name;
}

QString modifiersText(Qt::KeyboardModifiers modifiers) {
    constexpr std::pair<Qt::KeyboardModifier, const char*> names[] = {{Qt::ControlModifier, "Ctrl"},
                                                                      {Qt::AltModifier, "Alt"},
                                                                      {Qt::MetaModifier, "Meta"},
                                                                      {Qt::ShiftModifier, "Shift"}};
    QStringList held;
    for (const auto& [modifier, name] : names) {
        if (modifiers.testFlag(modifier))
            held.append(QString::fromLatin1(name));
    }
    return held.join(u'+');
}

Key keyOfCharacter(uint character) {
    switch (character) {
        case '\n':
        case '\r':
            return Key{Qt::Key_Return, QStringLiteral("\r")};
        case '\t':
            return Key{Qt::Key_Tab, QStringLiteral("\t")};
        case '\b':
            return Key{Qt::Key_Backspace, QStringLiteral("\b")};
        case 0x1b:
            return Key{Qt::Key_Escape, QStringLiteral("\x1b")};
        case 0x7f:
            return Key{Qt::Key_Delete, QStringLiteral("\x7f")};
        default: {
            const char32_t code = character;
            return Key{static_cast<int>(QChar::toUpper(character)), QString::fromUcs4(&code, 1)};
        }
    }
}

Qt::KeyboardModifier modifierOfKey(int code) {
    for (const ModifierKey& key : modifierKeys)
        if (key.code == code)
            return key.modifier;
    return Qt::NoModifier;
}

QVector<Key> keysOfModifiers(Qt::KeyboardModifiers modifiers) {
    QVector<Key> keys;
    for (const ModifierKey& key : modifierKeys)
        if ((modifiers & key.modifier) != 0)
            keys.append(Key{key.code, QString()});
    return keys;
}

}  // namespace Tamrix::Wire
