#include "plugins/tcl/tclinterpreter.h"

#include <QFileInfo>
#include <algorithm>
#include <stdexcept>

#include "interpreter/language/scripterrorset.h"
#include "interpreter/language/stepactions.h"
#include "interpreter/objects/globalfunctions.h"
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

/// Lines of a stack of calls that a person is told.
constexpr std::size_t mostStackLines = 100;

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

const KindName& kindName(ScriptFailure::Kind kind) {
    return kindNames[static_cast<std::size_t>(kind)];
}

const char* nameOfError(std::string_view errorCode) {
    if (errorCode == pendingStep.errorCode)
        return pendingStep.name;
    const auto* const row =
        std::find_if(std::begin(kindNames), std::end(kindNames),
                     [errorCode](const KindName& each) { return errorCode == each.errorCode; });
    return row == std::end(kindNames) ? otherError.name : row->name;
}

/// The text of the panic behind which Tcl can't be used any more in this process.
QString s_panic;

Tcl_Obj* valueOf(const SharedPtr<ScriptArgument>& argument) {
    return static_cast<const TclArgument*>(argument.get())->value();
}

/// Where a command begins, behind blank lines and comments.
const char* firstOfCommand(const char* next, const char* end) {
    while (next < end) {
        if (*next == '#')
            next = std::find(next, end, '\n');
        else if (isspace(static_cast<unsigned char>(*next)) == 0 && *next != ';')
            break;
        else
            ++next;
    }
    return next;
}

/// In place of Tcl's own, which would end the run.
int exitScript(void*, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    int status = 0;
    if (count > 2) {
        Tcl_WrongNumArgs(interp, 1, words, "?returnCode?");
        return TCL_ERROR;
    }
    if (count == 2 && Tcl_GetIntFromObj(interp, words[1], &status) != TCL_OK)
        return TCL_ERROR;
    Tcl_SetObjResult(interp, Tcl_NewIntObj(status));
    return ExitEnd;
}

struct SourceCommand {
    TclInterpreter& interpreter;
    Tcl_CmdInfo original;
};

/// What a file registers that is loaded again takes the place of what it did before.
int runSource(void* data, Tcl_Interp* interp, int count, Tcl_Obj* const* words) {
    const auto& command = *static_cast<SourceCommand*>(data);
    if (count > 1)
        command.interpreter.steps().registry().forget(
            Debugger::sanitizedFilePath(textOf(words[count - 1])));
    return Tcl_NRCallObjProc(interp, command.original.objProc, command.original.objClientData,
                             count, words);
}

}  // namespace

TclInterpreter::TclInterpreter(RunnerInterface* runner)
    : LanguageInterpreter(runner, Interpreter::Tcl) {
    TclRuntime::self();
    m_context = std::make_unique<TclContext>(*this);
    m_classes = std::make_unique<NativeClasses>(*this);
    m_debugger = std::make_unique<TclDebugger>(*this);
    createTcl();
    begin(std::make_unique<TclSteps>(*this));
}

TclInterpreter::~TclInterpreter() {
    end();
    deleteTcl();
}

void TclInterpreter::createTcl() {
    // What Tcl keeps for the whole process may be broken then.
    if (!s_panic.isEmpty())
        throw std::runtime_error((s_panic + ", in an earlier test case of this run").toStdString());
    m_tcl = Tcl_CreateInterp();
    installChannels(m_tcl, output());
    Tcl_SetSystemEncoding(nullptr, "utf-8");
    if (Tcl_Init(m_tcl) != TCL_OK) {
        const QString reason = textOf(Tcl_GetObjResult(m_tcl));
        deleteTcl();
        throw std::runtime_error(reason.toStdString());
    }
    m_values = std::make_unique<HeldValues>(*this, m_tcl, runHeldCommand);
    m_errors = std::make_unique<ErrorNotes>(
        m_tcl, [this](const std::vector<TclFrame>& frames) { m_debugger->errorRaised(frames); });
    Tcl_CreateObjCommand(m_tcl, "::exit", exitScript, nullptr, nullptr);
    auto source = std::make_unique<SourceCommand>(SourceCommand{*this, {}});
    Tcl_GetCommandInfo(m_tcl, "::source", &source->original);
    defineCommand(QStringLiteral("source"), runSource, std::move(source));
    Tcl_CreateNamespace(m_tcl, "::tamrix", nullptr, nullptr);
    defineStepCommands(*this);
    m_debugger->enterTcl();
}

void TclInterpreter::deleteTcl() {
    if (!m_tcl)
        return;
    TclRuntime::self().setInterruptible(nullptr);
    // Behind a panic nothing of it can be touched any more, not even to be freed.
    if (!m_panic.isEmpty()) {
        static_cast<void>(m_errors.release());
        static_cast<void>(m_values.release());
        m_tcl = nullptr;
        return;
    }
    m_debugger->leaveTcl();
    m_errors.reset();
    m_values.reset();
    if (m_pendingState)
        Tcl_DiscardInterpState(std::exchange(m_pendingState, nullptr));
    Tcl_DeleteInterp(m_tcl);
    m_tcl = nullptr;
}

LanguageContext& TclInterpreter::context() {
    return *m_context;
}

LanguageDebugger& TclInterpreter::languageDebugger() {
    return *m_debugger;
}

// Commands

void TclInterpreter::defineEnsemble(const QString& name) {
    const QByteArray path = "::" + toTclBytes(name);
    if (Tcl_FindNamespace(m_tcl, path.constData(), nullptr, 0))
        return;
    Tcl_Namespace* const made = Tcl_CreateNamespace(m_tcl, path.constData(), nullptr, nullptr);
    Tcl_Export(m_tcl, made, "*", 1);
    // No prefixes: a slip in a name is an error.
    Tcl_CreateEnsemble(m_tcl, path.constData(), made, 0);
}

void TclInterpreter::defineCommand(const QString& name, Tcl_ObjCmdProc* command, void* data,
                                   Tcl_CmdDeleteProc* deletion) {
    const int separator = name.indexOf(QLatin1String("::"));
    if (separator > 0)
        defineEnsemble(name.left(separator));
    Tcl_CreateObjCommand(m_tcl, ("::" + toTclBytes(name)).constData(), command, data, deletion);
}

bool TclInterpreter::hasCommand(const QString& name) const {
    Tcl_CmdInfo info;
    return Tcl_GetCommandInfo(m_tcl, ("::" + toTclBytes(name)).constData(), &info) != 0;
}

void TclInterpreter::defineVariable(const QString& name, int value) {
    const int separator = name.indexOf(QLatin1String("::"));
    if (separator > 0)
        defineEnsemble(name.left(separator));
    Tcl_SetVar2Ex(m_tcl, ("::" + toTclBytes(name)).constData(), nullptr, Tcl_NewIntObj(value),
                  TCL_GLOBAL_ONLY);
}

void TclInterpreter::addNativeFunction(const QString& name, bool (*function)(ScriptContext*),
                                       const QStringList& requiredParameters,
                                       const QStringList& optionalParameters,
                                       const QString& description) {
    defineNative(
        *this, name,
        NativeFunction(*m_context, {name, {}, requiredParameters, optionalParameters, description},
                       function));
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
    if (failure.kind == ScriptFailure::Kind::Fatal) {
        m_fatalFrames = frames();
        m_fatalIsSkip = failure.isSkip;
        return FatalEnd;
    }
    Tcl_SetObjErrorCode(m_tcl, Tcl_NewStringObj(kindName(failure.kind).errorCode, -1));
    return TCL_ERROR;
}

void TclInterpreter::throwPending(int code) {
    if (m_pendingState)
        Tcl_DiscardInterpState(m_pendingState);
    m_pendingState = Tcl_SaveInterpState(m_tcl, code);
    m_pendingCode = code;
    throw ScriptErrorSet();
}

void TclInterpreter::throwError(const QString& text) {
    throwPending(fail({ScriptFailure::Kind::BadArgument, text, false, {}}));
}

int TclInterpreter::failAsPending() {
    return Tcl_RestoreInterpState(m_tcl, std::exchange(m_pendingState, nullptr));
}

bool TclInterpreter::isErrorOrdinary() {
    return m_pendingCode == TCL_ERROR && !isUnwinding();
}

ScriptError TclInterpreter::takeError() {
    return takeError(failAsPending());
}

bool TclInterpreter::isUnwinding() const {
    return TclRuntime::self().isEnding() || Tcl_Canceled(m_tcl, 0) == TCL_ERROR;
}

// The script

QString TclInterpreter::addToSearchPath(const QFileInfo& directory) {
    const TclRef path = toTcl(directory.absoluteFilePath());
    const TclRef entries(Tcl_NewListObj(0, nullptr));
    Tcl_ListObjAppendElement(nullptr, entries.get(), path.get());
    Tcl_Obj* const known = Tcl_GetVar2Ex(m_tcl, "::auto_path", nullptr, TCL_GLOBAL_ONLY);
    if (known)
        Tcl_ListObjAppendList(nullptr, entries.get(), known);
    Tcl_SetVar2Ex(m_tcl, "::auto_path", nullptr, entries.get(), TCL_GLOBAL_ONLY);
    // Modules in files of their own; a folder in one that is there already need not be added.
    const TclRef command = toTcl(QStringList({"::tcl::tm::path", "add", textOf(path.get())}));
    Tcl_EvalObjEx(m_tcl, command.get(), TCL_EVAL_GLOBAL);
    Tcl_ResetResult(m_tcl);
    return {};
}

void TclInterpreter::startScript(const QString& path, const QStringList& arguments,
                                 const QStringList& folders) {
    // Whatever is to run then fails.
    if (!m_panic.isEmpty())
        return;
    if (m_hasScript) {
        // What an earlier script has left goes with its interpreter of Tcl.
        deleteTcl();
        createTcl();
        m_context->initFunctions();
        initNativeAPI();
        publishFunctions(globalFunctionNames(Inspector::self()->model()));
        for (const QString& text : qAsConst(m_initScripts))
            Tcl_EvalObjEx(m_tcl, toTcl(text).get(), TCL_EVAL_GLOBAL);
    }
    m_hasScript = true;
    m_originText.clear();
    Tcl_SetVar2Ex(m_tcl, "::argv0", nullptr, toTcl(path).get(), TCL_GLOBAL_ONLY);
    Tcl_SetVar2Ex(m_tcl, "::argv", nullptr, toTcl(arguments).get(), TCL_GLOBAL_ONLY);
    Tcl_SetVar2Ex(m_tcl, "::argc", nullptr, Tcl_NewIntObj(arguments.size()), TCL_GLOBAL_ONLY);
    for (auto folder = folders.crbegin(); folder != folders.crend(); ++folder) {
        if (QFileInfo(*folder).isDir())
            addToSearchPath(QFileInfo(*folder));
    }
    m_ownVariables = namesOfVariables(0);
    TclRuntime::self().setInterruptible(m_tcl);
}

SharedPtr<ScriptArgument> TclInterpreter::scriptFunction(const QString& name) {
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
    int count = 0;
    Tcl_Obj** words = nullptr;
    if (Tcl_ListObjGetElements(nullptr, valueOf(function), &count, &words) != TCL_OK || count == 0)
        return {};
    const std::vector<TclFrame> place =
        framesOfScripts({definitionOf(m_tcl, Tcl_GetString(words[0]))});
    return place.empty() ? LineInfo() : LineInfo(place.front().file, place.front().line);
}

bool TclInterpreter::checkSyntax(const QString& text, const QString& fileName) {
    clearError();
    const QByteArray bytes = toTclBytes(text);
    const char* next = bytes.constData();
    const char* const end = next + bytes.size();
    // Words and commands; what is in braces is a text, of which nobody knows yet what it is.
    while (next < end) {
        Tcl_Parse parse;
        if (Tcl_ParseCommand(m_tcl, next, static_cast<int>(end - next), 0, &parse) != TCL_OK) {
            const auto before = std::count(bytes.constData(), firstOfCommand(next, end), '\n');
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

template <typename Code>
int TclInterpreter::guarded(Code code) {
    if (!m_panic.isEmpty())
        return TCL_ERROR;
    struct Depth {
        int& depth;
        explicit Depth(int& counter) : depth(counter) { ++depth; }
        ~Depth() { --depth; }
    } const depth(m_depth);
    // What ended one run of the script is no matter to the next, as to its clean-up.
    if (m_depth == 1)
        TclRuntime::self().forgetEnd();
    m_errors->renew();
    try {
        return code();
    } catch (const ScriptErrorSet&) {
        return failAsPending();
    } catch (const TclPanic& panic) {
        m_panic = QStringLiteral("Tcl gave up: ") + QString::fromUtf8(panic.text);
        s_panic = m_panic;
        return TCL_ERROR;
    }
}

bool TclInterpreter::runScript(const QString& text, const QString& fileName) {
    if (fileName.isEmpty() && !m_hasScript)
        m_initScripts.append(text);
    const int code = guarded([&] {
        Tcl_AllowExceptions(m_tcl);
        return fileName.isEmpty()
                   ? Tcl_EvalEx(m_tcl, toTclBytes(text).constData(), -1, TCL_EVAL_GLOBAL)
                   : evaluateFile(m_tcl, toTclBytes(text), Debugger::sanitizedFilePath(fileName));
    });
    if (code == TCL_OK || code == TCL_RETURN)
        return succeed();
    return failWith(takeError(code), !fileName.isEmpty());
}

int TclInterpreter::run(const SharedPtr<ScriptArgument>& function, const CallArguments& arguments) {
    // A callable is the beginning of a command, whose other words follow.
    const TclRef command(Tcl_DuplicateObj(valueOf(function)));
    for (const SharedPtr<ScriptArgument>& argument : arguments.positional)
        Tcl_ListObjAppendElement(nullptr, command.get(), valueOf(argument));
    for (const auto& [name, argument] : arguments.named)
        Tcl_ListObjAppendElement(nullptr, command.get(), valueOf(argument));
    int count = 0;
    Tcl_Obj** words = nullptr;
    if (Tcl_ListObjGetElements(m_tcl, command.get(), &count, &words) != TCL_OK)
        return TCL_ERROR;
    Tcl_AllowExceptions(m_tcl);
    const int code = Tcl_EvalObjv(m_tcl, count, words, TCL_EVAL_GLOBAL);
    if (code == FatalEnd || code == ExitEnd || (code == TCL_ERROR && isUnwinding()))
        throwPending(code);
    return code;
}

TclInterpreter::CallEnd TclInterpreter::call(const SharedPtr<ScriptArgument>& function,
                                             const CallArguments& arguments, const QString&,
                                             bool isCallback) {
    const int code =
        isCallback ? run(function, arguments) : guarded([&] { return run(function, arguments); });
    if (code == TCL_OK || code == TCL_RETURN)
        return succeed() ? CallEnd::Succeeded : CallEnd::Failed;
    const bool isPending =
        code == TCL_ERROR && m_panic.isEmpty() && errorCode() == pendingErrorCode;
    if (failWith(takeError(code)))
        return CallEnd::Succeeded;
    return isPending ? CallEnd::Pending : CallEnd::Failed;
}

std::string TclInterpreter::errorCode() const {
    const TclRef options(Tcl_GetReturnOptions(m_tcl, TCL_ERROR));
    Tcl_Obj* code = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), toTcl(QStringLiteral("-errorcode")).get(), &code);
    return std::string(code ? bytesOf(code) : std::string_view());
}

// Errors and positions

ScriptError TclInterpreter::takeError(int code) {
    ScriptError error;
    if (!m_panic.isEmpty()) {
        error.message = m_panic;
        return error;
    }
    const QString result = textOf(Tcl_GetObjResult(m_tcl));
    // A person is told what kind of an error it is, in front of its text.
    switch (code) {
        case ExitEnd:
            error.isExit = result == QLatin1String("0");
            error.message = "Exit: " + result;
            error.callStack = stackOf(m_fatalFrames);
            break;
        case FatalEnd:
            error.message = kindName(ScriptFailure::Kind::Fatal).name + (": " + result);
            error.isSkip = m_fatalIsSkip;
            error.callStack = stackOf(m_fatalFrames);
            break;
        case TCL_ERROR:
            error.message = errorText();
            error.outermostLine = Tcl_GetErrorLine(m_tcl);
            error.callStack = stackOf(framesOfError());
            break;
        default:
            error.message = QStringLiteral("command returned bad code: %1").arg(code);
    }
    if (!m_originText.isEmpty() && result == m_originText)
        error.callStack.insert(error.callStack.begin(), m_origin);
    m_originText.clear();
    Tcl_ResetResult(m_tcl);
    return error;
}

QString TclInterpreter::errorText() const {
    const QString result = textOf(Tcl_GetObjResult(m_tcl));
    return isUnwinding() ? QString::fromLatin1(TclRuntime::endText)
                         : nameOfError(errorCode()) + (": " + result);
}

std::vector<TclFrame> TclInterpreter::framesOfError() {
    const TclRef options(Tcl_GetReturnOptions(m_tcl, TCL_ERROR));
    const TclRef name = toTcl(QStringLiteral("-errorinfo"));
    Tcl_Obj* errorInfo = nullptr;
    Tcl_DictObjGet(nullptr, options.get(), name.get(), &errorInfo);
    return errorInfo ? framesOfScripts(m_errors->framesOf(bytesOf(errorInfo)))
                     : std::vector<TclFrame>();
}

std::vector<LineInfo> TclInterpreter::stackOf(const std::vector<TclFrame>& frames) {
    std::vector<LineInfo> stack;
    for (const TclFrame& frame : frames) {
        if (stack.size() < mostStackLines)
            stack.emplace_back(frame.file, frame.line);
    }
    return stack;
}

const TclInterpreter::SourceFile& TclInterpreter::sourceFile(const QString& file) {
    const auto known = m_files.constFind(file);
    if (known != m_files.constEnd())
        return *known;
    const QString path = Debugger::sanitizedFilePath(file);
    // Where Tcl keeps its library, and Debian its packages.
    QStringList libraries{"/usr/share/tcltk/", "/usr/lib/tcltk/"};
    if (const char* const library = Tcl_GetVar2(m_tcl, "::tcl_library", nullptr, TCL_GLOBAL_ONLY))
        libraries.append(Debugger::sanitizedFilePath(QString::fromUtf8(library)) + '/');
    const bool isOfLibrary =
        std::any_of(libraries.cbegin(), libraries.cend(),
                    [&path](const QString& folder) { return path.startsWith(folder); });
    return *m_files.insert(file, {path, !isOfLibrary});
}

std::vector<TclFrame> TclInterpreter::framesOfScripts(const std::vector<TclFrame>& frames) {
    std::vector<TclFrame> found;
    for (const TclFrame& frame : frames) {
        const SourceFile& file = sourceFile(frame.file);
        if (frame.line >= 0 && file.isScript)
            found.push_back({frame.level, file.path, frame.line, frame.command});
    }
    return found;
}

std::vector<TclFrame> TclInterpreter::frames() {
    return framesOfScripts(runningFrames(m_tcl));
}

// What a debugger asks

int TclInterpreter::evaluateAtLevel(int level, Tcl_Obj* command) {
    const TclRef uplevel = toTcl(QStringLiteral("::uplevel"));
    const TclRef where = toTcl(QStringLiteral("#%1").arg(level));
    Tcl_Obj* const words[] = {uplevel.get(), where.get(), command};
    return Tcl_EvalObjv(m_tcl, 3, words, 0);
}

QStringList TclInterpreter::namesOfVariables(int level) {
    QStringList names;
    const TclRef command =
        toTcl(level == 0 ? QStringList({"info", "globals"}) : QStringList({"info", "vars"}));
    int count = 0;
    Tcl_Obj** words = nullptr;
    const TclRef list(evaluateAtLevel(level, command.get()) == TCL_OK ? Tcl_GetObjResult(m_tcl)
                                                                      : Tcl_NewObj());
    if (Tcl_ListObjGetElements(nullptr, list.get(), &count, &words) == TCL_OK) {
        for (int index = 0; index < count; ++index)
            names.append(textOf(words[index]));
    }
    names.sort();
    return names;
}

std::vector<std::pair<QString, TclRef>> TclInterpreter::variablesAt(int level) {
    std::vector<std::pair<QString, TclRef>> variables;
    for (const QString& name : namesOfVariables(level)) {
        if (m_ownVariables.contains(name))
            continue;
        const bool isValue =
            evaluateAtLevel(level, toTcl(QStringList({"set", name})).get()) == TCL_OK;
        if (isValue) {
            variables.emplace_back(name, TclRef(Tcl_GetObjResult(m_tcl)));
            continue;
        }
        // An array; a variable that has no value yet is none.
        const bool isArray =
            evaluateAtLevel(level, toTcl(QStringList({"array", "get", name})).get()) == TCL_OK;
        const TclRef entries(isArray ? Tcl_DuplicateObj(Tcl_GetObjResult(m_tcl)) : Tcl_NewObj());
        int size = 0;
        if (Tcl_DictObjSize(nullptr, entries.get(), &size) == TCL_OK && size > 0)
            variables.emplace_back(name, entries);
    }
    return variables;
}

Outcome<QString> TclInterpreter::evaluateAtStop(const ScriptFrame* frame, const QString& code) {
    const int level = frame ? std::any_cast<int>(frame->own) : 0;
    const QString text = code.trimmed();
    // An expression begins with a variable, a number or what can't begin a command; everything else
    // is a command, or the name of a variable.
    static const QString s_beginnings = QStringLiteral("$(!-\"~");
    const bool isExpression =
        !text.isEmpty() && (s_beginnings.contains(text.at(0)) || text.at(0).isDigit());
    const TclRef command = isExpression ? toTcl(QStringList({"expr", text})) : toTcl(text);
    const int end = guarded([&] {
        const TclRef variable = toTcl(QStringList({"set", text}));
        if (!isExpression && !text.contains(' ') &&
            evaluateAtLevel(level, variable.get()) == TCL_OK)
            return TCL_OK;
        return evaluateAtLevel(level, command.get());
    });
    if (end == TCL_OK)
        return textOf(Tcl_GetObjResult(m_tcl));
    return Tamrix::fail(FailureKind::Failed, takeError(end).message);
}

}  // namespace Tamrix::TclPlugin
