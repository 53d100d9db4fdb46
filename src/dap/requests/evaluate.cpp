// "evaluate": code in the script that stands still, for a watch, a hover or the console.

#include "dap/requests/request.h"
#include "dap/session/language.h"

namespace Tamrix::Dap {

namespace {

Outcome<EvaluateBody> evaluate(Session& session, const EvaluateArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(arguments.frameId);
    if (!debuggee)
        return fail(debuggee.error());
    const Outcome<QString> result = (*debuggee)->evaluate(arguments.expression);
    if (!result)
        return fail(result.error());
    // What a person types may change anything.
    if (arguments.context == QLatin1String("repl"))
        session.valuesChanged();
    if (isFailureText(*result))
        return fail(FailureKind::BadArgument, *result);
    EvaluateBody body;
    body.result = *result;
    // A value that is listed can be opened as it can there.
    if (arguments.context != QLatin1String("repl")) {
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
