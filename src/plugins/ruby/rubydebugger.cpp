#include "plugins/ruby/rubydebugger.h"

#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyvariables.h"
#include "plugins/ruby/scripterrors.h"

namespace Tamrix::RubyPlugin {

namespace {

/// Runs between two instructions of the script.
void stopAtNextLine(void*) {
    if (RubyInterpreter* const interpreter = RubyInterpreter::active())
        interpreter->rubyDebugger().step();
}

bool isEndOfScript(VALUE exception) {
    return rb_obj_is_kind_of(exception, rb_eSystemExit) == Qtrue ||
           rb_obj_is_kind_of(exception, rb_eSignal) == Qtrue;
}

}  // namespace

RubyDebugger::RubyDebugger(RubyInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_ruby(interpreter) {}

void RubyDebugger::setInteractive(bool interactive) {
    Debugger::setInteractive(interactive);
    if (interactive && !m_tracePoint)
        m_tracePoint = protect([this] {
            return rb_tracepoint_new(Qnil, RUBY_EVENT_LINE | RUBY_EVENT_RAISE, eventHappened, this);
        });
    updateHook();
}

void RubyDebugger::setDebuggerMode(DbgMode mode) {
    Debugger::setDebuggerMode(mode);
    updateHook();
}

void RubyDebugger::interrupt() {
    rb_postponed_job_register_one(0, stopAtNextLine, nullptr);
}

void RubyDebugger::shutDown() {
    LanguageDebugger::shutDown();
    m_tracePoint.reset();
    m_raised.reset();
    m_raisedFrames.clear();
}

// The hook

void RubyDebugger::updateHook() {
    // A file becomes known, with its break points, by its first line: so all are looked at.
    const bool isOn = isInteractive() && debuggerMode() != None && m_silence == 0;
    if (!m_tracePoint || m_isTracing == isOn)
        return;
    m_isTracing = isOn;
    const VALUE point = m_tracePoint.get();
    protect([=] { return isOn ? rb_tracepoint_enable(point) : rb_tracepoint_disable(point); });
}

bool RubyDebugger::isOurEvent() const {
    return m_ruby.isScriptThread() && m_silence == 0 && RubyInterpreter::active() == &m_ruby;
}

void RubyDebugger::eventHappened(VALUE point, void* debugger) {
    auto* const self = static_cast<RubyDebugger*>(debugger);
    enterNative([=] {
        if (!self->isOurEvent())
            return Qnil;
        rb_trace_arg_t* const event = rb_tracearg_from_tracepoint(point);
        if (rb_tracearg_event_flag(event) == RUBY_EVENT_LINE)
            self->lineEntered(rb_tracearg_path(event), NUM2INT(rb_tracearg_lineno(event)));
        else if (self->stopsForErrors())
            self->errorRaised(rb_tracearg_raised_exception(event));
        return Qnil;
    });
}

void RubyDebugger::lineEntered(VALUE path, int line) {
    if (path != m_lastPath.get()) {
        m_lastPath = path;
        const QByteArray bytes(RSTRING_PTR(path), static_cast<int>(RSTRING_LEN(path)));
        m_lastSourceId = isScriptFile(bytes) ? sourceIdOf(scriptPath(bytes)) : -1;
    }
    if (m_lastSourceId >= 0)
        lineReached(m_lastSourceId, line);
}

// Frames

std::vector<ScriptFrame> RubyDebugger::runningFrames() {
    return scriptFrames();
}

int RubyDebugger::runningDepth() {
    return scriptDepth();
}

std::unique_ptr<VariableWatcher> RubyDebugger::makeVariableWatcher() {
    return std::make_unique<RubyVariables>(*this);
}

void RubyDebugger::enterStandstill() {
    ++m_silence;
}

void RubyDebugger::leaveStandstill() {
    --m_silence;
    updateHook();
}

// Errors

void RubyDebugger::errorRaised(VALUE exception) {
    // Raised once more, it is still where it was raised first.
    if (m_raised && m_raised.get() == exception)
        return;
    m_raised = exception;
    m_raisedFrames = scriptFrames();
}

void RubyDebugger::errorUncaught(VALUE exception) {
    if (stopsForErrors() && m_raised && m_raised.get() == exception && !m_ruby.isSkip(exception) &&
        !isEndOfScript(exception))
        stopForError(exceptionText(exception), std::move(m_raisedFrames));
    m_raised.reset();
    m_raisedFrames.clear();
}

}  // namespace Tamrix::RubyPlugin
