#include "plugins/javascript/engine.h"

#include <js/ArrayBuffer.h>
#include <js/Initialization.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <stdexcept>

#include "base/processmemory.h"
#include "interpreter/language/interrupts.h"
#include "plugins/javascript/jobqueue.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// Of the stack, for script code; the rest is for native functions.
constexpr std::size_t mostStack = std::size_t(4) << 20;
/// What values may take, in the engine's heap and beside it. Collections near the limit free little
/// and take long: the script is ended before it comes to that.
constexpr std::size_t mostHeap = std::size_t(1) << 30;
constexpr qint64 mostMemory = qint64(2) << 30;

// What signal handlers ask for.
std::atomic<Engine::End> s_requestedEnd{Engine::End::None};
std::atomic<bool> s_isStopRequested{false};

std::size_t stackQuota() {
    rlimit limit = {};
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return mostStack;
    return std::min<std::size_t>(mostStack, limit.rlim_cur / 2);
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
    m_jobs = std::make_unique<JobQueue>();
    JS::SetJobQueue(m_context, m_jobs.get());
    if (!JS::InitSelfHostedCode(m_context))
        throw std::runtime_error("The script engine started but could not be set up");
    JS_SetNativeStackQuota(m_context, stackQuota());
    JS_SetGCParameter(m_context, JSGC_MAX_BYTES, 0xffffffff);
    JS::SetLargeArrayBuffersEnabled(false);
    JS_SetGCCallback(m_context, collected, nullptr);
    m_endedStack.init(m_context);
    JS_AddInterruptCallback(m_context, interrupted);
    handleInterrupts([](int) { self().requestEnd(End::Interrupt); });
    on_exit(shutDown, nullptr);
}

void Engine::collected(JSContext* context, JSGCStatus status, JS::GCReason, void*) {
    static const qint64 s_memoryAtStart = residentMemory(getpid());
    if (status == JSGC_END && (JS_GetGCParameter(context, JSGC_BYTES) > mostHeap ||
                               residentMemory(getpid()) > s_memoryAtStart + mostMemory))
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
    engine.noteEnd(end);
    // Without an exception: nothing in the script catches it.
    return false;
}

void Engine::exitNow(int status) {
    m_exitStatus = status;
    noteEnd(End::Exit);
}

void Engine::noteEnd(End end) {
    m_end = end;
    m_endedStack = nullptr;
    if (!JS::CaptureCurrentStack(m_context, &m_endedStack))
        JS_ClearPendingException(m_context);
}

}  // namespace Tamrix::JavaScriptPlugin
