#pragma once

#include "interpreter/bridge/scriptargument.h"
#include "plugins/perl/holder.h"

namespace Tamrix::PerlPlugin {

using ObjectHolder = Holder<Object>;
using NativeHolder = Holder<NativeScriptObject>;
using ApplicationContextHolder = Holder<ApplicationContext>;
using DataSetHolder = Holder<TestDataSet>;

/// A row of a data set, which keeps the set alive.
struct DataRecord : Shared {
    SharedPtr<TestDataSet> set;
    const TestDataRecord* record = nullptr;
};
using RecordHolder = Holder<DataRecord>;

/// One Perl value as a script value. What Perl dies with in a conversion passes as ScriptErrorSet.
class PerlArgument final : public ScriptArgument {
public:
    /// Not null, and not tied.
    explicit PerlArgument(SvRef value) : m_value(std::move(value)) {}

    /// An argument of a call. A reference is copied, since the variable that it is in may change.
    static SvRef kept(pTHX_ SV* value) {
        return SvROK(value) ? SvRef::steal(newSVsv_nomg(value)) : SvRef::borrow(value);
    }

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(SvRef value) { m_value = std::move(value); }

    SV* value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    /// Also a number with a fraction of zero, which is what Perl's int() makes.
    bool isInteger() const override;
    bool isString() const override;
    /// Also an object that says what it is as text.
    bool isStringLike() const override;
    bool isObject() const override { return ObjectHolder::check(value()); }
    /// A class of the application is given by its name.
    bool isClass() const override { return toClass() != nullptr; }
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool isNative(void* typeId) const override { return bool(toNative(typeId)); }
    bool toBool() const override;
    double toDouble() const override;
    /// Passes with an exception for a number beyond 64 bits.
    long long toInt() const override;
    QString toString() const override;
    SharedPtr<Object> toObject() const override { return ObjectHolder::unwrap(value()); }
    const Class* toClass() const override;
    List toList() const override;
    Map toMap() const override;
    SharedPtr<NativeScriptObject> toNative(void* typeId) const override;
    SharedPtr<TestDataSet> toTestDataSet() const override { return DataSetHolder::unwrap(value()); }
    SharedPtr<ApplicationContext> toApplicationContext() const override {
        return ApplicationContextHolder::unwrap(value());
    }
    SharedPtr<ScriptArgument> call(const List& arguments, QString* error) override;
    QString callableIdentifier() const override;
    const TestDataRecord* toTestDataRecord() const override;
    /// Also undef and times.
    std::optional<QVariant> toVariant() const override;
    bool isNull() const override { return !SvOK(value()); }

    using ScriptArgument::toNative;

private:
    SvRef m_value;
};

/// The value of an argument of this plug-in.
inline SV* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const PerlArgument*>(argument.get())->value();
}

}  // namespace Tamrix::PerlPlugin
