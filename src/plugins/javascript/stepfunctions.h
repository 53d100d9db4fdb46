#pragma once

#include <jsapi.h>

namespace Tamrix::JavaScriptPlugin {

/// Gives a new global object the functions with which scripts register steps, hooks and parameter
/// types: `Given`, `BeforeScenario` and the like. They begin with capitals, since an object with a
/// function `then` is a promise to the language. Throws ScriptErrorSet.
void addStepFunctions(JS::HandleObject global);

/// Gives an object the functions `find`, `set`, `remove` and `names`, through which the context of
/// steps reaches what they keep.
void addScopeFunctions(JS::HandleObject object);

}  // namespace Tamrix::JavaScriptPlugin
