#pragma once

#include <QString>

#include "base/export.h"
#include "base/outcome.h"

namespace Tamrix {

/// The text of a file that is to be UTF-8.
struct Utf8Text {
    /// What is no UTF-8 in the file stands as replacement characters.
    QString text;
    /// The line, from 1, with the first byte that is no UTF-8; 0 when all is.
    int faultyLine = 0;
};

/// Reads a file. Fails with the reason, without the file's name, when it can't be read. A mark of
/// byte order at its start is left out. Any thread.
TAMRIX_EXPORT Outcome<Utf8Text> readUtf8File(const QString& path);

}  // namespace Tamrix
