#pragma once

// The results that tell of a step which has not run as it should, in one place for those who write
// them and those who tell them apart.

namespace Tamrix {

struct FeatureResult {
    /// The result's message.
    const char* message;
    /// What Cucumber Messages call it.
    const char* status;
};

constexpr const char* noStepDefinition = "No Matching Step Definition";
constexpr const char* severalStepDefinitions = "Multiple Matching Step Definitions";
constexpr const char* pendingStepDefinition = "Pending Step Definition";

constexpr FeatureResult featureResults[] = {
    {noStepDefinition, "UNDEFINED"},
    {severalStepDefinitions, "AMBIGUOUS"},
    {pendingStepDefinition, "PENDING"},
};

}  // namespace Tamrix
