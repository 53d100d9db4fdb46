#pragma once

#include "interpreter/bridge/scriptcontext.h"

namespace Tamrix {

/// A function for code that a plug-in carries, which has at least so many arguments: a script that
/// finds it may call it with fewer.
template <ScriptContext::Function function, int wanted>
void memberFunction(ScriptContext* context) {
    if (context->argumentCount() < wanted)
        context->setError(QStringLiteral("Too few arguments"));
    else
        function(context);
}

}  // namespace Tamrix
