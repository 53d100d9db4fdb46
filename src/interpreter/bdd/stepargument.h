#pragma once

#include <QString>

#include "base/export.h"
#include "platform/gherkin/records.h"

namespace Tamrix {

/// The table or the doc string of a step as a feature file has it, the columns aligned; empty when
/// the step has neither.
TAMRIX_EXPORT QString stepArgumentText(const Gherkin::Step& step);

}  // namespace Tamrix
