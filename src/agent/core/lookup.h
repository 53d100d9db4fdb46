#pragma once

#include <QHash>
#include <QVector>
#include <memory>
#include <optional>
#include <vector>

#include "agent/core/element.h"
#include "wire/messages.h"
#include "wire/textmatch.h"

namespace Tamrix::Agent {

class Survey;

/// Finds what a name means, in one walk over the objects. Made for one look: it remembers what it
/// learnt of classes while it walks, and the tree must not change meanwhile.
///
/// An object matches when all criteria hold. Visible objects go first: hidden ones, and those of
/// a toolkit's inner workings, are matches only when no visible object matches and the name does
/// not say `visible` itself. Matches are ordered by window, then from top to bottom, from left to
/// right, then by creation; the name's occurrence counts in this order.
///
/// A criterion that names an object (window, container, parent, buddy, ancestor) with a name of
/// its own means the object that this name finds; with a text, one of that text or name.
class ObjectFinder {
public:
    /// With a survey, several finders share the walk; it must outlive them.
    explicit ObjectFinder(const Wire::Query& query, Survey* survey = nullptr);
    ~ObjectFinder();

    /// What is wrong with the name, a malformed expression; empty for a good one.
    QString errorText() const { return m_errorText; }
    /// The object that the name means; null for none.
    Element find();
    /// The only object of which the name is true; null for none, and for several.
    Element findSingle();
    /// All objects of which the name is true, whatever occurrence it says, in the order in which
    /// occurrences count.
    QVector<Element> findAll();
    /// Up to three objects of the wanted type, or of which at least half of the name is true, that
    /// differ in the fewest criteria, and in what.
    QList<NearMiss> nearMisses();
    /// In what the element differs, whatever else there is; nothing when it matches.
    std::optional<NearMiss> differences(const Element& element);

private:
    struct Criterion;
    struct Match;

    /// The matches that count, in the order of creation.
    std::vector<Match> countingMatches();
    /// The same in their order.
    std::vector<Match> orderedMatches();
    static void order(std::vector<Match>* matches);
    void add(const Wire::Criterion& wanted);
    bool mayItemsMatch() const;
    bool maySeeOfHidden() const;
    bool typeMatches(const Criterion& criterion, const Element& element);
    bool relationMatches(const Criterion& criterion, const Element& element) const;
    bool matches(const Criterion& criterion, const Element& element);
    bool matches(const Element& element);
    /// Whether objects of this one's class may match.
    bool mayClassMatch(const Element& element);
    /// Null when the element has no such property.
    QString actualText(const Criterion& criterion, const Element& element) const;
    NearMiss::Difference differenceOf(const Criterion& criterion, const Element& element) const;
    static NearMiss missOf(const Element& element);
    /// Finds the objects that criteria name; false when one isn't there.
    bool resolveRelations();
    /// The object below which all matches are, if the name says one; null if it doesn't.
    Element knownRoot() const;
    /// Adds the matches below the roots: those that go first, and the others.
    void collect(const QVector<Element>& roots, std::vector<Match>* visible,
                 std::vector<Match>* others);

    Survey* m_survey;
    QString m_errorText;
    int m_occurrence;
    bool m_asksVisible = false;
    std::vector<Criterion> m_criteria;
    QHash<const QMetaObject*, bool> m_matchingTypes;
    const QMetaObject* m_lastClass = nullptr;
    bool m_lastMatched = false;
};

}  // namespace Tamrix::Agent
