#include "interpreter/language/nativefunction.h"

#include <algorithm>
#include <exception>
#include <tl/expected.hpp>
#include <utility>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/language/scripterrorset.h"
#include "platform/gherkin/expressions/expressionerror.h"

namespace Tamrix {

NativeSignature signatureOfTable(const QString& owner, const QString& name) {
    const QString key = owner.isEmpty() ? name : owner + "::" + name;
    const ScriptContext::FunctionDescription description = ScriptContext::functionDescription(key);
    return {name, owner, description.requiredParameters, description.optionalParameters,
            description.text};
}

NativeFunction::NativeFunction(const ScriptContext& context, NativeSignature signature, Kind kind)
    : m_kind(kind), m_table(nullptr), m_signature(std::move(signature)) {
    m_displayName =
        m_signature.owner.isEmpty() ? m_signature.name : m_signature.owner + "." + m_signature.name;
    for (const QString& name : m_signature.required + m_signature.optional)
        m_parameters.names.append(context.scriptName(name));
    m_parameters.requiredCount = m_signature.required.size();
    m_requiredCount = m_parameters.requiredCount;
    m_parameterCount = m_parameters.names.size();
}

NativeFunction::NativeFunction(const ScriptContext& context, NativeSignature signature,
                               ScriptContext::Function function)
    : NativeFunction(context, std::move(signature), Kind::Table) {
    m_table = function;
}

NativeFunction::NativeFunction(const ScriptContext& context, NativeSignature signature,
                               NativeScriptType::StaticFunction function, Kind kind)
    : NativeFunction(context, std::move(signature), kind) {
    m_native = function;
}

NativeFunction::NativeFunction(const ScriptContext& context, NativeSignature signature,
                               NativeScriptType::MethodFunction function)
    : NativeFunction(context, std::move(signature), Kind::Method) {
    m_method = function;
}

NativeFunction::NativeFunction(const ScriptContext& context, NativeSignature signature,
                               NativeScriptType::Constructor constructor)
    : NativeFunction(context, std::move(signature), Kind::Constructor) {
    m_constructor = constructor;
}

const void* NativeFunction::address() const {
    switch (m_kind) {
        case Kind::Table:
            return reinterpret_cast<const void*>(m_table);
        case Kind::Native:
        case Kind::StaticAccessor:
            return reinterpret_cast<const void*>(m_native);
        case Kind::Method:
            return reinterpret_cast<const void*>(m_method);
        case Kind::Constructor:
            break;
    }
    return reinterpret_cast<const void*>(m_constructor);
}

SharedPtr<NativeScriptObject> NativeFunction::construct(ScriptContext& context) const {
    SharedPtr<NativeScriptObject> made = context.execute(m_constructor);
    if (context.hasError())
        return {};
    if (!made)
        context.setError("No " + m_displayName + " could be made");
    return made;
}

namespace {

ScriptResult run(LanguageInterpreter& interpreter, const NativeFunction& function,
                 const SharedPtr<NativeScriptObject>& object, CallArguments arguments) {
    const bool areNamed = !arguments.named.empty();
    Outcome<ScriptArgument::List> bound =
        bindArguments(function.displayName(), function.parameters(), std::move(arguments));
    if (!bound)
        return tl::unexpected<ScriptFailure>(
            {ScriptFailure::Kind::BadArgument, bound.error().text, false, {}});
    LanguageContext& context = interpreter.context();
    LanguageContext::Call call(context, std::move(*bound), areNamed);
    SharedPtr<NativeScriptObject> made;
    context.clearError();
    if (function.kind() == NativeFunction::Kind::Constructor)
        made = function.construct(context);
    else
        function.run(context, interpreter.runner(), object);
    interpreter.noticeApplication();
    if (context.hasError())
        return tl::unexpected<ScriptFailure>(failureOf(context));
    return made ? context.createNative(std::move(made)) : call.takeResult();
}

}  // namespace

ScriptFailure failureOfThrown(const NativeFunction& function) {
    try {
        throw;
    } catch (const ScriptErrorSet&) {
        throw;
    } catch (const Gherkin::ExpressionError& error) {
        return badArgument(QString::fromUtf8(error.what()));
    } catch (const std::exception& exception) {
        return thrownIn(function.displayName(), QString::fromUtf8(exception.what()));
    } catch (...) {
        return thrownIn(function.displayName(), QStringLiteral("unknown exception"));
    }
}

ScriptResult callNative(LanguageInterpreter* active, const NativeFunction& function,
                        const SharedPtr<NativeScriptObject>& object, CallArguments arguments) {
    if (!active || !active->isScriptThread())
        return tl::unexpected<ScriptFailure>(
            refusedCall(function.displayName(), active != nullptr));
    active->output().flush();
    if (function.kind() == NativeFunction::Kind::Constructor && !function.canConstruct())
        return tl::unexpected<ScriptFailure>(
            {ScriptFailure::Kind::BadArgument,
             QStringLiteral("%1 objects can't be made by scripts").arg(function.signature().name),
             false,
             {}});
    try {
        return run(*active, function, object, std::move(arguments));
    } catch (...) {
        return tl::unexpected<ScriptFailure>(failureOfThrown(function));
    }
}

}  // namespace Tamrix
