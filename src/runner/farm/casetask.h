#pragma once

namespace Tamrix {

/// One attempt at a test case, as a worker gets it.
struct CaseTask {
    /// In the list of the run's cases.
    int index = -1;
    /// Counted from 1.
    int attempt = 1;
    /// A worker that had it before has died, and may have died of it.
    bool wasGivenBack = false;

    bool operator==(const CaseTask& other) const = default;
};

}  // namespace Tamrix
