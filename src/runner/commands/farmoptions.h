#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "runner/commands/option.h"
#include "runner/farm/caseorder.h"

namespace Tamrix {

struct CaseRunSettings;

/// What a run is asked for that concerns many cases at once.
struct FarmSettings {
    /// 0 for none that was asked for.
    int jobs = 0;
    int retries = 0;
    bool failsOnFlaky = false;
    /// In seconds, 0 for none.
    int caseTimeout = 0;
    int repeat = 1;
    std::optional<OrderWish> order;
    /// A journal; empty for none.
    QString onlyFailed;
    /// A folder, absolute; empty for none.
    QString history;
    /// "private" or "inherit"; empty for what fits the jobs.
    QString home;
    std::optional<Shard> shard;

    /// Whether the cases run in processes that are more than one, or may be replaced.
    bool needsWorkers() const { return jobs > 0 || retries > 0 || caseTimeout > 0; }
    bool hasPrivateHomes() const {
        return home.isEmpty() ? jobs > 0 : home == QLatin1String("private");
    }
};

std::vector<Option<CaseRunSettings>> farmOptions();

}  // namespace Tamrix
