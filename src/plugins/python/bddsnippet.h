#pragma once

#include <string>

#include "platform/gherkin/records.h"

namespace Tamrix::PythonPlugin {

/// A step definition in Python that can be pasted into a file with steps. `type` is what the step's
/// keyword comes to.
std::string stepSnippet(const Gherkin::Step& step, Gherkin::KeywordType type);

}  // namespace Tamrix::PythonPlugin
