#pragma once

#include <string>

namespace Tamrix::Gherkin {

/// A place in a script. The line is from 1.
struct ScriptLocation {
    /// In UTF-8.
    std::string fileName;
    int line = 0;
};

}  // namespace Tamrix::Gherkin
