#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/document.h"
#include "platform/gherkin/outline.h"
#include "platform/gherkin/records.h"

namespace Tamrix::Gherkin {

// What callbacks get, made of the tree. With the values of a row they are filled in.

Feature featureRecord(const Syntax::Feature& feature);
Scenario scenarioRecord(const Syntax::Scenario& scenario, const RowValues& values);
TAMRIX_EXPORT Step stepRecord(const Syntax::Step& step, const RowValues& values);
std::vector<TableCell> rowRecord(const Syntax::TableRow& row, const RowValues& values);

/// Appends the tags' names without "@".
void appendTags(std::span<const Syntax::Tag> tags, std::vector<std::string>* names);

}  // namespace Tamrix::Gherkin
