#include "plugins/javascript/javascriptdebugger.h"

#include <js/Equality.h>
#include <js/Exception.h>

#include "plugins/javascript/errors.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/javascriptvariables.h"
#include "plugins/javascript/values.h"

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
    JSContext* const context = engineContext();
    JS::AutoSaveExceptionState aside(context);
    try {
        work();
    } catch (const ScriptErrorSet&) {
        qWarning("The debugger failed: %s", takeErrorText().toLocal8Bit().constData());
    }
    aside.restore();
}

}  // namespace

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
    if (!isInteractive())
        return;
    quietly([&] {
        DebuggerRealm::self().unwatch();
        watch();
    });
}

void JavaScriptDebugger::watch() {
    JS::RootedObject global(engineContext(), m_interpreter.realm().global());
    DebuggerRealm::self().watch(global, *this);
    breakPointsChanged();
    applyMode();
}

void JavaScriptDebugger::setDebuggerMode(DbgMode mode) {
    LanguageDebugger::setDebuggerMode(mode);
    applyMode();
}

void JavaScriptDebugger::applyMode() {
    // While the script stands still nothing is told anyway.
    if (!isInteractive() || isSilent())
        return;
    quietly([&] {
        DebuggerRealm::self().setStepping(debuggerMode() == Step || debuggerMode() == Next);
    });
}

void JavaScriptDebugger::breakPointsChanged() {
    if (!isInteractive())
        return;
    quietly([&] {
        for (const QString& file : m_files)
            DebuggerRealm::self().setBreakLines(file, breakLines(sourceIdOf(file)));
    });
}

void JavaScriptDebugger::noticeFile(const QString& file) {
    if (m_files.contains(file))
        return;
    m_files.append(file);
    sourceIdOf(file);
}

void JavaScriptDebugger::interrupt() {
    Engine::self().requestStop();
}

void JavaScriptDebugger::enterSilence() {
    if (isInteractive())
        quietly([] { DebuggerRealm::self().setSilent(true); });
}

void JavaScriptDebugger::leaveSilence() {
    if (!isInteractive())
        return;
    quietly([] { DebuggerRealm::self().setSilent(false); });
    applyMode();
}

// What the engine tells

void JavaScriptDebugger::lineReached(const QString& file, int line) {
    const LineInfo place = placeOfCode(file, line);
    if (place.isValid())
        LanguageDebugger::lineReached(sourceIdOf(place.fileName()), place.lineNumber());
    // What a command at a stop throws into the script.
    if (JS_IsExceptionPending(engineContext()))
        throw ScriptErrorSet();
}

void JavaScriptDebugger::errorThrown(JS::HandleValue exception) {
    if (!stopsForErrors() || areErrorsCaught() || m_interpreter.isSkip(exception))
        return;
    bool isTold = false;
    JS::RootedValue told(engineContext(), m_toldError);
    checked(JS::StrictlyEqual(engineContext(), exception, told, &isTold));
    const QString text = exceptionText(exception);
    // An error of a native function may tell of the one that is told already.
    if (isTold || hasTold(text))
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
    quietly([&] {
        for (const DebuggerRealm::Frame& frame : DebuggerRealm::self().frames()) {
            const LineInfo place = placeOfCode(frame.file, frame.line);
            const bool isWhole = place.fileName() == frame.file;
            if (place.isValid())
                found.push_back({frame.handle, place.fileName(), place.lineNumber(),
                                 isWhole ? frame.column : -1, -1});
        }
    });
    return found;
}

std::vector<DebuggerRealm::Variable> JavaScriptDebugger::variablesOf(const ScriptFrame& frame) {
    const auto* const handle = std::any_cast<FrameHandle>(&frame.own);
    std::vector<DebuggerRealm::Variable> found;
    if (handle && *handle)
        quietly([&] { found = DebuggerRealm::self().variables(*handle); });
    return found;
}

JS::Value JavaScriptDebugger::evaluate(const ScriptFrame* frame, const QString& code) {
    const auto* const handle = frame ? std::any_cast<FrameHandle>(&frame->own) : nullptr;
    return DebuggerRealm::self().evaluate(handle ? *handle : FrameHandle(), code);
}

std::unique_ptr<VariableWatcher> JavaScriptDebugger::makeVariableWatcher() {
    return std::make_unique<JavaScriptVariables>(*this);
}

}  // namespace Tamrix::JavaScriptPlugin
