#include "plugins/javascript/errors.h"

#include <js/ErrorReport.h>
#include <js/Exception.h>
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

/// By ScriptFailure::Kind: the class of the namespace `tamrix`, or a class of the language.
constexpr struct {
    const char* name;
    bool isBuiltIn;
} errorClasses[] = {
    {"Error", false},       {"VerificationError", false}, {"FatalError", false},
    {"LookupError", false}, {"ReferenceError", true},     {"TypeError", true},
};

/// What is told of the end of a script that has thrown nothing, by Engine::End.
constexpr const char* endTexts[] = {"", "Interrupted", "Out of memory", ""};

/// Makes and throws an error of a class of the namespace `tamrix`. `error` stays null when the
/// engine throws something else instead, or when no test case runs.
void throwOwn(const char* errorClass, const QString& text, JS::MutableHandleObject error) {
    JSContext* const context = engineContext();
    ScriptRealm* const realm = ScriptRealm::current();
    if (!realm) {
        raiseBuiltIn("Error", text);
        return;
    }
    try {
        JS::RootedValue type(context, realm->errorClass(errorClass));
        JS::RootedValueArray<1> arguments(context);
        arguments[0].set(toJsText(text));
        JS::RootedObject made(context);
        checked(JS::Construct(context, type, arguments, &made));
        JS::RootedValue value(context, JS::ObjectValue(*made));
        JS_SetPendingException(context, value);
        error.set(made);
    } catch (const ScriptErrorSet&) {
        // What the engine has thrown instead is pending.
    }
}

bool isInstance(JS::HandleValue value, const char* errorClass) {
    JSContext* const context = engineContext();
    ScriptRealm* const realm = ScriptRealm::current();
    if (!value.isObject() || !realm)
        return false;
    JS::RootedValue type(context, realm->errorClass(errorClass));
    bool holds = false;
    if (!type.isObject())
        return false;
    JS::RootedObject typeObject(context, &type.toObject());
    if (!JS_HasInstance(context, typeObject, value, &holds))
        clearException();
    return holds;
}

/// The stack that an error has, or the one with which it was thrown.
JSObject* stackOf(JS::HandleValue exception, JS::HandleObject thrownStack) {
    if (exception.isObject()) {
        JS::RootedObject error(engineContext(), &exception.toObject());
        if (JSObject* const own = JS::ExceptionStackOrNull(error))
            return own;
    }
    return thrownStack;
}

/// Where the compiler has found an error, in no running code.
LineInfo syntaxErrorPlace(JS::HandleValue exception) {
    if (!exception.isObject())
        return {};
    JS::RootedObject error(engineContext(), &exception.toObject());
    const JSErrorReport* const report = JS_ErrorFromException(engineContext(), error);
    if (!report || report->exnType != JSEXN_SYNTAXERR || !report->filename)
        return {};
    return placeOfCode(QString::fromUtf8(report->filename), static_cast<int>(report->lineno));
}

int outermostLineOf(JS::HandleValue exception, JS::HandleObject stack) {
    JSContext* const context = engineContext();
    int line = 0;
    JS::RootedObject frame(context, stack);
    while (frame) {
        std::uint32_t found = 0;
        if (JS::GetSavedFrameLine(context, nullptr, frame, &found, excluded) ==
            JS::SavedFrameResult::Ok)
            line = static_cast<int>(found);
        JS::RootedObject parent(context);
        if (JS::GetSavedFrameParent(context, nullptr, frame, &parent, excluded) !=
            JS::SavedFrameResult::Ok)
            break;
        frame = parent;
    }
    if (line == 0 && exception.isObject()) {
        JS::RootedObject error(context, &exception.toObject());
        if (const JSErrorReport* const report = JS_ErrorFromException(context, error))
            line = static_cast<int>(report->lineno);
    }
    return line;
}

}  // namespace

void raise(const ScriptFailure& failure) {
    const auto& row = ScriptFailure::of(failure.kind, errorClasses);
    if (row.isBuiltIn) {
        raiseBuiltIn(row.name, failure.text);
        return;
    }
    JS::RootedObject error(engineContext());
    throwOwn(row.name, failure.text, &error);
    auto* const interpreter = JavaScriptInterpreter::active();
    if (error && interpreter)
        interpreter->noticeFailure(failure, error);
}

void throwFailure(const ScriptFailure& failure) {
    raise(failure);
    throw ScriptErrorSet();
}

void throwPendingStep(const QString& text) {
    JS::RootedObject error(engineContext());
    throwOwn("PendingStepError", text, &error);
    throw ScriptErrorSet();
}

void throwBuiltIn(const char* type, const QString& text) {
    raiseBuiltIn(type, text);
    throw ScriptErrorSet();
}

QString nameOfCallee(const JS::CallArgs& arguments) {
    JSString* const name = JS_GetFunctionId(JS_GetObjectFunction(&arguments.callee()));
    return name ? fromJsString(name) : QString();
}

void raiseBuiltIn(const char* type, const QString& text) {
    constexpr struct {
        const char* name;
        JSExnType kind;
    } kinds[] = {{"Error", JSEXN_ERR},
                 {"RangeError", JSEXN_RANGEERR},
                 {"ReferenceError", JSEXN_REFERENCEERR},
                 {"TypeError", JSEXN_TYPEERR}};
    const auto* const row = std::find_if(std::begin(kinds), std::end(kinds), [&](const auto& each) {
        return qstrcmp(type, each.name) == 0;
    });
    JSErrorFormatString format = {"", "{0}", 1, static_cast<std::int16_t>(row->kind)};
    JS_ReportErrorNumberUTF8(
        engineContext(),
        [](void* reference, unsigned) -> const JSErrorFormatString* {
            return static_cast<JSErrorFormatString*>(reference);
        },
        &format, 1, text.toUtf8().constData());
}

bool isEndOfScript() {
    JSContext* const context = engineContext();
    JS::ExceptionStack pending(context);
    if (!JS_IsExceptionPending(context) || !JS::StealPendingExceptionStack(context, &pending))
        return true;
    JS::RootedValue exception(context, pending.exception());
    const bool isEnd = isInstance(exception, "FatalError");
    JS::SetPendingExceptionStack(context, pending);
    return isEnd;
}

QString exceptionText(JS::HandleValue exception) {
    JSContext* const context = engineContext();
    JS::RootedValue value(context, exception);
    QString text;
    for (int count = 0; count <= mostCauses; ++count) {
        if (count > 0)
            text += "\ncaused by ";
        text += textOf(value);
        if (!value.isObject())
            break;
        JS::RootedObject error(context, &value.toObject());
        const mozilla::Maybe<JS::Value> cause = JS::GetExceptionCause(error);
        if (cause.isNothing())
            break;
        value = *cause;
    }
    return text;
}

namespace {

/// Takes the lines of the code that still runs from the end of a stack.
void cutRunningLines(std::vector<LineInfo>* stack) {
    const std::vector<LineInfo> running = runningLines();
    if (running.size() <= stack->size() &&
        std::equal(running.rbegin(), running.rend(), stack->rbegin(),
                   [](const LineInfo& left, const LineInfo& right) { return !(left != right); }))
        stack->resize(stack->size() - running.size());
}

}  // namespace

namespace {

/// What has ended the script without an exception.
ScriptError takeEndError() {
    ScriptError error;
    JS::RootedObject stack(engineContext(), Engine::self().endedStack());
    const Engine::End end = Engine::self().takeEnd();
    error.message = endTexts[static_cast<int>(end)];
    const int status = Engine::self().exitStatus();
    error.isExit = end == Engine::End::Exit && status == 0;
    if (end == Engine::End::Exit && status != 0)
        error.message = QStringLiteral("The script ended with exit(%1)").arg(status);
    if (error.message.isEmpty())
        error.message = QStringLiteral("The script was ended");
    error.callStack = linesOfStack(stack);
    cutRunningLines(&error.callStack);
    error.outermostLine = outermostLineOf(JS::UndefinedHandleValue, stack);
    return error;
}

ScriptError errorOf(const JS::ExceptionStack& thrown) {
    JSContext* const context = engineContext();
    JS::RootedValue exception(context, thrown.exception());
    JS::RootedObject stack(context, stackOf(exception, thrown.stack()));
    ScriptError error;
    try {
        error.message = exceptionText(exception);
        error.callStack = linesOfStack(stack);
        cutRunningLines(&error.callStack);
    } catch (const ScriptErrorSet&) {
        // An error that can't be told.
        clearException();
    }
    if (error.message.isEmpty() && exception.isObject())
        error.message = QStringLiteral("An error that can't be written");
    const LineInfo place = syntaxErrorPlace(exception);
    if (place.isValid() && (error.callStack.empty() || error.callStack.front() != place))
        error.callStack.insert(error.callStack.begin(), place);
    error.outermostLine = outermostLineOf(exception, stack);
    error.isPendingStep = isInstance(exception, "PendingStepError");
    if (auto* const interpreter = JavaScriptInterpreter::active())
        interpreter->completeError(exception, &error);
    return error;
}

}  // namespace

ScriptError takeScriptError() {
    JSContext* const context = engineContext();
    if (!JS_IsExceptionPending(context))
        return takeEndError();
    JS::ExceptionStack thrown(context);
    if (JS::StealPendingExceptionStack(context, &thrown))
        return errorOf(thrown);
    clearException();
    ScriptError error;
    error.message = QStringLiteral("Out of memory");
    return error;
}

std::optional<ScriptError> pendingScriptError() {
    JSContext* const context = engineContext();
    JS::ExceptionStack thrown(context);
    if (!JS_IsExceptionPending(context) || !JS::StealPendingExceptionStack(context, &thrown))
        return std::nullopt;
    ScriptError error = errorOf(thrown);
    JS::SetPendingExceptionStack(context, thrown);
    return error;
}

QString takeErrorText() {
    return takeScriptError().message;
}

std::vector<LineInfo> linesOfStack(JS::HandleObject stack) {
    JSContext* const context = engineContext();
    std::vector<LineInfo> lines;
    JS::RootedObject frame(context, stack);
    while (frame && lines.size() < mostLines) {
        JS::RootedString source(context);
        std::uint32_t line = 0;
        if (JS::GetSavedFrameSource(context, nullptr, frame, &source, excluded) !=
                JS::SavedFrameResult::Ok ||
            JS::GetSavedFrameLine(context, nullptr, frame, &line, excluded) !=
                JS::SavedFrameResult::Ok)
            break;
        const LineInfo place = placeOfCode(fileFromEngine(source), static_cast<int>(line));
        if (place.isValid())
            lines.push_back(place);
        // A function that has waited goes on behind that which began it.
        JS::RootedObject parent(context);
        JS::GetSavedFrameParent(context, nullptr, frame, &parent, excluded);
        if (!parent)
            JS::GetSavedFrameAsyncParent(context, nullptr, frame, &parent, excluded);
        frame = parent;
    }
    return lines;
}

std::vector<LineInfo> runningLines() {
    JS::RootedObject stack(engineContext());
    if (!JS::CaptureCurrentStack(engineContext(), &stack)) {
        clearException();
        return {};
    }
    return linesOfStack(stack);
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

}  // namespace Tamrix::JavaScriptPlugin
