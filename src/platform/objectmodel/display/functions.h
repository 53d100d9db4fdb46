#pragma once

#include <QRect>
#include <functional>
#include <optional>

#include "platform/objectmodel/display/session.h"

namespace Tamrix::Display {

/// Where something is done: in a window, or in a part of the screen.
struct Spot {
    std::optional<WindowFacts> window;
    QRect bounds;
};

/// What a global function does once its object is ready.
using Act = std::function<Outcome<>(Session& session, const Spot& spot)>;

/// Reads a call of one of Wire::applicationFunctions. `arguments` are those behind the object. Fails
/// for wrong arguments, with the usage, and for functions that need an agent, with why.
Outcome<Act> readCall(const QString& function, const QVariantList& arguments);

}  // namespace Tamrix::Display
