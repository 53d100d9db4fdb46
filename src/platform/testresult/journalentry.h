#pragma once

#include <QByteArray>
#include <QString>

#include "platform/testresult/journalformat.h"
#include "platform/testresult/reportevent.h"

// Which field of a journal's line holds what of an event.

namespace Tamrix::Journal {

Fields fieldsOf(const ReportEntry& entry);

/// The line of an entry, with a line feed. Lone surrogates become U+FFFD.
QByteArray entryLine(const ReportEntry& entry);

/// Reads an entry's line. Returns an error text, empty on success. Fields that the kind of the
/// entry does not use must be right, too, and are dropped.
QString parseEntry(const QByteArray& line, ReportEntry* entry, bool* isJson);

}  // namespace Tamrix::Journal
