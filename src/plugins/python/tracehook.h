#pragma once

#include "plugins/python/pyref.h"

struct _PyInterpreterFrame;

namespace Tamrix::PythonPlugin {

/// A call of Python code that runs, as the runtime keeps it. Valid while it runs.
using RunningFrame = _PyInterpreterFrame;

/// The next call outwards, null for the outermost one.
const RunningFrame* callerOf(const RunningFrame* frame);
/// The code that a call runs; not a new reference.
PyCodeObject* codeOf(const RunningFrame* frame);

/// Whom a TraceHook asks and tells. The hook is paused meanwhile.
class TraceListener {
public:
    virtual ~TraceListener() = default;

    /// Whether lineReached() is to be called for the lines of a call of `code`, made by `caller`,
    /// which is null for the outermost one. Asked when a call begins and, behind redecide(), once
    /// more for those that run. An error indicator that is set stays as it is.
    virtual bool wantsLines(PyCodeObject* code, const RunningFrame* caller) = 0;
    /// A line is about to run in a call made by `caller`. What it throws as PythonErrorSet ends the
    /// script's code there.
    virtual void lineReached(PyObject* frame, const RunningFrame* caller) = 0;
    /// An exception is on its way outwards: it was raised in a call whose lines are told, or has
    /// just left one. No error indicator is set. `traceback` may be null.
    virtual void errorPasses(PyObject* exception, PyObject* traceback) = 0;
};

/// Follows the calls of one thread. Python's trace function slows every instruction down while it
/// is set, so the hook sets it only for calls whose lines are wanted: it stands in for the function
/// that evaluates frames and decides for each of them. All other code runs at full speed, but for a
/// few nanoseconds a call.
///
/// One hook can be installed at a time. It belongs to the thread that installed it.
class TraceHook {
public:
    explicit TraceHook(TraceListener& listener) : m_listener(listener) {}
    ~TraceHook() { uninstall(); }
    TraceHook(const TraceHook&) = delete;
    TraceHook& operator=(const TraceHook&) = delete;

    void install();
    void uninstall();
    bool isInstalled() const;

    /// The listener has changed its mind about the lines that it wants. Takes effect behind pauses.
    void redecide();
    /// A native function raises the exception that is set: tells the listener, to which it would
    /// come only when the calling function has ended.
    void tellErrorSet();

    /// While one exists nothing is told, and code runs at full speed.
    class Pause {
    public:
        explicit Pause(TraceHook& hook) : m_hook(hook) { ++m_hook.m_pauses; }
        ~Pause() { --m_hook.m_pauses; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        TraceHook& m_hook;
    };

private:
    static PyObject* evaluate(PyThreadState* thread, RunningFrame* frame, int isThrown);
    static int trace(PyObject* self, PyFrameObject* frame, int event, PyObject* argument);

    bool isTracing() const;
    void setTracing(bool on);
    void decideForRunning();
    /// Sets or takes away the trace function for a call.
    void decide(PyCodeObject* code, const RunningFrame* caller);
    bool isStackLow() const;

    TraceListener& m_listener;
    PyThreadState* m_thread = nullptr;
    int m_pauses = 0;
    /// Counts the changes of mind.
    unsigned m_decision = 0;
    /// Below this address the thread's stack comes to its end.
    const char* m_stackReserve = nullptr;
};

}  // namespace Tamrix::PythonPlugin
