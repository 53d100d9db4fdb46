#pragma once

#include "runner/applications/applications.h"
#include "runner/services/backgroundwork.h"
#include "runner/services/runfacts.h"
#include "runner/video/recordings.h"

namespace Tamrix {

/// What the services of a run share.
struct RunState {
    RunFacts facts;
    Applications applications;
    Recordings recordings;
    BackgroundWork background{applications, recordings, facts};
};

}  // namespace Tamrix
