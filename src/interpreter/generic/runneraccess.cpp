#include "interpreter/generic/runneraccess.h"

#include <QtGlobal>

#include "interpreter/bridge/interpreter.h"

namespace Tamrix {

RunnerInterface* runnerFor(const char* scriptFunction) {
    RunnerInterface* const runner = Interpreter::currentRunner();
    if (!runner)
        qWarning("Without Runner interface no %s()", scriptFunction);
    return runner;
}

}  // namespace Tamrix
