#pragma once

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// A look-up by name has found nothing; `detail` says why, with what nearly was it. Where both the
/// test (`objectNotFoundDebugging`) and the debugger's front end want it, the script stops and the
/// front end may set things right. True when the look-up is to be made again, false when the error
/// takes its course. The map of object names in use, or without one that in the file
/// `objectMapPath`, has been read again then, if it has changed; a faulty one is told to the front
/// end and leaves the map as it was.
TAMRIX_EXPORT bool stopForMissingObject(const QString& name, const QString& detail,
                                        const QString& objectMapPath);

}  // namespace Tamrix
