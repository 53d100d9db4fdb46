#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>
#include <variant>

#include "wire/messages.h"

namespace Tamrix::Wire {

// What a person does to an application, as the agent sees it while a recording goes on. Objects and
// their states are told as they are when the event arrives, before the application handles it; what
// became of it comes behind, as an ObservedState. Passwords don't travel.

/// What an object is to a person who uses it.
enum class ObservedRole : quint8 {
    Control = 0,    ///< clicked, wherever
    Place = 1,      ///< it matters where it is clicked: a canvas
    Field = 2,      ///< takes a line of text
    TextArea = 3,   ///< takes many
    Password = 4,   ///< a field whose text is hidden
    Number = 5,     ///< a spin box
    Slider = 6,     ///< its value is a number on a scale
    Choice = 7,     ///< a list opens from which one item is chosen
    Item = 8,       ///< of a view or a bar of tabs
    MenuEntry = 9,  ///< of a menu or menu bar
    ScrollBar = 10,
    Last = ScrollBar
};

struct ObservedObject {
    /// 0 for none; the same for the same object as long as it lives.
    quint64 handle = 0;
    ObservedRole role = ObservedRole::Control;
    /// Finds the object and nothing else; without criteria when there is no such name.
    Query name = {};
};

/// What the object of a handle holds from now on. Sent when it is first needed, and for what was
/// used last when it has changed.
struct ObservedState {
    quint64 handle = 0;
    /// Of a field, a number or a choice; null for all others, passwords among them.
    QString text;
    /// A CheckState of Qt; -1 for what can't be checked.
    qint32 check = -1;
    /// Of a slider; invalid for all others.
    QVariant value;
    /// Of a choice: whether its list is open.
    bool isOpen = false;
};

struct ObservedPress {
    ObservedObject object;
    /// Of an item or an entry: what has it, and the way to it; no steps when texts lead elsewhere.
    ObservedObject holder;
    QStringList steps;
    /// Relative to the object's upper left corner.
    QPoint place;
    /// Qt::MouseButton, Qt::KeyboardModifiers.
    qint32 button = 1;
    qint32 modifiers = 0;
    /// What the mouse was over when it showed the object; handle 0 when it was there anyway.
    ObservedObject hovered;
};

/// The press before was the second one of a double click.
struct ObservedDoubleClick {};

/// The button of the last press is released, or what was dragged with it is dropped.
struct ObservedRelease {
    /// From the place of the press.
    QPoint distance;
    /// Whether that is far enough to be no click.
    bool isDrag = false;
};

/// The wheel is turned over what takes a value from it.
struct ObservedWheel {
    ObservedObject object;
};

/// The application has handled what came before; its objects are in the states that were told.
struct ObservedRest {};

/// An entry of a menu was chosen.
struct ObservedChoice {
    /// The menu bar, or a menu that belongs to none.
    ObservedObject holder;
    QStringList steps;
};

/// A key is pressed and goes to an object.
struct ObservedKey {
    ObservedObject focus;
    /// As press() takes it: "Ctrl+A"; empty where the text is hidden, and for what only types.
    QString keys;
    /// What it types; empty for keys that type nothing and where the text is hidden.
    QString text;
};

/// A key combination of the application did something.
struct ObservedShortcut {
    /// What had the focus.
    ObservedObject focus;
    /// One after another.
    QStringList keys;
    /// The button that it clicks; handle 0 when it is something else.
    ObservedObject button;
};

/// A window is closed by its frame.
struct ObservedClose {
    ObservedObject window;
};

/// What is to be verified of an object: its properties, of which the values travel as texts,
/// numbers or bools.
struct ObservedVerdict {
    ObservedObject object;
    QVariantMap properties;
};

/// Clicks ask for verdicts from now on, or act again.
struct ObservedMode {
    bool isVerifying = false;
};

using Observation = std::variant<ObservedState, ObservedPress, ObservedDoubleClick, ObservedRelease,
                                 ObservedWheel, ObservedRest, ObservedChoice, ObservedKey,
                                 ObservedShortcut, ObservedClose, ObservedVerdict, ObservedMode>;

/// What is observed, from the answer on.
struct Record {
    bool isOn = true;
    /// The key combination that switches between acting and verifying, as press() takes it; it does
    /// nothing else then. Empty for none.
    QString verifyKeys = {};
    bool isVerifying = false;
};

QDataStream& operator<<(QDataStream& stream, const Observation& body);
QDataStream& operator>>(QDataStream& stream, Observation& body);
QDataStream& operator<<(QDataStream& stream, const Record& body);
QDataStream& operator>>(QDataStream& stream, Record& body);

}  // namespace Tamrix::Wire
