#include "interpreter/bridge/debugger.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "base/standardpath.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/debugger/interruptstop.h"
#include "interpreter/debugger/lineprotocol/lineprotocol.h"

namespace Tamrix {

bool tamrix_verbose_debugger = true;
bool tamrix_hl_debugger = false;

namespace {

Debugger* s_self = nullptr;
int s_nextSourceId = 1;

}  // namespace

Debugger::Debugger(Interpreter* interpreter)
    : m_interpreter(interpreter),
      m_frontEnd(std::make_unique<LineProtocol>(
          tamrix_verbose_debugger ? ProtocolDialect::Terminal : ProtocolDialect::Machine)),
      m_progressNotification(!tamrix_verbose_debugger) {
    s_self = this;
}

Debugger::~Debugger() {
    releaseInterrupt(this);
    s_self = nullptr;
}

Debugger* Debugger::self() {
    return s_self;
}

void Debugger::setSelf(Debugger* debugger) {
    s_self = debugger;
}

void Debugger::setFrontEnd(std::unique_ptr<DebuggerFrontEnd> frontEnd) {
    m_frontEnd = std::move(frontEnd);
}

void Debugger::shutDown() {
    releaseInterrupt(this);
    m_interpreter = nullptr;
}

void Debugger::setCurrentLine(int line) {
    m_line = line;
}

void Debugger::setCurrentColumn(int column) {
    m_column = column;
}

void Debugger::setCurrentSourceId(int sourceId) {
    m_sourceId = sourceId;
}

void Debugger::setInteractive(bool interactive) {
    m_interactive = interactive;
}

void Debugger::initVariableWatcher() {}

void Debugger::updateFrames() {}

// Modes

bool Debugger::run() {
    stopOnInterrupt(this);
    setDebuggerMode(Run);
    return true;
}

bool Debugger::next(int depth) {
    m_stepDepth = depth;
    setDebuggerMode(Next);
    return true;
}

bool Debugger::step() {
    setDebuggerMode(Step);
    return true;
}

void Debugger::setDebuggerMode(DbgMode mode) {
    m_mode = mode;
}

// Position and frames

DebuggerFrame Debugger::currentFrame() const {
    return {m_line, m_column, m_sourceId};
}

void Debugger::pushFrame(const DebuggerFrame& frame) {
    m_frames.push_back(frame);
}

DebuggerFrame Debugger::popFrame() {
    if (m_frames.empty())
        return {};
    const DebuggerFrame frame = m_frames.back();
    m_frames.pop_back();
    return frame;
}

void Debugger::pushFrameAndSetCurrent(int line, int column, int sourceId) {
    pushFrame(currentFrame());
    setCurrentLine(line);
    setCurrentColumn(column);
    setCurrentSourceId(sourceId);
}

void Debugger::popFrameAndSetCurrent() {
    const DebuggerFrame frame = popFrame();
    setCurrentLine(frame.line);
    setCurrentColumn(frame.column);
    setCurrentSourceId(frame.sourceId);
}

std::vector<LineInfo> Debugger::callStack() {
    updateFrames();
    if (m_frames.empty())
        return {};

    // The current position, else where the calling script context stands.
    LineInfo current(findSourceId(m_sourceId), m_line);
    if (!current.isValid() && ScriptContext::current())
        current = ScriptContext::current()->lineInfo();
    if (!current.isValid())
        return {};
    std::vector<LineInfo> stack = {current};

    // The frames from the top down. The bottom one is left out: it holds the position from before
    // the script's outermost call.
    for (auto frame = m_frames.crbegin(); frame != m_frames.crend() - 1; ++frame) {
        const LineInfo position(findSourceId(frame->sourceId), frame->line);
        if (position.isValid())
            stack.push_back(position);
    }
    return stack;
}

std::vector<Debugger::Location> Debugger::stackTrace(int skip, int maxDepth) {
    updateFrames();
    if (m_frames.empty())
        return {};

    std::vector<Location> trace;
    const auto isFull = [&] { return maxDepth > 0 && static_cast<int>(trace.size()) >= maxDepth; };

    if (skip <= 0)
        trace.push_back({findSourceId(m_sourceId), m_line});

    // The frames from the top, all down to the bottom one.
    const int passedOver = std::max(skip - 1, 0);
    if (passedOver >= frameDepth())
        return trace;
    for (auto frame = m_frames.crbegin() + passedOver; frame != m_frames.crend() && !isFull();
         ++frame)
        trace.push_back({findSourceId(frame->sourceId), frame->line});
    return trace;
}

// Sources and break points

QString Debugger::sanitizedFilePath(const QString& path) {
    return realPath(QDir(QDir::currentPath()).absoluteFilePath(path));
}

int Debugger::nextSourceId() {
    return s_nextSourceId++;
}

void Debugger::setCode(int sourceId, const QString& file) {
    const QString path = sanitizedFilePath(file);
    const bool isNew = !m_sources.contains(sourceId);
    if (isNew)
        m_sources.insert(sourceId, path);

    // The buffered entry stays: a file that is loaded again under a new id gets its break points
    // too.
    for (const int line : m_bufferedBreakPoints.value(path))
        setBreakPoint(line, sourceId, true);
    for (const int line : m_breakPointsByFileName.value(QFileInfo(path).fileName()))
        setBreakPoint(line, sourceId, true);
    if (!isNew)
        return;
    // So it does those that were set since, as a feature file that runs once more.
    const std::vector<std::pair<int, int>> known = m_breakPoints;
    for (const auto& [line, id] : known) {
        if (id != sourceId && m_sources.value(id) == path && !hasBreakPoint(line, sourceId))
            setBreakPoint(line, sourceId, true);
    }
}

int Debugger::findSourceId(const QString& file) const {
    const QString path = sanitizedFilePath(file);
    for (auto source = m_sources.cbegin(); source != m_sources.cend(); ++source) {
        if (source.value() == path || QFileInfo(source.value()).fileName() == file)
            return source.key();
    }
    return -1;
}

QString Debugger::findSourceId(int sourceId) const {
    return m_sources.value(sourceId);
}

QString Debugger::currentFile() {
    if (!s_self)
        return {};
    s_self->updateFrames();
    return s_self->findSourceId(s_self->m_sourceId);
}

void Debugger::setBreakPoint(int line, int sourceId, bool set) {
    const std::pair breakPoint(line, sourceId);
    if (set)
        m_breakPoints.push_back(breakPoint);
    else
        std::erase(m_breakPoints, breakPoint);
}

bool Debugger::hasBreakPoint(int line, int sourceId) const {
    return std::find(m_breakPoints.cbegin(), m_breakPoints.cend(), std::pair(line, sourceId)) !=
           m_breakPoints.cend();
}

void Debugger::bufferBreakPoint(const QString& file, int line) {
    const bool isBareName = QFileInfo(file).fileName() == file;
    QMap<QString, std::vector<int>>& buffer =
        isBareName ? m_breakPointsByFileName : m_bufferedBreakPoints;
    buffer[isBareName ? file : sanitizedFilePath(file)].push_back(line);
}

}  // namespace Tamrix
