#include "platform/objectmodel/display/windownames.h"

#include <algorithm>

#include "platform/objectmodel/display/windowclass.h"
#include "platform/objectmodel/remote/namequery.h"

namespace Tamrix::Display {

namespace {

constexpr int listedMisses = 3;

/// What names are made of, the best first; each with the type.
const QStringList nameForms[] = {{QStringLiteral("title")},
                                 {QStringLiteral("title"), QStringLiteral("class")},
                                 {QStringLiteral("role")},
                                 {QStringLiteral("class"), QStringLiteral("windowType")},
                                 {QStringLiteral("class")}};

/// The name of this form; an invalid one when the window has nothing to say there.
ObjectName nameOfForm(const QStringList& form, const WindowFacts& window) {
    ObjectName name;
    name.setProperty(QStringLiteral("type"), windowClass()->name());
    for (const QString& property : form) {
        const QString text = propertyText(window, property);
        if (text.isEmpty())
            return {};
        name.setProperty(property, text);
    }
    return name;
}

/// How scripts write what is true or not.
QString normalized(const QString& wanted, const QVariant& value) {
    if (value.userType() != QMetaType::Bool)
        return wanted;
    if (wanted == QLatin1String("1") || wanted.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("true");
    if (wanted == QLatin1String("0") ||
        wanted.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
        return QStringLiteral("false");
    return wanted;
}

}  // namespace

Outcome<WindowName> WindowName::of(const ObjectName& name) {
    const Outcome<Wire::Query> query = makeQuery(name);
    if (!query)
        return fail(query.error());
    WindowName compiled;
    compiled.m_occurrence = query->occurrence;
    for (const Wire::Criterion& wanted : query->criteria) {
        // The types of its properties are the same for all windows.
        const QString text =
            wanted.modifier == Wire::TextMatch::Plain
                ? normalized(wanted.text, propertyOf(WindowFacts(), wanted.property))
                : wanted.text;
        compiled.m_criteria.push_back({wanted.property, text,
                                       Wire::TextMatch(text, wanted.modifier),
                                       wanted.object != nullptr});
    }
    return compiled;
}

bool WindowName::isTrueOf(const Criterion& criterion, const WindowFacts& window) {
    const QString text = propertyText(window, criterion.property);
    return !criterion.isObject && !text.isNull() && criterion.match.matches(text);
}

bool WindowName::isTrueOf(const WindowFacts& window) const {
    return std::all_of(m_criteria.begin(), m_criteria.end(), [&](const Criterion& criterion) {
        return isTrueOf(criterion, window);
    });
}

WindowList WindowName::matchesIn(const WindowList& windows) const {
    WindowList matches;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(matches),
                 [this](const WindowFacts& window) { return isTrueOf(window); });
    const bool asksVisible =
        std::any_of(m_criteria.begin(), m_criteria.end(), [](const Criterion& criterion) {
            return criterion.property == QLatin1String("visible");
        });
    const auto isHidden = [](const WindowFacts& window) { return !window.isVisible; };
    if (!asksVisible && !std::all_of(matches.begin(), matches.end(), isHidden))
        matches.erase(std::remove_if(matches.begin(), matches.end(), isHidden), matches.end());
    return matches;
}

const WindowFacts* WindowName::findIn(const WindowList& windows) const {
    const WindowList matches = matchesIn(windows);
    if (m_occurrence < 1 || static_cast<size_t>(m_occurrence) > matches.size())
        return nullptr;
    const xcb_window_t id = matches[static_cast<size_t>(m_occurrence) - 1].id;
    return &*std::find_if(windows.begin(), windows.end(),
                          [id](const WindowFacts& window) { return window.id == id; });
}

NearMiss WindowName::differences(const WindowFacts& window) const {
    NearMiss miss{describe(window), window.id, {}};
    for (const Criterion& criterion : m_criteria) {
        if (!isTrueOf(criterion, window))
            miss.differences.append(
                {criterion.property,
                 criterion.isObject ? QStringLiteral("another object") : criterion.wanted,
                 propertyText(window, criterion.property)});
    }
    return miss;
}

QList<NearMiss> WindowName::nearMissesIn(const WindowList& windows) const {
    const auto matches = static_cast<int>(matchesIn(windows).size());
    if (matches > 0) {
        NearMiss miss;
        miss.differences.append({QStringLiteral("occurrence"), QString::number(m_occurrence),
                                 QString::number(matches)});
        return {miss};
    }
    QList<NearMiss> misses;
    for (const WindowFacts& window : windows)
        misses.append(differences(window));
    std::stable_sort(misses.begin(), misses.end(), [](const NearMiss& left, const NearMiss& right) {
        return left.differences.size() < right.differences.size();
    });
    return misses.mid(0, listedMisses);
}

bool WindowName::asksForOtherTypes() const {
    return std::any_of(m_criteria.begin(), m_criteria.end(), [](const Criterion& criterion) {
        return criterion.property == QLatin1String("type") &&
               !criterion.match.matches(windowClass()->name());
    });
}

QString otherTypeText(const ObjectName& name) {
    return QStringLiteral(
               "No object matches %1: of an application without agent only windows are known, of the "
               "type 'Window'; what is in them is found by its picture")
        .arg(name.qualifiedName());
}

QList<CheckedName> namesOf(const WindowFacts& window, const WindowList& windows) {
    QList<CheckedName> names;
    QList<CheckedName> shared;
    for (const QStringList& form : nameForms) {
        ObjectName name = nameOfForm(form, window);
        const Outcome<WindowName> compiled =
            name.isValid() ? WindowName::of(name) : Outcome<WindowName>(WindowName());
        if (!name.isValid() || !compiled)
            continue;
        const WindowList matches = compiled->matchesIn(windows);
        const auto place =
            std::find_if(matches.begin(), matches.end(),
                         [&](const WindowFacts& match) { return match.id == window.id; });
        // A hidden one is not found beside others.
        if (place == matches.end())
            continue;
        if (place != matches.begin())
            name.setProperty(QStringLiteral("occurrence"),
                             QString::number(place - matches.begin() + 1));
        const auto count = static_cast<int>(matches.size());
        (count == 1 ? names : shared).append({name.qualifiedName(), count});
    }
    return names + shared;
}

QString realNameOf(const WindowFacts& window, const WindowList& windows) {
    const QList<CheckedName> names = namesOf(window, windows);
    if (!names.isEmpty())
        return names.constFirst().name;
    // It says nothing of itself, or is put away while others like it are shown.
    ObjectName name = nameOfForm({}, window);
    name.setProperty(QStringLiteral("visible"), propertyText(window, QStringLiteral("visible")));
    const Outcome<WindowName> compiled = WindowName::of(name);
    int occurrence = 1;
    if (compiled) {
        for (const WindowFacts& match : compiled->matchesIn(windows)) {
            if (match.id == window.id)
                break;
            ++occurrence;
        }
    }
    if (occurrence > 1)
        name.setProperty(QStringLiteral("occurrence"), QString::number(occurrence));
    return name.qualifiedName();
}

QString describe(const WindowFacts& window) {
    const QString text = window.title.isEmpty() ? window.windowClass : window.title;
    return text.isEmpty() ? windowClass()->name()
                          : QStringLiteral("%1 '%2'").arg(windowClass()->name(), text);
}

}  // namespace Tamrix::Display
