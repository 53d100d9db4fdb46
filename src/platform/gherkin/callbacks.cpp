#include "platform/gherkin/callbacks.h"

namespace Tamrix::Gherkin {

Filter::~Filter() = default;
Debugger::~Debugger() = default;
ReportGenerator::~ReportGenerator() = default;
ScriptActions::~ScriptActions() = default;

}  // namespace Tamrix::Gherkin
