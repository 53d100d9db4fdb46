#include "agent/wayin/agentloader.h"

#include <dlfcn.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "shared/programselection/programselection.h"
#include "wire/connection.h"

namespace Tamrix::Agent {

namespace {

/// The folder of this library, with "/" at its end, or an empty text.
void findOwnFolder(char* folder, size_t size) {
    Dl_info info;
    folder[0] = '\0';
    if (::dladdr(reinterpret_cast<const void*>(&findOwnFolder), &info) == 0 || !info.dli_fname)
        return;
    const char* const slash = strrchr(info.dli_fname, '/');
    const size_t length = slash ? static_cast<size_t>(slash - info.dli_fname) + 1 : 0;
    if (length >= size)
        return;
    memcpy(folder, info.dli_fname, length);
    folder[length] = '\0';
}

}  // namespace

bool isWanted() {
    const char* const runner = getenv(Wire::connectVariable);
    return runner && *runner && isAllowedProgram(progname()) != 0;
}

void loadAgent(const char* relative, int qtMajor) {
    char folder[PATH_MAX];
    findOwnFolder(folder, sizeof(folder));
    char path[2 * PATH_MAX];
    const int length = snprintf(path, sizeof(path), "%s%s/libtamrixagent%s.so", folder, relative,
                                qtMajor == 6 ? "-qt6" : "");
    if (length < 0 || static_cast<size_t>(length) >= sizeof(path))
        return;
    void* const library = ::dlopen(path, RTLD_NOW | RTLD_LOCAL);
    void* const start = library ? ::dlsym(library, "tamrixAgentStart") : nullptr;
    if (start)
        reinterpret_cast<void (*)()>(start)();
    else
        fprintf(stderr, "tamrixagent: not loaded: %s\n", ::dlerror());
}

}  // namespace Tamrix::Agent
