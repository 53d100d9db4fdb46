#include "plugins/javascript/errors.h"

#include <QRegularExpression>
#include <algorithm>

#include "interpreter/language/stacklines.h"
#include "plugins/javascript/javascriptinterpreter.h"

namespace Tamrix::JavaScriptPlugin {

namespace {

/// The engine's own code, of stacks.
constexpr auto excluded = JS::SavedFrameSelfHosted::Exclude;

/// By ScriptFailure::Kind: the class of the namespace `tamrix`, or null for one of the language.
constexpr struct {
    const char* own;
    JSProtoKey builtIn;
} errorClasses[] = {
    {"Error", JSProto_Error},          {"VerificationError", JSProto_Error},
    {"FatalError", JSProto_Error},     {"LookupError", JSProto_Error},
    {nullptr, JSProto_ReferenceError}, {nullptr, JSProto_TypeError},
};

/// What is told of the end of a script that has thrown nothing, by Engine::End.
constexpr const char* endTexts[] = {"The script was ended", "Interrupted", "Out of memory",
                                    "The script ended with exit(%1)", "The time is over"};

/// An error of a class of the namespace `tamrix`, or of one of the language when there is none.
JSObject* newError(const char* own, JSProtoKey builtIn, const QString& text) {
    ScriptRealm* const realm = own ? ScriptRealm::current() : nullptr;
    const ObjectRoot type(realm ? ObjectRoot(realm->errorClass(own)).get()
                                : given<JSObject*>(JS_GetClassObject, builtIn));
    return newInstance(ValueRoot(JS::ObjectValue(*type)), ValueRoots().add(toJsText(text)));
}

bool isInstance(JS::HandleValue value, const char* errorClass) {
    ScriptRealm* const realm = ScriptRealm::current();
    bool holds = false;
    if (value.isObject() && realm &&
        !JS_HasInstance(engineContext(), ObjectRoot(realm->errorClass(errorClass)), value, &holds))
        clearException();
    return holds;
}

// Places

/// Adds the script lines of a stack, the innermost first, and the line of the outermost code.
void addLinesOfStack(JS::HandleObject stack, ScriptError* error) {
    JSContext* const context = engineContext();
    ObjectRoot frame(stack);
    while (frame) {
        Root<JSString*> file;
        std::uint32_t line = 0;
        // Of code that is not shown these are empty.
        JS::GetSavedFrameSource(context, nullptr, frame, &file, excluded);
        JS::GetSavedFrameLine(context, nullptr, frame, &line, excluded);
        error->outermostLine = static_cast<int>(line);
        const LineInfo place =
            placeOfCode(fileFromEngine(fromJsString(file)), error->outermostLine);
        if (place.isValid())
            error->callStack.push_back(place);
        // A function that has waited goes on behind that which began it.
        ObjectRoot parent;
        JS::GetSavedFrameParent(context, nullptr, frame, &parent, excluded);
        if (!parent)
            JS::GetSavedFrameAsyncParent(context, nullptr, frame, &parent, excluded);
        frame = parent;
    }
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
    addLinesOfStack(stack, &error);
    cutCommonEnd(&error.callStack, runningLines());
    return error;
}

ScriptError errorOf(const JS::ExceptionStack& thrown) {
    const JS::HandleValue exception = thrown.exception();
    const ObjectRoot object(exception);
    const ObjectRoot own(object ? JS::ExceptionStackOrNull(object) : nullptr);
    ScriptError error;
    try {
        error.message = exceptionText(exception);
        // The stack that an error has, or the one with which it was thrown.
        addLinesOfStack(own ? JS::HandleObject(own) : thrown.stack(), &error);
        cutCommonEnd(&error.callStack, runningLines());
        if (own)
            cutOwnClasses(exception, &error.callStack);
    } catch (const ScriptErrorSet&) {
        // An error that can't be told.
        clearException();
    }
    if (error.message.isEmpty() && object)
        error.message = QStringLiteral("An error that can't be written");
    // Where the compiler has found an error is no running code.
    const JSErrorReport* const report = reportOf(exception);
    const LineInfo place =
        report ? placeOfCode(QString::fromUtf8(report->filename), static_cast<int>(report->lineno))
               : LineInfo();
    if (place.isValid() && report->exnType == JSEXN_SYNTAXERR &&
        (error.callStack.empty() || error.callStack.front() != place))
        error.callStack.insert(error.callStack.begin(), place);
    if (report && error.outermostLine == 0)
        error.outermostLine = static_cast<int>(report->lineno);
    error.isPendingStep = isInstance(exception, "PendingStepError");
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->failures().complete(object.get(), &error);
    return error;
}

}  // namespace

// Throwing

void throwError(JS::HandleObject error) {
    JS_SetPendingException(engineContext(), ValueRoot(JS::ObjectValue(*error)));
    throw ScriptErrorSet();
}

void throwFailure(const ScriptFailure& failure) {
    const auto& row = ScriptFailure::of(failure.kind, errorClasses);
    const ObjectRoot error(newError(row.own, row.builtIn, failure.text));
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->failures().notice(failure, interpreter->languageDebugger(), error);
    throwError(error);
}

void raise(const ScriptFailure& failure) {
    try {
        throwFailure(failure);
    } catch (const ScriptErrorSet&) {
        // It is pending, or what the engine has thrown instead.
    }
}

void throwPendingStep(const QString& text) {
    throwError(ObjectRoot(newError("PendingStepError", JSProto_Error, text)));
}

void throwWithStack(JS::HandleValue thrown, JS::HandleObject stack) {
    JS::SetPendingExceptionStack(engineContext(),
                                 JS::ExceptionStack(engineContext(), thrown, stack));
    throw ScriptErrorSet();
}

void throwBuiltIn(JSProtoKey type, const QString& text) {
    throwError(ObjectRoot(newError(nullptr, type, text)));
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

const JSErrorReport* reportOf(const JS::Value& exception) {
    const ObjectRoot error(exception);
    return error ? JS_ErrorFromException(engineContext(), error) : nullptr;
}

QString exceptionText(JS::HandleValue exception) {
    return textWithCauses(
        ValueRoot(exception), [](const ValueRoot& each) { return textOf(each); },
        [](const ValueRoot& each) -> std::optional<ValueRoot> {
            const ObjectRoot error(each);
            const auto cause = error ? JS::GetExceptionCause(error) : mozilla::Nothing();
            return cause ? std::optional(ValueRoot(*cause)) : std::nullopt;
        });
}

ScriptError takeScriptError() {
    const std::optional<ScriptError> error = pendingScriptError();
    clearException();
    return error ? *error : errorOfEnd();
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
    ScriptError running;
    ObjectRoot stack;
    if (JS::CaptureCurrentStack(engineContext(), &stack))
        addLinesOfStack(stack, &running);
    else
        clearException();
    return running.callStack;
}

LineInfo placeOfCode(const QString& file, int line) {
    if (file.isEmpty() || file.startsWith('<'))
        return {};
    // "FILE line 3 > eval line 1 > Function": the outermost of them.
    static const QRegularExpression s_evaluated(QStringLiteral("^(.*?) line (\\d+) > "));
    const QRegularExpressionMatch evaluated =
        file.contains(QLatin1String(" > ")) ? s_evaluated.match(file) : QRegularExpressionMatch();
    return evaluated.hasMatch() ? placeOfCode(evaluated.captured(1), evaluated.captured(2).toInt())
                                : LineInfo(file, line);
}

LineInfo placeOfFunction(const JS::Value& function) {
    const Root<JSFunction*> object(function.isObject() ? JS_GetObjectFunction(&function.toObject())
                                                       : nullptr);
    JSScript* const script = object ? JS_GetFunctionScript(engineContext(), object) : nullptr;
    if (script)
        return placeOfCode(QString::fromUtf8(JS_GetScriptFilename(script)),
                           static_cast<int>(JS_GetScriptBaseLineNumber(engineContext(), script)));
    clearException();
    return {};
}

}  // namespace Tamrix::JavaScriptPlugin
