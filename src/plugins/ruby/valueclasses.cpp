#include "plugins/ruby/valueclasses.h"

#include "plugins/ruby/conversion.h"

namespace Tamrix::RubyPlugin {

namespace {

/// A record and the set that owns it.
struct HeldRecord : public Shared {
    HeldRecord(SharedPtr<TestDataSet> owner, const TestDataRecord* row)
        : set(std::move(owner)), record(row) {}

    SharedPtr<TestDataSet> set;
    const TestDataRecord* record;
};

VALUE s_contextClass = Qnil;
VALUE s_dataSetClass = Qnil;
VALUE s_recordClass = Qnil;
VALUE s_locationClass = Qnil;

/// A class of which scripts can't make objects.
VALUE defineClass(VALUE module, const char* name, VALUE* variable) {
    *variable = rb_define_class_under(module, name, rb_cObject);
    rb_gc_register_address(variable);
    rb_undef_alloc_func(*variable);
    rb_undef_method(CLASS_OF(*variable), "new");
    return *variable;
}

// Tamrix::ApplicationContext

VALUE contextInspect(VALUE self) {
    return enterNative([=] {
        return toRuby("<" + Holder<ApplicationContext>::unwrap(self)->displayString() + ">");
    });
}

int idOf(VALUE context) {
    return Holder<ApplicationContext>::unwrap(context)->id;
}

VALUE contextEqual(VALUE self, VALUE other) {
    return Holder<ApplicationContext>::check(other) && idOf(self) == idOf(other) ? Qtrue : Qfalse;
}

VALUE contextHash(VALUE self) {
    return INT2FIX(idOf(self));
}

// Tamrix::DataSet

int checkedIndex(VALUE index, int count, const char* what) {
    long number = 0;
    protect([&] {
        number = NUM2LONG(index);
        return Qnil;
    });
    const long place = number < 0 ? number + count : number;
    if (place < 0 || place >= count)
        throwException(rb_eIndexError, QStringLiteral("%1 %2 outside of its %3 entries")
                                           .arg(QLatin1String(what), QString::number(number),
                                                QString::number(count)));
    return static_cast<int>(place);
}

VALUE dataSetSize(VALUE self) {
    return INT2FIX(Holder<TestDataSet>::unwrap(self)->count());
}

VALUE dataSetAt(VALUE self, VALUE index) {
    return enterNative([=] {
        const SharedPtr<TestDataSet> set = Holder<TestDataSet>::unwrap(self);
        return wrapRecord(set, set->record(checkedIndex(index, set->count(), "record")));
    });
}

VALUE dataSetInspect(VALUE self) {
    return enterNative([=] {
        const SharedPtr<TestDataSet> set = Holder<TestDataSet>::unwrap(self);
        return toRuby(QStringLiteral("<data set '%1' with %2 records>")
                          .arg(set->dataName(), QString::number(set->count())));
    });
}

// Tamrix::Record

SharedPtr<HeldRecord> recordOf(VALUE self) {
    return Holder<HeldRecord>::unwrap(self);
}

VALUE recordSize(VALUE self) {
    return INT2FIX(recordOf(self)->record->count());
}

/// By field name or column.
VALUE recordAt(VALUE self, VALUE key) {
    return enterNative([=] {
        const SharedPtr<HeldRecord> held = recordOf(self);
        if (!RB_TYPE_P(key, T_STRING) && !RB_SYMBOL_P(key))
            return toRuby(
                held->record->valueAsString(checkedIndex(key, held->record->count(), "column")));
        const int column = held->set->fieldIndex(fromRuby(key));
        if (column < 0)
            throwException(rb_eKeyError,
                           QStringLiteral("the data set has no field '%1'").arg(fromRuby(key)));
        return toRuby(held->record->valueAsString(column));
    });
}

}  // namespace

void defineValueClasses(VALUE module) {
    const VALUE context = defineClass(module, "ApplicationContext", &s_contextClass);
    rb_define_method(context, "inspect", contextInspect, 0);
    rb_define_method(context, "to_s", contextInspect, 0);
    rb_define_method(context, "==", contextEqual, 1);
    rb_define_method(context, "eql?", contextEqual, 1);
    rb_define_method(context, "hash", contextHash, 0);

    const VALUE set = defineClass(module, "DataSet", &s_dataSetClass);
    rb_define_method(set, "size", dataSetSize, 0);
    rb_define_method(set, "[]", dataSetAt, 1);
    rb_define_method(set, "inspect", dataSetInspect, 0);
    rb_define_method(set, "to_s", dataSetInspect, 0);

    const VALUE record = defineClass(module, "Record", &s_recordClass);
    rb_define_method(record, "size", recordSize, 0);
    rb_define_method(record, "[]", recordAt, 1);

    s_locationClass = rb_struct_define_under(module, "Location", "file_name", "line", nullptr);
    rb_gc_register_address(&s_locationClass);
}

VALUE wrapContext(const SharedPtr<ApplicationContext>& context) {
    return Holder<ApplicationContext>::wrap(context, s_contextClass);
}

VALUE wrapDataSet(const SharedPtr<TestDataSet>& set) {
    return Holder<TestDataSet>::wrap(set, s_dataSetClass);
}

VALUE wrapRecord(const SharedPtr<TestDataSet>& set, const TestDataRecord* record) {
    return Holder<HeldRecord>::wrap(new HeldRecord(set, record), s_recordClass);
}

const TestDataRecord* unwrapRecord(VALUE object) {
    const SharedPtr<HeldRecord> held = recordOf(object);
    return held ? held->record : nullptr;
}

VALUE wrapLocation(const ScriptLocation& location) {
    const VALUE file = toRuby(location.fileName);
    const VALUE line = INT2FIX(location.line);
    return protect([=] { return rb_struct_new(s_locationClass, file, line); });
}

VALUE classOfMembers(const QString& className) {
    return className == QLatin1String("ApplicationContext") ? s_contextClass : Qnil;
}

}  // namespace Tamrix::RubyPlugin
