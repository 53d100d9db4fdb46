#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"
#include "comparison/diff.h"

namespace Tamrix {

// From texts to lines and from the differences of lines to a text.

/// The lines of the bytes with their line feeds; the last one may have none. They point into
/// `bytes`.
TAMRIX_EXPORT Diff::Lines splitLines(const QByteArray& bytes);

/// The bytes with every CRLF as a line feed.
TAMRIX_EXPORT QByteArray withoutCarriageReturns(QByteArray bytes);

/// The UTF-8 form of the text with a line feed behind every part of it that a CR or LF ends, and
/// behind the rest: a CRLF gives an empty line between.
TAMRIX_EXPORT QByteArray listifyQString(QString text);

/// Decodes UTF-8, or another Unicode encoding whose byte order mark is there.
TAMRIX_EXPORT QString toUtfString(const QByteArray& bytes);

/// Appends to `out` all lines of both sequences, each behind a mark of two characters: "- " for one
/// that is only expected, "+ " for one that only is there, "  " for one of both. A line without a
/// line end has the next mark right behind it. `differ` becomes true if a line is not in both.
/// Throws std::length_error when the text would exceed 1 GiB.
TAMRIX_EXPORT void createDiff(const Diff::Lines& expected, const Diff::Lines& actual,
                              QByteArray& out, bool& differ);

/// What stands between the words of a detail and the differences.
constexpr const char* diffHeading = " Diff:\n";

/// The text of a detail, its line ends as line feeds. It is put together in bytes, since it may
/// hold whole files.
TAMRIX_EXPORT QString decodedDetail(QByteArray detail);

}  // namespace Tamrix
