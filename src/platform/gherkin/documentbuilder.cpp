#include "platform/gherkin/documentbuilder.h"

#include <algorithm>
#include <memory>
#include <memory_resource>
#include <type_traits>
#include <utility>

#include "platform/gherkin/utf8.h"

namespace Tamrix::Gherkin {

struct Document::Storage {
    explicit Storage(std::string text) : source(std::move(text)) {}

    std::string source;
    /// Everything of the tree; nothing in it has a destructor to run.
    std::pmr::monotonic_buffer_resource memory;
    const Syntax::Feature* feature = nullptr;
    std::span<const Syntax::Comment> comments;
};

Document::Document() : m_storage(std::make_unique<Storage>(std::string())) {}
Document::~Document() = default;
Document::Document(Document&&) noexcept = default;
Document& Document::operator=(Document&&) noexcept = default;

const Syntax::Feature* Document::feature() const {
    return m_storage->feature;
}

std::span<const Syntax::Comment> Document::comments() const {
    return m_storage->comments;
}

DocumentBuilder::DocumentBuilder(std::string source, std::vector<ParseError>* errors)
    : m_errors(errors) {
    m_document.m_storage = std::make_unique<Document::Storage>(std::move(source));
}

std::string_view DocumentBuilder::source() const {
    return m_document.m_storage->source;
}

template <typename Item>
std::span<const Item> DocumentBuilder::keep(std::vector<Item>* list) {
    static_assert(std::is_trivially_destructible_v<Item>);
    if (list->empty())
        return {};
    const std::size_t count = list->size();
    void* const memory = m_document.m_storage->memory.allocate(count * sizeof(Item), alignof(Item));
    Item* const items = static_cast<Item*>(memory);
    std::uninitialized_copy(list->begin(), list->end(), items);
    list->clear();
    return {items, count};
}

template <typename Item>
Item* DocumentBuilder::keepOne(const Item& item) {
    static_assert(std::is_trivially_destructible_v<Item>);
    void* const memory = m_document.m_storage->memory.allocate(sizeof(Item), alignof(Item));
    return new (memory) Item(item);
}

std::string_view DocumentBuilder::keepText(std::string_view text) {
    if (text.empty())
        return {};
    char* const bytes = static_cast<char*>(m_document.m_storage->memory.allocate(text.size(), 1));
    std::copy(text.begin(), text.end(), bytes);
    return {bytes, text.size()};
}

void DocumentBuilder::addComment(const Line& line) {
    ++m_itemCount;
    m_comments.push_back({{line.number, 1}, line.text});
}

void DocumentBuilder::addTags(const std::vector<Syntax::Tag>& tags) {
    closeDescription();
    m_itemCount += tags.size();
    m_tags.insert(m_tags.end(), tags.begin(), tags.end());
}

void DocumentBuilder::startTitle(TitleKind kind, Location location, std::string_view keyword,
                                 std::string_view name) {
    closeDescription();
    closeTable();
    m_described = startHeading(kind);
    m_described->location = location;
    m_described->keyword = keyword;
    m_described->name = name;
    ++m_itemCount;
}

Syntax::Heading* DocumentBuilder::startHeading(TitleKind kind) {
    if (kind != TitleKind::Examples)
        closeBody();
    switch (kind) {
        case TitleKind::Feature:
            m_hasFeature = true;
            m_feature.tags = keep(&m_tags);
            return &m_feature;
        case TitleKind::Rule:
            closeScenarios();
            m_inRule = true;
            m_rule = {};
            m_rule.tags = keep(&m_tags);
            return &m_rule;
        case TitleKind::Background:
            m_body = Body::Background;
            m_background = {};
            return &m_background;
        case TitleKind::Scenario:
            m_body = Body::Scenario;
            m_scenario = {};
            m_scenario.tags = keep(&m_tags);
            return &m_scenario;
        case TitleKind::Examples:
            break;
    }
    Syntax::Examples& examples = m_examples.emplace_back();
    examples.tags = keep(&m_tags);
    m_table = &examples.table;
    return &examples;
}

void DocumentBuilder::addDescriptionLine(std::string_view line) {
    ++m_itemCount;
    m_description.push_back(line);
}

void DocumentBuilder::closeDescription() {
    while (!m_description.empty() && trimmed(m_description.back()).empty())
        m_description.pop_back();
    if (m_described)
        m_described->description = keep(&m_description);
    m_described = nullptr;
}

void DocumentBuilder::startStep(Location location, const Dialect::StepKeyword& keyword,
                                std::string_view text) {
    closeDescription();
    closeTable();
    ++m_itemCount;
    Syntax::Step& step = m_steps.emplace_back();
    step.location = location;
    step.keyword = keyword.text;
    step.type = keyword.type;
    step.text = text;
    m_table = &step.table;
}

void DocumentBuilder::addTableRow(const Line& line) {
    closeDescription();
    m_rawCells.clear();
    appendCells(line, &m_rawCells);
    for (const RawCell& cell : m_rawCells)
        m_cells.push_back(
            {cell.location, cell.hasEscapes ? keepText(unescapedCell(cell.text)) : cell.text});
    m_itemCount += 1 + m_cells.size();
    const Syntax::TableRow row{line.location(), keep(&m_cells)};
    if (!m_rows.empty() && m_rows.front().cells.size() != row.cells.size() && !m_tableIsUneven) {
        // Once for each table: the rows below are mostly as wrong as the first.
        m_tableIsUneven = true;
        m_errors->push_back({row.location,
                             "expected as many cells as in the table's first row, " +
                                 std::to_string(m_rows.front().cells.size()) + ", not " +
                                 std::to_string(row.cells.size()),
                             std::string(trimmedEnd(line.content))});
    }
    m_rows.push_back(row);
}

void DocumentBuilder::closeTable() {
    m_tableIsUneven = false;
    if (!m_rows.empty())
        *m_table = keep(&m_rows);
}

void DocumentBuilder::startDocString(const Line& line, std::string_view fence) {
    m_docString = {};
    m_docString.location = line.location();
    m_docString.fence = fence;
    m_docString.mediaType = trimmed(line.content.substr(fence.size()));
    m_docStringText.clear();
    m_docStringIsEmpty = true;
    m_docStringIndent = line.column - 1;
}

void DocumentBuilder::addDocStringLine(const Line& line) {
    ++m_itemCount;
    if (!m_docStringIsEmpty)
        m_docStringText += '\n';
    m_docStringIsEmpty = false;
    // As much of the indentation goes as the fence has; a line with less loses what it has.
    std::string_view text = line.text;
    for (int i = 1; i < std::min(line.column, m_docStringIndent + 1); ++i)
        takeCodePoint(&text);
    // A fence inside is written with a backslash before each of its characters.
    const std::string_view escape = m_docString.fence == "```" ? R"(\`\`\`)" : R"(\"\"\")";
    for (std::size_t at = text.find(escape); at != std::string_view::npos; at = text.find(escape)) {
        m_docStringText += text.substr(0, at);
        m_docStringText += m_docString.fence;
        text.remove_prefix(at + escape.size());
    }
    m_docStringText += text;
}

void DocumentBuilder::finishDocString(const Line& line) {
    m_docString.lastLine = line.number;
    m_docString.text = keepText(m_docStringText);
    m_steps.back().docString = keepOne(m_docString);
}

void DocumentBuilder::closeBody() {
    if (m_body == Body::Background) {
        m_background.steps = keep(&m_steps);
        (m_inRule ? m_rule.background : m_feature.background) = keepOne(m_background);
    } else if (m_body == Body::Scenario) {
        m_scenario.steps = keep(&m_steps);
        m_scenario.examples = keep(&m_examples);
        m_scenarios.push_back(m_scenario);
    }
    m_body = Body::None;
}

void DocumentBuilder::closeScenarios() {
    (m_inRule ? m_rule.scenarios : m_feature.scenarios) = keep(&m_scenarios);
    if (m_inRule)
        m_rules.push_back(m_rule);
}

Document DocumentBuilder::finish() {
    closeDescription();
    closeTable();
    closeBody();
    closeScenarios();
    m_feature.rules = keep(&m_rules);
    Document::Storage& storage = *m_document.m_storage;
    if (m_hasFeature)
        storage.feature = keepOne(m_feature);
    storage.comments = keep(&m_comments);
    return std::move(m_document);
}

}  // namespace Tamrix::Gherkin
