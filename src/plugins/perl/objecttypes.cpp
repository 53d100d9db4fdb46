#include "plugins/perl/objecttypes.h"

#include "interpreter/language/objectcalls.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/objects/objectidentity.h"
#include "platform/objectmodel/objectclass.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativefunctions.h"
#include "plugins/perl/perlcontext.h"

namespace Tamrix::PerlPlugin {

namespace {

ScriptFailure noObject(const QString& name) {
    return {ScriptFailure::Kind::NoMember,
            QStringLiteral("'%1' was not called on an object of an application").arg(name),
            false,
            {}};
}

/// Runs `work`, which gives the end of the call.
template <typename Work>
NativeEnd guarded(pTHX_ Work work) {
    try {
        return work();
    } catch (const ScriptErrorSet&) {
        return endOfCall(aTHX);
    } catch (const std::exception& exception) {
        return failing(
            aTHX_ thrownIn(QStringLiteral("The object"), QString::fromUtf8(exception.what())));
    }
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

/// The name of the method that was called: Perl keeps it in the function itself.
QString autoloadedName(pTHX_ CV* function) {
    auto* const value = reinterpret_cast<SV*>(function);
    return textOfBytes(aTHX_ SvPVX_const(value), SvCUR(value), SvUTF8(value));
}

NativeEnd callObject(pTHX_ CV* function, SV** arguments, int count) {
    return guarded(aTHX_[&] {
        const QString name = autoloadedName(aTHX_ function);
        const SharedPtr<Object> object =
            count > 0 ? ObjectHolder::unwrap(arguments[0]) : SharedPtr<Object>();
        if (!object)
            return failing(aTHX_ noObject(name));
        CaseInterpreter* const active = CaseInterpreter::onScriptThread();
        if (!active)
            return failing(aTHX_ refusedCall(name, CaseInterpreter::active() != nullptr));
        return resultOf(aTHX_ useMember(
            active, object, name,
            givenArguments(aTHX_ arguments + 1, count - 1, [](const QString&) { return false; })));
    });
}

NativeEnd objectTextOf(pTHX_ CV*, SV** arguments, int count) {
    return guarded(aTHX_[&] {
        const SharedPtr<Object> object =
            count > 0 ? ObjectHolder::unwrap(arguments[0]) : SharedPtr<Object>();
        if (!object)
            return returning(aTHX_ toPerl(aTHX_ QStringLiteral("<no object>")));
        const ObjectResult<QString> text = objectText(object);
        return text ? returning(aTHX_ toPerl(aTHX_ * text))
                    : failing(aTHX_ failureOf(text.error()));
    });
}

NativeEnd truth(pTHX_ bool value) {
    return returning(aTHX_ SvRef::steal(newSVsv(value ? &PL_sv_yes : &PL_sv_no)));
}

NativeEnd isSame(pTHX_ CV*, SV** arguments, int count) {
    const SharedPtr<Object> left =
        count > 1 ? ObjectHolder::unwrap(arguments[0]) : SharedPtr<Object>();
    const SharedPtr<Object> right =
        count > 1 ? ObjectHolder::unwrap(arguments[1]) : SharedPtr<Object>();
    return truth(aTHX_ left && right && isSameObject(left, right));
}

NativeEnd isThere(pTHX_ CV*, SV** arguments, int count) {
    const SharedPtr<Object> object =
        count > 0 ? ObjectHolder::unwrap(arguments[0]) : SharedPtr<Object>();
    return truth(aTHX_ object && isTrueObject(object));
}

NativeEnd membersOf(pTHX_ CV*, SV** arguments, int count) {
    return guarded(aTHX_[&] {
        const SharedPtr<Object> object =
            count > 0 ? ObjectHolder::unwrap(arguments[0]) : SharedPtr<Object>();
        CaseInterpreter* const active = CaseInterpreter::onScriptThread();
        AV* const names = newAV();
        SvRef list = SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(names)));
        if (!object || !active)
            return returning(aTHX_ std::move(list));
        const tl::expected<QStringList, ScriptFailure> members = listMembers(active, object);
        if (!members)
            return failing(aTHX_ members.error());
        for (const QString& name : *members)
            av_push(names, toPerl(aTHX_ name).release());
        return returning(aTHX_ std::move(list));
    });
}

// tamrix::ApplicationContext

NativeEnd contextText(pTHX_ CV*, SV** arguments, int count) {
    const SharedPtr<ApplicationContext> context =
        count > 0 ? ApplicationContextHolder::unwrap(arguments[0])
                  : SharedPtr<ApplicationContext>();
    return returning(aTHX_ toPerl(aTHX_ context ? "<" + context->displayString() + ">"
                                                : QStringLiteral("<no application>")));
}

NativeEnd contextId(pTHX_ CV*, SV** arguments, int count) {
    const SharedPtr<ApplicationContext> context =
        count > 0 ? ApplicationContextHolder::unwrap(arguments[0])
                  : SharedPtr<ApplicationContext>();
    return returning(aTHX_ context ? SvRef::steal(newSViv(context->id)) : SvRef());
}

// tamrix::DataSet and tamrix::Record

NativeEnd records(pTHX_ CV*, SV** arguments, int count) {
    AV* const rows = newAV();
    const SharedPtr<TestDataSet> set =
        count > 0 ? DataSetHolder::unwrap(arguments[0]) : SharedPtr<TestDataSet>();
    for (int index = 0; set && index < set->count(); ++index) {
        SharedPtr<DataRecord> row(new DataRecord);
        row->set = set;
        row->record = set->record(index);
        av_push(rows, RecordHolder::wrap(aTHX_ row, "tamrix::Record").release());
    }
    return returning(aTHX_ SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(rows))));
}

NativeEnd recordValues(pTHX_ CV*, SV** arguments, int count) {
    AV* const values = newAV();
    const SharedPtr<DataRecord> row =
        count > 0 ? RecordHolder::unwrap(arguments[0]) : SharedPtr<DataRecord>();
    for (int column = 0; row && column < row->record->count(); ++column)
        av_push(values, toPerl(aTHX_ row->record->valueAsString(column)).release());
    return returning(aTHX_ SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(values))));
}

NativeEnd recordFields(pTHX_ CV*, SV** arguments, int count) {
    HV* const fields = newHV();
    const SharedPtr<DataRecord> row =
        count > 0 ? RecordHolder::unwrap(arguments[0]) : SharedPtr<DataRecord>();
    const TestDataRecord* const header = row ? row->set->header() : nullptr;
    for (int column = 0; header && column < header->count(); ++column) {
        const SvRef key = toPerl(aTHX_ header->valueAsString(column));
        static_cast<void>(hv_store_ent(
            fields, key.get(), toPerl(aTHX_ row->record->valueAsString(column)).release(), 0));
    }
    return returning(aTHX_ SvRef::steal(newRV_noinc(reinterpret_cast<SV*>(fields))));
}

}  // namespace

void defineObjectTypes(pTHX) {
    defineBody(aTHX_ "tamrix::Object::AUTOLOAD", nativeFunction<callObject>);
    defineBody(aTHX_ "tamrix::Object::_text", nativeFunction<objectTextOf>);
    defineBody(aTHX_ "tamrix::Object::_isSame", nativeFunction<isSame>);
    defineBody(aTHX_ "tamrix::Object::_isThere", nativeFunction<isThere>);
    defineBody(aTHX_ "tamrix::Object::_members", nativeFunction<membersOf>);
    defineBody(aTHX_ "tamrix::ApplicationContext::_text", nativeFunction<contextText>);
    defineBody(aTHX_ "tamrix::ApplicationContext::_id", nativeFunction<contextId>);
    defineBody(aTHX_ "tamrix::DataSet::_records", nativeFunction<records>);
    defineBody(aTHX_ "tamrix::Record::_values", nativeFunction<recordValues>);
    defineBody(aTHX_ "tamrix::Record::_fields", nativeFunction<recordFields>);
}

}  // namespace Tamrix::PerlPlugin
