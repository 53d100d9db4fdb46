#pragma once

#include <QDateTime>
#include <QString>
#include <utility>
#include <vector>

#include "plugins/perl/svref.h"

namespace Tamrix::PerlPlugin {

/// A new string; lone surrogates are kept.
SvRef toPerl(pTHX_ const QString& text);

/// The text of bytes or, with `isUtf8`, of Perl's characters. Lone surrogates are kept; what is
/// beyond Unicode becomes replacement characters.
QString textOfBytes(pTHX_ const char* bytes, STRLEN size, bool isUtf8);

/// Any value as text, as Perl makes one of it. What code of an object dies with gives "<unprintable
/// NAME object>"; what leaves the script passes as ScriptErrorSet.
QString textOf(pTHX_ SV* value);

/// The value without what a tied variable does; the same value for all others.
SvRef plainValue(pTHX_ SV* value);

/// Keys and values of a hash in the order of the keys: Perl's own is another one in each run. The
/// values are not fetched, and stay as long as the hash does not change.
std::vector<std::pair<QString, SV*>> entriesOf(pTHX_ HV* hash);

/// A Time::Piece in local time, with its fraction of a second in `epoch`; undef for an invalid
/// time.
SvRef toPerlTime(pTHX_ const QDateTime& time);
/// The time of an object that has a method `epoch`, such as Time::Piece or DateTime; invalid for
/// any other value.
QDateTime fromPerlTime(pTHX_ SV* value);

/// Whether the value is one that was made as a number, and no text that was used as one.
inline bool isNumberValue(pTHX_ SV* value) {
    PERL_UNUSED_CONTEXT;
    return SvNIOK(value) && !SvPOK(value) && !SvROK(value) && !SvIsBOOL(value);
}
/// A reference to a container of the type, without a class.
inline bool isPlainReference(SV* value, svtype type) {
    return SvROK(value) && SvTYPE(SvRV(value)) == type && !SvOBJECT(SvRV(value));
}

}  // namespace Tamrix::PerlPlugin
