#pragma once

#include <QtGlobal>

namespace Tamrix::Agent {

/// The time stamp for the next event of the window system, in ms: never less than the one before.
ulong eventTime();
/// Lets time stamps go on as if `milliseconds` had passed.
void advanceEventTime(ulong milliseconds);

}  // namespace Tamrix::Agent
