#pragma once

#include <QString>

#include "base/export.h"
#include "base/outcome.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

// The one place where a name finds nothing. All functions that scripts give names to look for their
// object in lookUp(); the runner is told there of what was not found, and may have it looked for
// again. Questions for which no object is an answer, as object.exists(), don't come here. Script
// thread only.

/// Whether the look is to be repeated after this failure: the runner was told of it with
/// RunnerInterface::objectNotFound() and wants it so. Failures that no other name can mend, such as
/// the end of the application, it is not told of.
TAMRIX_EXPORT bool looksAgain(const QString& name, const QString& function, const Failure& failure);

/// Looks for the object of a name, waiting or not, or does something with it by its name: `look`
/// gives an Outcome, and is called again as long as it fails and the runner wants it. The object
/// map may have changed then, so `look` resolves the name itself. `function` is the script's.
template <typename Look>
auto lookUp(const QString& name, const QString& function, Look look) -> decltype(look()) {
    while (true) {
        auto found = look();
        if (found || !looksAgain(name, function, found.error()))
            return found;
    }
}

/// What an operation gave that keeps its failures in the inspector and returns null then.
TAMRIX_EXPORT Outcome<SharedPtr<Object>> outcomeOf(const SharedPtr<Object>& object);

}  // namespace Tamrix
