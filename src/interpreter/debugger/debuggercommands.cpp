// What a debugger does at the command of its front end.

#include <algorithm>

#include "base/overloaded.h"
#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/frontend.h"

namespace Tamrix {

namespace {

void resume(Debugger& debugger, Resume::Mode mode) {
    debugger.initVariableWatcher();
    switch (mode) {
        case Resume::Next:
            debugger.next(debugger.frameDepth());
            return;
        case Resume::Return:
            debugger.next(std::max(debugger.frameDepth() - 1, 0));
            return;
        case Resume::Step:
            debugger.step();
            return;
        case Resume::Run:
            debugger.run();
            return;
    }
}

Outcome<BreakPointReply> perform(Debugger& debugger, const SetBreakPoint& command) {
    const int sourceId = debugger.findSourceId(command.file);
    if (sourceId < 0) {
        debugger.bufferBreakPoint(command.file, command.line);
        return BreakPointReply{Debugger::sanitizedFilePath(command.file), command.line, true};
    }
    debugger.setBreakPoint(command.line, sourceId, true);
    return BreakPointReply{debugger.findSourceId(sourceId), command.line, false};
}

/// Break points of files that are not loaded yet can't be deleted.
Outcome<BreakPointReply> perform(Debugger& debugger, const DeleteBreakPoint& command) {
    const int sourceId = debugger.findSourceId(command.file);
    if (sourceId < 0) {
        return fail(FailureKind::NotFound, QStringLiteral("unknown source file %1")
                                               .arg(Debugger::sanitizedFilePath(command.file)));
    }
    const QString path = debugger.findSourceId(sourceId);
    if (!debugger.hasBreakPoint(command.line, sourceId)) {
        return fail(
            FailureKind::NotFound,
            QStringLiteral("No break point set at %1:%2").arg(path, QString::number(command.line)));
    }
    debugger.setBreakPoint(command.line, sourceId, false);
    return BreakPointReply{path, command.line, false};
}

}  // namespace

void Debugger::prompt() {
    while (const std::optional<DebuggerCommand> command = m_frontEnd->waitForCommand()) {
        const bool isResumed =
            std::visit(Overloaded{
                           [this](const Resume& how) {
                               m_startFlag = m_startFlag && how.mode != Resume::Run;
                               resume(*this, how.mode);
                               return true;
                           },
                           // Any other command is answered, and the script goes on standing still.
                           [&](const auto& other) {
                               m_frontEnd->reply(*command, perform(*this, other));
                               return false;
                           },
                       },
                       *command);
        if (isResumed)
            return;
    }
}

}  // namespace Tamrix
