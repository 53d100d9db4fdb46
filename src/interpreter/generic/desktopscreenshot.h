#pragma once

#include "base/export.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

/// Asks the current application for a picture of its desktop. A null image on failure, with
/// Inspector::lastError() set as far as the application told why, else empty. Script thread only.
TAMRIX_EXPORT Screenshot takeDesktopScreenshot();

}  // namespace Tamrix
