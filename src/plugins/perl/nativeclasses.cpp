#include "plugins/perl/nativeclasses.h"

#include "interpreter/language/nativeclasses.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Their packages, the same for all interpreters.
using Packages = NativeClasses<QByteArray>;

QByteArray packageOf(void* typeId) {
    const QByteArray* const package = Packages::self().find(typeId);
    return package ? *package : QByteArray("tamrix::Native");
}

}  // namespace

void defineNativeClass(CaseInterpreter& interpreter, const QString& name, void* typeId,
                       const NativeScriptType& type) {
    dTHX;
    const QByteArray package = name.toUtf8();
    Packages::self().add(typeId, type.super(), package);
    av_push(get_av((package + "::ISA").constData(), GV_ADD),
            newSVpv(packageOf(type.super()).constData(), 0));
    NativeFunctions& functions = interpreter.functions();
    functions.define(package, QStringLiteral("new"),
                     nativeConstructor(interpreter.context(), name, type));
    for (const NativeMember& member : nativeMembers(interpreter.context(), name, type))
        functions.defineMember(package, member);
}

SvRef wrapNative(pTHX_ SharedPtr<NativeScriptObject> object) {
    const QByteArray package = packageOf(object ? object->typeId() : nullptr);
    return NativeHolder::wrap(aTHX_ std::move(object), package.constData());
}

}  // namespace Tamrix::PerlPlugin
