#include "platform/gherkin/treetext.h"

namespace Tamrix::Gherkin::Test {

namespace {

class TreeWriter {
public:
    std::string text;

    void feature(const Syntax::Feature& feature) {
        heading("feature (" + std::string(feature.language) + ")", feature, feature.tags);
        Nesting nesting(this);
        parts(feature.background, feature.scenarios);
        for (const Syntax::Rule& rule : feature.rules) {
            heading("rule", rule, rule.tags);
            Nesting inner(this);
            parts(rule.background, rule.scenarios);
        }
    }

    void comment(const Syntax::Comment& comment) {
        line(comment.location, "comment " + quoted(comment.text));
    }

private:
    struct Nesting {
        explicit Nesting(TreeWriter* owner) : writer(owner) { ++writer->m_depth; }
        ~Nesting() { --writer->m_depth; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;
        TreeWriter* writer;
    };

    static std::string quoted(std::string_view value) {
        std::string result = "\"";
        for (const char byte : value) {
            if (byte == '"' || byte == '\\')
                result += '\\';
            if (byte == '\n')
                result += "\\n";
            else
                result += byte;
        }
        return result + '"';
    }

    void line(Location location, const std::string& what) {
        text.append(std::size_t{2} * static_cast<std::size_t>(m_depth), ' ');
        text += std::to_string(location.line) + ":" + std::to_string(location.column) + " " + what +
                "\n";
    }

    void heading(const std::string& what, const Syntax::Heading& heading,
                 std::span<const Syntax::Tag> tags) {
        line(heading.location, what + " " + quoted(heading.keyword) + " " + quoted(heading.name));
        Nesting nesting(this);
        for (const Syntax::Tag& tag : tags)
            line(tag.location, "tag " + quoted(tag.name));
        for (const std::string_view description : heading.description)
            line({0, 0}, "description " + quoted(description));
    }

    void parts(const Syntax::Background* background, std::span<const Syntax::Scenario> scenarios) {
        if (background) {
            heading("background", *background, {});
            steps(background->steps);
        }
        for (const Syntax::Scenario& scenario : scenarios) {
            heading("scenario", scenario, scenario.tags);
            steps(scenario.steps);
            Nesting nesting(this);
            for (const Syntax::Examples& examples : scenario.examples) {
                heading("examples", examples, examples.tags);
                table(examples.table);
            }
        }
    }

    void steps(std::span<const Syntax::Step> steps) {
        constexpr const char* types[] = {"Unknown", "Context", "Action", "Outcome", "Conjunction"};
        Nesting nesting(this);
        for (const Syntax::Step& step : steps) {
            line(step.location, "step " + quoted(step.keyword) + " " + quoted(step.text) + " " +
                                    types[static_cast<int>(step.type)]);
            table(step.table);
            if (const Syntax::DocString* const docString = step.docString) {
                Nesting inner(this);
                line(docString->location, "doc string " + quoted(docString->fence) + " " +
                                              quoted(docString->mediaType) + " " +
                                              quoted(docString->text));
            }
        }
    }

    void table(std::span<const Syntax::TableRow> table) {
        Nesting nesting(this);
        for (const Syntax::TableRow& row : table) {
            line(row.location, "row");
            Nesting inner(this);
            for (const Syntax::TableCell& cell : row.cells)
                line(cell.location, "cell " + quoted(cell.text));
        }
    }

    int m_depth = 0;
};

}  // namespace

std::string treeText(const ParseResult& result) {
    std::string text;
    for (const ParseError& error : result.errors)
        text += std::to_string(error.location.line) + ":" + std::to_string(error.location.column) +
                " " + error.message + ", got '" + error.token + "'\n";
    if (!result.errors.empty())
        return text;
    TreeWriter writer;
    if (const Syntax::Feature* const feature = result.document.feature())
        writer.feature(*feature);
    for (const Syntax::Comment& comment : result.document.comments())
        writer.comment(comment);
    return writer.text;
}

}  // namespace Tamrix::Gherkin::Test
