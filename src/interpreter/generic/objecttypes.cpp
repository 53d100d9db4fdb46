// Objects as objects of another type.

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/objectfunctions.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

/// Checks (object, typeName), the arguments of the function of this name. False with the error set
/// when they are wrong.
bool readObjectAndType(ScriptContext* context, const QString& function, SharedPtr<Object>* object,
                       const Class** type) {
    if (context->argumentCount() != 2) {
        context->setError(function + "(object, typeName)");
        return false;
    }
    if (context->argument(0)->isObject())
        *object = context->argument(0)->toObject();
    if (!*object) {
        context->setError("Invalid object passed to " + function + "()");
        return false;
    }
    if (!context->argument(1)->isString()) {
        context->setError(function + "() expected type string as 2nd parameter");
        return false;
    }
    const QString name = context->argument(1)->toString();
    *type = Inspector::self()->classByName(name);
    if (!*type)
        context->setError("Unknown type " + name);
    return *type != nullptr;
}

}  // namespace

void castObject(ScriptContext* context) {
    SharedPtr<Object> object;
    const Class* type = nullptr;
    if (readObjectAndType(context, QStringLiteral("cast"), &object, &type))
        context->setObjectResult(object->cast(type));
}

void objectConvertTo(ScriptContext* context) {
    SharedPtr<Object> object;
    const Class* type = nullptr;
    if (!readObjectAndType(context, QStringLiteral("convertTo"), &object, &type))
        return;
    // What is pointed to can be seen as another class; a value is of its classes only.
    const ObjectAttribute attribute = object->objectAttribute();
    SharedPtr<Object> converted;
    if (attribute.isPointer() || attribute.isReference())
        converted = object->cast(type);
    else if (object->isA(type))
        converted = object;
    if (converted)
        context->setObjectResult(converted);
    else
        context->setError(QStringLiteral("Could not convert object of type %1 to type %2")
                              .arg(object->className(), context->argument(1)->toString()));
}

void objectCreateNull(ScriptContext* context) {
    if (context->argumentCount() != 1) {
        context->setError("createNull(type)");
        return;
    }
    if (!context->argument(0)->isClass()) {
        context->setError("createNull() expected type as 1nd parameter");
        return;
    }
    const Class* const type = context->argument(0)->toClass();
    const SharedPtr<Object> object =
        type ? Inspector::self()->createNullObject(type) : SharedPtr<Object>();
    if (object)
        context->setObjectResult(object);
    else
        context->setError("Internal error");
}

void objectQueryInterface(ScriptContext* context) {
    if (context->argumentCount() != 2) {
        context->setError("Expected two arguments");
        return;
    }
    SharedPtr<Object> object;
    if (context->argument(0)->isObject())
        object = context->argument(0)->toObject();
    if (!object) {
        context->setError("Expected object reference as first argument");
        return;
    }
    if (!context->argument(1)->isString()) {
        context->setError("Expected string as second argument");
        return;
    }
    const QString name = context->argument(1)->toString();
    if (const SharedPtr<Object> interface = object->queryInterface(name))
        context->setObjectResult(interface);
    else
        context->setError(QStringLiteral("Could not convert object to interface '%1'").arg(name));
}

}  // namespace Tamrix
