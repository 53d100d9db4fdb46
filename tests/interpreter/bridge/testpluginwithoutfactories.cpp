// A library that is no language plug-in.

#include "base/export.h"

extern "C" TAMRIX_EXPORT int noFactory();

int noFactory() {
    return 0;
}
