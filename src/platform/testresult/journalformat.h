#pragma once

#include <QByteArray>
#include <QString>

#include "platform/testresult/reportgenerator.h"

// The journal's lines, both ways. docs/reports.md tells the format to those who read it with other
// programs.

namespace Tamrix::Journal {

constexpr int version = 1;

/// Longer lines are not read, and therefore not written.
constexpr int longestLine = 64 * 1024 * 1024;

/// How every journal begins.
extern const char* const beginning;

/// The header line, with a line feed.
QByteArray headerLine(const QDateTime& created);

/// The line of an entry, with a line feed. Lone surrogates become U+FFFD.
QByteArray entryLine(const ReportEntry& entry);

/// Checks a header line. Returns an error text, empty for one that this program can read.
/// `*isJson` tells whether the line was a JSON object at all.
QString checkHeader(const QByteArray& line, bool* isJson);

/// Reads an entry's line. Returns an error text, empty on success.
QString parseEntry(const QByteArray& line, ReportEntry* entry, bool* isJson);

}  // namespace Tamrix::Journal
