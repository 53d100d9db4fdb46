#include "plugins/perl/equality.h"

#include "interpreter/objects/objectidentity.h"
#include "plugins/perl/conversion.h"
#include "plugins/perl/guardedcall.h"
#include "plugins/perl/perlargument.h"
#include "plugins/perl/scripterrors.h"

namespace Tamrix::PerlPlugin {

namespace {

/// No value that a test compares is nested as deep.
constexpr int deepest = 100;

bool areEqualBelow(pTHX_ SV* left, SV* right, int depth);

bool areScalarsEqual(pTHX_ SV* left, SV* right) {
    if (SvIsBOOL(left) && SvIsBOOL(right))
        return SvTRUE_nomg(left) == SvTRUE_nomg(right);
    const bool isOneNumber = isNumberValue(aTHX_ left) || isNumberValue(aTHX_ right) ||
                             SvIsBOOL(left) || SvIsBOOL(right);
    // The empty text of a false truth is 0 to `==`.
    const auto isNumeric = [&](SV* value) {
        return SvIsBOOL(value) || isNumberValue(aTHX_ value) || looks_like_number(value);
    };
    if (isOneNumber && isNumeric(left) && isNumeric(right)) {
        if (SvIOK(left) && SvIOK(right)) {
            if (!SvIsUV(left) && !SvIsUV(right))
                return SvIVX(left) == SvIVX(right);
            return SvUV_nomg(left) == SvUV_nomg(right) && SvIsUV(left) == SvIsUV(right);
        }
        return SvNV_nomg(left) == SvNV_nomg(right);
    }
    return sv_eq_flags(left, right, 0) != 0;
}

bool areArraysEqual(pTHX_ SV* left, SV* right, int depth) {
    const ScriptArgument::List leftValues = PerlArgument(SvRef::borrow(left)).toList();
    const ScriptArgument::List rightValues = PerlArgument(SvRef::borrow(right)).toList();
    if (leftValues.size() != rightValues.size())
        return false;
    for (std::size_t index = 0; index < leftValues.size(); ++index) {
        if (!areEqualBelow(aTHX_ valueOf(leftValues[index]), valueOf(rightValues[index]), depth))
            return false;
    }
    return true;
}

bool areHashesEqual(pTHX_ SV* left, SV* right, int depth) {
    const ScriptArgument::Map leftValues = PerlArgument(SvRef::borrow(left)).toMap();
    const ScriptArgument::Map rightValues = PerlArgument(SvRef::borrow(right)).toMap();
    if (leftValues.size() != rightValues.size())
        return false;
    for (auto one = leftValues.begin(), other = rightValues.begin(); one != leftValues.end();
         ++one, ++other) {
        if (one->first != other->first ||
            !areEqualBelow(aTHX_ valueOf(one->second), valueOf(other->second), depth))
            return false;
    }
    return true;
}

bool areReferencesEqual(pTHX_ SV* left, SV* right, int depth) {
    if (SvROK(left) && SvROK(right) && SvRV(left) == SvRV(right))
        return true;
    if (isPlainReference(left, SVt_PVAV) && isPlainReference(right, SVt_PVAV))
        return areArraysEqual(aTHX_ left, right, depth);
    if (isPlainReference(left, SVt_PVHV) && isPlainReference(right, SVt_PVHV))
        return areHashesEqual(aTHX_ left, right, depth);
    const SharedPtr<Object> leftObject = ObjectHolder::unwrap(left);
    const SharedPtr<Object> rightObject = ObjectHolder::unwrap(right);
    if (leftObject && rightObject)
        return isSameObject(leftObject, rightObject);
    if (leftObject || rightObject || (!SvAMAGIC(left) && !SvAMAGIC(right)))
        return false;
    return SvTRUE_nomg(
        valueOrThrow(callOwn(aTHX_ "tamrix::_equal", {SvRef::borrow(left), SvRef::borrow(right)}))
            .get());
}

bool areEqualBelow(pTHX_ SV* left, SV* right, int depth) {
    if (depth == 0)
        throwFailure({ScriptFailure::Kind::General,
                      QStringLiteral("Values that are compared are nested deeper than %1: does a "
                                     "part of one hold itself?")
                          .arg(deepest),
                      false,
                      {}});
    if (SvROK(left) || SvROK(right))
        return areReferencesEqual(aTHX_ left, right, depth - 1);
    if (!SvOK(left) || !SvOK(right))
        return !SvOK(left) && !SvOK(right);
    return areScalarsEqual(aTHX_ left, right);
}

}  // namespace

bool areEqual(pTHX_ SV* left, SV* right) {
    return areEqualBelow(aTHX_ left, right, deepest);
}

}  // namespace Tamrix::PerlPlugin
