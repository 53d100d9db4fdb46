#include "runner/debugging/frontends.h"

#include <unistd.h>

#include "interpreter/bridge/debugger.h"
#include "interpreter/debugger/interruptstop.h"
#include "interpreter/debugger/lineprotocol/lineprotocol.h"
#include "runner/debugging/editedinput.h"
#include "runner/debugging/sourceview.h"
#include "runner/processes/interrupt.h"
#include "runner/processes/supervision.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

bool isInterrupted() {
    return Interrupt::signalNumber() != 0;
}

/// Lines are edited where a person types them; what comes from a file or a pipe is read as it is.
std::unique_ptr<CommandInput> createInput(DebuggerDialogue dialogue) {
    if (dialogue == DebuggerDialogue::Terminal && ::isatty(STDIN_FILENO) && ::isatty(STDOUT_FILENO))
        return std::make_unique<EditedInput>(isInterrupted);
    return std::make_unique<StandardInput>(isInterrupted);
}

}  // namespace

void prepareDebuggers(DebuggerDialogue dialogue) {
    tamrix_verbose_debugger = dialogue != DebuggerDialogue::Machine;
    setInterruptFilter(Supervision::isSecondDelivery);
}

std::unique_ptr<DebuggerFrontEnd> createFrontEnd(DebuggerDialogue dialogue) {
    ProtocolSurroundings surroundings;
    surroundings.input = createInput(dialogue);
    surroundings.aboutToQuit = Supervision::markQuit;
    if (dialogue == DebuggerDialogue::Machine)
        return std::make_unique<LineProtocol>(ProtocolDialect::Machine, std::move(surroundings));
    surroundings.showPosition = [](const ScriptPosition& position) {
        writeBytes(stdout, sourceAround(position).toLocal8Bit());
    };
    return std::make_unique<LineProtocol>(ProtocolDialect::Terminal, std::move(surroundings));
}

}  // namespace Tamrix
