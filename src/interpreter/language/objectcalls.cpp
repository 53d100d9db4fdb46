#include "interpreter/language/objectcalls.h"

#include <type_traits>
#include <utility>

#include "interpreter/language/languagecontext.h"
#include "interpreter/language/languageinterpreter.h"
#include "interpreter/objects/globalfunctions.h"
#include "interpreter/objects/objectidentity.h"

namespace Tamrix {

namespace {

/// Runs `work`, which gives an ObjectResult, in the interpreter's context. `function` gives the
/// name for messages.
template <typename Name, typename Work>
auto useObject(LanguageInterpreter* active, Name function, Work work)
    -> tl::expected<typename decltype(work(std::declval<LanguageContext&>()))::value_type,
                    ScriptFailure> {
    if (!active || !active->isScriptThread())
        return tl::unexpected<ScriptFailure>(refusedCall(function(), active != nullptr));
    active->output().flush();
    auto result = work(active->context());
    if (!result)
        return tl::unexpected<ScriptFailure>(failureOf(result.error()));
    if constexpr (std::is_void_v<typename decltype(result)::value_type>)
        return {};
    else
        return std::move(*result);
}

QString displayName(const SharedPtr<Object>& object, const QString& name) {
    return object->className() + '.' + name;
}

}  // namespace

tl::expected<Member, ScriptFailure> getMember(LanguageInterpreter* active,
                                              const SharedPtr<Object>& object,
                                              const QString& name) {
    return useObject(
        active, [&] { return displayName(object, name); },
        [&](ScriptContext& context) { return readMember(context, object, name); });
}

ScriptResult getProperty(LanguageInterpreter* active, const SharedPtr<Object>& object,
                         const QString& name) {
    return useObject(
        active, [&] { return displayName(object, name); },
        [&](ScriptContext& context) { return readProperty(context, object, name); });
}

tl::expected<void, ScriptFailure> setMember(LanguageInterpreter* active,
                                            const SharedPtr<Object>& object, const QString& name,
                                            const SharedPtr<ScriptArgument>& value) {
    return useObject(
        active, [&] { return displayName(object, name); },
        [&](ScriptContext& context) { return writeMember(context, object, name, value); });
}

tl::expected<QStringList, ScriptFailure> listMembers(LanguageInterpreter* active,
                                                     const SharedPtr<Object>& object) {
    return useObject(
        active, [&] { return object->className(); },
        [&](ScriptContext& context) { return memberNames(context, object); });
}

tl::expected<QString, ScriptFailure> writtenObject(LanguageInterpreter* active,
                                                   const SharedPtr<Object>& object) {
    return useObject(
        active, [&] { return object->className(); },
        [&](ScriptContext&) { return objectText(object); });
}

ScriptResult callMethod(LanguageInterpreter* active, const SharedPtr<BoundMethod>& method,
                        const CallArguments& arguments) {
    return useObject(
        active, [&] { return method->displayName(); },
        [&](ScriptContext& context) { return method->call(context, arguments); });
}

ScriptResult callMember(LanguageInterpreter* active, const SharedPtr<Object>& object,
                        const QString& name, const CallArguments& arguments) {
    const tl::expected<Member, ScriptFailure> member = getMember(active, object, name);
    if (!member)
        return tl::unexpected<ScriptFailure>(member.error());
    if (const auto* const method = std::get_if<SharedPtr<BoundMethod>>(&*member))
        return callMethod(active, *method, arguments);
    if (arguments.positional.empty() && arguments.named.empty())
        return std::get<0>(*member);
    return tl::unexpected<ScriptFailure>(
        badArgument(displayName(object, name) + " is a property, which takes no arguments"));
}

ScriptResult callGlobal(LanguageInterpreter* active, const QString& name, CallArguments arguments) {
    return useObject(
        active, [&] { return name; },
        [&](ScriptContext& context) {
            return callGlobalFunction(context, name, std::move(arguments));
        });
}

}  // namespace Tamrix
