#pragma once

#include <QString>

#include "platform/objectmodel/access.h"

namespace Tamrix {

/// What is to be told of an object's names, as text for people: one line each, details indented
/// below.
struct ObjectNames {
    QString text;
    /// Whether there is such an object at all.
    bool isFound = false;
};

/// Names of the object that `wanted` means: a name, or a point "X,Y" of the screen. Tells how many
/// objects a name matches and where they are, then the names that find the first of them, the best
/// first, each with how many objects it matches when these are several. Where nothing matches it
/// tells what nearly does, with a name that finds that. Fails for what is neither name nor point,
/// and when the application can't be asked.
Outcome<ObjectNames> describeNames(Access& access, const QString& wanted);

}  // namespace Tamrix
