// The stops of a debugger, and what else it tells its front end.

#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/frontend.h"

namespace Tamrix {

bool Debugger::canStop() {
    updateFrames();
    return m_sourceId >= 0 && !m_frames.empty();
}

ScriptPosition Debugger::currentPosition() const {
    return {findSourceId(m_sourceId), m_line, m_column};
}

bool Debugger::stopWith(const StopReason& reason) {
    if (!canStop())
        return false;
    // Only `continue` sets it: a stop that is left in another way must not find an old one.
    m_skipCurrentError = 0;
    m_frontEnd->stopped(currentPosition(), reason);
    return promptIfInteractive();
}

bool Debugger::stop() {
    stopWith(LineReached());
    return true;
}

void Debugger::interrupt() {
    stop();
}

bool Debugger::stopWithObjectName(const QString& objectName, const QString& detail) {
    return objectName.isEmpty() ? stopWith(LineReached())
                                : stopWith(ObjectNotFound{objectName, detail});
}

bool Debugger::stopWithSearchImage(const QString& imageName, int target,
                                   const QString& screenshotFile) {
    return stopWith(ImageNotFound{imageName, target, screenshotFile});
}

bool Debugger::stopWithSearchText(const QString& screenshotFile) {
    return stopWith(TextNotFound{screenshotFile});
}

void Debugger::stopAndRun() {
    if (!tamrix_hl_debugger)
        return;
    updateFrames();
    // Meant: unlike the stops, this also works outside any frame.
    if (m_sourceId < 0)
        return;
    m_frontEnd->passed(currentPosition());
    promptIfInteractive();
    // Also when the front end asked for something else: the script is not to halt.
    run();
}

void Debugger::missingStep(int line, const std::string& text) {
    updateFrames();
    m_frontEnd->stopped({QString(), line, -1}, StepMissing{text});
    // Meant: also when not interactive. Callers ask breakOnMissingStep() first.
    prompt();
}

void Debugger::notify(const QString& key, const QString& value) {
    m_frontEnd->notify(key, value);
}

void Debugger::checkForPauseMessage() {}

bool Debugger::prompt() {
    return m_frontEnd->performCommands(*this);
}

bool Debugger::promptIfInteractive() {
    return m_interactive && prompt();
}

}  // namespace Tamrix
