#include "interpreter/bridge/actionrecord.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/inputfunctions.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"
#include "interpreter/objects/objectvalues.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

using HandlerOperation = bool (Inspector::*)(SharedPtr<Object>, const Class*, const QString&,
                                             const QString&);

/// What a handler is for: one object, all objects of a class, or, with both null, all objects.
struct HandlerTarget {
    SharedPtr<Object> object;
    const Class* objectClass = nullptr;
};

/// The name under which the inspector knows the callback: a callable's identifier, or the name of a
/// script function. Empty when it is neither.
QString convertInstallEventHandlerCallbackArg(const SharedPtr<ScriptArgument>& callback,
                                              bool install) {
    if (callback->isString())
        return callback->toString();
    Interpreter* const interpreter = Interpreter::self();
    if (!callback->isCallable() || !interpreter)
        return {};
    return install ? interpreter->registerCallable(callback)
                   : interpreter->unregisterCallable(callback);
}

/// The arguments that were not left out: an object or type, the first parameter, may be.
ScriptArgument::List givenArguments(ScriptContext* context) {
    ScriptArgument::List given;
    for (int index = 0; index < context->argumentCount(); ++index) {
        if (context->argument(index))
            given.push_back(context->argument(index));
    }
    return given;
}

/// The checks of all arguments but the callback; returns an error text, empty when they are right.
QString readHandlerArguments(const ScriptArgument::List& arguments, RunnerInterface* runner,
                             QString* event, HandlerTarget* target) {
    const std::size_t count = arguments.size();
    const SharedPtr<ScriptArgument> eventArgument = arguments[count - 2];
    if (!eventArgument->isString())
        return count == 2 ? QStringLiteral("Event name has be specified as a string")
                          : QStringLiteral("Event type has to be specified as a string");
    *event = eventArgument->toString();
    const SharedPtr<ScriptArgument> first = arguments.front();
    const bool isGlobal = count == 2;
    if (isGlobal || first->isObject() || first->isString()) {
        if (!runner->applicationContext(QString()))
            return QStringLiteral(
                "Invalid current application context, check that you have an application started "
                "and that it's still running");
        if (isGlobal)
            return {};
        if (first->isObject())
            target->object = first->toObject();
        else
            target->objectClass = Inspector::self()->classByName(first->toString());
    }
    if (target->object || target->objectClass)
        return {};
    return QStringLiteral(
        "First argument of installEventHandler with 3 arguments is neither a GUI object nor a type "
        "name");
}

void changeEventHandler(ScriptContext* context, const char* function, bool install,
                        HandlerOperation operation) {
    // 1. Two arguments are a handler for all objects, three name an object or a type first.
    const ScriptArgument::List arguments = givenArguments(context);
    if (arguments.size() != 2 && arguments.size() != 3) {
        context->setError("installEventHandler([object|typeName,] event, callback)");
        return;
    }
    RunnerInterface* const runner = runnerFor(function);
    if (!runner)
        return;
    // 2. Object or type, and the event.
    QString event;
    HandlerTarget target;
    const QString error = readHandlerArguments(arguments, runner, &event, &target);
    if (!error.isEmpty()) {
        context->setError(error);
        return;
    }
    // 3. The callback.
    const QString callback = convertInstallEventHandlerCallbackArg(arguments.back(), install);
    if (callback.isEmpty()) {
        context->setError("Event handler must be a callable or a non-empty string");
        return;
    }
    // 4. The inspector does it.
    if ((Inspector::self()->*operation)(target.object, target.objectClass, event, callback))
        context->setNullResult();
    else
        context->setError(Inspector::self()->lastError());
}

/// The arguments from index 2 on as parameters of the event; false with the error set when one of
/// them can't be one.
bool readEventParameters(ScriptContext* context, const Signature& signature,
                         ObjectList* parameters) {
    for (int index = 2; index < context->argumentCount(); ++index) {
        const int place = index - 2;
        const QString type =
            place < signature.argumentCount() ? signature.argument(place).typeName() : QString();
        const Outcome<SharedPtr<Object>> parameter = objectOfValue(context->argument(index), type);
        if (!parameter) {
            context->setError(parameter.error().text);
            return false;
        }
        parameters->push_back(*parameter);
    }
    return true;
}

}  // namespace

void installEventHandler(ScriptContext* context) {
    changeEventHandler(context, "installEventHandler", true, &Inspector::installEventHandler);
}

void uninstallEventHandler(ScriptContext* context) {
    changeEventHandler(context, "uninstallEventHandler", false, &Inspector::uninstallEventHandler);
}

void sendEvent(ScriptContext* context) {
    const ActionRecord record(context, "sendEvent");
    // 1. The event's type and the object.
    const int count = context->argumentCount();
    if (count < 2) {
        context->setError(
            "sendEvent() expects at least two arguments. The event type and an object reference");
        return;
    }
    if (!context->argument(0)->isString()) {
        context->setError("Event name must be of type string");
        return;
    }
    const QString name = context->argument(0)->toString();
    // 2. The global class knows the event.
    Inspector* const inspector = Inspector::self();
    const Class* const globalClass = inspector->globalClass();
    if (!globalClass) {
        context->setError("Invalid application context");
        return;
    }
    const Event* const event = globalClass->event(name);
    if (!event) {
        context->setError("Unknown event type " + name);
        return;
    }
    // 3. The object, by name perhaps.
    const SharedPtr<Object> target =
        findObjectOf(context, context->argument(1), QStringLiteral("sendEvent"));
    if (!target)
        return;
    // 4. As many parameters as the event has; a mouse event may leave some out.
    const Signature& signature = event->signature();
    if (name != QLatin1String("QMouseEvent") && count - 2 != signature.argumentCount()) {
        context->setError("Wrong number of event parameters. Expected: " +
                          QString::number(signature.argumentCount()));
        return;
    }
    // 5. The inspector sends it.
    ObjectList parameters;
    if (!readEventParameters(context, signature, &parameters))
        return;
    if (inspector->sendEvent(event, target, parameters))
        context->setNullResult();
    else
        context->setError(inspector->lastError());
}

}  // namespace Tamrix
