#include "plugins/tcl/tcldebugger.h"

#include <QRegularExpression>
#include <algorithm>

#include "interpreter/language/valuepath.h"
#include "plugins/tcl/containers.h"
#include "plugins/tcl/conversion.h"
#include "plugins/tcl/tclinterpreter.h"
#include "plugins/tcl/tclvaluetexts.h"

namespace Tamrix::TclPlugin {

namespace {

/// Whether a command catches errors that are raised while it runs. Of a `try` that is its handlers
/// for them; which errors they are for they say only when they have come.
bool catchesErrors(const QByteArray& source) {
    static const QRegularExpression s_catching(
        QStringLiteral(R"(^\s*(::)?(catch(\s|$)|try\s.*(on error|on 1|trap)))"),
        QRegularExpression::DotMatchesEverythingOption);
    return s_catching.match(QString::fromUtf8(source)).hasMatch();
}

std::vector<ScriptFrame> scriptFrames(const std::vector<TclFrame>& frames) {
    std::vector<ScriptFrame> found;
    found.reserve(frames.size());
    for (const TclFrame& frame : frames)
        found.push_back({frame.level, frame.file, frame.line, -1, -1});
    return found;
}

}  // namespace

TclDebugger::TclDebugger(TclInterpreter& interpreter)
    : LanguageDebugger(&interpreter), m_tcl(interpreter) {}

void TclDebugger::setInteractive(bool interactive) {
    LanguageDebugger::setInteractive(interactive);
    if (interactive)
        enterTcl();
    else
        leaveTcl();
}

void TclDebugger::enterTcl() {
    if (isInteractive() && !m_trace)
        m_trace = Tcl_CreateObjTrace(m_tcl.tcl(), 0, 0, traceCommand, this, nullptr);
}

void TclDebugger::leaveTcl() {
    if (m_trace)
        Tcl_DeleteTrace(m_tcl.tcl(), m_trace);
    m_trace = nullptr;
    m_lines.clear();
}

// Lines

int TclDebugger::traceCommand(void* self, Tcl_Interp*, int depth, const char*, Tcl_Command, int,
                              Tcl_Obj* const*) {
    auto* const debugger = static_cast<TclDebugger*>(self);
    if (!debugger->isSilent())
        debugger->commandReached(depth);
    return TCL_OK;
}

/// Forgets the lines of frames further inside than the level.
void TclDebugger::leaveLines(int level) {
    while (!m_lines.empty() && m_lines.back().frame.level > level)
        m_lines.pop_back();
}

/// Whether the script runs to a break point and there is none on the line of a script where it is,
/// which is nearly always so and told without asking for all frames.
bool TclDebugger::isPassedThrough() {
    if (debuggerMode() != Run || m_isInterrupted)
        return false;
    const std::optional<TclPlace> place = innermostPlace(m_tcl.tcl());
    const int sourceId = place ? sourceIdOf(Tcl_GetString(place->path), m_tcl.files()) : -1;
    if (sourceId < 0)
        return false;
    const std::vector<int>& lines = breakLines(sourceId);
    if (std::find(lines.begin(), lines.end(), place->line) != lines.end())
        return false;
    // The frame is at another line than the one on which it was seen last.
    leaveLines(place->level - 1);
    return true;
}

bool TclDebugger::isNewLine(const TclFrame& frame, int depth) {
    leaveLines(frame.level);
    if (!m_lines.empty() && m_lines.back().frame.level == frame.level) {
        const auto& [last, lastDepth] = m_lines.back();
        // The same command once more is the next round of a loop, unless it is an ensemble's own.
        const bool isRepeated = last.command == frame.command && depth <= lastDepth;
        if (last.line == frame.line && last.file == frame.file && !isRepeated)
            return false;
        m_lines.pop_back();
    }
    m_lines.push_back({frame, depth});
    return true;
}

void TclDebugger::commandReached(int depth) {
    if (isPassedThrough())
        return;
    const std::vector<TclFrame> frames = m_tcl.frames();
    if (frames.empty() || !isNewLine(frames.front(), depth))
        return;
    const TclStateAside aside(m_tcl.tcl());
    if (m_isInterrupted.exchange(false))
        step();
    lineReached(sourceIdOf(frames.front().file), frames.front().line);
}

// Frames

std::vector<ScriptFrame> TclDebugger::runningFrames() {
    return scriptFrames(m_tcl.framesOrProcedure());
}

std::unique_ptr<ValueTexts> TclDebugger::makeValueTexts() {
    return std::make_unique<TclValueTexts>(m_tcl);
}

std::vector<ValueTexts::Part> TclDebugger::variablesOf(const ScriptFrame& frame) {
    // Those of the procedure, then global ones; an array is shown as a dictionary.
    std::vector<ValueTexts::Part> variables;
    for (const int each : {std::any_cast<int>(frame.own), 0}) {
        const TclRef listed = m_tcl.callPrelude({"variables", QString::number(each)});
        for (const auto& [name, value] : entriesOf(listed.get()))
            variables.push_back(
                {pathPart(TclPlugin::textOf(name)), new TclArgument(m_tcl, TclRef(value))});
    }
    return variables;
}

// Errors

QScopedValueRollback<int> TclDebugger::boundary() {
    return QScopedValueRollback<int>(m_commandsOutside, commandDepth(m_tcl.tcl()));
}

bool TclDebugger::isCaught() const {
    const std::vector<QByteArray> commands = runningCommands(m_tcl.tcl(), m_commandsOutside);
    return areErrorsCaught() || std::any_of(commands.begin(), commands.end(), catchesErrors);
}

void TclDebugger::errorRaised(const std::vector<TclFrame>& raisedIn) {
    if (!stopsForErrors() || isSilent() || isCaught() || m_tcl.isUnwinding())
        return;
    const QString text = m_tcl.errorText();
    const TclStateAside aside(m_tcl.tcl());
    std::vector<TclFrame> frames = m_tcl.framesOfScripts(raisedIn);
    // Each command has passed here, so its line is known better than behind the failure.
    if (!m_lines.empty()) {
        const TclFrame& last = m_lines.back().frame;
        if (frames.empty() || frames.front().level != last.level ||
            frames.front().file != last.file)
            frames.insert(frames.begin(), last);
        else
            frames.front() = last;
    }
    stopForError(text, scriptFrames(frames));
}

}  // namespace Tamrix::TclPlugin
