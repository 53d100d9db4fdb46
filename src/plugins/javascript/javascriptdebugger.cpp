#include "plugins/javascript/javascriptdebugger.h"

#include "interpreter/language/prelude.h"
#include "interpreter/language/valuepath.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/nativefunctions.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// What a ScriptFrame has: the frame as the debugger's realm knows it; null for a line alone.
using FrameHandle = ObjectRoot;

/// The debugger that watches its script; null when none does.
JavaScriptDebugger* s_watching = nullptr;

// The realm of the debugger

void tellLine(const JS::CallArgs& arguments) {
    if (s_watching)
        s_watching->reached(fileFromEngine(fromJsText(arguments[0])), arguments[1].toInt32());
}

void tellError(const JS::CallArgs& arguments) {
    if (s_watching)
        s_watching->errorThrown(arguments.get(0));
}

JS::Value tellIsLibraryFunction(const JS::CallArgs& arguments) {
    const ObjectRoot object(arguments.get(0));
    return JS::BooleanValue(object && isLibraryFunction(js::UncheckedUnwrap(object)));
}

constexpr JSFunctionSpec functions[] = {
    JS_FN("tellLine", native<tellLine>, 2, 0),
    JS_FN("tellError", native<tellError>, 1, 0),
    JS_FN("isLibraryFunction", native<tellIsLibraryFunction>, 1, 0),
    JS_FS_END,
};

JSObject* newDebuggerRealm() {
    JSContext* const context = engineContext();
    const ObjectRoot global(newGlobal());
    const JSAutoRealm inside(context, global);
    checked(JS_DefineDebuggerObject(context, global) && JS_InitReflectParse(context, global) &&
            JS_DefineFunctions(context, global, functions));
    evaluateOwn(QString::fromUtf8(preludeSource("javascript/debugger.js")), "<tamrix debugger>");
    return global;
}

/// Its global object.
JS::HandleObject debuggerRealm() {
    // Never destroyed, as the engine.
    static const auto* const s_global = new ObjectRoot(newDebuggerRealm());
    return *s_global;
}

/// Calls a function of it with values of any realm.
JS::Value call(const char* function, const ValueRoots& given = ValueRoots()) {
    JSContext* const context = engineContext();
    ValueRoot result;
    ValueRoot value;
    ValueRoots arguments;
    const JSAutoRealm inside(context, debuggerRealm());
    for (const JS::Value& each : given) {
        value = each;
        checked(JS_WrapValue(context, &value));
        arguments.add(value);
    }
    checked(JS_CallFunctionName(context, debuggerRealm(), function, arguments, &result));
    return result;
}

void turn(const char* setter, bool isOn) {
    call(setter, ValueRoots().add(JS::BooleanValue(isOn)));
}

JS::Value currentGlobal() {
    return JS::ObjectValue(*JS::CurrentGlobalOrNull(engineContext()));
}

/// A value of it as one of the script's.
JS::Value taken(const JS::Value& value) {
    ValueRoot own(value);
    if (own.isObject() && js::IsWrapper(&own.toObject()))
        own.setObject(*js::UncheckedUnwrap(&own.toObject()));
    checked(JS_WrapValue(engineContext(), &own));
    return own;
}

/// The elements of a list of it.
class Elements : public ValueRoots {
public:
    explicit Elements(const JS::Value& list) {
        const JSAutoRealm inside(engineContext(), debuggerRealm());
        elementsOf(ObjectRoot(list), this);
    }
    QString text(std::size_t index) const { return fromJsText((*this)[index]); }
    int number(std::size_t index) const { return static_cast<int>((*this)[index].toNumber()); }
};

/// What code that was run has come to.
JS::Value completed(const JS::Value& completion) {
    const Elements parts(completion);
    const QString kind = parts.text(0);
    // What nothing catches leaves nothing pending.
    checked(kind != QLatin1String("ended"));
    const ValueRoot value(taken(parts[1]));
    if (kind != QLatin1String("thrown"))
        return value;
    throwWithStack(value, ObjectRoot(taken(parts[2])));
}

/// Of names and values in turns.
std::vector<ValueTexts::Part> partsIn(const JS::Value& list) {
    const Elements parts(list);
    std::vector<ValueTexts::Part> found;
    for (std::size_t index = 0; index + 1 < parts.length(); index += 2)
        found.push_back({parts.text(index), argumentOf(taken(parts[index + 1]))});
    return found;
}

// Frames

std::vector<ScriptFrame> watchedFrames() {
    const Elements parts(call("frames"));
    std::vector<ScriptFrame> found;
    for (std::size_t index = 0; index + 3 < parts.length(); index += 4) {
        // As the engine names it: code of an `eval` has a name of its own.
        const QString file = fileFromEngine(parts.text(index + 1));
        const LineInfo place = placeOfCode(file, parts.number(index + 2));
        if (place.isValid())
            found.push_back({FrameHandle(parts[index]), place.fileName(), place.lineNumber(),
                             place.fileName() == file ? parts.number(index + 3) : -1, -1});
    }
    return found;
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
    : LanguageDebugger(&interpreter), m_interpreter(interpreter) {
    Engine::self().setStopHandler([] {
        if (auto* const active = JavaScriptInterpreter::active())
            active->javaScriptDebugger().stop();
    });
}

// Watching

void JavaScriptDebugger::watch() {
    s_watching = this;
    call("watch", ValueRoots().add(JS::ObjectValue(*m_interpreter.realm().global())));
    breakPointsChanged();
    modeChanged();
}

void JavaScriptDebugger::unwatch() {
    s_watching = nullptr;
    call("unwatch");
}

void JavaScriptDebugger::realmChanged() {
    ask([&] {
        unwatch();
        watch();
    });
}

void JavaScriptDebugger::modeChanged() {
    const bool isWatching = s_watching == this;
    quietly([&] {
        if (isInteractive() && !isWatching)
            watch();
        else if (!isInteractive() && isWatching)
            unwatch();
        // While the script stands still nothing is told anyway.
        else if (isInteractive() && !isSilent())
            turn("setStepping", debuggerMode() == Step || debuggerMode() == Next);
    });
}

void JavaScriptDebugger::breakPointsChanged() {
    ask([&] {
        // Lists of its own: it looks at them where no code of the script may run.
        const JSAutoRealm inside(engineContext(), debuggerRealm());
        for (const QString& file : knownFiles()) {
            ValueRoots lines;
            for (const int line : breakLines(sourceIdOf(file)))
                lines.add(JS::Int32Value(line));
            call("setBreakLines", ValueRoots()
                                      .add(toJsText(QString::fromLatin1(file.toUtf8())))
                                      .add(newArray(lines)));
        }
    });
}

void JavaScriptDebugger::enterSilence() {
    ask([] { turn("setSilent", true); });
}

void JavaScriptDebugger::leaveSilence() {
    ask([] { turn("setSilent", false); });
    modeChanged();
}

// What the engine tells

void JavaScriptDebugger::reached(const QString& file, int line) {
    const JSAutoRealm inside(engineContext(), m_interpreter.realm().global());
    const LineInfo place = placeOfCode(file, line);
    if (place.isValid())
        lineReached(sourceIdOf(place.fileName()), place.lineNumber());
    // What a command at a stop throws into the script.
    if (JS_IsExceptionPending(engineContext()))
        throw ScriptErrorSet();
}

void JavaScriptDebugger::errorThrown(const JS::Value& thrown) {
    const JSAutoRealm inside(engineContext(), m_interpreter.realm().global());
    const ValueRoot exception(taken(thrown));
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

// Looking

std::vector<ScriptFrame> JavaScriptDebugger::runningFrames() {
    // Without the engine's debugger there are lines alone.
    if (!isInteractive())
        return framesOf(runningLines());
    std::vector<ScriptFrame> found;
    quietly([&] { found = watchedFrames(); });
    return found;
}

std::vector<ValueTexts::Part> JavaScriptDebugger::variablesOf(const ScriptFrame& frame) {
    std::vector<ValueTexts::Part> found;
    if (const auto handle = std::any_cast<FrameHandle>(frame.own))
        quietly([&] {
            found = partsIn(call("variables", ValueRoots().add(JS::ObjectValue(*handle))));
        });
    for (ValueTexts::Part& each : found)
        each.name = pathPart(each.name);
    return found;
}

JS::Value JavaScriptDebugger::evaluate(const ScriptFrame* frame, const QString& code) {
    const FrameHandle handle = frame ? std::any_cast<FrameHandle>(frame->own) : FrameHandle();
    ValueRoots given;
    given.add(JS::ObjectOrNullValue(handle)).add(currentGlobal()).add(toJsText(code));
    return completed(call("evaluate", given.add(toJsText(QStringLiteral("<debugger>")))));
}

JS::Value JavaScriptDebugger::evaluateInCaller(const QString& code, const char* file) {
    ValueRoots given;
    given.add(currentGlobal()).add(toJsText(code)).add(toJsText(QString::fromLatin1(file)));
    return completed(call("evaluateInCaller", given));
}

std::vector<ValueTexts::Part> JavaScriptDebugger::explainCaller() {
    return partsIn(call("explainCaller", ValueRoots().add(currentGlobal())));
}

}  // namespace Tamrix::JavaScriptPlugin
