#pragma once

#include "interpreter/language/languageargument.h"
#include "plugins/ruby/holder.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

/// One Ruby value as a script value. Conversions that Ruby refuses throw ScriptErrorSet.
class RubyArgument final : public LanguageArgument<RubyArgument> {
public:
    explicit RubyArgument(VALUE value) : m_value(value) { keepIntegerOf(value); }

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(VALUE value = Qundef) {
        m_value = value;
        keepIntegerOf(value);
    }

    VALUE value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override { return value() == Qtrue || value() == Qfalse; }
    bool isNumber() const override;
    bool holdsInteger() const override { return RB_INTEGER_TYPE_P(value()); }
    /// Also a Symbol, which is how scripts like to write names.
    bool isString() const override;
    bool isCallable() const override;
    bool isList() const override { return RB_TYPE_P(value(), T_ARRAY); }
    bool isMap() const override { return RB_TYPE_P(value(), T_HASH); }
    bool isNull() const override { return NIL_P(value()); }
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet with a RangeError for an Integer beyond 64 bits.
    long long convertedToInt() const override;
    QString toString() const override;
    List toList() const override;
    Map toMap() const override;
    QString callableIdentifier() const override;

    // For LanguageArgument.
    template <typename T>
    SharedPtr<T> held() const {
        return Holder<T>::unwrap(value());
    }
    /// Of a String that is binary.
    std::optional<QByteArray> bytes() const;
    QDateTime time() const;
    SharedPtr<ScriptArgument> called(const List& arguments) const;
    static LanguageInterpreter* active();

private:
    void keepIntegerOf(VALUE value) {
        if (FIXNUM_P(value))
            keepInteger(FIX2LONG(value));
        else
            keepNoInteger();
    }

    RubyRef m_value;
};

/// The Ruby value of one that the library has; nil for null.
VALUE rubyValue(const SharedPtr<ScriptArgument>& argument);

}  // namespace Tamrix::RubyPlugin
