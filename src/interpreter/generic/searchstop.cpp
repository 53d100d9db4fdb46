#include "interpreter/generic/searchstop.h"

#include <QDir>
#include <QTemporaryFile>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/testsettingstype.h"

namespace Tamrix {

namespace {

/// Stops by `stop`, which gets the path of the screenshot.
template <typename Stop>
bool stopWithScreenshot(Debugger& debugger, const QImage& screenshot, Stop stop) {
    // 1. The screenshot is there for the time of the stop.
    QTemporaryFile file(QDir(QDir::tempPath()).filePath("tamrix-screenshotXXXXXX"));
    if (!file.open() || !screenshot.save(&file, "PNG") || !file.flush())
        return false;
    // 2. Without anybody who answers, nothing will change.
    if (!stop(file.fileName()))
        return false;
    // 3. The front end may let the failure take its course.
    return debugger.skipCurrentError() != 1;
}

/// Not in code that the debugger itself evaluates.
bool stops(const Debugger* debugger) {
    return debugger && debugger->debuggerMode() != Debugger::None;
}

}  // namespace

SearchRegistration::SearchRegistration(InternalDebugger* search)
    : m_before(Debugger::self() ? Debugger::self()->internalDebugger() : nullptr) {
    if (Debugger::self())
        Debugger::self()->setInternalDebugger(search);
}

SearchRegistration::~SearchRegistration() {
    if (!Debugger::self())
        return;
    if (m_before)
        Debugger::self()->setInternalDebugger(m_before);
    else
        Debugger::self()->clearInternalDebugger();
}

bool stopForMissingImage(const QString& name, int target, const QImage& screenshot) {
    Debugger* const debugger = Debugger::self();
    if (!stops(debugger) || !TestSettingsType::s_imageNotFoundDebugging ||
        !debugger->imageNotFoundDebugging())
        return false;
    return stopWithScreenshot(*debugger, screenshot, [&](const QString& file) {
        return debugger->stopWithSearchImage(name, target, file);
    });
}

bool stopForMissingText(const QImage& screenshot) {
    Debugger* const debugger = Debugger::self();
    if (!stops(debugger) || !TestSettingsType::s_textNotFoundDebugging ||
        !debugger->textNotFoundDebugging())
        return false;
    return stopWithScreenshot(*debugger, screenshot, [&](const QString& file) {
        return debugger->stopWithSearchText(file);
    });
}

}  // namespace Tamrix
