#include "plugins/python/timelimit.h"

#include <unistd.h>

#include <atomic>

#include "plugins/python/pythonsignals.h"

namespace Tamrix::PythonPlugin {

namespace {

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

PyMethodDef s_handler = {"timeLimit", handleSignal, METH_VARARGS, nullptr};

timespec toTimeSpec(std::chrono::milliseconds time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    return {seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
}

}  // namespace

TimeLimit::TimeLimit(std::chrono::milliseconds time) {
    if (s_isArmed || !exceptionType() || !setSignalHandler(timeLimitSignal(), s_handler))
        return;
    // The signal goes to this thread, so that it ends what the thread waits for.
    sigevent event = {};
    event.sigev_notify = SIGEV_THREAD_ID;
    event.sigev_signo = timeLimitSignal();
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
