#include "platform/gherkin/recordsfromtree.h"

#include <algorithm>

namespace Tamrix::Gherkin {

namespace {

std::vector<std::string> lines(std::span<const std::string_view> description) {
    return {description.begin(), description.end()};
}

std::vector<std::string> names(std::span<const Syntax::Tag> tags) {
    std::vector<std::string> result;
    appendTags(tags, &result);
    return result;
}

}  // namespace

Feature featureRecord(const Syntax::Feature& feature) {
    return {feature.location.line, std::string(feature.name), lines(feature.description),
            std::string(feature.keyword), names(feature.tags)};
}

Scenario scenarioRecord(const Syntax::Scenario& scenario, const RowValues& values) {
    return {scenario.location.line, values.filledIn(scenario.name), lines(scenario.description),
            std::string(scenario.keyword), names(scenario.tags)};
}

std::vector<TableCell> rowRecord(const Syntax::TableRow& row, const RowValues& values) {
    std::vector<TableCell> cells;
    cells.reserve(row.cells.size());
    for (const Syntax::TableCell& cell : row.cells)
        cells.push_back({values.filledIn(cell.text), cell.location.line});
    return cells;
}

Step stepRecord(const Syntax::Step& step, const RowValues& values) {
    Step record;
    record.line = step.location.line;
    record.text = values.filledIn(step.text);
    record.keyword = step.keyword;
    record.type = step.type;
    record.extent = {step.location.line, step.location.column, step.location.line};
    for (const Syntax::TableRow& row : step.table) {
        record.table.push_back(rowRecord(row, values));
        record.extent.lastLine = std::max(record.extent.lastLine, row.location.line);
    }
    if (step.docString) {
        record.docString = DocString{values.filledIn(step.docString->mediaType),
                                     values.filledIn(step.docString->text)};
        record.extent.lastLine = std::max(record.extent.lastLine, step.docString->lastLine);
    }
    return record;
}

void appendTags(std::span<const Syntax::Tag> tags, std::vector<std::string>* names) {
    for (const Syntax::Tag& tag : tags)
        names->emplace_back(tag.name.substr(1));
}

}  // namespace Tamrix::Gherkin
