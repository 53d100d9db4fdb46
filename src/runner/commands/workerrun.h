#pragma once

#include "runner/commands/casechoice.h"
#include "runner/farm/casetimes.h"

namespace Tamrix {

struct CaseRunSettings;

/// Runs the cases in worker processes and returns the exit code.
int runWithWorkers(const CaseRunSettings& settings, const Suite& suite, const CaseChoice& choice,
                   const CaseTimes& history);

}  // namespace Tamrix
