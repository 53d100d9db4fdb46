// Feature files. The input is the file. Places must lie in it, in the order of the file, and what
// is right must be whole.

#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/fuzztarget.h"
#include "platform/gherkin/line.h"
#include "platform/gherkin/parser.h"
#include "platform/gherkin/utf8.h"

using namespace Tamrix::Gherkin;

namespace {

/// The number of code points of each line.
std::vector<int> lineLengths(std::string_view text) {
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    std::vector<int> lengths;
    LineReader reader(text);
    for (Line line; reader.next(&line);)
        lengths.push_back(codePointCount(line.text));
    return lengths;
}

class Checker {
public:
    explicit Checker(std::string_view text) : m_lengths(lineLengths(text)) {}

    void place(Location location) const {
        fuzzRequire(location.line >= 1 && location.line <= static_cast<int>(m_lengths.size()),
                    "the line is there");
        const int length = m_lengths[static_cast<std::size_t>(location.line) - 1];
        fuzzRequire(location.column >= 1 && location.column <= length, "the column is there");
    }

    void scenarios(const Syntax::Background* background,
                   std::span<const Syntax::Scenario> scenarios) const {
        if (background) {
            place(background->location);
            steps(background->steps);
        }
        for (const Syntax::Scenario& scenario : scenarios) {
            heading(scenario, scenario.tags);
            steps(scenario.steps);
            for (const Syntax::Examples& examples : scenario.examples) {
                heading(examples, examples.tags);
                table(examples.table);
            }
        }
    }

    void heading(const Syntax::Heading& heading, std::span<const Syntax::Tag> tags) const {
        place(heading.location);
        fuzzRequire(!heading.keyword.empty(), "a title has a keyword");
        for (const Syntax::Tag& tag : tags) {
            place(tag.location);
            fuzzRequire(tag.name.size() > 1 && tag.name[0] == '@', "a tag has a name");
        }
    }

private:
    void steps(std::span<const Syntax::Step> steps) const {
        for (const Syntax::Step& step : steps) {
            place(step.location);
            fuzzRequire(!step.keyword.empty(), "a step has a keyword");
            table(step.table);
            if (step.docString)
                fuzzRequire(step.docString->location.line > step.location.line &&
                                step.docString->lastLine > step.docString->location.line,
                            "a doc string has two fences");
        }
    }

    void table(std::span<const Syntax::TableRow> table) const {
        for (const Syntax::TableRow& row : table) {
            place(row.location);
            fuzzRequire(row.cells.size() == table[0].cells.size(), "the table is even");
            for (const Syntax::TableCell& cell : row.cells)
                place(cell.location);
        }
    }

    std::vector<int> m_lengths;
};

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    const std::string source(reinterpret_cast<const char*>(data), size);
    const ParseResult result = parse(source);
    fuzzRequire(result.errors.size() <= maxParseErrors, "the parser gives up");
    if (!result.errors.empty()) {
        for (const ParseError& error : result.errors)
            fuzzRequire(error.location.line >= 1 && !error.message.empty(), "an error has a place");
        return 0;
    }
    const Checker checker(source);
    if (const Syntax::Feature* const feature = result.document.feature()) {
        checker.heading(*feature, feature->tags);
        checker.scenarios(feature->background, feature->scenarios);
        for (const Syntax::Rule& rule : feature->rules) {
            checker.heading(rule, rule.tags);
            checker.scenarios(rule.background, rule.scenarios);
        }
    }
    return 0;
}
