#pragma once

#include "interpreter/language/languageargument.h"
#include "plugins/perl/holder.h"

namespace Tamrix::PerlPlugin {

using ObjectHolder = Holder<Object>;
using NativeHolder = Holder<NativeScriptObject>;
using ApplicationContextHolder = Holder<ApplicationContext>;

/// The package of the objects that hold a T.
template <typename T>
constexpr const char* packageOfHeld = nullptr;
template <>
inline constexpr const char* packageOfHeld<Object> = "tamrix::Object";
template <>
inline constexpr const char* packageOfHeld<ApplicationContext> = "tamrix::ApplicationContext";
template <>
inline constexpr const char* packageOfHeld<TestDataSet> = "tamrix::DataSet";
template <>
inline constexpr const char* packageOfHeld<HeldRecord> = "tamrix::Record";

/// One Perl value as a script value. What Perl dies with in a conversion passes as ScriptErrorSet.
class PerlArgument final : public LanguageArgument<PerlArgument> {
public:
    /// Not null, and not tied.
    explicit PerlArgument(SvRef value) : m_value(std::move(value)) { keepOwnInteger(); }

    /// An argument of a call. A reference is copied, since the variable that it is in may change.
    static SvRef kept(pTHX_ SV* value) {
        return SvROK(value) ? SvRef::steal(newSVsv_nomg(value)) : SvRef::borrow(value);
    }

    /// Makes the wrapper stand for another value, or for none while it is not used.
    void rebind(SvRef value) {
        m_value = std::move(value);
        keepOwnInteger();
    }
    void rebind() {
        m_value = SvRef();
        keepNoInteger();
    }

    SV* value() const { return m_value.get(); }

    QString typeName() const override;
    bool isBool() const override;
    bool isNumber() const override;
    /// Also a number with a fraction of zero, which is what Perl's int() makes.
    bool holdsInteger() const override;
    bool isString() const override;
    /// Also an object that says what it is as text.
    bool isStringLike() const override;
    bool isCallable() const override;
    bool isList() const override;
    bool isMap() const override;
    bool toBool() const override;
    double toDouble() const override;
    /// Passes with an exception for a number beyond 64 bits.
    long long convertedToInt() const override;
    QString toString() const override;
    List toList() const override;
    Map toMap() const override;
    QString callableIdentifier() const override;
    bool isNull() const override { return !SvOK(value()); }

    // For LanguageArgument.
    template <typename T>
    SharedPtr<T> held() const {
        return Holder<T>::unwrap(value());
    }
    /// Bytes are texts in Perl.
    std::optional<QByteArray> bytes() const { return std::nullopt; }
    QDateTime time() const;
    SharedPtr<ScriptArgument> called(const List& arguments) const;
    static LanguageInterpreter* active();

private:
    /// One that has no text or fraction beside.
    void keepOwnInteger() {
        constexpr U32 kinds = SVf_IOK | SVf_NOK | SVf_POK | SVf_ROK | SVf_IVisUV;
        if ((SvFLAGS(value()) & kinds) == SVf_IOK)
            keepInteger(SvIVX(value()));
        else
            keepNoInteger();
    }

    SvRef m_value;
};

/// The value of an argument of this plug-in.
inline SV* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const PerlArgument*>(argument.get())->value();
}

}  // namespace Tamrix::PerlPlugin
