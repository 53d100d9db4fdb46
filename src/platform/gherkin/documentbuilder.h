#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/gherkin/dialect.h"
#include "platform/gherkin/document.h"
#include "platform/gherkin/errors.h"
#include "platform/gherkin/line.h"

namespace Tamrix::Gherkin {

/// Builds the syntax tree of a feature file from its lines, which come in an order that the grammar
/// allows. Parsed pieces are kept in lists until they are complete, and then moved to the
/// document's memory in one piece.
class DocumentBuilder {
public:
    /// A file with more lines of texts, tags, cells and the like than this is not read.
    static constexpr std::size_t maxItems = 4'000'000;

    /// Errors in tables are appended to the list, which must outlive the builder.
    DocumentBuilder(std::string source, std::vector<ParseError>* errors);

    /// The file's text, to which texts that are handed in may point.
    std::string_view source() const;
    /// Whether there are more than maxItems.
    bool isFull() const { return m_itemCount > maxItems; }

    void setLanguage(std::string_view code) { m_feature.language = code; }
    void addComment(const Line& line);
    /// Those of the next title.
    void addTags(const std::vector<Syntax::Tag>& tags);
    void startTitle(TitleKind kind, Location location, std::string_view keyword,
                    std::string_view name);
    void addDescriptionLine(std::string_view line);
    void startStep(Location location, const Dialect::StepKeyword& keyword, std::string_view text);
    void addTableRow(const Line& line);
    void startDocString(const Line& line, std::string_view fence);
    void addDocStringLine(const Line& line);
    void finishDocString(const Line& line);

    /// To be called once, at the end.
    Document finish();

private:
    /// What the steps belong to.
    enum class Body { None, Background, Scenario };

    template <typename Item>
    std::span<const Item> keep(std::vector<Item>* list);
    template <typename Item>
    Item* keepOne(const Item& item);
    std::string_view keepText(std::string_view text);
    Syntax::Heading* startHeading(TitleKind kind);
    void closeDescription();
    void closeTable();
    void closeBody();
    void closeScenarios();

    Document m_document;
    std::vector<ParseError>* m_errors;
    std::size_t m_itemCount = 0;

    Syntax::Feature m_feature;
    bool m_hasFeature = false;
    Syntax::Rule m_rule;
    bool m_inRule = false;
    Syntax::Background m_background;
    Syntax::Scenario m_scenario;
    Body m_body = Body::None;
    Syntax::DocString m_docString;
    std::string m_docStringText;
    bool m_docStringIsEmpty = true;
    int m_docStringIndent = 0;

    std::vector<Syntax::Comment> m_comments;
    std::vector<Syntax::Tag> m_tags;
    std::vector<std::string_view> m_description;
    /// Whose description is being read; null when none is.
    Syntax::Heading* m_described = nullptr;
    std::vector<RawCell> m_rawCells;
    std::vector<Syntax::TableCell> m_cells;
    std::vector<Syntax::TableRow> m_rows;
    /// Whose table is being read.
    std::span<const Syntax::TableRow>* m_table = nullptr;
    bool m_tableIsUneven = false;
    std::vector<Syntax::Step> m_steps;
    std::vector<Syntax::Examples> m_examples;
    std::vector<Syntax::Scenario> m_scenarios;
    std::vector<Syntax::Rule> m_rules;
};

}  // namespace Tamrix::Gherkin
