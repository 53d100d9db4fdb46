#include "plugins/ruby/rubyargument.h"

#include "interpreter/objects/objectidentity.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/scripterrors.h"

namespace Tamrix::RubyPlugin {

namespace {

long long integerOf(VALUE value) {
    if (FIXNUM_P(value))
        return FIX2LONG(value);
    const long bits = NUM2LONG(callMethod(value, "bit_length"));
    if (bits > 63)
        throwException(
            rb_eRangeError,
            QStringLiteral("Integer of %1 bits is too large: only 64 bits can be passed on")
                .arg(bits));
    long long result = 0;
    protect([&] {
        result = NUM2LL(value);
        return Qnil;
    });
    return result;
}

}  // namespace

// Type tests

QString RubyArgument::typeName() const {
    return classNameOf(value());
}

bool RubyArgument::isNumber() const {
    return RB_INTEGER_TYPE_P(value()) || RB_FLOAT_TYPE_P(value()) ||
           (!RB_SPECIAL_CONST_P(value()) && rb_obj_is_kind_of(value(), rb_cNumeric) == Qtrue);
}

bool RubyArgument::isString() const {
    return RB_TYPE_P(value(), T_STRING) || RB_SYMBOL_P(value());
}

bool RubyArgument::isCallable() const {
    return rb_obj_is_proc(value()) == Qtrue || rb_obj_is_method(value()) == Qtrue;
}

// Conversions

bool RubyArgument::toBool() const {
    const SharedPtr<Object> object = toObject();
    return object ? isTrueObject(object) : RTEST(value());
}

double RubyArgument::toDouble() const {
    if (isBool())
        return value() == Qtrue ? 1 : 0;
    if (!isNumber())
        return 0;
    double number = 0;
    const VALUE own = value();
    protect([&] {
        number = NUM2DBL(own);
        return Qnil;
    });
    return number;
}

long long RubyArgument::convertedToInt() const {
    if (isInteger())
        return integerOf(value());
    if (isBool())
        return value() == Qtrue ? 1 : 0;
    // Truncated as to_i does, which refuses what is no number.
    return isNumber() ? integerOf(callMethod(value(), "to_i")) : 0;
}

QString RubyArgument::toString() const {
    return textOf(value());
}

ScriptArgument::List RubyArgument::toList() const {
    List values;
    if (!isList())
        return values;
    for (const VALUE each : itemsOf(value()))
        values.push_back(new RubyArgument(each));
    return values;
}

ScriptArgument::Map RubyArgument::toMap() const {
    Map values;
    if (!isMap())
        return values;
    // Kept from here on: making a text of a key may run script code.
    std::vector<std::pair<SharedPtr<RubyArgument>, SharedPtr<RubyArgument>>> kept;
    for (const auto& [key, each] : entriesOf(value()))
        kept.emplace_back(new RubyArgument(key), new RubyArgument(each));
    for (const auto& [key, each] : kept)
        values[key->toString()] = each;
    return values;
}

std::optional<QByteArray> RubyArgument::bytes() const {
    if (RB_TYPE_P(value(), T_STRING) && rb_enc_get_index(value()) == rb_ascii8bit_encindex())
        return bytesOfRuby(value());
    return std::nullopt;
}

QDateTime RubyArgument::time() const {
    return RB_SPECIAL_CONST_P(value()) ? QDateTime() : timeFromRuby(value());
}

SharedPtr<ScriptArgument> RubyArgument::called(const List& arguments) const {
    return new RubyArgument(callCallable(value(), {arguments, {}}));
}

LanguageInterpreter* RubyArgument::active() {
    return RubyInterpreter::active();
}

QString RubyArgument::callableIdentifier() const {
    // Ruby makes a Method anew each time; its hash stays.
    if (rb_obj_is_method(value()) == Qtrue)
        return "Callable|" + textOf(callMethod(value(), "hash"));
    return QStringLiteral("Callable|0x%1").arg(quintptr(value()), 0, 16);
}

VALUE rubyValue(const SharedPtr<ScriptArgument>& argument) {
    return argument ? static_cast<const RubyArgument*>(argument.get())->value() : Qnil;
}

}  // namespace Tamrix::RubyPlugin
