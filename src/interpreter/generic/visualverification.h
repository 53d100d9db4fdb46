#pragma once

#include <QImage>
#include <QString>

#include "base/export.h"

namespace Tamrix {

class RunnerInterface;
class ScriptContext;

/// The verdict of a function that looked for something on the screen: adds "Verified" or "Not
/// verified" to the runner's results, with `image`, which is what it looked at, as the screenshot
/// when the options ask for one (a null image: the desktop as it is now), and does what a failure
/// does to the run. `runner` and its results may be null: then there is no result to add.
///
/// `explanation` is what reports show beside the detail.
///
/// Returns true with `passed` as the result of the call, false when the failure has set an error;
/// the calling function then ends without a result. Script thread only.
TAMRIX_EXPORT bool visualVerificationResult(ScriptContext* context, RunnerInterface* runner,
                                            bool passed, const QString& detail,
                                            const QString& comment, const QImage& image,
                                            const QString& explanation = QString());

}  // namespace Tamrix
