#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <memory>
#include <variant>
#include <vector>

#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/language/heldrecord.h"
#include "platform/objectmodel/applicationcontext.h"
#include "platform/objectmodel/object.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// What is no text and yet a value of a script: objects of applications, instances of native
/// classes, contexts of applications, sets of test data. A script has a name for each, such as
/// "::tamrix::QPushButton2", which is also a command, as with the widgets and objects that Tcl's
/// people know. What is the same has the same name, so that names can be compared.
///
/// A name says nothing of how often a script has kept it, so a value is held until the script ends
/// or deletes the command.
class HeldValues {
public:
    using Value = std::variant<SharedPtr<Object>, SharedPtr<NativeScriptObject>,
                               SharedPtr<ApplicationContext>, SharedPtr<TestDataSet>>;
    struct Held {
        Value value;
        QByteArray name;
        HeldValues* owner = nullptr;
    };
    /// Runs `command method ?argument ...?` for a value.
    using CommandFunction = int (*)(void* held, Tcl_Interp* interp, int count,
                                    Tcl_Obj* const* words);

    HeldValues(TclInterpreter& interpreter, Tcl_Interp* interp, CommandFunction command)
        : m_interpreter(interpreter), m_interp(interp), m_command(command) {}
    ~HeldValues();
    HeldValues(const HeldValues&) = delete;
    HeldValues& operator=(const HeldValues&) = delete;

    TclInterpreter& interpreter() const { return m_interpreter; }

    /// The name of a value, which begins with that of its class; empty for null. A data set is the
    /// list of its records.
    TclRef nameOf(const Value& value);
    /// What a value is, for people.
    QString classNameOf(const Value& value) const;

    /// What has this name, null when nothing has.
    const Held* find(Tcl_Obj* name) const;
    template <typename T>
    SharedPtr<T> get(Tcl_Obj* name) const {
        const Held* const held = find(name);
        const auto* const value = held ? std::get_if<SharedPtr<T>>(&held->value) : nullptr;
        return value ? *value : SharedPtr<T>();
    }
    /// A record of a data set, null when the name is none of one.
    SharedPtr<HeldRecord> record(Tcl_Obj* name) const;

private:
    static void commandDeleted(void* held);
    /// The new name of a value.
    QByteArray hold(const Value& value);

    TclInterpreter& m_interpreter;
    Tcl_Interp* m_interp;
    CommandFunction m_command;
    int m_lastNumber = 0;
    QHash<QByteArray, Held*> m_byName;
    /// What is the same has the same key.
    QMultiHash<quint64, Held*> m_byKey;
};

/// The command of a value: an object of an application, of a native class, a context.
int runHeldCommand(void* held, Tcl_Interp* interp, int count, Tcl_Obj* const* words);

}  // namespace Tamrix::TclPlugin
