#pragma once

#include <memory>

#include "interpreter/language/stepactions.h"
#include "plugins/javascript/engineapi.h"

namespace Tamrix::JavaScriptPlugin {

class JavaScriptInterpreter;

/// Files with step definitions as modules, and what steps are given.
std::unique_ptr<StepLanguage> makeStepLanguage(JavaScriptInterpreter& interpreter);

/// Gives a new global object the functions with which scripts register steps, hooks and parameter
/// types: `Given`, `BeforeScenario` and the like. They begin with capitals, since an object with a
/// function `then` is a promise to the language. Throws ScriptErrorSet.
void addStepFunctions(JS::HandleObject global);

}  // namespace Tamrix::JavaScriptPlugin
