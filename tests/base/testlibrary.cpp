// A library for Library and Library::Module to open.

#include "base/export.h"

extern "C" TAMRIX_EXPORT int testLibraryAnswer(int value);

int testLibraryAnswer(int value) {
    return value + 1;
}
