#pragma once

#include <QByteArray>
#include <QRect>
#include <QString>
#include <functional>
#include <vector>

#include "wire/messages.h"

namespace Tamrix {

// The objects of an application at one moment, as a trace has them. Much of a program is alike, and
// most of it stays: objects are told by what differs from another one, moments by what differs from
// the moment before.
//
// An object is told as a JSON object like a model, with the members that differ: "depth", "type",
// "text", "name", "place" (x, y, width, height on the screen) and "state" (1 visible, 2 enabled,
// both added). Where the model's name has the model's text, the name is taken to have the new text
// there; "name" is told as what differs from that: a list of how many characters stay at its
// start, how many at its end, and what stands between them.

struct TracedObject {
    int depth = 0;
    QString type;
    QString text;
    QString name;
    QRect place;
    int state = 0;

    bool operator==(const TracedObject& other) const = default;
};

/// Parents first.
using TracedObjects = std::vector<TracedObject>;

/// What an application told. `hide` takes out of texts and names what must not be kept.
TracedObjects tracedObjects(const Wire::ObjectListing& listing,
                            const std::function<QString(const QString&)>& hide);

/// All objects as a JSON array, each like the one before it, the first like one without anything.
QByteArray allObjects(const TracedObjects& objects);

/// How `after` is made of `before`, a JSON array of steps that go through `before` in its order:
/// a number n for n objects that stay, -n for n that are gone, an object for another one in the
/// place of one that is gone, and like that, an object {"moved": [n, x, y]} for n that are as those
/// gone but for a move by x and y, an array for new ones, each like the one before it.
/// Empty when nothing differs.
QByteArray objectChanges(const TracedObjects& before, const TracedObjects& after);

}  // namespace Tamrix
