#pragma once

#include <QByteArray>
#include <QString>

#include "base/export.h"

namespace Tamrix {

// UTF-8 that also holds lone surrogates, as the three bytes that each would have. Texts of scripts
// may hold them, and QString's own conversions replace them.

/// UTF-8 without them. A byte-order mark at the beginning, which QString leaves out, is a
/// character.
TAMRIX_EXPORT QString fromWholeUtf8(const char* bytes, int size);

TAMRIX_EXPORT QByteArray toLooseUtf8(const QString& text);
/// What is none of it becomes replacement characters.
TAMRIX_EXPORT QString fromLooseUtf8(const char* bytes, int size);

}  // namespace Tamrix
