// Preloaded into every process below the runner; of the C runtime alone.

#include <dlfcn.h>

#include <cstdint>

#include "agent/wayin/agentloader.h"

namespace {

// QHooks::HookDataSize, QHooks::QtVersion and QHooks::Startup in Qt's table of hooks, the same in
// all of Qt 5 and Qt 6.
constexpr int sizeEntry = 1;
constexpr int versionEntry = 2;
constexpr int startupEntry = 5;

uintptr_t s_previous = 0;
int s_qtMajor = 0;

/// Qt calls it when the application object has its core.
void whenApplicationStarts() {
    if (s_previous)
        reinterpret_cast<void (*)()>(s_previous)();
    Tamrix::Agent::loadAgent(".", s_qtMajor);
}

__attribute__((constructor)) void setHook() {
    auto* const hooks = static_cast<uintptr_t*>(::dlsym(RTLD_DEFAULT, "qtHookData"));
    if (!hooks || hooks[sizeEntry] <= startupEntry || !Tamrix::Agent::isWanted())
        return;
    s_previous = hooks[startupEntry];
    // 0x060402 for 6.4.2.
    s_qtMajor = static_cast<int>(hooks[versionEntry] >> 16);
    hooks[startupEntry] = reinterpret_cast<uintptr_t>(&whenApplicationStarts);
}

}  // namespace
