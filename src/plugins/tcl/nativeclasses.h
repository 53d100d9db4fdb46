#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "interpreter/language/nativeclasses.h"
#include "plugins/tcl/heldvalues.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// The native classes, each a command: `Image new ...` makes an object, `Image load ...` calls a
/// static method; `cget` and `configure` are for properties. The objects are commands, too.
class ClassCommands {
public:
    explicit ClassCommands(TclInterpreter& interpreter) : m_interpreter(interpreter) {}

    void add(const QString& name, void* typeId, const NativeScriptType& type);
    /// A member function of contexts of applications.
    void addContextMember(const NativeFunction& function);

    QString classNameOf(void* typeId) const;

    /// `object method ?argument ...?`; the words begin with the name of the method.
    int callMethod(const SharedPtr<NativeScriptObject>& object, int count, Tcl_Obj* const* words);
    int callMember(const SharedPtr<ApplicationContext>& context, int count, Tcl_Obj* const* words);

private:
    struct NativeClass {
        QString name;
        std::optional<NativeFunction> constructor;
        /// Its own, then those of the class from which it derives.
        std::vector<NativeMember> members;

        /// A member of objects, or of the class itself; null without.
        const NativeMember* find(const QString& name, bool isStatic) const;
    };
    /// Of the class itself when `object` is null.
    int callNamed(const NativeClass& nativeClass, const SharedPtr<NativeScriptObject>& object,
                  int count, Tcl_Obj* const* words);
    /// Sets it to a value, or reads it when that is null.
    int useProperty(const NativeClass& nativeClass, const SharedPtr<NativeScriptObject>& object,
                    const QString& name, Tcl_Obj* const* value);

    TclInterpreter& m_interpreter;
    NativeClasses<std::shared_ptr<NativeClass>> m_classes;
    QHash<QString, std::shared_ptr<NativeFunction>> m_contextMembers;
};

}  // namespace Tamrix::TclPlugin
