#pragma once

#include <functional>

#include "interpreter/bridge/eventrecorder.h"
#include "wire/observations.h"

namespace Tamrix {

/// Gives an object's name; empty for none.
using ObservedName = std::function<QString(const Wire::ObservedObject& object)>;

enum class ClickCount { Single, Double };

/// What a click does: it selects an item that has a way to it, else it clicks, at its place where
/// that matters.
FunctionAction clickAction(const Wire::ObservedPress& press, ClickCount count,
                           const ObservedName& nameOf);

FunctionAction dragAction(const Wire::ObservedPress& press, const QPoint& distance,
                          const ObservedName& nameOf);

}  // namespace Tamrix
