#include "interpreter/language/nativeclasses.h"

namespace Tamrix {

namespace {

using Kind = NativeMember::Kind;

QHash<void*, void*>& supers() {
    static auto* const s_supers = new QHash<void*, void*>;
    return *s_supers;
}

NativeSignature signatureOf(const QString& className, const QString& name) {
    return {name, className, {}, {}, {}};
}

template <typename Method>
NativeSignature signatureOf(const QString& className, const QString& name, const Method& method) {
    return {name, className, method.requiredParameters, method.optionalParameters,
            method.description};
}

}  // namespace

std::vector<NativeMember> nativeMembers(const ScriptContext& context, const QString& className,
                                        const NativeScriptType& type) {
    std::vector<NativeMember> members;
    const auto methods = type.methods();
    for (auto it = methods.cbegin(); it != methods.cend(); ++it)
        members.push_back({Kind::Method,
                           it.key(),
                           {context, signatureOf(className, it.key(), *it), it->function},
                           {}});
    const auto staticMethods = type.staticMethods();
    for (auto it = staticMethods.cbegin(); it != staticMethods.cend(); ++it)
        members.push_back({Kind::StaticMethod,
                           it.key(),
                           {context, signatureOf(className, it.key(), *it), it->function},
                           {}});
    const auto properties = type.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const auto accessor = [&](NativeScriptType::MethodFunction function) {
            return NativeFunction(context, signatureOf(className, it.key()), function);
        };
        members.push_back({Kind::Property, it.key(), accessor(it->getter), {}});
        if (it->setter)
            members.back().setter = accessor(it->setter);
    }
    const auto staticProperties = type.staticProperties();
    for (auto it = staticProperties.cbegin(); it != staticProperties.cend(); ++it) {
        const auto accessor = [&](NativeScriptType::StaticFunction function) {
            return NativeFunction(context, signatureOf(className, it.key()), function,
                                  NativeFunction::Kind::StaticAccessor);
        };
        members.push_back({Kind::StaticProperty, it.key(), accessor(it->getter), {}});
        if (it->setter)
            members.back().setter = accessor(it->setter);
    }
    return members;
}

NativeFunction nativeConstructor(const ScriptContext& context, const QString& className,
                                 const NativeScriptType& type) {
    return {context, signatureOf(QString(), className), type.constructor()};
}

void setNativeSuper(void* typeId, void* super) {
    supers().insert(typeId, super);
}

void* nativeSuper(void* typeId) {
    return supers().value(typeId);
}

bool isNativeTypeDerivedFrom(void* typeId, void* wanted) {
    while (typeId && typeId != wanted)
        typeId = nativeSuper(typeId);
    return typeId && typeId == wanted;
}

}  // namespace Tamrix
