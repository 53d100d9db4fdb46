#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"

namespace Tamrix {

// Names of files and values of variables are bytes for the system, mostly UTF-8, but any. In texts,
// a byte that is not UTF-8 is the lone surrogate U+DC00 plus the byte, as in Python, so that the
// bytes come out again as they were.

TAMRIX_EXPORT QString fromNativeBytes(const QByteArray& bytes);
/// Other lone surrogates become "?".
TAMRIX_EXPORT QByteArray toNativeBytes(const QString& text);

/// Makes Qt treat names of files, arguments and whatever else it takes for text of the locale in
/// this way, where the locale's encoding is UTF-8. Call it before there is an application object.
TAMRIX_EXPORT void useNativeBytesForLocale();

}  // namespace Tamrix
