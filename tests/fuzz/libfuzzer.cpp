// The entry that libFuzzer calls.

#include "fuzz/fuzztarget.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return fuzzTarget(data, size);
}
