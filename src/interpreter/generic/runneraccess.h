#pragma once

namespace Tamrix {

class RunnerInterface;

/// The current runner. Without one a Qt warning tells that there is no `scriptFunction`(), and the
/// calling function returns without a result and without an error.
RunnerInterface* runnerFor(const char* scriptFunction);

}  // namespace Tamrix
