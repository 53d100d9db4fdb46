#include <cstdlib>
#include <cstring>

#include "shared/programselection/programselection.h"

char** strSplit(const char* text, char separator) {
    if (!text)
        return nullptr;
    size_t count = 1;
    for (const char* c = text; *c; ++c)
        count += *c == separator;
    auto** parts = static_cast<char**>(calloc(count + 1, sizeof(char*)));
    if (!parts)
        return nullptr;
    const char* begin = text;
    for (size_t i = 0; i < count; ++i) {
        const char* end = begin;
        while (*end && *end != separator)
            ++end;
        parts[i] = strndup(begin, static_cast<size_t>(end - begin));
        if (!parts[i]) {
            freeStrSplit(parts);
            return nullptr;
        }
        begin = end + 1;
    }
    return parts;
}

void freeStrSplit(char** parts) {
    if (!parts)
        return;
    for (char** part = parts; *part; ++part)
        free(*part);
    free(static_cast<void*>(parts));
}
