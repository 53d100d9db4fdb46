#pragma once

#include <QString>

#include "base/shared.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

/// Finds the objects that a verification point names. Script thread only.
class ObjectNameResolverInterface {
public:
    virtual ~ObjectNameResolverInterface() = default;

    /// The object of a name, waiting for it where the resolver does; `*name` becomes the name that
    /// was looked for. Null with the reason in `*error` when there is none.
    virtual SharedPtr<Object> resolveObjectName(QString* name, QString* error) = 0;
    /// False for a resolver that knows one object only.
    virtual bool canResolveMultipleObjects() const = 0;
};

}  // namespace Tamrix
