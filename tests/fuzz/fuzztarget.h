#pragma once

#include <cstddef>
#include <cstdint>

/// What a fuzz target defines: hands one input to the code under test. Must not depend on earlier
/// inputs. A crash, an exception, an abort() or taking too long is a finding; the result isn't
/// looked at.
int fuzzTarget(const std::uint8_t* data, std::size_t size);

/// Ends the process with a message when the condition does not hold.
void fuzzRequire(bool condition, const char* what);
