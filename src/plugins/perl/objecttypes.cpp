#include "plugins/perl/objecttypes.h"

#include <variant>

#include "interpreter/language/objectcalls.h"
#include "interpreter/objects/objectidentity.h"
#include "platform/objectmodel/objectclass.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/ownfunctions.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

/// What the first argument holds; null for any other value.
template <typename T>
SharedPtr<T> heldBy(const OwnCall& call, int index = 0) {
    return index < call.count ? Holder<T>::unwrap(call.arguments[index]) : SharedPtr<T>();
}

template <typename T>
T valueOrFail(const tl::expected<T, ScriptFailure>& result) {
    if (!result)
        throwFailure(result.error());
    return *result;
}

SvRef arrayOf(pTHX_ const QStringList& texts) {
    AV* const array = newAV();
    for (const QString& text : texts)
        av_push(array, toPerl(aTHX_ text).release());
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(array)));
}

SvRef truth(pTHX_ bool value) {
    return SvRef::steal(newSVsv(value ? &PL_sv_yes : &PL_sv_no));
}

SvRef looksLikeNumber(pTHX_ const OwnCall& call) {
    return truth(aTHX_ looks_like_number(call.arguments[0]) != 0);
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
    const SharedPtr<Object> object = heldBy<Object>(call);
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

SvRef objectTextOf(pTHX_ const OwnCall& call) {
    const SharedPtr<Object> object = heldBy<Object>(call);
    return toPerl(aTHX_ object ? valueOrFail(writtenObject(&call.active, object))
                               : QStringLiteral("<no object>"));
}

SvRef isSame(pTHX_ const OwnCall& call) {
    const SharedPtr<Object> left = heldBy<Object>(call, 0);
    const SharedPtr<Object> right = heldBy<Object>(call, 1);
    return truth(aTHX_ left && right && isSameObject(left, right));
}

SvRef isThere(pTHX_ const OwnCall& call) {
    const SharedPtr<Object> object = heldBy<Object>(call);
    return truth(aTHX_ object && isTrueObject(object));
}

SvRef membersOf(pTHX_ const OwnCall& call) {
    const SharedPtr<Object> object = heldBy<Object>(call);
    return arrayOf(aTHX_ object ? valueOrFail(listMembers(&call.active, object)) : QStringList());
}

/// The value in an array of its own; nothing for what is no property that can be read.
SvRef propertyOf(pTHX_ const OwnCall& call) {
    const SharedPtr<Object> object = heldBy<Object>(call);
    if (!object)
        return {};
    const auto member = getMember(&call.active, object, textOf(aTHX_ call.arguments[1]));
    const auto* const value = member ? std::get_if<SharedPtr<ScriptArgument>>(&*member) : nullptr;
    if (!value)
        return {};
    AV* const array = newAV();
    av_push(array, newSVsv(valueOf(*value)));
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(array)));
}

// tamrix::ApplicationContext

SvRef contextText(pTHX_ const OwnCall& call) {
    const SharedPtr<ApplicationContext> context = heldBy<ApplicationContext>(call);
    return toPerl(aTHX_ context ? "<" + context->displayString() + ">"
                                : QStringLiteral("<no application>"));
}

SvRef contextId(pTHX_ const OwnCall& call) {
    const SharedPtr<ApplicationContext> context = heldBy<ApplicationContext>(call);
    return context ? SvRef::steal(newSViv(context->id)) : SvRef();
}

// tamrix::DataSet and tamrix::Record

SvRef records(pTHX_ const OwnCall& call) {
    AV* const rows = newAV();
    const SharedPtr<TestDataSet> set = heldBy<TestDataSet>(call);
    for (int index = 0; set && index < set->count(); ++index) {
        const SharedPtr<HeldRecord> row(new HeldRecord(set, set->record(index)));
        av_push(rows, Holder<HeldRecord>::wrap(aTHX_ row, "tamrix::Record").release());
    }
    return SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(rows)));
}

QStringList fieldsOf(const TestDataRecord* record) {
    QStringList fields;
    for (int column = 0; record && column < record->count(); ++column)
        fields.append(record->valueAsString(column));
    return fields;
}

SvRef recordValues(pTHX_ const OwnCall& call) {
    const SharedPtr<HeldRecord> row = heldBy<HeldRecord>(call);
    return arrayOf(aTHX_ row ? fieldsOf(row->record) : QStringList());
}

SvRef recordNames(pTHX_ const OwnCall& call) {
    const SharedPtr<HeldRecord> row = heldBy<HeldRecord>(call);
    return arrayOf(aTHX_ row ? fieldsOf(row->set->header()) : QStringList());
}

constexpr OwnFunction objectFunctions[] = {
    {"tamrix::_looks_like_number", 1, looksLikeNumber},
    {"tamrix::Object::AUTOLOAD", 0, callObject},
    {"tamrix::Object::_text", 0, objectTextOf},
    {"tamrix::Object::_isSame", 0, isSame},
    {"tamrix::Object::_isThere", 0, isThere},
    {"tamrix::Object::_members", 0, membersOf},
    {"tamrix::Object::_property", 2, propertyOf},
    {"tamrix::ApplicationContext::_text", 0, contextText},
    {"tamrix::ApplicationContext::_id", 0, contextId},
    {"tamrix::DataSet::_records", 0, records},
    {"tamrix::Record::_values", 0, recordValues},
    {"tamrix::Record::_names", 0, recordNames},
};

}  // namespace

void defineObjectTypes(pTHX) {
    defineOwn(aTHX_ objectFunctions);
}

}  // namespace Tamrix::PerlPlugin
