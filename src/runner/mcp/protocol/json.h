#pragma once

#include <json/json.h>

#include <QByteArray>
#include <QString>

#include "base/outcome.h"

namespace Tamrix::Mcp {

/// Reads one value of JSON, nothing but blanks behind it. A failure says what is wrong, and at
/// which byte the text is no UTF-8.
Outcome<Json::Value> parseJson(const QByteArray& text);

/// The value on one line, without line feed. Always sound UTF-8: what can't be written as such
/// becomes U+FFFD.
QByteArray jsonLine(const Json::Value& value);

/// A text as a value.
Json::Value jsonText(const QString& text);
/// The text of a value that is one.
QString textOf(const Json::Value& value);

}  // namespace Tamrix::Mcp
