#pragma once

#include "interpreter/language/valuecontext.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/nativeclasses.h"
#include "plugins/perl/perlargument.h"

namespace Tamrix::PerlPlugin {

class CaseInterpreter;

/// The context of all calls of one interpreter.
class PerlContext final : public ValueContext<PerlContext, PerlArgument, CaseInterpreter> {
public:
    using ValueContext::ValueContext;

    // For ValueContext.
    static SvRef makeNothing() { return {}; }
    static SvRef makeNull() {
        dTHX;
        return SvRef::steal(newSV(0));
    }
    static SvRef makeValue(const PerlArgument& wrapper) { return SvRef::borrow(wrapper.value()); }
    static SvRef makeValue(bool value) {
        dTHX;
        return SvRef::steal(newSVsv(value ? &PL_sv_yes : &PL_sv_no));
    }
    static SvRef makeValue(long long value) {
        dTHX;
        return SvRef::steal(newSViv(value));
    }
    static SvRef makeValue(double value) {
        dTHX;
        return SvRef::steal(newSVnv(value));
    }
    static SvRef makeValue(const QString& value) {
        dTHX;
        return toPerl(aTHX_ value);
    }
    static SvRef makeValue(const QDateTime& value) {
        dTHX;
        return toPerlTime(aTHX_ value);
    }
    static SvRef makeValue(const QByteArray& value) {
        dTHX;
        return SvRef::steal(newSVpvn(value.constData(), static_cast<STRLEN>(value.size())));
    }
    static SvRef makeValue(const ScriptArgument::List& values);
    static SvRef makeValue(const ScriptArgument::Map& values);
    static SvRef makeValue(const SharedPtr<NativeScriptObject>& object) {
        dTHX;
        return wrapNative(aTHX_ object);
    }
    /// Of what the library's own packages are for.
    template <typename T>
    static SvRef makeValue(const SharedPtr<T>& held) {
        dTHX;
        return Holder<T>::wrap(aTHX_ held, packageOfHeld<T>);
    }

    SharedPtr<ScriptArgument> createRecord(const SharedPtr<HeldRecord>& row) override {
        return wrapped(makeValue(row));
    }

    void define(const NativeFunction& function) override;

    QString explainArgument(const char* parameter) override;
    std::pair<QString, QString> evaluateForException(SharedPtr<ScriptArgument> code) override;
    bool valuesEqual(SharedPtr<ScriptArgument> left, SharedPtr<ScriptArgument> right) override;
    bool evaluateCondition(const QString& expression, QString* error) override;

protected:
    void defineMember(const NativeFunction& function) override;
    void defineConstant(const QString& owner, const QString& name, int value) override;
};

}  // namespace Tamrix::PerlPlugin
