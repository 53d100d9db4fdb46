#pragma once

#include <QByteArray>
#include <functional>
#include <vector>

#include "wire/messages.h"

namespace Tamrix {

// The objects of an application at one moment, as a trace has them: a line of JSON for each, an
// array of depth, type, text, name, x, y, width, height and state (1 visible, 2 enabled, both
// added). A later moment is told by what differs.

/// A line for each object, parents first. `hide` takes out of texts and names what must not be
/// kept.
std::vector<QByteArray> objectLines(const Wire::ObjectListing& listing,
                                    const std::function<QString(const QString&)>& hide);

/// How `after` is made of `before`: a JSON array of pairs [first, count], lines of `before` that
/// stay, and of new lines. Empty for the same lines.
QByteArray lineChanges(const std::vector<QByteArray>& before, const std::vector<QByteArray>& after);

/// All lines as a JSON array.
QByteArray allLines(const std::vector<QByteArray>& lines);

}  // namespace Tamrix
