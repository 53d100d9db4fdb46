#pragma once

#include <QMap>
#include <QString>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/objectname.h"

namespace Tamrix {

/// The path of the program objectmaptool of the installation.
TAMRIX_EXPORT QString objectMapToolBinary();

/// Runs the program on a map's script and reads the entries that it writes. With `text`, which is
/// not null then, that text stands for the script's. Ends the program when it takes longer than
/// `timeout` milliseconds or the run is interrupted. A failure tells what the program wrote to
/// standard error.
TAMRIX_EXPORT Outcome<QMap<QString, ObjectName>> runObjectMapTool(const QString& path,
                                                                  const QByteArray& text,
                                                                  int timeout);

}  // namespace Tamrix
