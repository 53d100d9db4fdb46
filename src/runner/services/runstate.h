#pragma once

#include "runner/applications/applications.h"
#include "runner/services/backgroundwork.h"
#include "runner/services/runfacts.h"

namespace Tamrix {

/// What the services of a run share.
struct RunState {
    RunFacts facts;
    Applications applications;
    BackgroundWork background{applications, facts};
};

}  // namespace Tamrix
