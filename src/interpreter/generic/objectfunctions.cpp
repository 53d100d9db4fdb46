// The namespace "object": the tree, the properties, the place on the screen.

#include "interpreter/generic/objectfunctions.h"

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

/// The object that is the only argument; null with the error set when it is not.
SharedPtr<Object> onlyObject(ScriptContext* context, const QString& error) {
    SharedPtr<Object> object;
    if (context->argumentCount() == 1 && context->argument(0)->isObject())
        object = context->argument(0)->toObject();
    if (!object)
        context->setError(error);
    return object;
}

SharedPtr<Object> onlyObject(ScriptContext* context) {
    return onlyObject(context, QStringLiteral("Expected object reference argument"));
}

void testAttribute(ScriptContext* context, const char* function,
                   bool (ObjectAttribute::*holds)() const) {
    const SharedPtr<Object> object = onlyObject(
        context, QString(QLatin1String(function)) + "() requires an object reference argument");
    if (object)
        context->setBoolResult((object->objectAttribute().*holds)());
}

}  // namespace

void objectExists(ScriptContext* context) {
    if (context->argumentCount() != 1 || !isStringOrObjectName(context->argument(0))) {
        context->setError("object::exists() requires an object name argument");
        return;
    }
    const SharedPtr<Object> object =
        Inspector::self()->findObject(serializeObjectName(context->argument(0)));
    // That there is none is an answer, no failure.
    Inspector::self()->setLastError(QString());
    context->setBoolResult(bool(object));
}

void objectChildren(ScriptContext* context) {
    if (const SharedPtr<Object> object = onlyObject(context))
        reportFailureOf(context, [&] { context->setObjectListResult(object->children()); });
}

void objectParent(ScriptContext* context) {
    if (const SharedPtr<Object> object = onlyObject(context))
        reportFailureOf(context, [&] { context->setObjectResult(object->parent()); });
}

void objectProperties(ScriptContext* context) {
    if (const SharedPtr<Object> object = onlyObject(context))
        context->setObjectPropertiesResult(object);
}

void objectTopLevelObjects(ScriptContext* context) {
    if (context->argumentCount() > 0) {
        context->setError("Expected no arguments");
        return;
    }
    reportFailureOf(context,
                    [&] { context->setObjectListResult(Inspector::self()->topLevelObjects()); });
}

void objectGlobalBounds(ScriptContext* context) {
    const SharedPtr<Object> object = onlyObject(context);
    if (!object)
        return;
    if (object->isNull()) {
        context->setError("Cannot fetch global bounding rectangle for invalid object");
        return;
    }
    RunnerInterface* const runner = runnerFor("globalBounds");
    if (!runner)
        return;
    if (const SharedPtr<Object> bounds = runner->objectGlobalBounds(object))
        context->setObjectResult(bounds);
    else
        context->setError(Inspector::self()->lastError());
}

void objectObjectName(ScriptContext* context) {
    if (const SharedPtr<Object> object = onlyObject(
            context, QStringLiteral("objectName() requires an object reference argument")))
        reportFailureOf(context, [&] { context->setStringResult(object->objectName()); });
}

void objectIsPointer(ScriptContext* context) {
    testAttribute(context, "isPointer", &ObjectAttribute::isPointer);
}

void objectIsReference(ScriptContext* context) {
    testAttribute(context, "isReference", &ObjectAttribute::isReference);
}

void objectIsValue(ScriptContext* context) {
    testAttribute(context, "isValue", &ObjectAttribute::isValue);
}

void objectIsArray(ScriptContext* context) {
    testAttribute(context, "isArray", &ObjectAttribute::isArray);
}

bool isNull(ScriptContext* context) {
    if (const SharedPtr<Object> object =
            onlyObject(context, QStringLiteral("isNull() requires an object reference argument")))
        context->setBoolResult(object->isNull());
    return !context->hasError();
}

bool typeName(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("typeName() requires an argument");
        return false;
    }
    const SharedPtr<ScriptArgument> value = context->argument(0);
    // Of an object the class in the application tells more than the language's type.
    context->setStringResult(value->isObject() && value->toObject() ? value->toObject()->className()
                                                                    : value->typeName());
    return true;
}

}  // namespace Tamrix
