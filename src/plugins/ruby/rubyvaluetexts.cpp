#include "plugins/ruby/rubyvaluetexts.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Bits of an Integer: writing one takes a time that grows with their square.
constexpr long mostBits = 4000;

/// The class or module that says how the value is written.
VALUE inspectOwner(VALUE value) {
    const VALUE method = protect([=] {
        return rb_funcall(rb_obj_class(value), rb_intern("instance_method"), 1,
                          ID2SYM(rb_intern("inspect")));
    });
    return callMethod(method, "owner");
}

/// The beginning of a String, before it is written with all that needs an escape.
VALUE beginningOf(VALUE text) {
    return protect([=] { return rb_str_substr(text, 0, ValueTexts::longest); });
}

}  // namespace

QString RubyValueTexts::bounded(VALUE value, int depth) {
    try {
        if (RB_TYPE_P(value, T_STRING)) {
            const VALUE beginning = beginningOf(value);
            const QString text = fromRuby(protect([=] { return rb_str_inspect(beginning); }));
            return RSTRING_LEN(beginning) == RSTRING_LEN(value) ? text : text.chopped(1) + "...";
        }
        if (RB_TYPE_P(value, T_ARRAY)) {
            long index = 0;
            return "[" +
                   itemsText(depth, RARRAY_LEN(value),
                             [&] { return bounded(rb_ary_entry(value, index++), depth + 1); }) +
                   "]";
        }
        if (RB_TYPE_P(value, T_HASH)) {
            const auto entries = entriesOf(value);
            std::size_t index = 0;
            return "{" +
                   itemsText(depth, static_cast<qint64>(entries.size()),
                             [&] {
                                 const auto& [key, each] = entries[index++];
                                 return bounded(key, depth + 1) + "=>" + bounded(each, depth + 1);
                             }) +
                   "}";
        }
        if (RB_TYPE_P(value, T_STRUCT) && inspectOwner(value) == rb_cStruct) {
            const VALUE members = rb_struct_members(value);
            long index = 0;
            return "#<struct " + classNameOf(value) + " " +
                   itemsText(depth, RARRAY_LEN(members),
                             [&] {
                                 const QString name = fromRuby(rb_ary_entry(members, index));
                                 return name + "=" +
                                        bounded(rb_struct_aref(value, LONG2FIX(index++)),
                                                depth + 1);
                             }) +
                   ">";
        }
        if (RB_TYPE_P(value, T_BIGNUM)) {
            const long bits = NUM2LONG(callMethod(value, "bit_length"));
            if (bits > mostBits)
                return QStringLiteral("<Integer of %1 bits>").arg(bits);
        }
        if (RB_SPECIAL_CONST_P(value) || RB_TYPE_P(value, T_FLOAT) || RB_TYPE_P(value, T_BIGNUM))
            return fromRuby(protect([=] { return rb_inspect(value); }));
        // Where an object is kept tells nobody anything; what it holds is listed below it.
        if (inspectOwner(value) == rb_mKernel)
            return "#<" + classNameOf(value) + ">";
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    return inspected(value);
}

QString RubyValueTexts::inspected(VALUE value) {
    // What takes too long is ended by another thread of Ruby: a handler of a signal can raise
    // nothing.
    const auto write = [value]() -> std::optional<Outcome<QString>> {
        try {
            const VALUE text = protect([=] {
                return rb_funcall(rb_path2class("Tamrix::TimeLimit"), rb_intern("inspect_within"),
                                  2, value, DBL2NUM(0.1));
            });
            return NIL_P(text) ? std::optional<Outcome<QString>>() : fromRuby(text);
        } catch (const ScriptErrorSet&) {
            return fail(FailureKind::Failed, classNameOf(takeException()));
        }
    };
    return scriptText([] {}, write);
}

}  // namespace Tamrix::RubyPlugin
