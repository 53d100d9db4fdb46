#include "runner/trace/tracedobjects.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "comparison/diff.h"

namespace Tamrix {

namespace {

/// Of an object; names that find it may be longer than anybody reads.
constexpr int longestText = 500;

QString shortened(const QString& text) {
    return text.size() > longestText ? text.left(longestText) + QStringLiteral("...") : text;
}

/// The name that is taken where none is told.
QString likelyName(const TracedObject& model, const QString& text) {
    QString name = model.name;
    return model.text.isEmpty() ? name : name.replace(model.text, text);
}

/// Halves of characters never stand alone.
QJsonArray nameChange(const QString& from, const QString& to) {
    const int common = std::min(from.size(), to.size());
    int start = static_cast<int>(
        std::mismatch(from.begin(), from.begin() + common, to.begin()).first - from.begin());
    if (start > 0 && to.at(start - 1).isHighSurrogate())
        --start;
    int end = 0;
    while (end < common - start && from.at(from.size() - 1 - end) == to.at(to.size() - 1 - end))
        ++end;
    if (end > 0 && to.at(to.size() - end).isLowSurrogate())
        --end;
    return {start, end, to.mid(start, to.size() - start - end)};
}

QJsonObject toldLike(const TracedObject& model, const TracedObject& object) {
    QJsonObject told;
    if (object.depth != model.depth)
        told.insert(QStringLiteral("depth"), object.depth);
    if (object.type != model.type)
        told.insert(QStringLiteral("type"), object.type);
    if (object.text != model.text)
        told.insert(QStringLiteral("text"), object.text);
    if (const QString likely = likelyName(model, object.text); object.name != likely)
        told.insert(QStringLiteral("name"), nameChange(likely, object.name));
    const QRect& place = object.place;
    if (place != model.place)
        told.insert(QStringLiteral("place"),
                    QJsonArray{place.x(), place.y(), place.width(), place.height()});
    if (object.state != model.state)
        told.insert(QStringLiteral("state"), object.state);
    return told;
}

/// The objects from `first` on, each like the one before it.
QJsonArray toldInTurn(const TracedObjects& objects, size_t first, size_t end) {
    QJsonArray told;
    for (size_t index = first; index < end; ++index)
        told.append(toldLike(index == 0 ? TracedObject() : objects[index - 1], objects[index]));
    return told;
}

QByteArray compact(const QJsonArray& array) {
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

/// A line for each object, the same for those that are the same.
std::vector<QByteArray> linesOf(const TracedObjects& objects) {
    std::vector<QByteArray> lines;
    lines.reserve(objects.size());
    const TracedObject nothing;
    for (const TracedObject& object : objects)
        lines.push_back(QJsonDocument(toldLike(nothing, object)).toJson(QJsonDocument::Compact));
    return lines;
}

Diff::Lines viewsOf(const std::vector<QByteArray>& lines) {
    Diff::Lines views;
    views.reserve(lines.size());
    for (const QByteArray& line : lines)
        views.emplace_back(line.constData(), static_cast<size_t>(line.size()));
    return views;
}

/// How many objects, of so many at most, are as they were but for one move of them all.
size_t movedTogether(const TracedObject* before, const TracedObject* after, size_t most) {
    const QPoint way = after->place.topLeft() - before->place.topLeft();
    size_t count = 0;
    while (count < most) {
        TracedObject moved = before[count];
        moved.place.translate(way);
        if (moved != after[count])
            break;
        ++count;
    }
    return count;
}

/// Objects that stand between others that stay, in both moments.
struct Difference {
    size_t before = 0;
    size_t gone = 0;
    size_t after = 0;
    size_t added = 0;
};

void appendDifference(const Difference& difference, const TracedObjects& before,
                      const TracedObjects& after, QJsonArray* changes) {
    // 1. One takes the place of another.
    const size_t replaced = std::min(difference.gone, difference.added);
    for (size_t index = 0; index < replaced;) {
        const TracedObject* const from = &before[difference.before + index];
        const TracedObject* const to = &after[difference.after + index];
        const size_t moved = movedTogether(from, to, replaced - index);
        const QPoint way = to->place.topLeft() - from->place.topLeft();
        if (moved > 1)
            changes->append(QJsonObject{
                {QStringLiteral("moved"), QJsonArray{static_cast<int>(moved), way.x(), way.y()}}});
        else
            changes->append(toldLike(*from, *to));
        index += std::max<size_t>(moved, 1);
    }
    // 2. What is left of one kind.
    if (difference.gone > replaced)
        changes->append(-static_cast<int>(difference.gone - replaced));
    if (difference.added > replaced)
        changes->append(
            toldInTurn(after, difference.after + replaced, difference.after + difference.added));
}

}  // namespace

TracedObjects tracedObjects(const Wire::ObjectListing& listing,
                            const std::function<QString(const QString&)>& hide) {
    TracedObjects objects;
    objects.reserve(static_cast<size_t>(listing.objects.size()));
    for (const Wire::ListedObject& object : listing.objects)
        // A name that is cut finds nothing.
        objects.push_back({object.depth, listing.types.value(object.type),
                           shortened(hide(object.text)), hide(object.name), object.geometry,
                           object.state});
    return objects;
}

QByteArray allObjects(const TracedObjects& objects) {
    return compact(toldInTurn(objects, 0, objects.size()));
}

QByteArray objectChanges(const TracedObjects& before, const TracedObjects& after) {
    if (before == after)
        return {};
    const std::vector<QByteArray> linesBefore = linesOf(before);
    const std::vector<QByteArray> linesAfter = linesOf(after);
    QJsonArray changes;
    Difference difference;
    for (const Diff::Run& run : Diff::diff(viewsOf(linesBefore), viewsOf(linesAfter))) {
        const auto count = static_cast<size_t>(run.count);
        if (run.operation == Diff::Delete) {
            difference.gone += count;
        } else if (run.operation == Diff::Insert) {
            difference.added += count;
        } else {
            appendDifference(difference, before, after, &changes);
            changes.append(run.count);
            difference = {difference.before + difference.gone + count, 0,
                          difference.after + difference.added + count, 0};
        }
    }
    appendDifference(difference, before, after, &changes);
    return compact(changes);
}

}  // namespace Tamrix
