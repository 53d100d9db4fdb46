#pragma once

#include <json/value.h>

#include <QByteArray>
#include <QString>

#include "base/export.h"

namespace Tamrix {

// Values of JSON texts compared. Texts that are nested too deep for the reader, or that name a
// number beyond all ranges, are errors like any other. Any thread.

/// Decodes the bytes of a file as toUtfString() does. False with the reason in `*error` when they
/// are not UTF-8 and no byte order mark tells of another encoding.
TAMRIX_EXPORT bool decodeJson(const QByteArray& bytes, QString* text, QString* error);

/// Reads strict JSON: an array or object, and nothing else but white space. False with the place
/// and the reason in `*error`.
TAMRIX_EXPORT bool readJSON(const QString& text, Json::Value* out, QString* error);

/// Whether both texts hold equal values; else `*message` says what is wrong with a text or names
/// the first difference.
TAMRIX_EXPORT bool compareJson(const QString& expected, const QString& actual, QString* message);

/// Whether the values are equal, types included and in spite of the order of members; else
/// `*message` names the first difference. Floating point numbers may differ in their last place.
TAMRIX_EXPORT bool compareJsonValues(const Json::Value& a, const Json::Value& b, QString* message);

/// The text in one layout, its members by name; false when it is no JSON.
TAMRIX_EXPORT bool formatJson(const QString& text, QString* out);

/// The name of the value's type.
TAMRIX_EXPORT QString jsonTypeString(const Json::Value& value);

}  // namespace Tamrix
