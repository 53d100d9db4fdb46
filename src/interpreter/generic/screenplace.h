#pragma once

#include <QRect>

#include "base/shared.h"
#include "platform/objectmodel/object.h"

namespace Tamrix {

class RunnerInterface;

/// The place, in native coordinates, as an object of the current application, which scripts click
/// on. Null on failure, with Inspector::lastError() set.
SharedPtr<Object> placeObject(RunnerInterface* runner, const QRect& place);

}  // namespace Tamrix
