#include "plugins/javascript/errors.h"

#include <js/Exception.h>
#include <js/Proxy.h>
#include <js/SavedFrameAPI.h>
#include <js/Stack.h>
#include <jsfriendapi.h>

#include <QRegularExpression>
#include <algorithm>

#include "plugins/javascript/enginefiles.h"
#include "plugins/javascript/javascriptinterpreter.h"
#include "plugins/javascript/scriptrealm.h"
#include "plugins/javascript/values.h"
#include "plugins/javascript/valuetext.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// A runaway recursion has thousands of lines; the innermost ones tell enough.
constexpr std::size_t mostLines = 100;
/// Errors that led to others, before the list is cut.
constexpr int mostCauses = 5;

/// The engine's own code, of stacks.
constexpr auto excluded = JS::SavedFrameSelfHosted::Exclude;

/// By ScriptFailure::Kind: the class of the namespace `tamrix`, or null for one of the language.
constexpr struct {
    const char* own;
    JSExnType builtIn;
} errorClasses[] = {
    {"Error", JSEXN_ERR},       {"VerificationError", JSEXN_ERR}, {"FatalError", JSEXN_ERR},
    {"LookupError", JSEXN_ERR}, {nullptr, JSEXN_REFERENCEERR},    {nullptr, JSEXN_TYPEERR},
};

/// What is told of the end of a script that has thrown nothing, by Engine::End.
constexpr const char* endTexts[] = {"The script was ended", "Interrupted", "Out of memory",
                                    "The script ended with exit(%1)", "The time is over"};

/// An error of a class of the namespace `tamrix`; null when no test case runs.
JSObject* makeOwn(const char* errorClass, const QString& text) {
    ScriptRealm* const realm = ScriptRealm::current();
    ObjectRoot made;
    if (realm)
        checked(JS::Construct(engineContext(), ValueRoot(realm->errorClass(errorClass)),
                              ValueRoots().add(toJsText(text)), &made));
    return made;
}

[[noreturn]] void throwObject(JS::HandleObject error) {
    JS_SetPendingException(engineContext(), ValueRoot(JS::ObjectValue(*error)));
    throw ScriptErrorSet();
}

bool isInstance(JS::HandleValue value, const char* errorClass) {
    ScriptRealm* const realm = ScriptRealm::current();
    if (!value.isObject() || !realm)
        return false;
    const ObjectRoot type(realm->errorClass(errorClass));
    bool holds = false;
    if (type && !JS_HasInstance(engineContext(), type, value, &holds))
        clearException();
    return holds;
}

// Places

const JSErrorReport* reportOf(const JS::Value& exception) {
    const ObjectRoot error(exception);
    return error ? JS_ErrorFromException(engineContext(), error) : nullptr;
}

/// Where the compiler has found an error, in no running code.
LineInfo syntaxErrorPlace(JS::HandleValue exception) {
    const JSErrorReport* const report = reportOf(exception);
    if (!report || report->exnType != JSEXN_SYNTAXERR || !report->filename)
        return {};
    return placeOfCode(QString::fromUtf8(report->filename), static_cast<int>(report->lineno));
}

struct StackLines {
    /// Of scripts, the innermost first.
    std::vector<LineInfo> lines;
    /// That of the outermost code, also of code in no file; 0 without.
    int outermost = 0;
};

StackLines linesOfStack(JS::HandleObject stack) {
    JSContext* const context = engineContext();
    StackLines found;
    ObjectRoot frame(stack);
    while (frame) {
        Root<JSString*> file;
        std::uint32_t line = 0;
        if (JS::GetSavedFrameSource(context, nullptr, frame, &file, excluded) !=
                JS::SavedFrameResult::Ok ||
            JS::GetSavedFrameLine(context, nullptr, frame, &line, excluded) !=
                JS::SavedFrameResult::Ok)
            break;
        found.outermost = static_cast<int>(line);
        const LineInfo place = placeOfCode(fileFromEngine(fromJsString(file)), found.outermost);
        if (place.isValid() && found.lines.size() < mostLines)
            found.lines.push_back(place);
        // A function that has waited goes on behind that which began it.
        ObjectRoot parent;
        JS::GetSavedFrameParent(context, nullptr, frame, &parent, excluded);
        if (!parent)
            JS::GetSavedFrameAsyncParent(context, nullptr, frame, &parent, excluded);
        frame = parent;
    }
    return found;
}

/// Takes the lines of the code that still runs from the end of a stack.
void cutRunningLines(std::vector<LineInfo>* stack) {
    const std::vector<LineInfo> running = runningLines();
    if (running.size() <= stack->size() &&
        std::equal(running.rbegin(), running.rend(), stack->rbegin(),
                   [](const LineInfo& left, const LineInfo& right) { return !(left != right); }))
        stack->resize(stack->size() - running.size());
}

/// Takes the lines of classes of errors that have no constructor of their own from the beginning:
/// these are run when an error is made, and stand where the class begins.
void cutOwnClasses(JS::HandleValue exception, std::vector<LineInfo>* stack) {
    std::vector<LineInfo> classes;
    const IdRoot key(toKey(QStringLiteral("constructor")));
    ObjectRoot holder(exception);
    for (; holder && !js::IsProxy(holder); holder = prototypeOf(holder))
        classes.push_back(placeOfFunction(dataPropertyOf(holder, key)));
    // The constructor of the outermost class has run the others.
    std::for_each(classes.rbegin(), classes.rend(), [stack](const LineInfo& place) {
        if (place.isValid() && stack->size() > 1 && !(stack->front() != place))
            stack->erase(stack->begin());
    });
}

// What has ended the script

ScriptError errorOfEnd() {
    ScriptError error;
    const ObjectRoot stack(Engine::self().endedStack());
    const Engine::End end = Engine::self().takeEnd();
    error.message = endTexts[static_cast<int>(end)];
    if (end == Engine::End::Exit) {
        error.isExit = Engine::self().exitStatus() == 0;
        error.message = error.message.arg(Engine::self().exitStatus());
    }
    StackLines found = linesOfStack(stack);
    cutRunningLines(&found.lines);
    error.callStack = std::move(found.lines);
    error.outermostLine = found.outermost;
    return error;
}

ScriptError errorOf(const JS::ExceptionStack& thrown) {
    const JS::HandleValue exception = thrown.exception();
    const ObjectRoot object(exception);
    const ObjectRoot own(object ? JS::ExceptionStackOrNull(object) : nullptr);
    ScriptError error;
    StackLines found;
    try {
        error.message = exceptionText(exception);
        // The stack that an error has, or the one with which it was thrown.
        found = linesOfStack(own ? JS::HandleObject(own) : thrown.stack());
        cutRunningLines(&found.lines);
        if (own)
            cutOwnClasses(exception, &found.lines);
    } catch (const ScriptErrorSet&) {
        // An error that can't be told.
        clearException();
    }
    error.callStack = std::move(found.lines);
    if (error.message.isEmpty() && object)
        error.message = QStringLiteral("An error that can't be written");
    const LineInfo place = syntaxErrorPlace(exception);
    if (place.isValid() && (error.callStack.empty() || error.callStack.front() != place))
        error.callStack.insert(error.callStack.begin(), place);
    const JSErrorReport* const report = reportOf(exception);
    error.outermostLine =
        found.outermost == 0 && report ? static_cast<int>(report->lineno) : found.outermost;
    error.isPendingStep = isInstance(exception, "PendingStepError");
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->failures().complete(object.get(), &error);
    return error;
}

}  // namespace

// Throwing

void throwFailure(const ScriptFailure& failure) {
    const auto& row = ScriptFailure::of(failure.kind, errorClasses);
    const ObjectRoot error(row.own ? makeOwn(row.own, failure.text) : nullptr);
    if (!error)
        throwBuiltIn(row.builtIn, failure.text);
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->noticeFailure(failure, error);
    throwObject(error);
}

void raise(const ScriptFailure& failure) {
    try {
        throwFailure(failure);
    } catch (const ScriptErrorSet&) {
        // It is pending, or what the engine has thrown instead.
    }
}

void throwPendingStep(const QString& text) {
    throwObject(ObjectRoot(makeOwn("PendingStepError", text)));
}

void throwBuiltIn(JSExnType type, const QString& text) {
    JSErrorFormatString format = {"", "{0}", 1, static_cast<std::int16_t>(type)};
    JS_ReportErrorNumberUTF8(
        engineContext(),
        [](void* reference, unsigned) -> const JSErrorFormatString* {
            return static_cast<JSErrorFormatString*>(reference);
        },
        &format, 1, text.toUtf8().constData());
    throw ScriptErrorSet();
}

QString nameOfCallee(const JS::CallArgs& arguments) {
    JSString* const name = JS_GetFunctionId(JS_GetObjectFunction(&arguments.callee()));
    return name ? fromJsString(name) : QString();
}

// What is pending

bool isEndOfScript() {
    ValueRoot exception;
    if (!JS_GetPendingException(engineContext(), &exception))
        return true;
    const JS::AutoSaveExceptionState kept(engineContext());
    return isInstance(exception, "FatalError");
}

QString exceptionText(JS::HandleValue exception) {
    ValueRoot value(exception);
    QString text;
    for (int count = 0; count <= mostCauses; ++count) {
        if (count > 0)
            text += "\ncaused by ";
        text += textOf(value);
        const ObjectRoot error(value);
        const mozilla::Maybe<JS::Value> cause =
            error ? JS::GetExceptionCause(error) : mozilla::Nothing();
        if (cause.isNothing())
            break;
        value = *cause;
    }
    return text;
}

ScriptError takeScriptError() {
    if (!JS_IsExceptionPending(engineContext()))
        return errorOfEnd();
    JS::ExceptionStack thrown(engineContext());
    if (JS::StealPendingExceptionStack(engineContext(), &thrown))
        return errorOf(thrown);
    clearException();
    ScriptError error;
    error.message = QStringLiteral("Out of memory");
    return error;
}

std::optional<ScriptError> pendingScriptError() {
    JS::ExceptionStack thrown(engineContext());
    if (!JS_IsExceptionPending(engineContext()) ||
        !JS::GetPendingExceptionStack(engineContext(), &thrown))
        return std::nullopt;
    const JS::AutoSaveExceptionState kept(engineContext());
    return errorOf(thrown);
}

// Places

std::vector<LineInfo> runningLines() {
    ObjectRoot stack;
    if (!JS::CaptureCurrentStack(engineContext(), &stack)) {
        clearException();
        return {};
    }
    return linesOfStack(stack).lines;
}

LineInfo placeOfCode(const QString& file, int line) {
    if (file.isEmpty() || file.startsWith('<'))
        return {};
    // "FILE line 3 > eval line 1 > Function": the outermost of them.
    static const QRegularExpression s_evaluated(QStringLiteral("^(.*?) line (\\d+) > "));
    if (file.contains(QLatin1String(" > "))) {
        const QRegularExpressionMatch evaluated = s_evaluated.match(file);
        if (evaluated.hasMatch())
            return placeOfCode(evaluated.captured(1), evaluated.captured(2).toInt());
    }
    return LineInfo(file, line);
}

LineInfo placeOfFunction(const JS::Value& function) {
    const Root<JSFunction*> object(function.isObject() ? JS_GetObjectFunction(&function.toObject())
                                                       : nullptr);
    JSScript* const script = object ? JS_GetFunctionScript(engineContext(), object) : nullptr;
    if (!script) {
        clearException();
        return {};
    }
    return placeOfCode(QString::fromUtf8(JS_GetScriptFilename(script)),
                       static_cast<int>(JS_GetScriptBaseLineNumber(engineContext(), script)));
}

}  // namespace Tamrix::JavaScriptPlugin
