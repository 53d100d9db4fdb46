#pragma once

#include <QByteArray>
#include <QString>
#include <cstdio>

namespace Tamrix {

/// Writes at once; false when that fails.
bool writeBytes(FILE* stream, const QByteArray& bytes);

/// Tells what goes wrong with the run itself, on a line of standard error.
void tell(const QString& text);

/// From now on Qt's warnings go to standard error without what could control a terminal.
void escapeWarnings();

}  // namespace Tamrix
