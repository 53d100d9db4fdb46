#include "plugins/ruby/rubydebugger.h"

#include <algorithm>
#include <utility>

#include "interpreter/language/valuepath.h"
#include "plugins/ruby/conversion.h"
#include "plugins/ruby/frames.h"
#include "plugins/ruby/protection.h"
#include "plugins/ruby/rubyargument.h"
#include "plugins/ruby/rubyinterpreter.h"
#include "plugins/ruby/rubyruntime.h"
#include "plugins/ruby/rubyvaluetexts.h"
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

bool isEnabled(const RubyRef& tracePoint) {
    return RTEST(rb_tracepoint_enabled_p(tracePoint.get()));
}

void enable(const RubyRef& tracePoint, bool on) {
    const VALUE point = tracePoint.get();
    if (tracePoint && isEnabled(tracePoint) != on)
        protect([=] { return on ? rb_tracepoint_enable(point) : rb_tracepoint_disable(point); });
}

}  // namespace

RubyDebugger::RubyDebugger(RubyInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_ruby(interpreter) {
    m_compilations = newTracePoint(RUBY_EVENT_SCRIPT_COMPILED);
    m_allLines = newTracePoint(RUBY_EVENT_LINE);
    m_errors = newTracePoint(RUBY_EVENT_RAISE);
}

void RubyDebugger::stopSoon() {
    rb_postponed_job_register_one(0, stopAtNextLine, nullptr);
}

void RubyDebugger::shutDown() {
    LanguageDebugger::shutDown();
    // It may be shut down already.
    for (RubyRef* const point : {&m_compilations, &m_allLines, &m_errors}) {
        enable(*point, false);
        point->reset();
    }
    for (const Code& code : m_codes) {
        for (const auto& [line, point] : code.tracePoints)
            enable(point, false);
    }
    m_codes.clear();
    m_raised.reset();
    m_raisedFrames.clear();
}

// Trace points

RubyRef RubyDebugger::newTracePoint(unsigned events) {
    return RubyRef(
        protect([=, this] { return rb_tracepoint_new(Qnil, events, eventHappened, this); }));
}

void RubyDebugger::updateTracePoints() {
    if (!m_compilations)
        return;
    // 1. Files are known from their beginning on, whenever a debugger comes.
    enable(m_compilations, true);
    // 2. Errors, and lines while it steps. These end with the next line: at the one where the
    // script stands its break point would come once more.
    enable(m_errors, stopsForErrors());
    if (isInteractive() && isStepping())
        enable(m_allLines, true);
    // 3. Break points.
    if (isInteractive()) {
        for (Code& code : m_codes)
            traceBreakLines(code);
    }
}

void RubyDebugger::codeLoaded(VALUE sequence) {
    const VALUE path = callMethod(sequence, "path");
    const auto isThis = [=](const Code& code) { return code.sequence.get() == sequence; };
    if (!isScriptFile(bytesOfRuby(path)) || std::any_of(m_codes.begin(), m_codes.end(), isThis))
        return;
    m_codes.push_back({RubyRef(sequence), scriptPath(bytesOfRuby(path)), {}});
    if (isInteractive())
        traceBreakLines(m_codes.back());
}

void RubyDebugger::traceBreakLines(Code& code) {
    for (const int line : breakLines(sourceIdOf(code.path))) {
        if (code.tracePoints.count(line) > 0)
            continue;
        const RubyRef point = newTracePoint(RUBY_EVENT_LINE);
        code.tracePoints[line] = point;
        try {
            const VALUE options = namedAsHash({{"target", new RubyArgument(code.sequence.get())},
                                               {"target_line", new RubyArgument(INT2FIX(line))}});
            const VALUE own = point.get();
            protect([=] {
                return rb_funcallv_kw(own, rb_intern("enable"), 1, &options, RB_PASS_KEYWORDS);
            });
        } catch (const ScriptErrorSet&) {
            // No code of it stands in that line.
            takeException();
        }
    }
}

bool RubyDebugger::isOurEvent() const {
    return m_ruby.isScriptThread() && !isSilent() && RubyInterpreter::active() == &m_ruby;
}

void RubyDebugger::eventHappened(VALUE point, void* debugger) {
    auto* const self = static_cast<RubyDebugger*>(debugger);
    enterNative([=] {
        rb_trace_arg_t* const event = rb_tracearg_from_tracepoint(point);
        const rb_event_flag_t kind = rb_tracearg_event_flag(event);
        if (kind == RUBY_EVENT_SCRIPT_COMPILED)
            self->codeLoaded(callMethod(point, "instruction_sequence"));
        else if (!self->isOurEvent())
            return Qnil;
        else if (kind == RUBY_EVENT_LINE)
            self->lineEntered(point, rb_tracearg_path(event), NUM2INT(rb_tracearg_lineno(event)));
        else if (self->stopsForErrors())
            self->errorRaised(rb_tracearg_raised_exception(event));
        return Qnil;
    });
}

void RubyDebugger::lineEntered(VALUE point, VALUE path, int line) {
    // A line with a break point is told twice while all lines are, here at first.
    const bool isOfAll = point == m_allLines.get();
    if (isOfAll && !(isInteractive() && isStepping())) {
        enable(m_allLines, false);
        return;
    }
    if (!isInteractive() || (!isOfAll && isEnabled(m_allLines)))
        return;
    if (path != m_lastPath.get()) {
        m_lastPath = path;
        const QByteArray bytes = bytesOfRuby(path);
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

std::unique_ptr<ValueTexts> RubyDebugger::makeValueTexts() {
    return std::make_unique<RubyValueTexts>();
}

std::vector<ValueTexts::Part> RubyDebugger::variablesOf(const ScriptFrame& frame) {
    std::vector<ValueTexts::Part> variables;
    const VALUE binding = bindingOf(frame);
    const auto add = [&](const QString& name, VALUE value) {
        variables.push_back({name, new RubyArgument(value)});
    };
    try {
        for (const VALUE name : itemsOf(callMethod(binding, "local_variables")))
            add(pathPart(fromRuby(name)), callMethod(binding, "local_variable_get", name));
        const VALUE self = callMethod(binding, "receiver");
        if (self != RubyRuntime::self().main())
            add(QStringLiteral("self"), self);
        for (ValueTexts::Part& attribute : RubyValueTexts::attributesOf(self))
            variables.push_back(std::move(attribute));
        for (const VALUE each : itemsOf(RubyRuntime::self().scriptGlobals())) {
            const QString name = fromRuby(each);
            const VALUE value = rb_gv_get(name.toUtf8().constData());
            // One that an earlier case has made is there for ever.
            if (!NIL_P(value))
                add(name, value);
        }
    } catch (const ScriptErrorSet&) {
        // Ruby has no memory left for its own lists.
        takeException();
    }
    return variables;
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
    if (stopsForErrors() && m_raised && m_raised.get() == exception &&
        !m_ruby.failures().isSkip(exception) && !isEndOfScript(exception))
        stopForError(exceptionText(exception), std::move(m_raisedFrames));
    m_raised.reset();
    m_raisedFrames.clear();
}

}  // namespace Tamrix::RubyPlugin
