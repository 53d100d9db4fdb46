#pragma once

#include "runner/applications/launcher.h"

namespace Tamrix {

// The ways into programs, each defined in its own file.

/// "plugin": Qt loads the agent as one of its plug-ins.
const Launcher& pluginLauncher();
/// "preload": the dynamic linker loads a hook, for programs that pass over Qt's plug-ins.
const Launcher& preloadLauncher();
/// "none": no agent; the program is driven by its windows on the X display.
const Launcher& noneLauncher();

}  // namespace Tamrix
