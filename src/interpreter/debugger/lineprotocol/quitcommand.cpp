// The end of the process.

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/debugger/lineprotocol/commandfunctions.h"

namespace Tamrix {

CommandEffect quitCommand(const CommandCall& call) {
    if (RunnerInterface* const runner = Interpreter::currentRunner()) {
        for (const SharedPtr<ApplicationContext>& context : runner->applicationContexts())
            context->stop(QStringLiteral("Stopped by the user"));
    }
    endProcess(call.aboutToQuit);
}

}  // namespace Tamrix
