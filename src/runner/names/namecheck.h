#pragma once

#include <QString>
#include <QStringList>

#include "base/outcome.h"
#include "platform/objectmodel/access.h"
#include "platform/objectmodel/objectmap.h"

namespace Tamrix {

/// What is to be told of the names of a map.
struct NameCheck {
    /// One finding a line: ":Save  finds nothing. Nearest: ...". Sorted by name.
    QStringList findings;
    /// How many names there are, and how many of them find one object each.
    int names = 0;
    int unique = 0;
    /// Findings that only say what would be better: a shorter form, a second name for an object.
    int hints = 0;
    bool isGood() const { return findings.size() == hints; }
};

/// Looks each name of the map up in an application, as it shows itself now. Fails when the map
/// can't be read or the application can't be asked.
Outcome<NameCheck> checkNames(Access& access, ObjectMap& map);

}  // namespace Tamrix
