#include "plugins/ruby/objectclass.h"

#include "interpreter/language/objectcalls.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/nativefunctions.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"

namespace Tamrix::RubyPlugin {

namespace {

VALUE s_objectClass = Qnil;

SharedPtr<Object> objectOf(VALUE self) {
    return Holder<Object>::unwrap(self);
}

LanguageInterpreter* active() {
    return RubyInterpreter::active();
}

VALUE setProperty(const SharedPtr<Object>& object, const QString& name, VALUE value) {
    const auto set = setMember(active(), object, name, new RubyArgument(value));
    if (!set)
        raiseFailure(set.error());
    return value;
}

/// A property, one that is set, or a call.
VALUE methodMissing(int count, VALUE* arguments, VALUE self) {
    return enterNative([=] {
        const QString name = fromRuby(arguments[0]);
        if (name.endsWith('=') && count == 2)
            return setProperty(objectOf(self), name.chopped(1), arguments[1]);
        return valueOrRaise(
            callMember(active(), objectOf(self), name, givenArguments(count - 1, arguments + 1)));
    });
}

VALUE objectEqual(VALUE self, VALUE other) {
    return Holder<Object>::check(other) && isSameObject(objectOf(self), objectOf(other)) ? Qtrue
                                                                                         : Qfalse;
}

VALUE hashOf(VALUE self) {
    return LONG2FIX(static_cast<long>(objectHash(objectOf(self)) >> 2));
}

VALUE isNil(VALUE self) {
    return isTrueObject(objectOf(self)) ? Qfalse : Qtrue;
}

}  // namespace

void defineObjectClass(VALUE module) {
    s_objectClass = rb_define_class_under(module, "Object", rb_cObject);
    rb_gc_register_address(&s_objectClass);
    rb_undef_alloc_func(s_objectClass);
    rb_undef_method(CLASS_OF(s_objectClass), "new");
    rb_define_private_method(s_objectClass, "method_missing", methodMissing, -1);
    rb_define_method(s_objectClass, "==", objectEqual, 1);
    rb_define_method(s_objectClass, "hash", hashOf, 0);
    rb_define_method(s_objectClass, "nil?", isNil, 0);
}

VALUE wrapObject(const SharedPtr<Object>& object) {
    return object ? Holder<Object>::wrap(object, s_objectClass) : Qnil;
}

}  // namespace Tamrix::RubyPlugin
