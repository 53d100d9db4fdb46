#include "plugins/ruby/conditions.h"

#include <QStringList>
#include <variant>

#include "interpreter/language/objectcalls.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyvaluetexts.h"

namespace Tamrix::RubyPlugin {

namespace {

/// An Array of the property's value; nil when the object has no property of that name.
VALUE propertyOf(VALUE, VALUE object, VALUE name) {
    return enterNative([=] {
        const auto member =
            getMember(RubyInterpreter::active(), Holder<Object>::unwrap(object), fromRuby(name));
        const auto* const found =
            member ? std::get_if<SharedPtr<ScriptArgument>>(&*member) : nullptr;
        if (!found)
            return Qnil;
        const VALUE value = rubyValue(*found);
        return protect([=] { return rb_ary_new_from_args(1, value); });
    });
}

}  // namespace

void defineConditions(VALUE native) {
    rb_define_singleton_method(native, "property", propertyOf, 2);
}

QString explainCall(const char* parameter) {
    const VALUE name = ID2SYM(rb_frame_callee());
    const VALUE parameterName = toRuby(QString::fromLatin1(parameter));
    try {
        const VALUE binding = protect([] { return rb_binding_new(); });
        const VALUE told =
            callMethod(rb_path2class("Tamrix::Condition"), "explain", binding, name, parameterName);
        if (NIL_P(told))
            return {};
        QStringList lines(fromRuby(rb_ary_entry(told, 0)));
        const VALUE values = rb_ary_entry(told, 1);
        RubyValueTexts texts;
        for (long index = 0; index < RARRAY_LEN(values); ++index) {
            const VALUE row = rb_ary_entry(values, index);
            lines.append(fromRuby(rb_ary_entry(row, 0)) + ": " +
                         texts.textOf(rb_ary_entry(row, 1)));
        }
        return lines.join('\n');
    } catch (const ScriptErrorSet&) {
        if (!isOrdinaryError())
            throw;
        takeException();
    }
    return {};
}

}  // namespace Tamrix::RubyPlugin
