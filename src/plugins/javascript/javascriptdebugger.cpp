#include "plugins/javascript/javascriptdebugger.h"

#include "plugins/javascript/javascriptinterpreter.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

void stopWhereTheScriptIs() {
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->javaScriptDebugger().stop();
}

/// Of lines alone.
std::vector<ScriptFrame> framesOf(const std::vector<LineInfo>& lines) {
    std::vector<ScriptFrame> frames;
    frames.reserve(lines.size());
    for (const LineInfo& place : lines)
        frames.push_back({FrameHandle(), place.fileName(), place.lineNumber(), -1, -1});
    return frames;
}

/// What the engine refuses of the debugger is told, and does the script no harm.
template <typename Work>
void quietly(Work work) {
    JS::AutoSaveExceptionState aside(engineContext());
    try {
        work();
    } catch (const ScriptErrorSet&) {
        qWarning("The debugger failed: %s", takeScriptError().message.toLocal8Bit().constData());
    }
    aside.restore();
}

}  // namespace

template <typename Work>
void JavaScriptDebugger::ask(Work work) {
    if (isInteractive())
        quietly(work);
}

JavaScriptDebugger::JavaScriptDebugger(JavaScriptInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_interpreter(interpreter), m_toldError(engineContext()) {
    Engine::self().setStopHandler(stopWhereTheScriptIs);
}

void JavaScriptDebugger::setInteractive(bool interactive) {
    if (interactive == isInteractive())
        return;
    LanguageDebugger::setInteractive(interactive);
    quietly([&] {
        if (interactive)
            watch();
        else
            DebuggerRealm::self().unwatch();
    });
}

void JavaScriptDebugger::realmChanged() {
    ask([&] {
        DebuggerRealm::self().unwatch();
        watch();
    });
}

void JavaScriptDebugger::watch() {
    DebuggerRealm::self().watch(m_interpreter.realm().global(), *this);
    breakPointsChanged();
    applyMode();
}

void JavaScriptDebugger::setDebuggerMode(DbgMode mode) {
    LanguageDebugger::setDebuggerMode(mode);
    applyMode();
}

void JavaScriptDebugger::applyMode() {
    ask([&] {
        // While the script stands still nothing is told anyway.
        if (!isSilent())
            DebuggerRealm::self().setStepping(debuggerMode() == Step || debuggerMode() == Next);
    });
}

void JavaScriptDebugger::breakPointsChanged() {
    ask([&] {
        for (const QString& file : knownFiles())
            DebuggerRealm::self().setBreakLines(file, breakLines(sourceIdOf(file)));
    });
}

void JavaScriptDebugger::interrupt() {
    Engine::self().requestStop();
}

void JavaScriptDebugger::enterSilence() {
    ask([] { DebuggerRealm::self().setSilent(true); });
}

void JavaScriptDebugger::leaveSilence() {
    ask([] { DebuggerRealm::self().setSilent(false); });
    applyMode();
}

// What the engine tells

void JavaScriptDebugger::reached(const QString& file, int line) {
    const LineInfo place = placeOfCode(file, line);
    if (place.isValid())
        lineReached(sourceIdOf(place.fileName()), place.lineNumber());
    // What a command at a stop throws into the script.
    if (JS_IsExceptionPending(engineContext()))
        throw ScriptErrorSet();
}

void JavaScriptDebugger::errorThrown(JS::HandleValue exception) {
    if (!stopsForErrors() || areErrorsCaught() ||
        m_interpreter.failures().isSkip(ObjectRoot(exception)))
        return;
    const QString text = exceptionText(exception);
    // An error of a native function may tell of the one that is told already.
    if (given<bool>(JS::StrictlyEqual, exception, m_toldError) || hasTold(text))
        return;
    m_toldError = exception;
    stopForError(text, runningFrames());
}

void JavaScriptDebugger::errorUncaught() {
    const std::optional<ScriptError> error = pendingScriptError();
    // Its frames are left: there are lines alone.
    if (error && stopsForErrors() && !error->isSkip && !hasTold(error->message))
        stopForError(error->message, framesOf(error->callStack));
    m_toldError.setUndefined();
    forgetTold();
}

// Frames and variables

std::vector<ScriptFrame> JavaScriptDebugger::runningFrames() {
    // Without the engine's debugger there are lines alone.
    if (!isInteractive())
        return framesOf(runningLines());
    std::vector<ScriptFrame> found;
    quietly([&] { found = DebuggerRealm::self().frames(); });
    return found;
}

std::vector<ValueTexts::Part> JavaScriptDebugger::variablesOf(const ScriptFrame& frame) {
    std::vector<ValueTexts::Part> variables;
    if (const auto handle = std::any_cast<FrameHandle>(frame.own))
        quietly([&] { variables = DebuggerRealm::self().variables(handle); });
    return variables;
}

std::unique_ptr<ValueTexts> JavaScriptDebugger::makeValueTexts() {
    return std::make_unique<JavaScriptValueTexts>();
}

}  // namespace Tamrix::JavaScriptPlugin
