#include "interpreter/bdd/gherkinfilter.h"

#include "interpreter/bdd/scenariofilters.h"
#include "platform/gherkin/featurerun.h"

namespace Tamrix {

namespace {

std::unique_ptr<FilterInterface> negated(std::unique_ptr<FilterInterface> filter) {
    return std::make_unique<NegationFilter>(std::move(filter));
}

/// Null with `*error` set for a wrong one.
std::unique_ptr<FilterInterface> alternativeFilter(const QString& alternative, QString* error) {
    // 2. A "~" in front negates; an "@" behind it says nothing.
    const bool isNegated = alternative.startsWith(QLatin1Char('~'));
    QString word = isNegated ? alternative.mid(1) : alternative;
    if (word.startsWith(QLatin1Char('@')))
        word.remove(0, 1);
    const std::string tag = word.toStdString();

    // 3. A reserved tag can't be negated: it is a negation itself.
    if (Gherkin::isReservedTag(tag)) {
        if (!isNegated)
            return negated(std::make_unique<TaggedFilter>());
        *error = "~ operator is not supported for reserved tag: " + alternative;
        return nullptr;
    }

    // 4. Any other word is a tag.
    auto filter = std::make_unique<SingleTagFilter>(tag);
    return isNegated ? negated(std::move(filter)) : std::move(filter);
}

}  // namespace

std::unique_ptr<FilterInterface> allFilterByArgs(const QStringList& tagArgs,
                                                 const std::vector<unsigned>& indices,
                                                 QString* error) {
    // 1. All elements have to hold, and of each any alternative.
    auto root = std::make_unique<AllFilter>();
    for (const QString& element : tagArgs) {
        auto alternatives = std::make_unique<AnyFilter>();
        for (const QString& alternative : element.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
            std::unique_ptr<FilterInterface> filter = alternativeFilter(alternative, error);
            if (!filter)
                return nullptr;
            alternatives->add(std::move(filter));
        }
        root->add(std::move(alternatives));
    }

    // 5. Numbers come last: what fails before them is not counted.
    if (indices.empty()) {
        root->add(std::make_unique<AllFilter>());
        return root;
    }
    auto numbers = std::make_unique<AnyFilter>();
    for (const unsigned index : indices)
        numbers->add(std::make_unique<ScenarioIndexFilter>(index));
    root->add(std::move(numbers));
    return root;
}

std::unique_ptr<GherkinFilter> gherkinFilterByArgs(const QStringList& tagArgs,
                                                   const std::vector<unsigned>& indices,
                                                   QString* error) {
    std::unique_ptr<FilterInterface> root = allFilterByArgs(tagArgs, indices, error);
    return root ? std::make_unique<GherkinFilter>(std::move(root)) : nullptr;
}

}  // namespace Tamrix
