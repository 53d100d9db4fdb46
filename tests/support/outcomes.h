#pragma once

#include "base/outcome.h"

namespace Tamrix::Test {

/// The text of the failure; empty on success.
template <typename T>
QString errorOf(const Outcome<T>& outcome) {
    return outcome ? QString() : outcome.error().text;
}

}  // namespace Tamrix::Test
