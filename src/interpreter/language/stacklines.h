#pragma once

#include <vector>

namespace Tamrix {

/// Takes from the end of a stack, the innermost line first, what it has in common with the lines of
/// the code that still runs, as behind a native function that has called a callback.
template <typename Line>
void cutCommonEnd(std::vector<Line>* stack, std::vector<Line> running) {
    while (!stack->empty() && !running.empty() && !(stack->back() != running.back())) {
        stack->pop_back();
        running.pop_back();
    }
}

}  // namespace Tamrix
