#include "plugins/javascript/engine.h"

#include <js/ArrayBuffer.h>
#include <js/Initialization.h>
#include <js/Interrupt.h>
#include <js/Promise.h>
#include <js/Stack.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "interpreter/language/interrupts.h"
#include "plugins/javascript/jobqueue.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Of the stack, for script code; the rest is for native functions.
constexpr std::size_t mostStack = std::size_t(4) << 20;
/// What values may take, in the engine's heap and beside it. Collections near the limit free little
/// and take long: the script is ended before it comes to that.
constexpr std::size_t mostHeap = std::size_t(1) << 30;
constexpr std::size_t mostMemory = std::size_t(2) << 30;

// What signal handlers ask for.
std::atomic<Engine::End> s_requestedEnd{Engine::End::None};
std::atomic<bool> s_isStopRequested{false};

/// Of this process.
std::size_t residentMemory() {
    unsigned long pages = 0;
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (!file)
        return 0;
    const bool isRead = std::fscanf(file, "%*u %lu", &pages) == 1;
    std::fclose(file);
    return isRead ? pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) : 0;
}

std::size_t stackQuota() {
    rlimit limit = {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return mostStack;
    return std::min<std::size_t>(mostStack, limit.rlim_cur / 2);
}

void endByInterrupt(int) {
    Engine::self().requestEnd(Engine::End::Interrupt);
}

/// Before the engine's own threads lose what they wait with. A process that ends in the middle of a
/// script leaves everything as it is.
void shutDown(int status, void*) {
    JSContext* const context = Engine::self().context();
    if (JS::CurrentGlobalOrNull(context)) {
        std::fflush(nullptr);
        _exit(status);
    }
    JS_DestroyContext(context);
    JS_ShutDown();
}

}  // namespace

Engine& Engine::self() {
    // Never destroyed: values live on after static destruction has begun.
    static auto* const s_instance = new Engine;
    return *s_instance;
}

Engine::Engine() {
    if (!JS_IsInitialized() && !JS_Init())
        throw std::runtime_error("The script engine can't be started");
    m_context = JS_NewContext(JS::DefaultHeapMaxBytes);
    if (!m_context)
        throw std::runtime_error("The script engine has no memory");
    // The queue of jobs goes first: the engine's own code already makes promises.
    m_jobs = std::make_unique<JobQueue>(m_context);
    JS::SetJobQueue(m_context, m_jobs.get());
    if (!JS::InitSelfHostedCode(m_context))
        throw std::runtime_error("The script engine started but could not be set up");
    JS_SetNativeStackQuota(m_context, stackQuota());
    limitMemory();
    m_endedStack.init(m_context);
    JS_AddInterruptCallback(m_context, interrupted);
    handleInterrupts(endByInterrupt);
    on_exit(shutDown, nullptr);
}

void Engine::limitMemory() {
    JS_SetGCParameter(m_context, JSGC_MAX_BYTES, 0xffffffff);
    JS::SetLargeArrayBuffersEnabled(false);
    JS_SetGCCallback(m_context, collected, nullptr);
}

void Engine::collected(JSContext* context, JSGCStatus status, JS::GCReason, void*) {
    static const std::size_t s_memoryAtStart = residentMemory();
    if (status == JSGC_END && (JS_GetGCParameter(context, JSGC_BYTES) > mostHeap ||
                               residentMemory() > s_memoryAtStart + mostMemory))
        self().requestEnd(End::Memory);
}

void Engine::requestEnd(End reason) {
    s_requestedEnd = reason;
    JS_RequestInterruptCallbackCanWait(m_context);
}

void Engine::forgetRequest(End reason) {
    s_requestedEnd.compare_exchange_strong(reason, End::None);
}

void Engine::requestStop() {
    s_isStopRequested = true;
    JS_RequestInterruptCallbackCanWait(m_context);
}

bool Engine::interrupted(JSContext*) {
    Engine& engine = self();
    if (s_isStopRequested.exchange(false) && engine.m_stop)
        engine.m_stop();
    const End end = s_requestedEnd.exchange(End::None);
    if (end == End::None)
        return true;
    engine.m_end = end;
    engine.noteEndedStack();
    // Without an exception: nothing in the script catches it.
    return false;
}

void Engine::exitNow(int status) {
    m_end = End::Exit;
    m_exitStatus = status;
    noteEndedStack();
}

void Engine::noteEndedStack() {
    JS::RootedObject stack(m_context);
    if (!JS::CaptureCurrentStack(m_context, &stack))
        JS_ClearPendingException(m_context);
    m_endedStack = stack;
}

Engine::End Engine::takeEnd() {
    return std::exchange(m_end, End::None);
}

}  // namespace Tamrix::JavaScriptPlugin
