#include "plugins/ruby/rubyvaluetexts.h"

#include <utility>
#include <vector>

#include "interpreter/language/valuepath.h"
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

bool isWrittenAsCode(VALUE key) {
    return RB_TYPE_P(key, T_STRING) || RB_SPECIAL_CONST_P(key) || RB_SYMBOL_P(key) ||
           RB_INTEGER_TYPE_P(key) || RB_FLOAT_TYPE_P(key);
}

}  // namespace

RubyValueTexts::Parts RubyValueTexts::partsOf(const Value& value, int end, int depth) {
    const VALUE own = rubyValue(value);
    if (RB_TYPE_P(own, T_ARRAY))
        return {static_cast<int>(RARRAY_LEN(own)), [own](int index) {
                    return Part{QString::number(index), new RubyArgument(rb_ary_entry(own, index))};
                }};
    return RB_TYPE_P(own, T_HASH) ? entriesOfHash(own, end, depth) : partsFrom(attributesOf(own));
}

RubyValueTexts::Parts RubyValueTexts::entriesOfHash(VALUE hash, int end, int depth) {
    const auto entries = end > 0 ? entriesOf(hash) : std::vector<std::pair<VALUE, VALUE>>();
    return {static_cast<int>(RHASH_SIZE(hash)), [this, entries, depth](int index) {
                const auto& [key, each] = entries.at(static_cast<std::size_t>(index));
                const QString written = cut(text(new RubyArgument(key), depth + 1));
                return Part{keyName(written, isWrittenAsCode(key)), new RubyArgument(each),
                            written + "=>"};
            }};
}

std::vector<ValueTexts::Part> RubyValueTexts::attributesOf(VALUE value) {
    std::vector<Part> attributes;
    if (RB_SPECIAL_CONST_P(value) || RB_TYPE_P(value, T_STRING))
        return attributes;
    if (RB_TYPE_P(value, T_STRUCT)) {
        const VALUE members = rb_struct_members(value);
        for (long index = 0; index < RARRAY_LEN(members); ++index) {
            const QString name = fromRuby(rb_ary_entry(members, index));
            attributes.push_back({pathPart(name),
                                  new RubyArgument(rb_struct_aref(value, LONG2FIX(index))),
                                  name + "="});
        }
    }
    for (const VALUE symbol : itemsOf(protect([=] { return rb_obj_instance_variables(value); }))) {
        const QString name = fromRuby(symbol);
        // Without the mark of names that begin in this way: "@" and a letter is no "@N".
        attributes.push_back({"@" + pathPart(name.mid(1)),
                              new RubyArgument(rb_ivar_get(value, SYM2ID(symbol))), name + "="});
    }
    return attributes;
}

QString RubyValueTexts::text(const Value& value, int depth) {
    const VALUE own = rubyValue(value);
    try {
        if (RB_TYPE_P(own, T_STRING)) {
            const VALUE beginning = beginningOf(own);
            const QString text = fromRuby(protect([=] { return rb_str_inspect(beginning); }));
            return RSTRING_LEN(beginning) == RSTRING_LEN(own) ? text : text.chopped(1) + "...";
        }
        if (RB_TYPE_P(own, T_ARRAY))
            return "[" + partsText(value, depth) + "]";
        if (RB_TYPE_P(own, T_HASH))
            return "{" + partsText(value, depth) + "}";
        if (RB_TYPE_P(own, T_STRUCT) && inspectOwner(own) == rb_cStruct)
            return "#<struct " + classNameOf(own) + " " + partsText(value, depth) + ">";
        if (RB_TYPE_P(own, T_BIGNUM)) {
            const long bits = NUM2LONG(callMethod(own, "bit_length"));
            if (bits > mostBits)
                return QStringLiteral("<Integer of %1 bits>").arg(bits);
        }
        if (RB_SPECIAL_CONST_P(own) || RB_TYPE_P(own, T_FLOAT) || RB_TYPE_P(own, T_BIGNUM))
            return fromRuby(protect([=] { return rb_inspect(own); }));
        // Where an object is kept tells nobody anything; what it holds is listed below it.
        if (inspectOwner(own) == rb_mKernel)
            return "#<" + classNameOf(own) + ">";
    } catch (const ScriptErrorSet&) {
        takeException();
    }
    return inspected(own);
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
