#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <vector>

#include "interpreter/language/nativefunction.h"
#include "plugins/tcl/heldvalues.h"
#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

class TclInterpreter;

/// A property of a native class: reading and, unless it is read-only, writing.
struct NativeProperty {
    std::unique_ptr<NativeFunction> getter;
    std::unique_ptr<NativeFunction> setter;
};

/// The native classes, each a command: `Image new ...` makes an object, `Image load ...` calls a
/// static method; `cget` and `configure` are for static properties. The objects are commands, too.
class NativeClasses {
public:
    explicit NativeClasses(TclInterpreter& interpreter) : m_interpreter(interpreter) {}

    void add(const QString& name, void* typeId, const NativeScriptType& type);
    /// A member function of a class of the library that is none of the native ones.
    void addMember(const QString& className, const NativeFunction& function);

    /// The name of an object.
    TclRef nameOf(const SharedPtr<NativeScriptObject>& object);
    bool isDerivedFrom(void* typeId, void* wanted) const;

    /// `object method ?argument ...?`; the words begin with the name of the method.
    int callMethod(const SharedPtr<NativeScriptObject>& object, int count, Tcl_Obj* const* words);
    int callMember(const SharedPtr<ApplicationContext>& context, int count, Tcl_Obj* const* words);

private:
    struct NativeClass {
        QString name;
        void* super = nullptr;
        std::unique_ptr<NativeFunction> constructor;
        QHash<QString, std::shared_ptr<NativeFunction>> methods;
        QHash<QString, std::shared_ptr<NativeFunction>> staticMethods;
        QHash<QString, std::shared_ptr<NativeProperty>> properties;
        QHash<QString, std::shared_ptr<NativeProperty>> staticProperties;
    };
    struct ClassCommand {
        NativeClasses& classes;
        void* typeId;
    };
    static int runClassCommand(void* data, Tcl_Interp* interp, int count, Tcl_Obj* const* words);
    int callClass(const NativeClass& nativeClass, int count, Tcl_Obj* const* words);
    const NativeClass* find(void* typeId) const;
    /// `cget -name` and `configure -name value ...`, words behind these.
    template <typename Find>
    int readProperty(const QString& owner, const SharedPtr<NativeScriptObject>& object, Find find,
                     int count, Tcl_Obj* const* words);
    template <typename Find>
    int writeProperties(const QString& owner, const SharedPtr<NativeScriptObject>& object,
                        Find find, int count, Tcl_Obj* const* words);

    TclInterpreter& m_interpreter;
    QHash<void*, std::shared_ptr<NativeClass>> m_classes;
    /// Member functions, by class and name.
    QHash<QString, QHash<QString, std::shared_ptr<NativeFunction>>> m_members;
};

/// What a value is, for people: the class of an object.
QString nameOfKind(const HeldValues::Held& held);

/// The command of a value: an object of an application, of a native class, a context.
int runHeldCommand(void* held, Tcl_Interp* interp, int count, Tcl_Obj* const* words);

}  // namespace Tamrix::TclPlugin
