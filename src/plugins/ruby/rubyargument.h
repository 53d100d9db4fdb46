#pragma once

#include "interpreter/bridge/scriptargument.h"
#include "plugins/ruby/rubyref.h"

namespace Tamrix::RubyPlugin {

/// One Ruby value as a script value. Conversions that Ruby refuses throw ScriptErrorSet.
class RubyArgument final : public ScriptArgument {
public:
    explicit RubyArgument(VALUE value) : m_value(value) {}

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(VALUE value) { m_value = value; }

    VALUE value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override { return value() == Qtrue || value() == Qfalse; }
    bool isNumber() const override;
    bool isInteger() const override { return RB_INTEGER_TYPE_P(value()); }
    /// Also a Symbol, which is how scripts like to write names.
    bool isString() const override;
    bool isObject() const override;
    /// A class of the application is given by its name.
    bool isClass() const override { return toClass() != nullptr; }
    bool isCallable() const override;
    bool isList() const override { return RB_TYPE_P(value(), T_ARRAY); }
    bool isMap() const override { return RB_TYPE_P(value(), T_HASH); }
    bool isNative(void* typeId) const override { return bool(toNative(typeId)); }
    bool toBool() const override;
    double toDouble() const override;
    /// Throws ScriptErrorSet with a RangeError for an Integer beyond 64 bits.
    long long toInt() const override;
    QString toString() const override;
    SharedPtr<Object> toObject() const override;
    const Class* toClass() const override;
    List toList() const override;
    Map toMap() const override;
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override;
    SharedPtr<ApplicationContext> toApplicationContext() const override;
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    QString callableIdentifier() const override;
    const TestDataRecord* toTestDataRecord() const override;
    /// Also nil, binary Strings and times.
    std::optional<QVariant> toVariant() const override;
    bool isNull() const override { return NIL_P(value()); }

    using ScriptArgument::toNative;

private:
    RubyRef m_value;
};

/// The Ruby value of one that the library has; nil for null.
VALUE rubyValue(const SharedPtr<ScriptArgument>& argument);

}  // namespace Tamrix::RubyPlugin
