#include "runner/mcp/screen/changes.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include "runner/mcp/screen/viewtext.h"

namespace Tamrix::Mcp {

namespace {

using Wire::OutlinedObject;

// How many lines of a kind are told.
constexpr int mostChanged = 10;
constexpr int mostAppeared = 16;
constexpr int mostGone = 4;

/// Lines of one kind, the first of which are told.
class Lines {
public:
    explicit Lines(int most) : m_most(most) {}

    void append(const QString& line) {
        if (m_lines.size() < m_most)
            m_lines.append(line);
        else
            ++m_left;
    }
    QString text(const QString& rest) const {
        QString text;
        for (const QString& line : m_lines)
            text += line + QLatin1Char('\n');
        if (m_left > 0)
            text += QStringLiteral("... %1 more%2\n").arg(QString::number(m_left), rest);
        return text;
    }

private:
    int m_most;
    int m_left = 0;
    QStringList m_lines;
};

/// What is compared: the focus alone is no change.
int comparedState(const ViewObject& object) {
    return object.facts.state & ~OutlinedObject::Focused;
}

bool hasChanged(const ViewObject& before, const ViewObject& after) {
    return before.facts.text != after.facts.text || before.facts.label != after.facts.label ||
           comparedState(before) != comparedState(after);
}

QString changedLine(const ViewObject& before, const ViewObject& after) {
    const QString line = objectLine(after);
    if (before.facts.text != after.facts.text)
        return QStringLiteral("%1 (was %2)").arg(line, quotedText(before.facts.text));
    const QString state = stateText(before);
    return QStringLiteral("%1 (was %2)").arg(line, state.isEmpty() ? QStringLiteral("[]") : state);
}

using Places = QHash<int, int>;

Places placesOf(const View& view) {
    Places places;
    places.reserve(static_cast<int>(view.size()));
    for (size_t index = 0; index < view.size(); ++index)
        places.insert(view[index].ref, static_cast<int>(index));
    return places;
}

/// The depth of an object below the outermost one around it that is not in the other view; -1 when
/// it is in the other view itself.
std::vector<int> depthsOutside(const View& view, const Places& other) {
    std::vector<int> depths(view.size(), -1);
    for (size_t index = 0; index < view.size(); ++index) {
        if (other.contains(view[index].ref))
            continue;
        const int parent = view[index].parent;
        depths[index] = parent < 0 ? 0 : depths[static_cast<size_t>(parent)] + 1;
    }
    return depths;
}

}  // namespace

QString changesText(const View& before, const View& after) {
    const Places placesBefore = placesOf(before);
    const Places placesAfter = placesOf(after);
    // 1. What is there still, but otherwise.
    Lines changed(mostChanged);
    for (const ViewObject& object : after) {
        const int place = placesBefore.value(object.ref, -1);
        if (place >= 0 && hasChanged(before[static_cast<size_t>(place)], object))
            changed.append(changedLine(before[static_cast<size_t>(place)], object));
    }
    // 2. What is new, windows told as such.
    Lines appeared(mostAppeared);
    const std::vector<int> depths = depthsOutside(after, placesBefore);
    for (size_t index = 0; index < after.size(); ++index) {
        const ViewObject& object = after[index];
        if (depths[index] < 0)
            continue;
        const QString kind = object.is(OutlinedObject::Window) ? QStringLiteral("new window ")
                             : depths[index] == 0              ? QStringLiteral("new ")
                                                               : QString();
        appeared.append(QString(depths[index], QLatin1Char(' ')) + kind + objectLine(object));
    }
    // 3. What is gone: the outermost objects.
    Lines gone(mostGone);
    const std::vector<int> lostDepths = depthsOutside(before, placesAfter);
    for (size_t index = 0; index < before.size(); ++index) {
        if (lostDepths[index] != 0)
            continue;
        const int below = countBelow(before, static_cast<int>(index));
        const QString line = QStringLiteral("gone ") + objectLine(before[index]);
        gone.append(below > 0 ? QStringLiteral("%1 (+%2 below)").arg(line, QString::number(below))
                              : line);
    }
    // A label and what is new in it are parts of the same view: snapshot tells all.
    return changed.text({}) + appeared.text(QStringLiteral(": see snapshot")) + gone.text({});
}

}  // namespace Tamrix::Mcp
