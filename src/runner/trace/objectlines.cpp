#include "runner/trace/objectlines.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

#include "comparison/diff.h"

namespace Tamrix {

namespace {

/// Of an object; names that find it may be longer than anybody reads.
constexpr int longestText = 500;

QString shortened(const QString& text) {
    return text.size() > longestText ? text.left(longestText) + QStringLiteral("...") : text;
}

Diff::Lines viewsOf(const std::vector<QByteArray>& lines) {
    Diff::Lines views;
    views.reserve(lines.size());
    for (const QByteArray& line : lines)
        views.emplace_back(line.constData(), static_cast<size_t>(line.size()));
    return views;
}

}  // namespace

std::vector<QByteArray> objectLines(const Wire::ObjectListing& listing,
                                    const std::function<QString(const QString&)>& hide) {
    std::vector<QByteArray> lines;
    lines.reserve(static_cast<size_t>(listing.objects.size()));
    for (const Wire::ListedObject& object : listing.objects) {
        const QRect& place = object.geometry;
        const QJsonArray fields = {
            object.depth,
            listing.types.value(object.type),
            shortened(hide(object.text)),
            // A name that is cut finds nothing.
            hide(object.name),
            place.x(),
            place.y(),
            place.width(),
            place.height(),
            object.state,
        };
        lines.push_back(QJsonDocument(fields).toJson(QJsonDocument::Compact));
    }
    return lines;
}

QByteArray lineChanges(const std::vector<QByteArray>& before,
                       const std::vector<QByteArray>& after) {
    if (before == after)
        return {};
    QByteArray changes("[");
    const auto append = [&changes](const QByteArray& part) {
        if (changes.size() > 1)
            changes += ',';
        changes += part;
    };
    const std::vector<Diff::Run> runs = Diff::diff(viewsOf(before), viewsOf(after));
    for (const Diff::Run& run : runs) {
        if (run.operation == Diff::Equal) {
            append('[' + QByteArray::number(run.begin) + ',' + QByteArray::number(run.count) + ']');
        } else if (run.operation == Diff::Insert) {
            for (int index = run.begin; index < run.begin + run.count; ++index)
                append(after[static_cast<size_t>(index)]);
        }
    }
    return changes + ']';
}

QByteArray allLines(const std::vector<QByteArray>& lines) {
    QByteArray text("[");
    for (const QByteArray& line : lines) {
        if (text.size() > 1)
            text += ',';
        text += line;
    }
    return text + ']';
}

}  // namespace Tamrix
