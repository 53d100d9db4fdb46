#include <cstdio>
#include <cstdlib>

#include "fuzz/fuzztarget.h"

void fuzzRequire(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "Not true: %s\n", what);
    std::abort();
}
