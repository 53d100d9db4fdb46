#include "platform/gherkin/callbacks.h"

namespace Tamrix::Gherkin {

Filter::~Filter() = default;
Debugger::~Debugger() = default;
ReportGenerator::~ReportGenerator() = default;

void ReportGenerator::matchedStep(const Step&, const StepMatch&) {}

ScriptActions::~ScriptActions() = default;

}  // namespace Tamrix::Gherkin
