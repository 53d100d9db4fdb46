// The lines that a debugger prints for its front end, and the stops that go with them.

#include <cstdio>

#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/protocoltext.h"

namespace Tamrix {

bool Debugger::canStop() {
    updateFrames();
    return m_sourceId >= 0 && !m_frames.empty();
}

std::string Debugger::encoded(const QString& text) const {
    return encodeForDialect(text, m_verbose);
}

std::string Debugger::escaped(const QString& text) const {
    return encoded(escapeForVariablePrinting(text));
}

std::string Debugger::currentPath() const {
    return encoded(findSourceId(m_sourceId));
}

void Debugger::printCurrentLine(char marker, const QString& name, const QString& detail) {
    const std::string prefix = encoded(m_prefix);
    const std::string path = currentPath();
    if (name.isEmpty())
        std::printf("%s%cline %d, column %d, %s:\n", prefix.c_str(), marker, m_line, m_column,
                    path.c_str());
    else if (detail.isEmpty())
        std::printf("%s%cobjLookupError %d\t%d\t%s\t%s\n", prefix.c_str(), marker, m_line, m_column,
                    path.c_str(), escaped(name).c_str());
    else
        std::printf("%s%cobjLookupError %d\t%d\t%s\t%s\t%s\n", prefix.c_str(), marker, m_line,
                    m_column, path.c_str(), escaped(name).c_str(),
                    encoded(escapeNonPrintable(detail)).c_str());
    std::fflush(stdout);
}

bool Debugger::stop() {
    stopAtCurrentLine(QString(), QString());
    return true;
}

bool Debugger::stopWithObjectName(const QString& objectName, const QString& detail) {
    stopAtCurrentLine(objectName, detail);
    return true;
}

void Debugger::stopAtCurrentLine(const QString& name, const QString& detail) {
    if (!canStop())
        return;
    printCurrentLine('@', name, detail);
    promptIfInteractive();
}

bool Debugger::stopWithSearchImage(const QString& imageName, int target,
                                   const QString& screenshotFile) {
    if (!canStop())
        return true;
    std::printf("%s@imgLookupError %d\t%d\t%s\t%s\t%d\t%s\n", encoded(m_prefix).c_str(), m_line,
                m_column, currentPath().c_str(), escaped(imageName).c_str(), target,
                escaped(screenshotFile).c_str());
    std::fflush(stdout);
    promptIfInteractive();
    return true;
}

bool Debugger::stopWithSearchText(const QString& screenshotFile) {
    if (!canStop())
        return true;
    std::printf("%s@textLookupError %d\t%d\t%s\t%s\n", encoded(m_prefix).c_str(), m_line, m_column,
                currentPath().c_str(), escaped(screenshotFile).c_str());
    std::fflush(stdout);
    promptIfInteractive();
    return true;
}

void Debugger::stopAndRun() {
    if (!tamrix_hl_debugger)
        return;
    updateFrames();
    // Meant: unlike the stops, this also works outside any frame.
    if (m_sourceId < 0)
        return;
    printCurrentLine('#', QString(), QString());
    promptIfInteractive();
    // Also when the front end asked for something else: the script is not to halt.
    run();
}

void Debugger::missingStep(int line, const std::string& text) {
    std::printf("%s@missingStep %d %s\n", encoded(m_prefix).c_str(), line, text.c_str());
    std::fflush(stdout);
    // Meant: also when not interactive. Callers ask breakOnMissingStep() first.
    prompt();
}

void Debugger::notify(const QString& key, const QString& value) {
    std::printf("%s@notify %s\t%s\n", encoded(m_prefix).c_str(), escaped(key).c_str(),
                escaped(value).c_str());
    std::fflush(stdout);
}

void Debugger::checkForPauseMessage() {}

void Debugger::promptIfInteractive() {
    if (m_interactive)
        prompt();
}

void Debugger::prompt() {}

}  // namespace Tamrix
