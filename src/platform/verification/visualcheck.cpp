#include <cstdlib>

#include "platform/verification/check.h"
#include "platform/verification/elementpairs.h"
#include "platform/verification/elementpictures.h"
#include "platform/verification/expectations.h"
#include "platform/verification/observation.h"

namespace Tamrix {

namespace {

bool isWithin(const QRect& left, const QRect& right, int tolerance) {
    return std::abs(left.left() - right.left()) <= tolerance &&
           std::abs(left.top() - right.top()) <= tolerance &&
           std::abs(left.right() - right.right()) <= tolerance &&
           std::abs(left.bottom() - right.bottom()) <= tolerance;
}

/// The comparison of two trees.
class VisualCheck {
public:
    VisualCheck(const VisualPoint& expected, const VisualPoint& observed)
        : m_expected(expected), m_observed(observed), m_pairs(expected.root, observed.root) {}

    Findings run() {
        m_findings.compared = static_cast<int>(m_pairs.expected.size());
        m_findings.things = QStringLiteral("elements");
        // 1. Which elements there are.
        findMissing();
        findAdded();
        // 2. What those that both have are like.
        for (std::size_t index = 0; index < m_pairs.expected.size(); ++index) {
            if (m_pairs.expected[index].partner >= 0)
                compare(static_cast<int>(index));
        }
        // 3. What they look like.
        if (m_expected.rules.comparePictures)
            comparePictures();
        renew();
        return m_findings;
    }

private:
    const VisualElement& partnerOf(int index) const {
        return *m_pairs.observed[m_pairs.expected[index].partner].element;
    }
    static bool isParentPaired(const std::vector<ListedElement>& all,
                               const ListedElement& element) {
        return element.parent >= 0 && all[element.parent].partner >= 0;
    }

    /// With an element all below it is missing; that need not be told.
    void findMissing() {
        for (std::size_t index = 0; index < m_pairs.expected.size(); ++index) {
            const ListedElement& element = m_pairs.expected[index];
            if (element.partner >= 0 || !isParentPaired(m_pairs.expected, element))
                continue;
            m_findings.renewable.append(QStringLiteral("%1 is missing, expected at %2")
                                            .arg(describedElement(*element.element),
                                                 describedPlace(element.element->place)));
            m_framedExpected.push_back(static_cast<int>(index));
        }
    }

    void findAdded() {
        for (std::size_t index = 0; index < m_pairs.observed.size(); ++index) {
            const ListedElement& element = m_pairs.observed[index];
            if (element.partner >= 0 || !isParentPaired(m_pairs.observed, element))
                continue;
            m_findings.renewable.append(QStringLiteral("%1 at %2 is not expected")
                                            .arg(describedElement(*element.element),
                                                 describedPlace(element.element->place)));
            m_framedObserved.push_back(static_cast<int>(index));
        }
    }

    void tell(int index, const QString& difference) {
        m_findings.renewable.append(QStringLiteral("%1 %2").arg(
            describedElement(*m_pairs.expected[index].element), difference));
        const int partner = m_pairs.expected[index].partner;
        if (m_framedObserved.empty() || m_framedObserved.back() != partner)
            m_framedObserved.push_back(partner);
    }

    void compare(int index) {
        const VisualElement& expected = *m_pairs.expected[index].element;
        const VisualElement& observed = partnerOf(index);
        // Only the roots can differ in it.
        if (expected.type != observed.type)
            tell(index, QStringLiteral("is of the type %1").arg(observed.type));
        if (m_expected.rules.compareTexts && expected.text != observed.text)
            tell(index, QStringLiteral("has the text \"%1\"").arg(observed.text));
        if (m_expected.rules.comparePlaces)
            comparePlace(index);
    }

    void comparePlace(int index) {
        const ListedElement& expected = m_pairs.expected[index];
        const QRect wanted = expected.placeInParent(m_pairs.expected);
        const QRect place = m_pairs.observed[expected.partner].placeInParent(m_pairs.observed);
        if (isWithin(wanted, place, m_expected.rules.placeTolerance))
            return;
        if (expected.parent < 0)
            tell(index,
                 QStringLiteral("has %1x%2 pixels, expected %3x%4")
                     .arg(QString::number(place.width()), QString::number(place.height()),
                          QString::number(wanted.width()), QString::number(wanted.height())));
        else
            tell(index, QStringLiteral("is at %1 in its parent, expected at %2")
                            .arg(describedPlace(place), describedPlace(wanted)));
    }

    /// What the text and the size tell already, the picture need not tell again.
    bool isPictureTold(int index) const {
        const VisualElement& expected = *m_pairs.expected[index].element;
        const VisualElement& observed = partnerOf(index);
        return (m_expected.rules.compareTexts && expected.text != observed.text) ||
               (m_expected.rules.comparePlaces && expected.place.size() != observed.place.size());
    }

    void comparePictures() {
        m_findings.pictures.expected = m_expected.picture;
        m_findings.pictures.actual = m_observed.picture;
        if (m_expected.picture.isNull() || m_observed.picture.isNull()) {
            m_findings.lasting.append(QStringLiteral("There is no picture of the object"));
            return;
        }
        const ElementPictures pictures(m_pairs, m_expected.picture, m_observed.picture,
                                       m_expected.rules.colorTolerance);
        for (std::size_t each = 0; each < m_pairs.expected.size(); ++each) {
            const auto index = static_cast<int>(each);
            const PictureDifference& difference = pictures.differences()[each];
            if (difference.differing == 0 || isPictureTold(index))
                continue;
            const double percent = 100.0 * static_cast<double>(difference.differing) /
                                   static_cast<double>(difference.compared);
            if (percent > m_expected.rules.pixelTolerance)
                tell(index, QStringLiteral("looks different in %1 of %2 pixels, which are %3 %")
                                .arg(QString::number(difference.differing),
                                     QString::number(difference.compared),
                                     QString::number(percent, 'g', 3)));
        }
        if (!m_findings.isAsExpected())
            m_findings.pictures.difference = pictures.picture(m_framedExpected, m_framedObserved);
    }

    void renew() {
        VisualPoint renewed = m_expected;
        renewed.root = m_observed.root;
        if (!m_observed.picture.isNull())
            renewed.picture = m_observed.picture;
        m_findings.renewed = renewed;
    }

    const VisualPoint& m_expected;
    const VisualPoint& m_observed;
    ElementPairs m_pairs;
    Findings m_findings;
    /// Indexes of elements that differ.
    std::vector<int> m_framedExpected;
    std::vector<int> m_framedObserved;
};

}  // namespace

Findings compareVisuals(const VisualPoint& expected, const VisualPoint& observed) {
    return VisualCheck(expected, observed).run();
}

Findings check(const VisualPoint& point, const FindObject& findObject) {
    Findings findings;
    findings.things = QStringLiteral("elements");
    const Outcome<SharedPtr<Object>> object = findObject(point.name);
    if (!object) {
        findings.isObjectMissing = true;
        findings.lasting.append(object.error().text);
        return findings;
    }
    const Outcome<VisualPoint> observed = observedVisual(*object);
    if (!observed) {
        findings.lasting.append(QStringLiteral("Object '%1' can't be looked at: %2")
                                    .arg(point.name, observed.error().text));
        return findings;
    }
    return compareVisuals(point, *observed);
}

}  // namespace Tamrix
