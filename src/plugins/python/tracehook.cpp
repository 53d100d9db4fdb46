#include "plugins/python/tracehook.h"

#include <pthread.h>

#include <algorithm>

#include "plugins/python/scripterror.h"

// What follows knows how CPython 3.11 keeps the calls that run. Later versions have monitoring of
// their own for debuggers (PEP 669), which then belongs here.
static_assert(PY_VERSION_HEX >> 16 == 0x030B, "the trace hook is written for Python 3.11");
#define Py_BUILD_CORE 1
#include <internal/pycore_frame.h>
#undef Py_BUILD_CORE

namespace Tamrix::PythonPlugin {

namespace {

/// A call of Python code takes some hundred bytes of the stack while the hook is installed, and
/// none without it. The rest of the stack is for native functions.
constexpr std::size_t stackReserve = std::size_t(1) << 20;

TraceHook* s_installed = nullptr;

/// The lowest address of the calling thread's stack that calls of Python code may use.
const char* endOfStack() {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return nullptr;
    void* lowest = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &lowest, &size);
    pthread_attr_destroy(&attributes);
    return static_cast<const char*>(lowest) + std::min(stackReserve, size / 2);
}

}  // namespace

const RunningFrame* callerOf(const RunningFrame* frame) {
    return frame->previous;
}

PyCodeObject* codeOf(const RunningFrame* frame) {
    return frame->f_code;
}

void TraceHook::install() {
    if (s_installed == this)
        return;
    if (s_installed)
        s_installed->uninstall();
    m_thread = PyThreadState_Get();
    m_stackReserve = endOfStack();
    s_installed = this;
    _PyInterpreterState_SetEvalFrameFunc(m_thread->interp, evaluate);
    redecide();
}

void TraceHook::uninstall() {
    if (s_installed != this)
        return;
    setTracing(false);
    _PyInterpreterState_SetEvalFrameFunc(m_thread->interp, _PyEval_EvalFrameDefault);
    s_installed = nullptr;
}

bool TraceHook::isInstalled() const {
    return s_installed == this;
}

bool TraceHook::isStackLow() const {
    return static_cast<const char*>(__builtin_frame_address(0)) < m_stackReserve;
}

// The trace function

bool TraceHook::isTracing() const {
    return m_thread->c_tracefunc == trace;
}

void TraceHook::setTracing(bool on) {
    if (on != isTracing())
        PyEval_SetTrace(on ? trace : nullptr, nullptr);
}

void TraceHook::redecide() {
    ++m_decision;
    if (isInstalled() && m_pauses == 0)
        decideForRunning();
}

void TraceHook::decideForRunning() {
    if (const RunningFrame* const frame = m_thread->cframe->current_frame)
        decide(frame->f_code, frame->previous);
    else
        setTracing(false);
}

void TraceHook::decide(PyCodeObject* code, const RunningFrame* caller) {
    const Pause pause(*this);
    bool wanted = false;
    try {
        wanted = m_listener.wantsLines(code, caller);
    } catch (const PythonErrorSet&) {
        // There is no script yet, or no more, that it could be raised in.
        PyErr_WriteUnraisable(reinterpret_cast<PyObject*>(code));
    }
    setTracing(wanted);
}

PyObject* TraceHook::evaluate(PyThreadState* thread, RunningFrame* frame, int isThrown) {
    TraceHook* const hook = s_installed;
    if (!hook || thread != hook->m_thread || hook->m_pauses > 0)
        return _PyEval_EvalFrameDefault(thread, frame, isThrown);

    // A deep recursion goes on unseen, and no deeper on the stack.
    if (hook->isStackLow()) {
        _PyInterpreterState_SetEvalFrameFunc(thread->interp, _PyEval_EvalFrameDefault);
        PyObject* const result = _PyEval_EvalFrameDefault(thread, frame, isThrown);
        if (s_installed)
            _PyInterpreterState_SetEvalFrameFunc(thread->interp, evaluate);
        return result;
    }

    const bool wasTracing = hook->isTracing();
    const unsigned decision = hook->m_decision;
    hook->decide(frame->f_code, thread->cframe->current_frame);
    PyObject* const result = _PyEval_EvalFrameDefault(thread, frame, isThrown);
    if (s_installed != hook)
        return result;
    if (!result)
        hook->tellErrorSet();
    if (decision == hook->m_decision)
        hook->setTracing(wasTracing);
    else
        hook->decideForRunning();
    return result;
}

void TraceHook::tellErrorSet() {
    if (!isInstalled() || m_pauses > 0)
        return;
    ErrorAside aside;
    if (!aside.exception())
        return;
    const Pause pause(*this);
    try {
        m_listener.errorPasses(aside.exception(), aside.traceback());
    } catch (const PythonErrorSet&) {
        // The script ends by what is set now.
        aside.forget();
    }
}

int TraceHook::trace(PyObject*, PyFrameObject* frame, int event, PyObject* argument) {
    TraceHook* const hook = s_installed;
    if (!hook || hook->m_pauses > 0)
        return 0;
    const unsigned decision = hook->m_decision;
    try {
        const Pause pause(*hook);
        if (event == PyTrace_LINE)
            hook->m_listener.lineReached(reinterpret_cast<PyObject*>(frame),
                                         hook->m_thread->cframe->current_frame->previous);
        else if (event == PyTrace_EXCEPTION)
            hook->m_listener.errorPasses(PyTuple_GET_ITEM(argument, 1),
                                         PyTuple_GET_ITEM(argument, 2));
    } catch (const PythonErrorSet&) {
        return -1;
    }
    if (s_installed == hook && decision != hook->m_decision)
        hook->decideForRunning();
    return 0;
}

}  // namespace Tamrix::PythonPlugin
