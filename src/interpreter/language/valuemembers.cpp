#include "interpreter/language/valuemembers.h"

#include "interpreter/language/heldrecord.h"
#include "interpreter/language/languagecontext.h"
#include "interpreter/language/memberfunction.h"
#include "interpreter/objects/members.h"
#include "interpreter/objects/objectidentity.h"

namespace Tamrix {

namespace {

/// The argument as what `convert` makes of it; null with the context's error set when it is none.
template <typename T>
SharedPtr<T> given(ScriptContext& context, SharedPtr<T> (ScriptArgument::*convert)() const,
                   const char* what) {
    SharedPtr<T> held = (context.argument(0).get()->*convert)();
    if (!held)
        context.setError(QStringLiteral("Not called on %1").arg(QLatin1String(what)));
    return held;
}

SharedPtr<Object> givenObject(ScriptContext& context) {
    return given(context, &ScriptArgument::toObject, "an object of an application");
}

SharedPtr<ApplicationContext> givenApplication(ScriptContext& context) {
    return given(context, &ScriptArgument::toApplicationContext, "an application");
}

/// Null with the context's error set when the argument is no row of a data set.
const TestDataRecord* givenRecord(ScriptContext& context) {
    const TestDataRecord* const record = context.argument(0)->toTestDataRecord();
    if (!record)
        context.setError(QStringLiteral("Not called on a record"));
    return record;
}

QStringList fieldsOf(const TestDataRecord* record) {
    QStringList fields;
    for (int column = 0; record && column < record->count(); ++column)
        fields.append(record->valueAsString(column));
    return fields;
}

/// The value of a result; an error of it becomes the context's.
template <typename T>
std::optional<T> valueOf(ScriptContext& context, const ObjectResult<T>& result) {
    if (result)
        return *result;
    context.setError(result.error().text, result.error().kind == ObjectError::Kind::NotFound
                                              ? ScriptContext::LookupError
                                              : ScriptContext::GeneralError);
    return std::nullopt;
}

// Object

void textOfObject(ScriptContext* context) {
    if (const SharedPtr<Object> object = givenObject(*context)) {
        if (const std::optional<QString> text = valueOf(*context, objectText(object)))
            context->setStringResult(*text);
    }
}

/// False also when one of them is no object.
void isSame(ScriptContext* context) {
    const SharedPtr<Object> object = context->argument(0)->toObject();
    const SharedPtr<Object> other = context->argument(1)->toObject();
    context->setBoolResult(object && other && isSameObject(object, other));
}

void isThere(ScriptContext* context) {
    if (const SharedPtr<Object> object = givenObject(*context))
        context->setBoolResult(isTrueObject(object));
}

void membersOf(ScriptContext* context) {
    if (const SharedPtr<Object> object = givenObject(*context)) {
        if (const auto names = valueOf(*context, memberNames(*context, object)))
            context->setListResult(*names);
    }
}

/// The value in a list of its own; null for what is no property that can be read, or no object.
void propertyOf(ScriptContext* context) {
    const SharedPtr<Object> object = context->argument(0)->toObject();
    const QString name = context->argument(1)->toString();
    const auto value =
        object ? readProperty(*context, object, name) : ObjectResult<SharedPtr<ScriptArgument>>();
    context->setResult(value && *value ? context->createList({*value}) : context->createNull());
}

// ApplicationContext

void textOfApplication(ScriptContext* context) {
    if (const SharedPtr<ApplicationContext> application = givenApplication(*context))
        context->setStringResult('<' + application->displayString() + '>');
}

void idOfApplication(ScriptContext* context) {
    if (const SharedPtr<ApplicationContext> application = givenApplication(*context))
        context->setIntegerResult(application->id);
}

// DataSet and Record

SharedPtr<TestDataSet> givenDataSet(ScriptContext& context) {
    return given(context, &ScriptArgument::toTestDataSet, "a data set");
}

void textOfDataSet(ScriptContext* context) {
    if (const SharedPtr<TestDataSet> set = givenDataSet(*context))
        context->setStringResult(QStringLiteral("<data set '%1' with %2 records>")
                                     .arg(set->dataName(), QString::number(set->count())));
}

void recordsOf(ScriptContext* context) {
    const SharedPtr<TestDataSet> set = givenDataSet(*context);
    if (!set)
        return;
    ScriptArgument::List records;
    records.reserve(static_cast<std::size_t>(set->count()));
    for (int index = 0; index < set->count(); ++index)
        records.push_back(static_cast<LanguageContext*>(context)->createRecord(
            new HeldRecord(set, set->record(index))));
    context->setResult(context->createList(records));
}

void valuesOf(ScriptContext* context) {
    const TestDataRecord* const record = givenRecord(*context);
    if (!record)
        return;
    QStringList values = fieldsOf(record);
    // What a short row lacks is empty.
    const TestDataRecord* const header = record->dataSet()->header();
    while (header && values.size() < header->count())
        values.append(QLatin1String(""));
    context->setListResult(values);
}

void namesOf(ScriptContext* context) {
    if (const TestDataRecord* const record = givenRecord(*context))
        context->setListResult(fieldsOf(record->dataSet()->header()));
}

struct Row {
    const char* owner;
    const char* name;
    ScriptContext::Function function;
    /// What it takes beside the value.
    const char* parameter;
};

constexpr Row rows[] = {
    {"Object", "_text", memberFunction<textOfObject, 1>, nullptr},
    {"Object", "_isSame", memberFunction<isSame, 2>, "other"},
    {"Object", "_isThere", memberFunction<isThere, 1>, nullptr},
    {"Object", "_members", memberFunction<membersOf, 1>, nullptr},
    {"Object", "_property", memberFunction<propertyOf, 2>, "name"},
    {"ApplicationContext", "_text", memberFunction<textOfApplication, 1>, nullptr},
    {"ApplicationContext", "_id", memberFunction<idOfApplication, 1>, nullptr},
    {"DataSet", "_text", memberFunction<textOfDataSet, 1>, nullptr},
    {"DataSet", "_records", memberFunction<recordsOf, 1>, nullptr},
    {"Record", "_values", memberFunction<valuesOf, 1>, nullptr},
    {"Record", "_names", memberFunction<namesOf, 1>, nullptr},
};

}  // namespace

std::vector<NativeFunction> valueMembers(const ScriptContext& context) {
    std::vector<NativeFunction> members;
    members.reserve(std::size(rows));
    for (const Row& row : rows) {
        NativeSignature signature{row.name, row.owner, {"value"}, {}, {}};
        if (row.parameter)
            signature.required.append(row.parameter);
        members.emplace_back(context, std::move(signature), row.function);
    }
    return members;
}

}  // namespace Tamrix
