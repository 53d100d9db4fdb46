#pragma once

#include <QHash>
#include <QStringList>
#include <functional>
#include <optional>
#include <variant>

#include "interpreter/bridge/eventrecorder.h"
#include "wire/observations.h"

namespace Tamrix {

/// Makes of what was observed the actions of a script that does the same: what belongs together
/// becomes one, and what means nothing to a script none. Plain logic without windows; each action
/// is given once, in order, as soon as nothing that comes can change it.
class ActionMerger {
public:
    using Take = std::function<void(const ScriptAction& action)>;
    /// The name that the script calls an object by; empty for none.
    using NameOf = std::function<QString(const Wire::Query& name)>;

    ActionMerger(Take take, NameOf nameOf);

    /// `now`: milliseconds of a clock that does not go backwards.
    void add(const Wire::Observation& observation, qint64 now);
    /// Nothing more has come by now: gives what is not held for what comes next.
    void idle(qint64 now);
    /// Nothing more comes before something is done elsewhere, or at all: gives what is held.
    void finish();

private:
    /// A press, until it is known what it did.
    struct Press {
        Wire::ObservedPress observed;
        Wire::ObservedState before;
        Wire::ObservedRelease release = {};
        bool isReleased = false;
        bool isDouble = false;
        /// Whether something was done elsewhere since what came before.
        bool isFirst = false;
    };
    /// Given in order, unless a double click replaces them or, in a field, typing does.
    struct HeldClick {
        quint64 handle = 0;
        QList<ScriptAction> actions;
        /// Whether it may only have given a field its focus.
        bool isFocusing = false;
        qint64 time = 0;
    };
    /// A value that may change further.
    struct HeldValue {
        Wire::ObservedObject object;
        qint64 time = 0;
    };
    /// A list is open in which something may be chosen.
    struct OpenList {
        Wire::ObservedObject box;
        QString before;
    };
    struct Stroke {
        QString keys;
        QString text;
    };
    /// Keys that go to one object.
    struct Typing {
        Wire::ObservedObject focus;
        /// Null for what is no field, and for passwords.
        QString before;
        QList<Stroke> strokes;
    };
    using Held = std::variant<std::monostate, HeldClick, HeldValue, OpenList, Typing>;
    /// What a key or the wheel may have changed.
    struct Touched {
        Wire::ObservedObject object;
        Wire::ObservedState before;
        /// The key that is written when it did not.
        QString keys;
    };

    void take(const Wire::ObservedState& state, qint64 now);
    void take(const Wire::ObservedPress& press, qint64 now);
    void take(const Wire::ObservedDoubleClick& doubleClick, qint64 now);
    void take(const Wire::ObservedRelease& release, qint64 now);
    void take(const Wire::ObservedWheel& wheel, qint64 now);
    void take(const Wire::ObservedRest& rest, qint64 now);
    void take(const Wire::ObservedChoice& choice, qint64 now);
    void take(const Wire::ObservedKey& key, qint64 now);
    void take(const Wire::ObservedShortcut& shortcut, qint64 now);
    void take(const Wire::ObservedClose& close, qint64 now);
    void take(const Wire::ObservedVerdict& verdict, qint64 now);
    void take(const Wire::ObservedMode& mode, qint64 now);

    void endPress(qint64 now);
    /// Whether the press has changed a state, which is what is written then.
    bool takeChange(const Press& press, qint64 now);
    void holdClick(const Press& press, qint64 now);
    void holdValue(const Wire::ObservedObject& object, qint64 now);
    void startTyping(const Wire::ObservedObject& focus, const QString& before);
    void endTouched(qint64 now);
    /// Gives what is held.
    void flush();
    void flush(const HeldClick& click);
    void flush(const HeldValue& value);
    void flush(const OpenList& list);
    void flush(const Typing& typing);
    void flush(std::monostate) {}
    void giveStrokes(const Typing& typing);
    void givePassword(const Typing& typing);
    void giveText(const Typing& typing, const QString& text);

    Wire::ObservedState stateOf(const Wire::ObservedObject& object) const;
    /// The script's name for it; a comment is given when it has none.
    QString nameOf(const Wire::ObservedObject& object);
    void give(const ScriptAction& action);
    void giveCall(const char* function, const Wire::ObservedObject& object,
                  const QList<ActionValue>& arguments = {});

    Take m_take;
    NameOf m_nameOf;
    QHash<quint64, Wire::ObservedState> m_states;
    std::optional<Press> m_press;
    /// Whether the next press is the first one behind finish().
    bool m_isFirst = false;
    std::optional<Touched> m_touched;
    Held m_held;
    /// The text area that was typed into last, with nothing in between: the cursor is where the
    /// text goes on.
    quint64 m_lastTyped = 0;
};

/// The way to an item as selectItem() takes it: "File.Open...", or a list where a "." in a text
/// would part two steps.
ActionValue itemPathValue(const QStringList& steps);

/// Under which key a password is handed to the run, made of the name of its field.
QString passwordKeyOf(const Wire::Query& name);

}  // namespace Tamrix
