#include "agent/core/lookup.h"

#include <algorithm>
#include <tuple>

#include "agent/core/session.h"
#include "agent/core/survey.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"
#include "agent/core/walk.h"

namespace Tamrix::Agent {

namespace {

/// How dear a criterion is; cheap ones are looked at first.
enum class Cost { Type, Name, Text, Property, Relation };

Cost costOf(const QString& property) {
    static const QHash<QString, Cost> s_costs = {
        {QStringLiteral("type"), Cost::Type},          {QStringLiteral("name"), Cost::Name},
        {QStringLiteral("objectName"), Cost::Name},    {QStringLiteral("text"), Cost::Text},
        {QStringLiteral("window"), Cost::Relation},    {QStringLiteral("parent"), Cost::Relation},
        {QStringLiteral("container"), Cost::Relation}, {QStringLiteral("buddy"), Cost::Relation},
        {QStringLiteral("ancestor"), Cost::Relation}};
    return s_costs.value(property, Cost::Property);
}

/// Whether it is a text that the field hides, as one for passwords.
bool isHiddenText(const Element& element, const QString& property) {
    // Of fields, and of dialogs that ask for a text.
    static const QHash<QString, QString> s_modes = {
        {QStringLiteral("text"), QStringLiteral("echoMode")},
        {QStringLiteral("selectedText"), QStringLiteral("echoMode")},
        {QStringLiteral("displayText"), QStringLiteral("echoMode")},
        {QStringLiteral("password"), QStringLiteral("echoMode")},
        {QStringLiteral("textValue"), QStringLiteral("textEchoMode")}};
    const auto mode = s_modes.constFind(property);
    if (mode == s_modes.constEnd())
        return false;
    bool isKnown = false;
    const QVariant echoMode = propertyValue(element, *mode, &isKnown);
    // 0: what is entered is shown.
    return isKnown && echoMode.toInt() != 0;
}

}  // namespace

/// Where a match stands among the others.
struct ObjectFinder::Match {
    Element element;
    int window = 0;
    QPoint place;
};

struct ObjectFinder::Criterion {
    QString property;
    Cost cost = Cost::Property;
    QString wanted;
    bool isPlain = true;
    Wire::TextMatch match;
    /// Finds the wanted object of a relation; null when a text is wanted.
    std::unique_ptr<ObjectFinder> finder;
    Element related;

    bool textMatches(const QString& text) const {
        return isPlain ? text == wanted : match.matches(text);
    }
};

ObjectFinder::ObjectFinder(const Wire::Query& query, Survey* survey)
    : m_survey(survey), m_occurrence(query.occurrence) {
    for (const Wire::Criterion& wanted : query.criteria)
        add(wanted);
    std::stable_sort(
        m_criteria.begin(), m_criteria.end(),
        [](const Criterion& left, const Criterion& right) { return left.cost < right.cost; });
}

ObjectFinder::~ObjectFinder() = default;

void ObjectFinder::add(const Wire::Criterion& wanted) {
    Criterion criterion;
    criterion.property = wanted.property;
    criterion.cost = costOf(wanted.property);
    criterion.wanted = wanted.text;
    criterion.isPlain = wanted.modifier == Wire::TextMatch::Plain;
    if (wanted.object) {
        criterion.finder = std::make_unique<ObjectFinder>(*wanted.object, m_survey);
        if (m_errorText.isEmpty())
            m_errorText = criterion.finder->errorText();
        if (criterion.cost != Cost::Relation)
            m_errorText = QStringLiteral("the property '%1' is no object").arg(wanted.property);
    } else if (!criterion.isPlain) {
        criterion.match = Wire::TextMatch(wanted.text, wanted.modifier);
        if (m_errorText.isEmpty())
            m_errorText = criterion.match.errorText();
    }
    m_asksVisible |= wanted.property == QLatin1String("visible");
    m_criteria.push_back(std::move(criterion));
}

bool ObjectFinder::mayItemsMatch() const {
    for (const Criterion& criterion : m_criteria) {
        if (criterion.cost == Cost::Type && criterion.isPlain &&
            !Session::self()->traitsOf(criterion.wanted).areItems)
            return false;
        // Items have no names.
        if (criterion.cost == Cost::Name && criterion.isPlain && !criterion.wanted.isEmpty())
            return false;
    }
    return true;
}

bool ObjectFinder::maySeeOfHidden() const {
    for (const Criterion& criterion : m_criteria) {
        if (criterion.cost == Cost::Type && criterion.isPlain)
            return Session::self()->traitsOf(criterion.wanted).showBelowHidden;
    }
    return true;
}

bool ObjectFinder::typeMatches(const Criterion& criterion, const Element& element) {
    if (element.isItem())
        return criterion.textMatches(element.toolkit->typeName(element));
    // Many objects are of few classes: the class's name is compared once.
    const QMetaObject* const metaObject = element.object->metaObject();
    if (metaObject != m_lastClass) {
        const auto known = m_matchingTypes.constFind(metaObject);
        m_lastClass = metaObject;
        m_lastMatched =
            known != m_matchingTypes.cend()
                ? *known
                : *m_matchingTypes.insert(
                      metaObject, criterion.textMatches(element.toolkit->typeName(element)));
    }
    return m_lastMatched;
}

bool ObjectFinder::relationMatches(const Criterion& criterion, const Element& element) const {
    const auto isWanted = [&criterion](const Element& related) {
        if (related.isNull())
            return false;
        if (criterion.finder)
            return related == criterion.related;
        return criterion.textMatches(related.toolkit->text(related)) ||
               criterion.textMatches(related.toolkit->name(related));
    };
    if (criterion.property != QLatin1String("ancestor"))
        return isWanted(relatedElement(element, criterion.property));
    for (Element each = element.toolkit->parent(element); !each.isNull();
         each = each.toolkit->parent(each)) {
        if (isWanted(each))
            return true;
    }
    return false;
}

bool ObjectFinder::matches(const Criterion& criterion, const Element& element) {
    switch (criterion.cost) {
        case Cost::Type:
            return typeMatches(criterion, element);
        case Cost::Name:
            return criterion.textMatches(element.toolkit->name(element));
        case Cost::Text:
            return criterion.textMatches(element.toolkit->text(element));
        case Cost::Relation:
            return relationMatches(criterion, element);
        case Cost::Property:
            break;
    }
    bool isKnown = false;
    const QVariant value = propertyValue(element, criterion.property, &isKnown);
    if (!isKnown)
        return false;
    const QString text = valueText(value);
    return criterion.isPlain ? text == normalizedWanted(value, criterion.wanted)
                             : criterion.textMatches(text);
}

bool ObjectFinder::matches(const Element& element) {
    return std::all_of(m_criteria.cbegin(), m_criteria.cend(),
                       [&](const Criterion& criterion) { return matches(criterion, element); });
}

bool ObjectFinder::mayClassMatch(const Element& element) {
    return std::all_of(m_criteria.cbegin(), m_criteria.cend(), [&](const Criterion& criterion) {
        return criterion.cost != Cost::Type || typeMatches(criterion, element);
    });
}

bool ObjectFinder::resolveRelations() {
    bool areFound = true;
    for (Criterion& criterion : m_criteria) {
        if (criterion.finder) {
            criterion.related = criterion.finder->find();
            areFound = areFound && !criterion.related.isNull();
        }
    }
    return areFound;
}

/// Brings the matches, which are in the order of creation, into the stable order.
void ObjectFinder::order(std::vector<Match>* matches) {
    if (matches->size() < 2)
        return;
    for (Match& match : *matches)
        match.place = match.element.toolkit->globalBounds(match.element).topLeft();
    std::stable_sort(matches->begin(), matches->end(), [](const Match& a, const Match& b) {
        return std::make_tuple(a.window, a.place.y(), a.place.x()) <
               std::make_tuple(b.window, b.place.y(), b.place.x());
    });
}

Element ObjectFinder::knownRoot() const {
    for (const Criterion& criterion : m_criteria) {
        if (criterion.finder && criterion.property != QLatin1String("buddy"))
            return criterion.related;
    }
    return {};
}

void ObjectFinder::collect(const QVector<Element>& roots, std::vector<Match>* visible,
                           std::vector<Match>* others) {
    const bool withItems = mayItemsMatch();
    int window = 0;
    for (const Element& root : roots) {
        const auto visit = [&](const Element& element) {
            if (!matches(element))
                return;
            const bool isFirstChoice = m_asksVisible || (element.toolkit->isVisible(element) &&
                                                         !element.toolkit->isInternal(element));
            (isFirstChoice ? visible : others)->push_back({element, window, QPoint()});
        };
        if (m_survey)
            m_survey->walk(
                root, withItems, [this](const Element& each) { return mayClassMatch(each); },
                visit);
        else
            walkTree(root, withItems, visit);
        ++window;
    }
}

std::vector<ObjectFinder::Match> ObjectFinder::countingMatches() {
    std::vector<Match> visible;
    std::vector<Match> others;
    if (!m_errorText.isEmpty() || m_criteria.empty() || !resolveRelations())
        return visible;
    const Element root = knownRoot();
    if (!root.isNull()) {
        collect({root}, &visible, &others);
    } else {
        // Mostly what is looked for is visible, and below a window that is there.
        if (!m_asksVisible && !maySeeOfHidden())
            collect(m_survey ? m_survey->nativeRoots() : nativeRoots(), &visible, &others);
        if (visible.empty()) {
            others.clear();
            collect(m_survey ? m_survey->topLevels() : Session::self()->topLevels(), &visible,
                    &others);
        }
    }
    return std::move(visible.empty() ? others : visible);
}

std::vector<ObjectFinder::Match> ObjectFinder::orderedMatches() {
    std::vector<Match> matches = countingMatches();
    order(&matches);
    return matches;
}

Element ObjectFinder::find() {
    const std::vector<Match> matches = orderedMatches();
    if (m_occurrence < 1 || static_cast<size_t>(m_occurrence) > matches.size())
        return {};
    return matches[static_cast<size_t>(m_occurrence) - 1].element;
}

Element ObjectFinder::findSingle() {
    const std::vector<Match> matches = countingMatches();
    return matches.size() == 1 ? matches.front().element : Element();
}

QVector<Element> ObjectFinder::findAll() {
    QVector<Element> elements;
    for (const Match& match : orderedMatches())
        elements.append(match.element);
    return elements;
}

QString ObjectFinder::actualText(const Criterion& criterion, const Element& element) const {
    if (criterion.cost == Cost::Relation)
        return Session::self()->describe(relatedElement(element, criterion.property));
    bool isKnown = false;
    const QVariant value = propertyValue(element, criterion.property, &isKnown);
    if (!isKnown)
        return QString();
    const QString text = valueText(value);
    if (!text.isEmpty() && isHiddenText(element, criterion.property))
        return QStringLiteral("(hidden)");
    return text.isNull() ? QStringLiteral("") : text;
}

NearMiss::Difference ObjectFinder::differenceOf(const Criterion& criterion,
                                                const Element& element) const {
    return {criterion.property,
            criterion.finder ? QStringLiteral("another object") : criterion.wanted,
            actualText(criterion, element)};
}

NearMiss ObjectFinder::missOf(const Element& element) {
    return {Session::self()->describe(element), Session::self()->handle(element), {}};
}

std::optional<NearMiss> ObjectFinder::differences(const Element& element) {
    resolveRelations();
    NearMiss miss = missOf(element);
    for (const Criterion& criterion : m_criteria) {
        if (!matches(criterion, element))
            miss.differences.append(differenceOf(criterion, element));
    }
    if (miss.differences.isEmpty())
        return std::nullopt;
    return miss;
}

QList<NearMiss> ObjectFinder::nearMisses() {
    constexpr size_t most = 3;
    struct Near {
        Element element;
        const Criterion* criterion;
        // Fewer is nearer.
        int differing;
        bool isOtherType;
        /// Of the criteria that tell objects apart, how many hold and how many there are.
        int equal;
        int telling;
        bool isUnlike;
        bool isHidden;

        /// The same type, or at least half of what the name says of the object itself.
        bool isNear(bool asksType) const {
            return (asksType && !isOtherType) || (equal > 0 && 2 * equal >= telling);
        }
        auto rank() const { return std::make_tuple(differing, isUnlike, isOtherType, isHidden); }
    };
    if (!m_errorText.isEmpty())
        return {};
    resolveRelations();
    const auto isTelling = [](const Criterion& criterion) {
        return criterion.cost != Cost::Relation && criterion.property != QLatin1String("visible") &&
               criterion.property != QLatin1String("enabled");
    };
    const bool asksType =
        std::any_of(m_criteria.cbegin(), m_criteria.cend(),
                    [](const Criterion& criterion) { return criterion.cost == Cost::Type; });
    std::vector<Near> nearest;
    for (const Element& root : Session::self()->topLevels()) {
        walkTree(root, mayItemsMatch(), [&](const Element& element) {
            Near near{element, nullptr, 0, false, 0, 0, false, true};
            for (const Criterion& criterion : m_criteria) {
                const bool isEqual = matches(criterion, element);
                near.telling += isTelling(criterion) ? 1 : 0;
                near.equal += isTelling(criterion) && isEqual ? 1 : 0;
                if (isEqual)
                    continue;
                ++near.differing;
                near.isOtherType = near.isOtherType || criterion.cost == Cost::Type;
                if (!near.criterion || near.criterion->cost == Cost::Type)
                    near.criterion = &criterion;
            }
            if (!near.criterion || !near.isNear(asksType))
                return;
            if (nearest.size() == most && nearest.back().differing < near.differing)
                return;
            near.isUnlike = near.criterion->cost != Cost::Type &&
                            !actualText(*near.criterion, element)
                                 .contains(near.criterion->wanted, Qt::CaseInsensitive);
            near.isHidden = !element.toolkit->isVisible(element);
            const auto place = std::upper_bound(
                nearest.begin(), nearest.end(), near,
                [](const Near& left, const Near& right) { return left.rank() < right.rank(); });
            nearest.insert(place, near);
            if (nearest.size() > most)
                nearest.pop_back();
        });
    }
    QList<NearMiss> misses;
    for (const Near& near : nearest) {
        misses.append(missOf(near.element));
        misses.last().differences.append(differenceOf(*near.criterion, near.element));
    }
    return misses;
}

}  // namespace Tamrix::Agent
