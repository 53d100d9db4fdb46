#include "interpreter/objects/namelookup.h"

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"

namespace Tamrix {

namespace {

bool isOfTheName(FailureKind kind) {
    return kind == FailureKind::NotFound || kind == FailureKind::NotReady ||
           kind == FailureKind::BadArgument;
}

}  // namespace

bool looksAgain(const QString& name, const QString& function, const Failure& failure) {
    RunnerInterface* const runner = Interpreter::currentRunner();
    if (!runner || !isOfTheName(failure.kind))
        return false;
    QString error = failure.text;
    runner->objectNotFound(name, function, &error);
    return error.isEmpty();
}

Outcome<SharedPtr<Object>> outcomeOf(const SharedPtr<Object>& object) {
    if (object)
        return object;
    return fail(Inspector::self()->lastFailure());
}

}  // namespace Tamrix
