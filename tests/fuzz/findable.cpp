// A target with a fault, for the tests of what runs targets.

#include "fuzz/fuzztarget.h"

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    fuzzRequire(size < 2 || data[1] != 0xff, "the second byte is below 255");
    return 0;
}
