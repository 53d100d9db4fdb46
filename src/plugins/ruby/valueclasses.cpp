#include "plugins/ruby/valueclasses.h"

#include "plugins/ruby/conversion.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE s_contextClass = Qnil;
VALUE s_dataSetClass = Qnil;
VALUE s_recordClass = Qnil;
VALUE s_locationClass = Qnil;

/// A class of which scripts can't make objects.
void defineClass(VALUE module, const char* name, VALUE* variable) {
    *variable = rb_define_class_under(module, name, rb_cObject);
    rb_gc_register_address(variable);
    rb_undef_alloc_func(*variable);
    rb_undef_method(CLASS_OF(*variable), "new");
}

}  // namespace

void defineValueClasses(VALUE module) {
    defineClass(module, "ApplicationContext", &s_contextClass);
    defineClass(module, "DataSet", &s_dataSetClass);
    defineClass(module, "Record", &s_recordClass);
    s_locationClass = rb_struct_define_under(module, "Location", "file_name", "line", nullptr);
    rb_gc_register_address(&s_locationClass);
}

VALUE wrapContext(const SharedPtr<ApplicationContext>& context) {
    return Holder<ApplicationContext>::wrap(context, s_contextClass);
}

VALUE wrapDataSet(const SharedPtr<TestDataSet>& set) {
    return Holder<TestDataSet>::wrap(set, s_dataSetClass);
}

VALUE wrapRecord(const SharedPtr<HeldRecord>& record) {
    return Holder<HeldRecord>::wrap(record, s_recordClass);
}

VALUE wrapLocation(const ScriptLocation& location) {
    const VALUE file = toRuby(location.fileName);
    const VALUE line = INT2FIX(location.line);
    return protect([=] { return rb_struct_new(s_locationClass, file, line); });
}

}  // namespace Tamrix::RubyPlugin
