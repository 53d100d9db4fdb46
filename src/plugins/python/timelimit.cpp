#include "plugins/python/timelimit.h"

#include <unistd.h>

#include <atomic>

namespace Tamrix::PythonPlugin {

namespace {

/// A signal that nothing else in a test run uses. Python runs a signal's handler where it looks for
/// Ctrl-C as well: between instructions, in waiting calls and in the representation of containers.
int limitSignal() {
    return SIGRTMAX - 2;
}

/// How soon the exception is raised once more.
constexpr std::chrono::milliseconds repetition{20};

std::atomic<bool> s_isArmed{false};

/// The exception, which no `except Exception` catches. It lives for the process. Made before there
/// is an error, since none can be made then.
PyObject* exceptionType() {
    static PyObject* const s_type =
        PyErr_NewException("tamrix.TimeLimitExceeded", PyExc_BaseException, nullptr);
    return s_type;
}

PyObject* handleSignal(PyObject*, PyObject*) {
    // A signal that comes late finds nobody to end.
    if (s_isArmed) {
        PyErr_SetNone(exceptionType());
        return nullptr;
    }
    Py_RETURN_NONE;
}

/// Whether Python knows what to do at the signal.
bool isHandlerSet() {
    static PyMethodDef s_definition = {"timeLimit", handleSignal, METH_VARARGS, nullptr};
    const PyRef module = PyRef::steal(PyImport_ImportModule("signal"));
    const PyRef handler = PyRef::steal(module ? PyCFunction_New(&s_definition, nullptr) : nullptr);
    const PyRef previous =
        PyRef::steal(handler ? PyObject_CallMethod(module.get(), "signal", "iO", limitSignal(),
                                                   handler.get())
                             : nullptr);
    if (!previous)
        PyErr_Clear();
    return bool(previous);
}

timespec toTimeSpec(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
}

}  // namespace

TimeLimit::TimeLimit(std::chrono::milliseconds time) {
    if (s_isArmed || !exceptionType() || !isHandlerSet())
        return;
    // The signal goes to this thread, so that it ends what the thread waits for.
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = limitSignal();
    event._sigev_un._tid = gettid();
    if (timer_create(CLOCK_MONOTONIC, &event, &m_timer) != 0)
        return;
    m_isArmed = true;
    s_isArmed = true;
    const itimerspec times{toTimeSpec(repetition), toTimeSpec(time)};
    timer_settime(m_timer, 0, &times, nullptr);
}

TimeLimit::~TimeLimit() {
    if (!m_isArmed)
        return;
    s_isArmed = false;
    timer_delete(m_timer);
}

bool TimeLimit::isExceeded() {
    return exceptionType() && PyErr_ExceptionMatches(exceptionType()) != 0;
}

}  // namespace Tamrix::PythonPlugin
