#pragma once

#include <QString>
#include <QStringList>
#include <algorithm>
#include <exception>
#include <tl/expected.hpp>

#include "base/export.h"
#include "interpreter/bridge/callarguments.h"
#include "interpreter/bridge/nativescripttype.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/scriptfailure.h"
#include "platform/gherkin/expressions/expressionerror.h"

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
    /// Whether scripts can make objects, of a constructor.
    bool canConstruct() const { return m_constructor != nullptr; }
    /// What tells it from others of the same name: the address of the native function.
    const void* address() const;

    /// Runs it in the context, which has its arguments. `object` is that of a method. Gives what a
    /// constructor has made; null with the context's error set when that failed.
    SharedPtr<NativeScriptObject> run(ScriptContext& context,
                                      const SharedPtr<NativeScriptObject>& object) const {
        switch (m_kind) {
            case Kind::Table:
                context.execute(m_table);
                return {};
            case Kind::Native:
            case Kind::StaticAccessor:
                context.execute(m_native);
                return {};
            case Kind::Method:
                context.execute(m_method, object);
                return {};
            case Kind::Constructor:
                break;
        }
        return construct(context);
    }

private:
    NativeFunction(const ScriptContext& context, NativeSignature signature, Kind kind);
    SharedPtr<NativeScriptObject> construct(ScriptContext& context) const;

    Kind m_kind;
    union {
        ScriptContext::Function m_table;
        NativeScriptType::StaticFunction m_native;
        NativeScriptType::MethodFunction m_method;
        NativeScriptType::Constructor m_constructor;
    };
    NativeSignature m_signature;
    QString m_displayName;
    Parameters m_parameters;
};

/// Whether each of `count` arguments that a script gave without names stands at its place: none is
/// left out by the language's null, which `isNull` knows by the place.
template <typename IsNull>
bool areInPlace(const Parameters& parameters, int count, IsNull isNull) {
    const int end = std::min(count, static_cast<int>(parameters.names.size()));
    for (int index = parameters.requiredCount; index < end; ++index) {
        if (isNull(index))
            return false;
    }
    return true;
}

/// What `call` gives of the function: a ScriptResult, or one without a value. What it throws is a
/// failure, but for ScriptErrorSet, which passes; an expression that is refused is a bad argument.
template <typename Call>
auto caught(const NativeFunction& function, Call call) -> decltype(call()) {
    try {
        return call();
    } catch (const ScriptErrorSet&) {
        throw;
    } catch (const Gherkin::ExpressionError& error) {
        return tl::unexpected<ScriptFailure>(badArgument(QString::fromUtf8(error.what())));
    } catch (const std::exception& exception) {
        return tl::unexpected<ScriptFailure>(
            thrownIn(function.displayName(), QString::fromUtf8(exception.what())));
    } catch (...) {
        return tl::unexpected<ScriptFailure>(
            thrownIn(function.displayName(), QStringLiteral("unknown exception")));
    }
}

/// The call of a native function by a script, from the check of the thread to the result: arguments
/// in the order of the parameters, what the script has printed in front of what the call writes,
/// the global functions of an application that the call has changed. `object` is that of a method.
/// ScriptErrorSet passes. The result is null for a function without one.
TAMRIX_EXPORT ScriptResult callNative(LanguageInterpreter* active, const NativeFunction& function,
                                      const SharedPtr<NativeScriptObject>& object,
                                      CallArguments arguments);

}  // namespace Tamrix
