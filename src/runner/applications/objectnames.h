#pragma once

#include <QPoint>
#include <QString>
#include <variant>

#include "platform/objectmodel/access.h"

namespace Tamrix {

/// What is to be told of an object's names, as text for people: one line each, details indented
/// below.
struct ObjectNames {
    QString text;
    /// Whether there is such an object at all.
    bool isFound = false;
};

/// An object by its name, or by a point of the screen.
using WantedObject = std::variant<ObjectName, QPoint>;

/// Reads a name, or a point as "X,Y". Fails for what is neither.
Outcome<WantedObject> readWantedObject(const QString& text);

/// Names of the object that is wanted. Tells how many objects a name matches and where they are,
/// then the names that find the first of them, the best first, each with how many objects it
/// matches when these are several. Where nothing matches it tells what nearly does, with a name
/// that finds that. Fails when the application can't be asked.
Outcome<ObjectNames> describeNames(Access& access, const WantedObject& wanted);

}  // namespace Tamrix
