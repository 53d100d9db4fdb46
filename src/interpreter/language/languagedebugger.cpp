#include "interpreter/language/languagedebugger.h"

#include <algorithm>

#include "interpreter/language/languagevariables.h"
#include "interpreter/language/sourcefiles.h"
#include "interpreter/language/timelimit.h"

namespace Tamrix {

namespace {

/// The number of the last state of break points that a debugger of this process had.
unsigned s_lastState = 0;

}  // namespace

class LanguageDebugger::Silence {
public:
    explicit Silence(LanguageDebugger& debugger) : m_debugger(debugger) {
        if (m_debugger.m_silences++ == 0)
            m_debugger.enterSilence();
    }
    ~Silence() {
        if (--m_debugger.m_silences == 0)
            m_debugger.leaveSilence();
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    LanguageDebugger& m_debugger;
};

/// The time of a stop.
class LanguageDebugger::Standstill {
public:
    explicit Standstill(LanguageDebugger& debugger) : m_debugger(debugger), m_silence(debugger) {
        ++m_debugger.m_standstills;
    }
    ~Standstill() {
        // Code that was evaluated at a stop may have stopped itself: the outer one goes on.
        if (--m_debugger.m_standstills > 0)
            m_debugger.updateFrames();
        else
            m_debugger.showFrames({});
    }
    Standstill(const Standstill&) = delete;
    Standstill& operator=(const Standstill&) = delete;

private:
    LanguageDebugger& m_debugger;
    Silence m_silence;
};

LanguageDebugger::LanguageDebugger(Interpreter* interpreter)
    : Debugger(interpreter), m_state(++s_lastState) {}

LanguageDebugger::~LanguageDebugger() = default;

void LanguageDebugger::shutDown() {
    setInteractive(false);
    m_watcher.reset();
    m_errorFrames.reset();
    Debugger::shutDown();
}

// Stops

void LanguageDebugger::interrupt() {
    if (TimeLimit* const evaluation = m_evaluation)
        evaluation->expire();
    else if (m_standstills == 0)
        stopSoon();
}

bool LanguageDebugger::stop() {
    const Standstill standstill(*this);
    return Debugger::stop();
}

bool LanguageDebugger::stopWithObjectName(const QString& objectName, const QString& detail) {
    const Standstill standstill(*this);
    return Debugger::stopWithObjectName(objectName, detail);
}

void LanguageDebugger::missingStep(int line, const std::string& text) {
    const Standstill standstill(*this);
    Debugger::missingStep(line, text);
}

void LanguageDebugger::stopForError(const QString& text, std::vector<ScriptFrame> frames) {
    // A script that can't be compiled has no frame to stop in.
    if (frames.empty())
        return;
    m_toldText = text;
    m_errorFrames = withForeignPlaces(std::move(frames));
    notify(QStringLiteral("ScriptError"), text);
    stop();
    m_errorFrames.reset();
}

void LanguageDebugger::lineReached(int sourceId, int line) {
    if (debuggerMode() == None)
        return;
    const std::vector<int>& lines = breakLines(sourceId);
    if (std::find(lines.begin(), lines.end(), line) != lines.end() || debuggerMode() == Step ||
        (debuggerMode() == Next && stopsAtEachLine(runningDepth() - 1)))
        stop();
}

// Sources and break points

int LanguageDebugger::sourceIdOf(const QString& path) {
    const auto known = m_sourceIds.constFind(path);
    if (known != m_sourceIds.constEnd())
        return *known;
    const int id = nextSourceId();
    m_sourceIds.insert(path, id);
    setCode(id, path);
    return id;
}

int LanguageDebugger::sourceIdOf(const char* name, SourceFiles& files) {
    // Looked up without a copy, for each line that runs.
    const QByteArray given = QByteArray::fromRawData(name, static_cast<int>(qstrlen(name)));
    const auto known = m_idsOfNames.constFind(given);
    if (known != m_idsOfNames.constEnd())
        return *known;
    const int id = files.isScript(name) ? sourceIdOf(files.path(name)) : -1;
    m_idsOfNames.insert(QByteArray(given.constData(), given.size()), id);
    return id;
}

const std::vector<int>& LanguageDebugger::breakLines(int sourceId) const {
    static const std::vector<int> s_none;
    const auto lines = m_breakLines.constFind(sourceId);
    return lines == m_breakLines.constEnd() ? s_none : *lines;
}

void LanguageDebugger::setInteractive(bool interactive) {
    Debugger::setInteractive(interactive);
    modeChanged();
}

void LanguageDebugger::setDebuggerMode(DbgMode mode) {
    Debugger::setDebuggerMode(mode);
    modeChanged();
}

void LanguageDebugger::setBreakPoint(int line, int sourceId, bool set) {
    Debugger::setBreakPoint(line, sourceId, set);
    std::vector<int>& lines = m_breakLines[sourceId];
    if (set)
        lines.push_back(line);
    else
        std::erase(lines, line);
    m_state = ++s_lastState;
    breakPointsChanged();
}

// Frames

std::vector<ScriptFrame> LanguageDebugger::frames() {
    return m_errorFrames ? *m_errorFrames : withForeignPlaces(runningFrames());
}

LineInfo LanguageDebugger::placeOfFrame(int level) {
    const std::vector<ScriptFrame> frames = runningFrames();
    if (level < 0 || level >= static_cast<int>(frames.size()))
        return {};
    const ScriptFrame& frame = frames[static_cast<std::size_t>(level)];
    return LineInfo(frame.file, frame.line);
}

std::vector<ScriptFrame> LanguageDebugger::withForeignPlaces(
    std::vector<ScriptFrame> frames) const {
    const auto scripts = static_cast<int>(frames.size());
    for (auto foreign = m_foreignPlaces.rbegin(); foreign != m_foreignPlaces.rend(); ++foreign) {
        // Those further in are in the list by now.
        const auto inserted = static_cast<int>(foreign - m_foreignPlaces.rbegin());
        const int inner = std::max(scripts - foreign->framesBelow, 0) + inserted;
        frames.insert(frames.begin() + inner, foreign->place);
    }
    return frames;
}

void LanguageDebugger::pushFrameAndSetCurrent(int line, int column, int sourceId) {
    m_foreignPlaces.push_back(
        {{{}, findSourceId(sourceId), line, column, sourceId}, runningDepth()});
}

void LanguageDebugger::popFrameAndSetCurrent() {
    if (!m_foreignPlaces.empty())
        m_foreignPlaces.pop_back();
}

void LanguageDebugger::updateFrames() {
    showFrames(frames());
}

void LanguageDebugger::showFrames(const std::vector<ScriptFrame>& frames) {
    clearFrames();
    Debugger::setCurrentLine(-1);
    Debugger::setCurrentColumn(-1);
    Debugger::setCurrentSourceId(-1);
    for (auto frame = frames.rbegin(); frame != frames.rend(); ++frame)
        Debugger::pushFrameAndSetCurrent(
            frame->line, frame->column,
            frame->isOfLanguage() ? sourceIdOf(frame->file) : frame->sourceId);
}

// Variables

void LanguageDebugger::initVariableWatcher() {
    m_watcher.reset();
}

Debugger::VariableBindings LanguageDebugger::variables(const QString& path) {
    const Silence silence(*this);
    if (!m_watcher)
        m_watcher = std::make_unique<LanguageVariables>(*this, makeValueTexts());
    return m_watcher->variableBindings(path);
}

}  // namespace Tamrix
