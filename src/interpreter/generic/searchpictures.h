#pragma once

#include <QImage>

#include "base/export.h"
#include "interpreter/generic/searchregionsource.h"

namespace Tamrix {

class InternalDebugger;
class RunnerInterface;
class ScriptContext;

// What searches on the screen leave in the results.

/// Adds a line to the log of the results, at the position of the call.
TAMRIX_EXPORT void addSearchLog(RunnerInterface* runner, ScriptContext* context,
                                const QString& message, const QString& detail = QString());

/// Adds the picture, with the edges of the searched rectangles tinted, to the results.
TAMRIX_EXPORT void storeScreenshot(RunnerInterface* runner, ScriptContext* context,
                                   const Vision::SearchArea& area);

/// The picture as it is, with texts that tell programs what was searched and how:
/// "com.brindlark.tamrix.searchRegion", "com.brindlark.tamrix.screenshot.data" and, for a search
/// whose contextName() is NAME, "com.brindlark.tamrix.NAME.state".
TAMRIX_EXPORT QImage prepareErrorScreenshot(const Vision::SearchArea& area,
                                            const InternalDebugger& search);

}  // namespace Tamrix
