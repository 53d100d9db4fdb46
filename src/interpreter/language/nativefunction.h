#pragma once

#include <QString>
#include <QStringList>
#include <algorithm>

#include "base/export.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/remoteobjectmodelholder.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/language/scriptfailure.h"

namespace Tamrix {

class LanguageInterpreter;

/// What a native function is called by and with: the name for messages, parameter names, help text.
struct NativeSignature {
    /// The name in its namespace or class, as the library has it.
    QString name;
    /// The namespace or class; empty for a global function.
    QString owner;
    QStringList required;
    QStringList optional;
    QString description;
};

/// Of a function of the context's tables.
TAMRIX_EXPORT NativeSignature signatureOfTable(const QString& owner, const QString& name);

/// A native function as a plug-in makes one of its language's functions over it. A value; names of
/// parameters are as scripts write them.
class TAMRIX_EXPORT NativeFunction {
public:
    /// How the native function is called, and what goes in front of the script's arguments.
    enum class Kind {
        Table,           ///< a function of the context's tables
        Native,          ///< a function of the native interface, a static method
        StaticAccessor,  ///< of a static property: what goes first is the class
        Method,      ///< of a native class, or the accessor of a property: the object goes first
        Constructor  ///< of a native class: the class goes first
    };

    NativeFunction(const ScriptContext& context, NativeSignature signature,
                   ScriptContext::Function function);
    NativeFunction(const ScriptContext& context, NativeSignature signature,
                   NativeScriptType::StaticFunction function, Kind kind = Kind::Native);
    NativeFunction(const ScriptContext& context, NativeSignature signature,
                   NativeScriptType::MethodFunction function);
    /// A null constructor is that of a class of which scripts can't make objects.
    NativeFunction(const ScriptContext& context, NativeSignature signature,
                   NativeScriptType::Constructor constructor);

    Kind kind() const { return m_kind; }
    const NativeSignature& signature() const { return m_signature; }
    /// For messages: "test.compare". Scripts of all languages are told the same.
    const QString& displayName() const { return m_displayName; }
    const Parameters& parameters() const { return m_parameters; }
    /// Whether `count` arguments that a script gave without names are enough, and each stands at
    /// its place: none is left out by the language's null, which `isNull` knows by the place.
    template <typename IsNull>
    bool areInPlace(int count, IsNull isNull) const {
        if (count < m_requiredCount)
            return false;
        const int end = std::min(count, m_parameterCount);
        for (int index = m_requiredCount; index < end; ++index) {
            if (isNull(index))
                return false;
        }
        return true;
    }
    /// Whether scripts can make objects, of a constructor.
    bool canConstruct() const { return m_constructor != nullptr; }
    /// What tells it from others of the same name: the address of the native function.
    const void* address() const;

    // Run it in the context, which has its arguments and no error, while nothing of the language is
    // pending. The runner's remote object model is taken for the time; the runner may be null.
    /// No method and no constructor.
    void run(ScriptContext& context, RunnerInterface* runner) const {
        const RemoteObjectModelHolder holder(runner);
        if (m_kind == Kind::Table)
            m_table(&context);
        else
            m_native(&context);
    }
    /// No constructor. `object` is that of a method.
    void run(ScriptContext& context, RunnerInterface* runner,
             const SharedPtr<NativeScriptObject>& object) const {
        if (m_kind != Kind::Method)
            return run(context, runner);
        const RemoteObjectModelHolder holder(runner);
        m_method(object, &context);
    }
    /// What a constructor has made; null with the context's error set when that failed.
    SharedPtr<NativeScriptObject> construct(ScriptContext& context) const;

private:
    NativeFunction(const ScriptContext& context, NativeSignature signature, Kind kind);

    Kind m_kind;
    union {
        ScriptContext::Function m_table;
        NativeScriptType::StaticFunction m_native;
        NativeScriptType::MethodFunction m_method;
        NativeScriptType::Constructor m_constructor;
    };
    // Those of m_parameters: each call asks for them.
    int m_requiredCount = 0;
    int m_parameterCount = 0;
    NativeSignature m_signature;
    QString m_displayName;
    Parameters m_parameters;
};

/// In a handler: the failure that stands for what the function has thrown; an expression that is
/// refused is a bad argument. ScriptErrorSet passes.
TAMRIX_EXPORT ScriptFailure failureOfThrown(const NativeFunction& function);

/// The call of a native function by a script, from the check of the thread to the result: arguments
/// in the order of the parameters, what the script has printed in front of what the call writes,
/// the global functions of an application that the call has changed. `object` is that of a method.
/// ScriptErrorSet passes. The result is null for a function without one.
TAMRIX_EXPORT ScriptResult callNative(LanguageInterpreter* active, const NativeFunction& function,
                                      const SharedPtr<NativeScriptObject>& object,
                                      CallArguments arguments);

}  // namespace Tamrix
