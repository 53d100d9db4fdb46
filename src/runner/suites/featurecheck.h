#pragma once

#include <vector>

#include "runner/suites/featurelist.h"

namespace Tamrix {

/// What is wrong between the feature files of a suite and the step definitions of its scripts.
struct FeatureCheck {
    /// Steps without a definition or with several, and scripts that can't be loaded, in the order
    /// of the cases and files.
    std::vector<FeatureProblem> problems;
    /// Step definitions that no feature file uses.
    std::vector<FeatureProblem> unused;
};

/// Looks every step of the features up, without running any. The scripts of the cases are
/// evaluated, so that they register their definitions; none of their functions is called.
/// `features` are those of the cases; of faulty ones no step is looked up. TAMRIX_PREFIX has to be
/// set. Script thread only.
FeatureCheck checkFeatures(const Suite& suite, const QList<SuiteCase>& cases,
                           const std::vector<ListedFeature>& features);

}  // namespace Tamrix
