#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

#include "base/export.h"

namespace Tamrix {

// Paths to what a debugger shows of values. A path is made of parts with "." between them: the name
// of a variable, then members.

/// The parts of a path. One in brackets may hold "." itself.
TAMRIX_EXPORT QStringList partsOfPath(const QString& path);

/// A text as one part of a path: what separates parts, what a line of words can't hold and
/// `furtherMarks` are percent-encoded.
TAMRIX_EXPORT QString pathPart(const QString& text, const QByteArray& furtherMarks = QByteArray());
TAMRIX_EXPORT QString textOfPathPart(const QString& part);

/// The number behind a mark, as in "^2"; nothing when the part has another form.
TAMRIX_EXPORT std::optional<int> markedNumber(const QString& part, QChar mark);

}  // namespace Tamrix
