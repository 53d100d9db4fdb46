#include "plugins/tcl/tclinterpreter.h"

#include <QDateTime>
#include <QFileInfo>
#include <QScopedValueRollback>
#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "interpreter/language/prelude.h"
#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/spoiledprocess.h"
#include "interpreter/language/stepactions.h"
#include "platform/testresult/testresult.h"
#include "plugins/tcl/commandbody.h"
#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/nativeclasses.h"
#include "plugins/tcl/nativecommands.h"
#include "plugins/tcl/scriptchannels.h"
#include "plugins/tcl/tclargument.h"
#include "plugins/tcl/tclcontext.h"
#include "plugins/tcl/tcldebugger.h"
#include "plugins/tcl/tclruntime.h"
#include "plugins/tcl/tclsteps.h"

namespace Tamrix::TclPlugin {

namespace {

/// Behind it in Tcl's words on an error is the line within a procedure.
constexpr std::string_view lineMark = "\" line ";

/// What a script sees of each kind of failure, the `-errorcode`, and what a person is told it is.
struct KindName {
    const char* errorCode;
    const char* name;
};
constexpr KindName otherError = {"NONE", "Error"};
constexpr KindName pendingStep = {pendingErrorCode, "PendingStepError"};

/// In the order of ScriptFailure::Kind.
constexpr KindName kindNames[] = {
    {"TAMRIX ERROR", "TamrixError"},  {"TAMRIX VERIFICATION", "VerificationError"},
    {"TAMRIX FATAL", "FatalError"},   {"TAMRIX LOOKUP", "LookupError"},
    {"TAMRIX MEMBER", "MemberError"}, {"TAMRIX ARGUMENT", "ArgumentError"},
};

void discard(Tcl_InterpState& state) {
    if (state)
        Tcl_DiscardInterpState(std::exchange(state, nullptr));
}

const KindName& kindName(ScriptFailure::Kind kind) {
    return ScriptFailure::of(kind, kindNames);
}

const char* nameOfError(std::string_view errorCode) {
    if (errorCode == pendingStep.errorCode)
        return pendingStep.name;
    const auto* const row =
        std::find_if(std::begin(kindNames), std::end(kindNames),
                     [errorCode](const KindName& each) { return errorCode == each.errorCode; });
    return row == std::end(kindNames) ? otherError.name : row->name;
}

/// The panic behind which nothing of Tcl can run any more in this process: what it keeps for the
/// whole process may be broken. Without a text there was none.
ScriptError s_panic;

bool hasPanicked() {
    return !s_panic.message.isEmpty();
}

struct OwnCommand {
    TclInterpreter& interpreter;
    TclInterpreter::Command body;
};

int runOwn(void* data, Tcl_Interp*, int count, Tcl_Obj* const* words) {
    const auto& own = *static_cast<OwnCommand*>(data);
    return runCommand(own.interpreter, [&] { return own.body(count, words); });
}

}  // namespace

TclInterpreter::TclInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, Interpreter::Tcl) {
    TclRuntime::self();
    // Where Debian keeps packages.
    m_files.addLibrary(QStringLiteral("/usr/share/tcltk"));
    m_files.addLibrary(QStringLiteral("/usr/lib/tcltk"));
    m_context = std::make_unique<TclContext>(*this);
    m_classes = std::make_unique<ClassCommands>(*this);
    m_debugger = std::make_unique<TclDebugger>(*this);
    createTcl();
    begin(*m_context, *m_debugger, std::make_unique<TclSteps>(*this));
}

TclInterpreter::~TclInterpreter() {
    end();
    deleteTcl();
}

void TclInterpreter::createTcl() {
    if (hasPanicked())
        throw std::runtime_error(
            (s_panic.message + ", in an earlier test case of this run").toStdString());
    m_tcl = Tcl_CreateInterp();
    installChannels(m_tcl, output());
    Tcl_SetSystemEncoding(nullptr, "utf-8");
    if (Tcl_Init(m_tcl) != TCL_OK) {
        const QString reason = textOf(Tcl_GetObjResult(m_tcl));
        deleteTcl();
        throw std::runtime_error(reason.toStdString());
    }
    m_files.addLibrary(
        QString::fromUtf8(Tcl_GetVar2(m_tcl, "::tcl_library", nullptr, TCL_GLOBAL_ONLY)));
    m_values = std::make_unique<HeldValues>(*this, m_tcl);
    m_errors = std::make_unique<ErrorNotes>(
        m_tcl, [this](const std::vector<TclFrame>& frames) { m_debugger->errorRaised(frames); });
    Tcl_CmdInfo source;
    Tcl_GetCommandInfo(m_tcl, "::source", &source);
    defineCommand(QStringLiteral("source"), [this, source](int count, Tcl_Obj* const* words) {
        // What a file registers that is loaded again takes the place of what it did before.
        if (count > 1)
            steps().registry().forget(Debugger::sanitizedFilePath(textOf(words[count - 1])));
        return Tcl_NRCallObjProc(m_tcl, source.objProc, source.objClientData, count, words);
    });
    defineStepCommands(*this);
    Tcl_EvalEx(m_tcl, preludeSource("tcl/prelude.tcl").constData(), -1, TCL_EVAL_GLOBAL);
    m_context->defineStepMembers();
    defineCommand(QStringLiteral("tamrix::_takeLateError"),
                  [this](int, Tcl_Obj* const* words) { return takeLateError(words[1], words[2]); });
    m_debugger->enterTcl();
}

void TclInterpreter::deleteTcl() {
    if (!m_tcl)
        return;
    TclRuntime::self().setInterruptible(nullptr);
    // Behind a panic nothing of it can be touched any more, not even to be freed.
    if (hasPanicked()) {
        static_cast<void>(m_errors.release());
        static_cast<void>(m_values.release());
        m_tcl = nullptr;
        return;
    }
    m_debugger->leaveTcl();
    m_errors.reset();
    m_values.reset();
    for (Tcl_InterpState* const state : {&m_pendingState, &m_lateEnd})
        discard(*state);
    Tcl_DeleteInterp(m_tcl);
    m_tcl = nullptr;
}

// Commands

QByteArray TclInterpreter::pathForName(const QString& name) {
    const int separator = name.indexOf(QLatin1String("::"));
    const QByteArray space = "::" + toTclBytes(name.left(separator));
    if (separator > 0 && !Tcl_FindNamespace(m_tcl, space.constData(), nullptr, 0)) {
        Tcl_Namespace* const made = Tcl_CreateNamespace(m_tcl, space.constData(), nullptr, nullptr);
        Tcl_Export(m_tcl, made, "*", 1);
        // No prefixes: a slip in a name is an error.
        Tcl_CreateEnsemble(m_tcl, space.constData(), made, 0);
    }
    return "::" + toTclBytes(name);
}

void TclInterpreter::defineCommand(const QString& name, Command command) {
    defineCommand(name, runOwn,
                  std::make_unique<OwnCommand>(OwnCommand{*this, std::move(command)}));
}

bool TclInterpreter::hasCommand(const QString& name) const {
    Tcl_CmdInfo info;
    return Tcl_GetCommandInfo(m_tcl, ("::" + toTclBytes(name)).constData(), &info) != 0;
}

void TclInterpreter::defineVariable(const QString& name, int value) {
    Tcl_SetVar2Ex(m_tcl, pathForName(name).constData(), nullptr, Tcl_NewIntObj(value),
                  TCL_GLOBAL_ONLY);
}

void TclInterpreter::addNativeType(const QString& name, void* typeId,
                                   const NativeScriptType& type) {
    m_classes->add(name, typeId, type);
}

void TclInterpreter::publishFunctions(const QStringList& names) {
    for (const QString& name : names) {
        if (!hasCommand(name))
            defineGlobalFunction(*this, name);
    }
}

int TclInterpreter::finish(const ScriptResult& result) {
    if (!result)
        return fail(result.error());
    if (*result)
        Tcl_SetObjResult(m_tcl, valueOf(*result));
    else
        Tcl_ResetResult(m_tcl);
    return TCL_OK;
}

int TclInterpreter::fail(const ScriptFailure& failure) {
    if (failure.origin.line >= 0) {
        m_originText = failure.text;
        m_origin = LineInfo(m_debugger->findSourceId(failure.origin.sourceId), failure.origin.line);
    }
    Tcl_SetObjResult(m_tcl, toTcl(failure.text).get());
    Tcl_SetObjErrorCode(m_tcl, Tcl_NewStringObj(kindName(failure.kind).errorCode, -1));
    if (failure.kind == ScriptFailure::Kind::Fatal) {
        m_fatalFrames = frames();
        m_fatalIsSkip = failure.isSkip;
        if (!failure.isSkip)
            m_debugger->errorRaised(m_fatalFrames);
        return FatalEnd;
    }
    return TCL_ERROR;
}

void TclInterpreter::throwPending(int code, std::size_t outer) {
    discard(m_pendingState);
    m_pendingState = Tcl_SaveInterpState(m_tcl, code);
    m_pendingCode = code;
    m_pendingOuter = outer;
    throw ScriptErrorSet();
}

void TclInterpreter::check(int code, std::size_t outer) {
    if (code != TCL_OK && code != TCL_RETURN)
        throwPending(code, outer);
}

int TclInterpreter::failAsPending() {
    return Tcl_RestoreInterpState(m_tcl, std::exchange(m_pendingState, nullptr));
}

bool TclInterpreter::isErrorOrdinary() {
    const bool isEnd = m_pendingCode == FatalEnd || m_pendingCode == ExitEnd;
    return !hasPanicked() && !isEnd && !isUnwinding();
}

bool TclInterpreter::isUnwinding() const {
    return TclRuntime::self().isEnding() || Tcl_Canceled(m_tcl, 0) == TCL_ERROR;
}

// The script

TclRef TclInterpreter::callPrelude(QStringList words, Tcl_Obj* value) {
    words.front().prepend("::tamrix::");
    const TclRef command = toTcl(words);
    if (value)
        Tcl_ListObjAppendElement(nullptr, command.get(), value);
    check(Tcl_EvalObjEx(m_tcl, command.get(), 0));
    return TclRef(Tcl_GetObjResult(m_tcl));
}

QString TclInterpreter::addToSearchPath(const QFileInfo& directory) {
    callPrelude({"addFolder", directory.absoluteFilePath()});
    return {};
}

void TclInterpreter::startScript(const QString& path, const QStringList& arguments,
                                 const QStringList& folders) {
    // Whatever is to run then fails.
    if (hasPanicked())
        return;
    if (hasStarted()) {
        // What an earlier script has left goes with its interpreter of Tcl.
        deleteTcl();
        createTcl();
        registerFunctions();
        for (const QString& text : initScripts())
            Tcl_EvalObjEx(m_tcl, toTcl(text).get(), TCL_EVAL_GLOBAL);
    }
    m_originText.clear();
    for (auto folder = folders.crbegin(); folder != folders.crend(); ++folder) {
        if (QFileInfo(*folder).isDir())
            addToSearchPath(QFileInfo(*folder));
    }
    callPrelude({"start", path, textOf(toTcl(arguments).get())});
    TclRuntime::self().setInterruptible(m_tcl);
}

SharedPtr<ScriptArgument> TclInterpreter::scriptFunction(const QString& name) {
    // Nor is there a clean-up that could run.
    if (hasPanicked())
        return {};
    const QByteArray path = "::" + toTclBytes(name);
    if (!isProcedure(m_tcl, path.constData()))
        return {};
    return new TclArgument(*this, toTcl(QStringList(fromTclBytes(path.toStdString()))));
}

SharedPtr<ScriptArgument> TclInterpreter::libraryFunction(const QString& name) {
    if (!hasCommand(name))
        return {};
    return new TclArgument(*this, toTcl(QStringList("::" + name)));
}

LineInfo TclInterpreter::placeOf(const SharedPtr<ScriptArgument>& function) {
    const auto words = elementsOf(valueOf(function));
    if (words.empty())
        return {};
    const std::vector<TclFrame> place =
        framesOfScripts({definitionOf(m_tcl, Tcl_GetString(words[0]))});
    return place.empty() ? LineInfo() : LineInfo(place.front().file, place.front().line);
}

bool TclInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    const QByteArray bytes = toTclSource(text);
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    // Words and commands; what is in braces is a text, of which nobody knows yet what it is.
    while (next < end) {
        Tcl_Parse parse;
        if (Tcl_ParseCommand(m_tcl, next, static_cast<int>(end - next), 0, &parse) != TCL_OK) {
            // Behind blank lines and comments.
            const auto before = std::count(bytes.constData(), parse.commandStart, '\n');
            setErrorMessage(textOf(Tcl_GetObjResult(m_tcl)));
            setErrorFile(fileName);
            setErrorLine(static_cast<int>(before) + 1);
            Tcl_ResetResult(m_tcl);
            return false;
        }
        next = parse.commandStart + parse.commandSize;
        Tcl_FreeParse(&parse);
    }
    return true;
}

// Running

template <typename Work>
auto TclInterpreter::guarded(Work work) {
    if (hasPanicked())
        throw ScriptErrorSet();
    const QScopedValueRollback<int> depth(m_depth, m_depth + 1);
    // What ended one run of the script is no matter to the next, as to its clean-up.
    if (m_depth == 1)
        TclRuntime::self().forgetEnd();
    m_errors->renew();
    try {
        return work();
    } catch (const TclPanic& panic) {
        s_panic.message = QStringLiteral("Tcl gave up: ") + QString::fromUtf8(panic.what());
        spoilProcess();
        // What ran is left as it stands, with its frames. Nothing of Tcl is run for them.
        try {
            s_panic.callStack = stackOf(framesOrProcedure());
        } catch (const std::exception&) {
            s_panic.callStack.clear();
        }
        throw ScriptErrorSet();
    }
}

bool TclInterpreter::runScript(const QString& text, const QString& fileName) {
    return runCode(!fileName.isEmpty(), [&] {
        guarded([&] {
            Tcl_AllowExceptions(m_tcl);
            if (!fileName.isEmpty())
                return runFile(text, Debugger::sanitizedFilePath(fileName));
            check(Tcl_EvalEx(m_tcl, toTclBytes(text).constData(), -1, TCL_EVAL_GLOBAL));
        });
    });
}

void TclInterpreter::run(Tcl_Obj* function, const CallArguments& arguments) {
    // A callable is the beginning of a command, whose other words follow.
    const TclRef command(Tcl_DuplicateObj(function));
    for (const SharedPtr<ScriptArgument>& argument : arguments.positional)
        Tcl_ListObjAppendElement(nullptr, command.get(), valueOf(argument));
    for (const auto& [name, argument] : arguments.named)
        Tcl_ListObjAppendElement(nullptr, command.get(), valueOf(argument));
    const auto words = elementsOf(command.get());
    const std::size_t outer = frames().size();
    const TclRef caller = std::exchange(m_called, TclRef(words.empty() ? nullptr : words[0]));
    Tcl_AllowExceptions(m_tcl);
    check(Tcl_EvalObjv(m_tcl, static_cast<int>(words.size()), words.data(), TCL_EVAL_GLOBAL),
          outer);
    m_called = caller;
}

TclInterpreter::CallEnd TclInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                             const CallArguments& arguments, const QString&,
                                             bool isCallback) {
    const QScopedValueRollback<int> boundary = m_debugger->boundary();
    return runCall(isCallback, [&] {
        const auto work = [&] { run(valueOf(function), arguments); };
        if (isCallback) {
            work();
            return;
        }
        guarded([&] {
            try {
                work();
            } catch (const ScriptErrorSet&) {
                tellLateErrors();
                throw;
            }
            tellLateErrors();
        });
    });
}

bool TclInterpreter::invokeCallable(const QString& identifier) {
    const QScopedValueRollback<int> boundary = m_debugger->boundary();
    return LanguageInterpreter::invokeCallable(identifier);
}

bool TclInterpreter::invokeFunction(const QString& name) {
    const QScopedValueRollback<int> boundary = m_debugger->boundary();
    return LanguageInterpreter::invokeFunction(name);
}

std::string TclInterpreter::errorOption(const char* name) const {
    const TclRef options(Tcl_GetReturnOptions(m_tcl, TCL_ERROR));
    Tcl_Obj* value = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), TclRef(Tcl_NewStringObj(name, -1)).get(), &value);
    return std::string(value ? bytesOf(value) : std::string_view());
}

// Errors and positions

ScriptError TclInterpreter::takeError() {
    if (hasPanicked())
        return s_panic;
    ScriptError error;
    // What has unwound everything for it is no error of its own.
    if (m_lateEnd)
        std::swap(m_lateEnd, m_pendingState);
    discard(m_lateEnd);
    const int code = failAsPending();
    const QString result = textOf(Tcl_GetObjResult(m_tcl));
    // A person is told what kind of an error it is, in front of its text.
    switch (code) {
        case ExitEnd:
            error.isExit = result == QLatin1String("0");
            error.message = "Exit: " + result;
            break;
        case FatalEnd:
            error.message = kindName(ScriptFailure::Kind::Fatal).name + (": " + result);
            error.isSkip = m_fatalIsSkip;
            error.callStack = stackOf(m_fatalFrames);
            break;
        case TCL_ERROR:
            error.message = errorText();
            error.outermostLine = Tcl_GetErrorLine(m_tcl);
            error.callStack = stackOf(framesOfError(), m_pendingOuter);
            error.isPendingStep = errorOption("-errorcode") == pendingErrorCode;
            break;
        default:
            error.message = QStringLiteral("command returned bad code: %1").arg(code);
    }
    if (!m_originText.isEmpty() && result == m_originText)
        error.callStack.insert(error.callStack.begin(), m_origin);
    m_originText.clear();
    if (error.callStack.empty())
        error.callStack = placeInCalled(code);
    m_called = TclRef();
    Tcl_ResetResult(m_tcl);
    return error;
}

void TclInterpreter::tellLateErrors() {
    // What a script leaves when it ends is told all the same.
    while (!TclRuntime::self().isEnding() && hasLateErrors(m_tcl) &&
           Tcl_DoOneEvent(TCL_IDLE_EVENTS | TCL_DONT_WAIT) != 0) {
    }
}

int TclInterpreter::takeLateError(Tcl_Obj* result, Tcl_Obj* options) {
    const QScopedValueRollback<TclRef> called(m_called);
    Tcl_SetObjResult(m_tcl, result);
    const int code = Tcl_SetReturnOptions(m_tcl, options);
    try {
        const std::optional<ScriptError> error = attempt([&] { throwPending(code); });
        if (TestResult* const results = context().testResult())
            results->addResult(QDateTime::currentDateTime(), TestResult::Error,
                               QStringLiteral("Script Error"), error->message, error->callStack);
    } catch (const ScriptErrorSet&) {
        std::swap(m_lateEnd, m_pendingState);
        TclRuntime::self().endScript();
    }
    return TCL_OK;
}

std::vector<LineInfo> TclInterpreter::placeInCalled(int code) {
    if (!m_called)
        return {};
    std::vector<TclFrame> place =
        framesOfScripts({definitionOf(m_tcl, Tcl_GetString(m_called.get()))});
    if (place.empty() || code != TCL_ERROR)
        return stackOf(place);
    // The last line in the words is that of the outermost procedure.
    const std::string words = errorOption("-errorinfo");
    const std::size_t mark = words.rfind(lineMark);
    const int line =
        mark == std::string::npos
            ? 0
            : static_cast<int>(std::strtol(words.c_str() + mark + lineMark.size(), nullptr, 10));
    place.front().line += std::max(line - 1, 0);
    return stackOf(place);
}

QString TclInterpreter::errorText() const {
    const QString result = textOf(Tcl_GetObjResult(m_tcl));
    return isUnwinding() ? QString::fromLatin1(TclRuntime::endText)
                         : nameOfError(errorOption("-errorcode")) + (": " + result);
}

std::vector<TclFrame> TclInterpreter::framesOfError() {
    return framesOfScripts(m_errors->framesOf(errorOption("-errorinfo")));
}

std::vector<LineInfo> TclInterpreter::stackOf(const std::vector<TclFrame>& frames,
                                              std::size_t outer) {
    std::vector<LineInfo> stack;
    const std::size_t own = frames.size() > outer ? frames.size() - outer : frames.size();
    stack.reserve(own);
    for (std::size_t index = 0; index < own; ++index)
        stack.emplace_back(frames[index].file, frames[index].line);
    return stack;
}

std::vector<TclFrame> TclInterpreter::framesOfScripts(const std::vector<TclFrame>& frames) {
    std::vector<TclFrame> found;
    for (const TclFrame& frame : frames) {
        const QByteArray file = frame.file.toUtf8();
        if (frame.line >= 0 && m_files.isScript(file.constData()))
            found.push_back(
                {frame.level, m_files.path(file.constData()), frame.line, frame.command});
    }
    return found;
}

std::vector<TclFrame> TclInterpreter::framesOrProcedure() {
    std::vector<TclFrame> found = frames();
    return found.empty() ? framesOfScripts({runningProcedure(m_tcl)}) : found;
}

// What a debugger asks

QString TclInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    const int level = frame ? std::any_cast<int>(frame->own) : 0;
    return guarded([&] {
        return textOf(callPrelude({"evaluate", QString::number(level), code.trimmed()}).get());
    });
}

TimeLimit::Expired TclInterpreter::endOfEvaluation() {
    return [] { TclRuntime::self().requestEndOfEvaluation(); };
}

void TclInterpreter::forgetEndOfEvaluation() {
    // What ends the script as well is more.
    if (!TclRuntime::self().isEnding())
        forgetCancellation(m_tcl);
}

}  // namespace Tamrix::TclPlugin
