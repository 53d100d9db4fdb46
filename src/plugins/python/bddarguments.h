#pragma once

#include <optional>
#include <string>

#include "plugins/python/bddregistry.h"
#include "plugins/python/pyref.h"

namespace Tamrix::PythonPlugin {

/// What a step's function is called with.
struct StepArguments {
    /// The context and the values of the parameters.
    PyRef positional;
    /// The values of named groups of a regular expression.
    PyRef named;
};

/// Turns what the parameters took into values: numbers, texts, and what parameter types make of
/// them. Nothing with `*problem` set when a parameter type fails with an ordinary error; any other
/// passes as PythonErrorSet.
std::optional<StepArguments> stepArguments(const BddRegistry& registry,
                                           const BddRegistry::Match& match, std::string* problem);

}  // namespace Tamrix::PythonPlugin
