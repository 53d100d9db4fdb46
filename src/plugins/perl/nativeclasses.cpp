#include "plugins/perl/nativeclasses.h"

#include <QHash>

#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

struct NativeClass {
    QByteArray package;
    void* super = nullptr;
};

/// By type identifier, the same for all interpreters.
QHash<void*, NativeClass>& classes() {
    static auto* const s_classes = new QHash<void*, NativeClass>;
    return *s_classes;
}

constexpr const char* basePackage = "tamrix::Native";

}  // namespace

void defineNativeClass(CaseInterpreter& interpreter, const QString& name, void* typeId,
                       const NativeScriptType& type) {
    dTHX;
    const QByteArray package = name.toUtf8();
    classes()[typeId] = {package, type.super()};
    const ScriptContext& context = interpreter.context();
    NativeFunctions& functions = interpreter.functions();
    const QByteArray base =
        type.super() ? classes().value(type.super()).package : QByteArray(basePackage);
    av_push(get_av((package + "::ISA").constData(), GV_ADD),
            newSVpvn(base.constData(), static_cast<STRLEN>(base.size())));
    functions.define(package, QStringLiteral("new"),
                     NativeFunction(context, {name, {}, {}, {}, {}}, type.constructor()));
    const auto methods = type.methods();
    for (auto it = methods.cbegin(); it != methods.cend(); ++it)
        functions.define(package, it.key(),
                         NativeFunction(context,
                                        {it.key(), name, it->requiredParameters,
                                         it->optionalParameters, it->description},
                                        it->function));
    const auto staticMethods = type.staticMethods();
    for (auto it = staticMethods.cbegin(); it != staticMethods.cend(); ++it)
        functions.defineStaticMethod(package, it.key(),
                                     NativeFunction(context,
                                                    {it.key(), name, it->requiredParameters,
                                                     it->optionalParameters, it->description},
                                                    it->function));
    const auto properties = type.properties();
    for (auto it = properties.cbegin(); it != properties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        functions.defineProperty(
            package, it.key(), NativeFunction(context, signature, it->getter),
            it->setter ? std::make_unique<NativeFunction>(context, signature, it->setter)
                       : nullptr);
    }
    const auto staticProperties = type.staticProperties();
    for (auto it = staticProperties.cbegin(); it != staticProperties.cend(); ++it) {
        const NativeSignature signature{it.key(), name, {}, {}, {}};
        constexpr auto kind = NativeFunction::Kind::StaticAccessor;
        functions.defineProperty(
            package, it.key(), NativeFunction(context, signature, it->getter, kind),
            it->setter ? std::make_unique<NativeFunction>(context, signature, it->setter, kind)
                       : nullptr);
    }
}

SvRef wrapNative(pTHX_ SharedPtr<NativeScriptObject> object) {
    QByteArray package = basePackage;
    for (void* typeId = object ? object->typeId() : nullptr; typeId;
         typeId = classes().value(typeId).super) {
        if (classes().contains(typeId)) {
            package = classes().value(typeId).package;
            break;
        }
    }
    return NativeHolder::wrap(aTHX_ std::move(object), package.constData());
}

bool isNativeTypeDerivedFrom(void* typeId, void* wanted) {
    while (typeId && typeId != wanted)
        typeId = classes().value(typeId).super;
    return typeId && typeId == wanted;
}

}  // namespace Tamrix::PerlPlugin
