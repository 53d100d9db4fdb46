#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <utility>
#include <variant>

#include "base/export.h"

namespace Tamrix {

// What is done to an application, without the words of any script language. Names of objects are
// real names, "{type='QPushButton' text='Save'}", or symbolic ones, ":Save".

/// Stands for a password, which no script contains: it is handed to the run under this key.
struct PasswordKey {
    QString key;
};

/// The application that has connected by itself next.
struct LaunchedContext {};

/// The application of this name.
struct NamedContext {
    QString name;
};

/// An argument of a script function or a property's value. A list of texts is a way to an item.
using ActionValue = std::variant<bool, qint64, double, QString, QStringList, PasswordKey,
                                 LaunchedContext, NamedContext>;

/// click(object, 3, 4, button="right"): a script function with its arguments.
struct FunctionAction {
    /// As scripts know it.
    QString function;
    /// The first argument; empty for a function without object.
    QString object;
    QList<ActionValue> arguments;
    /// Those that are given by name, behind the others.
    QList<std::pair<QString, ActionValue>> named = {};
};

/// waitForObject(object).value = 3
struct AssignmentAction {
    QString object;
    QString property;
    ActionValue value;
};

/// test.expect(object, {"text": "12"})
struct ExpectAction {
    QString object;
    QList<std::pair<QString, ActionValue>> properties;
};

/// A line for people.
struct CommentAction {
    QString text;
};

using ScriptAction = std::variant<FunctionAction, AssignmentAction, ExpectAction, CommentAction>;

/// Writes scripts in one language: what the factory "createEventRecorder" of a plug-in makes. The
/// factory's text is the module with the names of objects that the scripts import, empty for none;
/// its other arguments have no meaning to the plug-ins of this program. Stateless.
class TAMRIX_EXPORT EventRecorder {
public:
    EventRecorder() = default;
    EventRecorder(const EventRecorder&) = delete;
    EventRecorder& operator=(const EventRecorder&) = delete;
    virtual ~EventRecorder();

    /// What stands before the first line of a script: the head of the function "main". Ends with
    /// a line feed, as lines() and footer(); empty for nothing.
    virtual QString header() const = 0;
    /// The line or lines that do what the action says, with the indentation of a function's body.
    virtual QString lines(const ScriptAction& action) const = 0;
    /// What stands behind the last line.
    virtual QString footer() const = 0;
};

}  // namespace Tamrix
