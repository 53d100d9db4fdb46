#pragma once

#include <QImage>

#include "base/outcome.h"
#include "platform/objectmodel/display/xconnection.h"
#include "runner/processes/childprocess.h"

namespace Tamrix {

/// The X display that a program of this machine is sent to.
Display::DisplayAddress displayAddressOf(const ProgramStart& start);

/// What all of that display shows, also while the program does not answer. Fails when the display
/// can't be reached. Script thread only.
Outcome<QImage> displayPictureOf(const ProgramStart& start);

}  // namespace Tamrix
