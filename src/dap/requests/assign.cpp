// "setVariable" and "setExpression": values are changed.

#include <algorithm>

#include "dap/requests/request.h"
#include "dap/session/language.h"

namespace Tamrix::Dap {

namespace {

/// Assigns, and gives what stands there then.
Outcome<AssignedBody> assign(Session& session, Debuggee& debuggee, const QString& expression,
                             const QString& value) {
    const QString code = assignmentCode(session.stoppedFile(), expression, value);
    if (code.isNull())
        return fail(FailureKind::Refused,
                    QStringLiteral("nothing can be assigned to '%1'").arg(expression));
    const Outcome<QString> assigned = debuggee.evaluate(code);
    if (!assigned)
        return fail(assigned.error());
    session.valuesChanged();
    const Outcome<QString> now = debuggee.evaluate(expression);
    if (!now)
        return fail(now.error());
    return AssignedBody{*now, std::nullopt, std::nullopt};
}

Outcome<AssignedBody> setVariable(Session& session, const SetVariableArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(std::nullopt);
    if (!debuggee)
        return fail(debuggee.error());
    const int parent = arguments.variablesReference;
    const auto find = [&]() -> Outcome<Variable> {
        const Outcome<std::vector<Variable>> all = session.values().below(parent, **debuggee);
        if (!all)
            return fail(all.error());
        const auto found = std::find_if(all->begin(), all->end(), [&](const Variable& each) {
            return each.name == arguments.name;
        });
        if (found == all->end())
            return fail(FailureKind::NotFound,
                        QStringLiteral("there is no variable '%1'").arg(arguments.name));
        return *found;
    };
    const Outcome<Variable> variable = find();
    if (!variable)
        return fail(variable.error());
    if (!variable->evaluateName)
        return fail(FailureKind::Refused,
                    QStringLiteral("nothing can be assigned to '%1'").arg(arguments.name));
    Outcome<AssignedBody> body =
        assign(session, **debuggee, *variable->evaluateName, arguments.value);
    if (!body)
        return body;
    // As the listing shows it now, which may be able to open it.
    if (const Outcome<Variable> now = find()) {
        body->value = now->value;
        body->type = now->type;
        body->variablesReference = now->variablesReference;
    }
    return body;
}

Outcome<AssignedBody> setExpression(Session& session, const SetExpressionArguments& arguments) {
    const Outcome<Debuggee*> debuggee = session.debuggeeAt(arguments.frameId);
    if (!debuggee)
        return fail(debuggee.error());
    return assign(session, **debuggee, arguments.expression, arguments.value);
}

}  // namespace

RequestKind setVariableRequest() {
    return makeRequest("setVariable", setVariable);
}

RequestKind setExpressionRequest() {
    return makeRequest("setExpression", setExpression);
}

}  // namespace Tamrix::Dap
