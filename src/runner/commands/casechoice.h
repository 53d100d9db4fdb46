#pragma once

#include <QList>
#include <QString>
#include <vector>

#include "base/outcome.h"
#include "platform/testresult/reportevent.h"
#include "runner/farm/casetimes.h"
#include "runner/suites/suite.h"

namespace Tamrix {

struct CaseRunSettings;

/// The cases of a run, in their order.
struct CaseChoice {
    QList<SuiteCase> cases;
    /// Seconds that each will take; empty, or -1, when that is not known.
    std::vector<double> times;
    /// What the reports tell of the choice.
    QList<EnvironmentFact> facts;
};

/// Chooses as the settings say, step by step: names, the failed ones of a journal, a shard,
/// repetitions, the order. Tells on standard error what a person should know of it.
Outcome<CaseChoice> chooseCases(const Suite& suite, const CaseRunSettings& settings,
                                const CaseTimes& history);

}  // namespace Tamrix
