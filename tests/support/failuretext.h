#pragma once

#include "base/outcome.h"

namespace Tamrix::Test {

/// The text of a failure; empty for a success.
template <typename T>
QString failureText(const Outcome<T>& outcome) {
    return outcome ? QString() : outcome.error().text;
}

}  // namespace Tamrix::Test
