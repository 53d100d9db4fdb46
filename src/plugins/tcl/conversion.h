#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>
#include <string_view>

#include "plugins/tcl/tclref.h"

namespace Tamrix::TclPlugin {

// Texts on their way to Tcl and back. Tcl 8.6 keeps a text in UTF-8 with a NUL in two bytes and, as
// UTF-16 does, two surrogates for a character beyond U+FFFF; all characters and lone surrogates
// pass.

QByteArray toTclBytes(const QString& text);
/// The text of a script, in which lines end as Tcl takes it from a file.
QByteArray toTclSource(QString text);
QString fromTclBytes(std::string_view bytes);

TclRef toTcl(const QString& text);
TclRef toTcl(const QStringList& texts);
/// A time as a text that `clock scan` reads with the format "%Y-%m-%dT%H:%M:%S", in local time,
/// with milliseconds where there are some; empty for an invalid one.
TclRef toTcl(const QDateTime& time);

/// The value's text as Tcl has it; valid as long as the value is not changed.
std::string_view bytesOf(Tcl_Obj* value);
QString textOf(Tcl_Obj* value);

}  // namespace Tamrix::TclPlugin
