#include "plugins/perl/objecttypes.h"

#include "interpreter/language/objectcalls.h"
#include "platform/objectmodel/objectclass.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/ownfunctions.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

template <typename T>
T valueOrFail(const tl::expected<T, ScriptFailure>& result) {
    if (!result)
        throwFailure(result.error());
    return *result;
}

SvRef looksLikeNumber(pTHX_ const OwnCall& call) {
    const bool looks = looks_like_number(call.arguments[0]) != 0;
    return SvRef::steal(newSVsv(looks ? &PL_sv_yes : &PL_sv_no));
}

// tamrix::Object

bool hasMethod(const SharedPtr<Object>& object, const QString& name) {
    const Class* const objectClass = object->objectClass();
    return objectClass && !objectClass->methodsByName(name).isEmpty();
}

/// Without arguments a property gives its value, with one it is set; all else calls a method.
ScriptResult useMember(CaseInterpreter* active, const SharedPtr<Object>& object,
                       const QString& name, const CallArguments& arguments) {
    if (arguments.positional.empty())
        return callMember(active, object, name, arguments);
    if (hasMethod(object, name))
        return callMethod(active, new BoundMethod(object, name), arguments);
    if (arguments.positional.size() > 1)
        return callMember(active, object, name, arguments);
    return setMember(active, object, name, arguments.positional.front()).map([&] {
        return active->context().createNull();
    });
}

SvRef callObject(pTHX_ const OwnCall& call) {
    // Perl keeps the name of the method that was called in the function itself.
    auto* const function = reinterpret_cast<SV*>(call.function);
    const QString name =
        textOfBytes(aTHX_ SvPVX_const(function), SvCUR(function), SvUTF8(function));
    const SharedPtr<Object> object =
        call.count > 0 ? ObjectHolder::unwrap(call.arguments[0]) : SharedPtr<Object>();
    if (!object)
        throwFailure(
            {ScriptFailure::Kind::NoMember,
             QStringLiteral("'%1' was not called on an object of an application").arg(name),
             false,
             {}});
    const CallArguments given = givenArguments(aTHX_ call.arguments + 1, call.count - 1,
                                               [](const QString&) { return false; });
    return SvRef::borrow(valueOf(valueOrFail(useMember(&call.active, object, name, given))));
}

constexpr OwnFunction objectFunctions[] = {
    {"tamrix::_looks_like_number", 1, looksLikeNumber},
    {"tamrix::Object::AUTOLOAD", 0, callObject},
};

}  // namespace

void defineObjectTypes(pTHX) {
    defineOwn(aTHX_ objectFunctions);
}

}  // namespace Tamrix::PerlPlugin
