// "evaluate": code in the script that stands still, for a watch, a hover or the console.

#include "dap/requests/request.h"

namespace Tamrix::Dap {

namespace {

Outcome<EvaluateBody> evaluate(Session& session, const EvaluateArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(arguments.frameId);
    if (!debuggee)
        return fail(debuggee.error());
    const bool isTyped = arguments.context == QLatin1String("repl");
    // What an editor asks by itself nobody knows to pause.
    const Outcome<QString> result = (*debuggee)->evaluate(
        arguments.expression, isTyped ? Debuggee::Limit() : Debuggee::usualLimit);
    // What a person types may change anything, also code that fails in the end.
    if (isTyped && (*debuggee)->isStopped())
        session.valuesChanged();
    if (!result)
        return fail(result.error());
    EvaluateBody body;
    body.result = *result;
    // A value that is listed can be opened as it can there.
    if (!isTyped) {
        if (const std::optional<Variable> known = session.values().listed(arguments.expression)) {
            body.type = known->type;
            body.variablesReference = known->variablesReference;
        }
    }
    return body;
}

}  // namespace

RequestKind evaluateRequest() {
    return makeRequest("evaluate", evaluate);
}

}  // namespace Tamrix::Dap
