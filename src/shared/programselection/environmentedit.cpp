#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "shared/programselection/programselection.h"

namespace {

/// The longest string that a program can be given in its environment.
constexpr size_t maxValueSize = 128 * 1024;
constexpr char pathSeparator = ':';

}  // namespace

void removePathEnv(const char* entry, const char* name) {
    const char* value = getenv(name);
    if (!value || !*entry)
        return;
    // A plain search: an entry that only begins like this one is hit too, which is meant.
    const char* found = strstr(value, entry);
    if (!found)
        return;
    const char* rest = found + strlen(entry);
    if (*rest == pathSeparator)
        ++rest;
    else if (*rest == '\0' && found > value && found[-1] == pathSeparator)
        --found;

    const auto before = static_cast<size_t>(found - value);
    const size_t after = strlen(rest);
    if (before + after == 0) {
        unsetenv(name);
        return;
    }
    if (before + after >= maxValueSize) {
        fprintf(stderr, "%s is too long to remove %s from it.\n", name, entry);
        return;
    }
    char edited[maxValueSize];
    memcpy(edited, value, before);
    memcpy(edited + before, rest, after + 1);
    setenv(name, edited, 1);
}
