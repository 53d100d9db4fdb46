#pragma once

#include <string>
#include <vector>

#include "base/export.h"

namespace Tamrix {

/// A part of what decides which scenarios run. Some count the questions, so each part is asked in
/// its turn and only then.
class TAMRIX_EXPORT FilterInterface {
public:
    FilterInterface() = default;
    virtual ~FilterInterface() = default;
    FilterInterface(const FilterInterface&) = delete;
    FilterInterface& operator=(const FilterInterface&) = delete;

    /// The tags are without "@".
    virtual bool shouldExecuteWithTags(std::vector<std::string> tags) = 0;
};

}  // namespace Tamrix
