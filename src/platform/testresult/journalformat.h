#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

#include "platform/testresult/lineinfo.h"

// The journal's lines as bytes, both ways. docs/reports.md tells the format to those who read it
// with other programs.

namespace Tamrix::Journal {

constexpr int version = 1;

/// Longer lines are not read, and therefore not written.
constexpr int longestLine = 64 * 1024 * 1024;

/// How every journal begins.
extern const char* const beginning;

/// What a line can hold; journalentry.cpp tells what each kind of entry makes of it. A field at its
/// default is left out of the line.
struct Fields {
    QString kind;
    QDateTime time;
    std::optional<int> type;
    QString message;
    QString detail;
    CallStack callStack;
    QString extra;
    int value = -1;
    QString path;
    QString explanation;
    bool isEcho = false;
};

/// The header line, with a line feed.
QByteArray headerLine(const QDateTime& created);

/// The line of an entry, with a line feed. Lone surrogates become U+FFFD.
QByteArray lineOf(const Fields& fields);

/// Checks a header line. Returns an error text, empty for one that this program can read.
/// `*isJson` tells whether the line was a JSON object at all.
QString checkHeader(const QByteArray& line, bool* isJson);

/// Reads an entry's line. Returns an error text, empty on success.
QString parseFields(const QByteArray& line, Fields* fields, bool* isJson);

}  // namespace Tamrix::Journal
