// What a debugger does at the command of its front end.

#include <algorithm>

#include "interpreter/bridge/debugger.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/debugger/interruptstop.h"

namespace Tamrix {

void Debugger::resume(Resume mode) {
    initVariableWatcher();
    switch (mode) {
        case Resume::Next:
            next(frameDepth());
            return;
        case Resume::Return:
            next(std::max(frameDepth() - 1, 0));
            return;
        case Resume::Step:
            step();
            return;
        case Resume::Run:
            run();
            return;
    }
}

Debugger::BreakPointPlace Debugger::addBreakPoint(const QString& file, int line) {
    const int sourceId = findSourceId(file);
    if (sourceId < 0) {
        bufferBreakPoint(file, line);
        return {sanitizedFilePath(file), line, true};
    }
    setBreakPoint(line, sourceId, true);
    return {findSourceId(sourceId), line, false};
}

Outcome<Debugger::BreakPointPlace> Debugger::deleteBreakPoint(const QString& file, int line) {
    const int sourceId = findSourceId(file);
    if (sourceId < 0) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("unknown source file %1").arg(sanitizedFilePath(file)));
    }
    const QString path = findSourceId(sourceId);
    if (!hasBreakPoint(line, sourceId)) {
        return fail(FailureKind::NotFound,
                    QStringLiteral("No break point set at %1:%2").arg(path, QString::number(line)));
    }
    // Also where the file was loaded once more.
    for (auto source = m_sources.cbegin(); source != m_sources.cend(); ++source) {
        if (source.value() == path)
            setBreakPoint(line, source.key(), false);
    }
    return BreakPointPlace{path, line, false};
}

QString Debugger::evaluate(const QString& code) {
    if (!m_interpreter)
        return {};
    const DbgMode mode = m_mode;
    setDebuggerMode(None);
    // Code that goes on and on is ended, not the run.
    const bool stoppedOnInterrupt = stopsOnInterrupt(this);
    stopOnInterrupt(this);
    m_interpreter->evaluate(code, QString());
    // A program can't know that the code has ended just before the signal: until the script goes on
    // one more is no matter.
    if (tamrix_verbose_debugger && !stoppedOnInterrupt)
        releaseInterrupt(this);
    else
        stopOnInterrupt(this);
    setDebuggerMode(mode);
    return m_interpreter->resultMessage();
}

}  // namespace Tamrix
