#pragma once

#include <json/forwards.h>

#include <QString>

#include "base/export.h"

namespace Tamrix {

/// The state of a search that failed and stopped in the debugger, for the front end to look at and
/// to change.
class TAMRIX_EXPORT InternalDebugger {
public:
    /// Names the kind of search, so that a front end does not mix up two stops.
    virtual QString contextName() const = 0;
    virtual Json::Value getState() const = 0;
    /// Throws std::exception with a text when the state can't be taken over.
    virtual void setState(const Json::Value& state) = 0;

protected:
    ~InternalDebugger() = default;
};

}  // namespace Tamrix
