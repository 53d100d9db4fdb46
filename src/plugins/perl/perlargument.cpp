#include "plugins/perl/perlargument.h"

#include <cmath>

#include "interpreter/language/scriptfailure.h"
#include "plugins/perl/caseinterpreter.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/perlvaluetexts.h"

namespace Tamrix::PerlPlugin {

namespace {

/// Also of one that is just too large for 64 bits, which toInt() refuses.
bool isIntegral(NV number) {
    return std::trunc(number) == number && std::abs(number) <= 0x1p63;
}

[[noreturn]] void refuseInteger(SV* value) {
    dTHX;
    throwFailure(badArgument(
        QStringLiteral("%1 is too large: only 64 bits can be passed on").arg(textOf(aTHX_ value))));
}

/// The container behind a reference, with what a tied one gives.
SvRef plainContainer(pTHX_ SV* reference, const char* copy) {
    if (!SvMAGICAL(SvRV(reference)))
        return SvRef::borrow(SvRV(reference));
    const SvRef made = valueOrThrow(callOwn(aTHX_ copy, {SvRef::borrow(reference)}));
    return SvRef::borrow(SvRV(made.get()));
}

SharedPtr<ScriptArgument> element(pTHX_ SV* value) {
    if (!value)
        return new PerlArgument(SvRef::steal(newSV(0)));
    const SvRef plain = plainValue(aTHX_ value);
    return new PerlArgument(PerlArgument::kept(aTHX_ plain.get()));
}

}  // namespace

// Type tests

QString PerlArgument::typeName() const {
    dTHX;
    if (SvROK(value()))
        return QString::fromUtf8(sv_reftype(SvRV(value()), 1)).remove(QStringLiteral("tamrix::"));
    if (!SvOK(value()))
        return QStringLiteral("undef");
    if (isBool())
        return QStringLiteral("boolean");
    if (!isNumber())
        return QStringLiteral("string");
    return SvIOK(value()) ? QStringLiteral("integer") : QStringLiteral("number");
}

bool PerlArgument::isBool() const {
    dTHX;
    return SvIsBOOL(value());
}

bool PerlArgument::isNumber() const {
    dTHX;
    return isNumberValue(aTHX_ value());
}

bool PerlArgument::holdsInteger() const {
    return isNumber() && (SvIOK(value()) || isIntegral(SvNVX(value())));
}

bool PerlArgument::isString() const {
    return SvPOK(value()) && !SvROK(value()) && !isBool();
}

bool PerlArgument::isStringLike() const {
    // Perl makes no difference between 5 and '5'.
    if (isString() || isNumber())
        return true;
    dTHX;
    return sv_isobject(value()) && SvAMAGIC(value()) && !SvREADONLY(SvRV(value())) &&
           gv_fetchmeth_pvn(SvSTASH(SvRV(value())), "(\"\"", 3, -1, 0) && !isObject() &&
           !NativeHolder::check(value()) && !toApplicationContext();
}

bool PerlArgument::isCallable() const {
    return SvROK(value()) && SvTYPE(SvRV(value())) == SVt_PVCV;
}

bool PerlArgument::isList() const {
    return isPlainReference(value(), SVt_PVAV);
}

bool PerlArgument::isMap() const {
    return isPlainReference(value(), SVt_PVHV);
}

// Conversions

bool PerlArgument::toBool() const {
    dTHX;
    if (!SvAMAGIC(value()))
        return SvTRUE_nomg(value());
    return SvTRUE_nomg(
        valueOrThrow(callOwn(aTHX_ "tamrix::_truth", {SvRef::borrow(value())})).get());
}

double PerlArgument::toDouble() const {
    dTHX;
    return isNumber() || isBool() ? SvNV_nomg(value()) : 0;
}

long long PerlArgument::convertedToInt() const {
    dTHX;
    if (!isNumber() && !isBool())
        return 0;
    if (SvIOK(value())) {
        if (SvIsUV(value()) && SvUVX(value()) > static_cast<UV>(IV_MAX))
            refuseInteger(value());
        return SvIVX(value());
    }
    // Truncated as Perl's int() does.
    const std::optional<long long> whole = wholePart(SvNV_nomg(value()));
    if (!whole)
        refuseInteger(value());
    return *whole;
}

QString PerlArgument::toString() const {
    dTHX;
    // Perl has the address of a container for its text, which tells nobody anything.
    if (isList() || isMap())
        return PerlValueTexts().textOf(aTHX_ value());
    return PerlPlugin::textOf(aTHX_ value());
}

ScriptArgument::List PerlArgument::toList() const {
    List values;
    if (!isList())
        return values;
    dTHX;
    const SvRef container = plainContainer(aTHX_ value(), "tamrix::_list");
    auto* const array = reinterpret_cast<AV*>(container.get());
    const SSize_t count = av_count(array);
    values.reserve(static_cast<std::size_t>(count));
    // The array may shrink: fetching an element can run code of the script.
    for (SSize_t index = 0; index < count; ++index) {
        SV** const place = av_fetch(array, index, 0);
        values.push_back(element(aTHX_ place ? *place : nullptr));
    }
    return values;
}

ScriptArgument::Map PerlArgument::toMap() const {
    Map values;
    if (!isMap())
        return values;
    dTHX;
    const SvRef container = plainContainer(aTHX_ value(), "tamrix::_map");
    auto* const hash = reinterpret_cast<HV*>(container.get());
    // A copy of the entries: fetching one can run code of the script.
    std::vector<std::pair<QString, SvRef>> entries;
    for (const auto& [key, entry] : entriesOf(aTHX_ hash))
        entries.emplace_back(key, SvRef::borrow(entry));
    for (const auto& [key, entry] : entries)
        values[key] = element(aTHX_ entry.get());
    return values;
}

QDateTime PerlArgument::time() const {
    dTHX;
    return isObject() ? QDateTime() : fromPerlTime(aTHX_ value());
}

SharedPtr<ScriptArgument> PerlArgument::called(const List& arguments) const {
    dTHX;
    std::vector<SvRef> values;
    values.reserve(arguments.size());
    for (const SharedPtr<ScriptArgument>& argument : arguments)
        values.push_back(SvRef::borrow(valueOf(argument)));
    return new PerlArgument(valueOrThrow(callCode(aTHX_ value(), values)));
}

LanguageInterpreter* PerlArgument::active() {
    return CaseInterpreter::onScriptThread();
}

QString PerlArgument::callableIdentifier() const {
    // References to one function come and go; the function stays.
    return QStringLiteral("Callable|0x%1")
        .arg(reinterpret_cast<quintptr>(SvROK(value()) ? SvRV(value()) : value()), 0, 16);
}

}  // namespace Tamrix::PerlPlugin
