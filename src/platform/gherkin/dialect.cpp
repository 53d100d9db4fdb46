#include "platform/gherkin/dialect.h"

#include <algorithm>

namespace Tamrix::Gherkin {

namespace {

/// Which lists make the titles of a kind.
struct TitleLists {
    TitleKind kind;
    KeywordList list;
};
constexpr TitleLists titleLists[] = {
    {TitleKind::Feature, KeywordList::Feature},
    {TitleKind::Rule, KeywordList::Rule},
    {TitleKind::Background, KeywordList::Background},
    {TitleKind::Scenario, KeywordList::Scenario},
    {TitleKind::Scenario, KeywordList::ScenarioOutline},
    {TitleKind::Examples, KeywordList::Examples},
};

struct StepList {
    KeywordList list;
    KeywordType type;
};
constexpr StepList stepLists[] = {
    {KeywordList::Given, KeywordType::Context},   {KeywordList::When, KeywordType::Action},
    {KeywordList::Then, KeywordType::Outcome},    {KeywordList::And, KeywordType::Conjunction},
    {KeywordList::But, KeywordType::Conjunction},
};

/// Begins a step in every language.
constexpr std::string_view asterisk = "* ";

template <typename Visitor>
void forEachKeyword(const DialectRow& row, KeywordList list, const Visitor& visit) {
    std::string_view keywords = row.keywords[static_cast<std::size_t>(list)];
    while (!keywords.empty()) {
        const std::size_t end = std::min(keywords.find('|'), keywords.size());
        visit(keywords.substr(0, end));
        keywords.remove_prefix(std::min(end + 1, keywords.size()));
    }
}

}  // namespace

std::optional<Dialect> Dialect::find(std::string_view code) {
    const auto row = std::find_if(dialectRows.begin(), dialectRows.end(),
                                  [&](const DialectRow& each) { return each.code == code; });
    if (row == dialectRows.end())
        return std::nullopt;
    return Dialect(*row);
}

Dialect::Dialect(const DialectRow& row) : m_code(row.code) {
    for (const TitleLists& lists : titleLists)
        forEachKeyword(row, lists.list, [&](std::string_view keyword) {
            m_titles[static_cast<std::size_t>(lists.kind)].push_back(keyword);
        });
    addStepKeyword(asterisk, KeywordType::Unknown);
    for (const StepList& list : stepLists)
        forEachKeyword(row, list.list,
                       [&](std::string_view keyword) { addStepKeyword(keyword, list.type); });
    std::stable_sort(m_steps.begin(), m_steps.end(),
                     [](const StepKeyword& left, const StepKeyword& right) {
                         return left.text.size() > right.text.size();
                     });
}

void Dialect::addStepKeyword(std::string_view keyword, KeywordType type) {
    const auto known = std::find_if(m_steps.begin(), m_steps.end(),
                                    [&](const StepKeyword& each) { return each.text == keyword; });
    // A word that stands for more than one kind says nothing about the step.
    if (known == m_steps.end())
        m_steps.push_back({keyword, type});
    else if (known->type != type)
        known->type = KeywordType::Unknown;
}

std::string_view Dialect::title(TitleKind kind, std::string_view line) const {
    for (const std::string_view keyword : m_titles[static_cast<std::size_t>(kind)])
        if (line.size() > keyword.size() && line[keyword.size()] == ':' &&
            line.starts_with(keyword))
            return keyword;
    return {};
}

Dialect::StepKeyword Dialect::step(std::string_view line) const {
    for (const StepKeyword& keyword : m_steps)
        if (line.starts_with(keyword.text))
            return keyword;
    return {};
}

}  // namespace Tamrix::Gherkin
