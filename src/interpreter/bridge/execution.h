#pragma once

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/remoteobjectmodelholder.h"
#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

/// The time in which a native function runs: the runner's remote object model is taken, and the
/// context has no error when it begins. What ScriptContext::execute() has around the function, and
/// what calls of scripts have, in which nothing of the language is pending that is to be cleared.
class Execution {
public:
    explicit Execution(ScriptContext& context) : m_holder(Interpreter::currentRunner()) {
        context.forgetError();
    }

private:
    RemoteObjectModelHolder m_holder;
};

}  // namespace Tamrix
