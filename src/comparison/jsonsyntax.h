#pragma once

#include <QByteArray>
#include <QString>

namespace Tamrix {

/// Why a text is no JSON, and where. Plain data.
struct JsonProblem {
    /// Empty for a text that is JSON.
    QString reason;
    /// Both from 1. Columns are counted in bytes, as jsoncpp does; any of CR, LF and CRLF ends a
    /// line.
    int line = 0;
    int column = 0;
};

/// The first place at which a text in UTF-8 leaves the grammar of RFC 8259, at whatever depth.
/// Escaped surrogates have to come in pairs, since one alone is no character. Equal names in an
/// object are no fault of the grammar. Any thread.
JsonProblem jsonProblem(const QByteArray& text);

/// The first byte that is not UTF-8 in a file that no byte order mark says to be something else.
/// Any thread.
JsonProblem jsonEncodingProblem(const QByteArray& file);

}  // namespace Tamrix
