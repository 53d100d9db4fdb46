#include "plugins/ruby/valueclasses.h"

#include "interpreter/language/heldrecord.h"
#include "plugins/ruby/conversion.h"

namespace Tamrix::RubyPlugin {

namespace {

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

VALUE contextId(VALUE self) {
    return INT2FIX(Holder<ApplicationContext>::unwrap(self)->id);
}

// Tamrix::DataSet

VALUE dataSetSize(VALUE self) {
    return INT2FIX(Holder<TestDataSet>::unwrap(self)->count());
}

bool isWithin(VALUE index, int count) {
    return RB_FIXNUM_P(index) && FIX2LONG(index) >= 0 && FIX2LONG(index) < count;
}

/// nil for an index that the set does not have.
VALUE dataSetRecord(VALUE self, VALUE index) {
    return enterNative([=] {
        const SharedPtr<TestDataSet> set = Holder<TestDataSet>::unwrap(self);
        return isWithin(index, set->count()) ? wrapRecord(set, set->record(FIX2INT(index))) : Qnil;
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

VALUE recordSize(VALUE self) {
    return INT2FIX(Holder<HeldRecord>::unwrap(self)->record->count());
}

/// nil for a name that is no field's.
VALUE recordColumn(VALUE self, VALUE name) {
    return enterNative([=] {
        const int column = Holder<HeldRecord>::unwrap(self)->set->fieldIndex(fromRuby(name));
        return column < 0 ? Qnil : INT2FIX(column);
    });
}

/// nil for a column that the record does not have.
VALUE recordValue(VALUE self, VALUE column) {
    return enterNative([=] {
        const TestDataRecord& record = *Holder<HeldRecord>::unwrap(self)->record;
        return isWithin(column, record.count()) ? toRuby(record.valueAsString(FIX2INT(column)))
                                                : Qnil;
    });
}

}  // namespace

void defineValueClasses(VALUE module) {
    const VALUE context = defineClass(module, "ApplicationContext", &s_contextClass);
    rb_define_method(context, "inspect", contextInspect, 0);
    rb_define_protected_method(context, "id", contextId, 0);

    const VALUE set = defineClass(module, "DataSet", &s_dataSetClass);
    rb_define_method(set, "size", dataSetSize, 0);
    rb_define_method(set, "inspect", dataSetInspect, 0);
    rb_define_private_method(set, "record", dataSetRecord, 1);

    const VALUE record = defineClass(module, "Record", &s_recordClass);
    rb_define_method(record, "size", recordSize, 0);
    rb_define_private_method(record, "column", recordColumn, 1);
    rb_define_private_method(record, "value", recordValue, 1);

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

VALUE wrapLocation(const ScriptLocation& location) {
    const VALUE file = toRuby(location.fileName);
    const VALUE line = INT2FIX(location.line);
    return protect([=] { return rb_struct_new(s_locationClass, file, line); });
}

VALUE classOfMembers(const QString& className) {
    return className == QLatin1String("ApplicationContext") ? s_contextClass : Qnil;
}

}  // namespace Tamrix::RubyPlugin
