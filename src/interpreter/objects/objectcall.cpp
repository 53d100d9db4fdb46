#include "interpreter/objects/objectcall.h"

#include "interpreter/objects/objectvalues.h"

namespace Tamrix {

tl::unexpected<ObjectError> applicationError(const Failure& failure) {
    Inspector* const inspector = Inspector::self();
    inspector->keep(failure);
    return objectError(
        inspector->lastErrorIsLookup() ? ObjectError::Kind::NotFound : ObjectError::Kind::Failed,
        failure.text);
}

ObjectResult<SharedPtr<ScriptArgument>> scriptValue(ScriptContext& context,
                                                    const Outcome<SharedPtr<Object>>& value) {
    if (!value)
        return applicationError(value.error());
    return valueOfObject(&context, *value);
}

ObjectResult<ObjectList> objectsOfArguments(const QString& function,
                                            const ScriptArgument::List& values) {
    ObjectList objects;
    for (const SharedPtr<ScriptArgument>& value : values) {
        SharedPtr<Object> object = objectOfValue(value);
        if (!object)
            return objectError(ObjectError::Kind::BadArgument,
                               QStringLiteral("%1() argument %2: %3")
                                   .arg(function, QString::number(objects.size() + 1),
                                        Inspector::self()->lastError()));
        objects.push_back(std::move(object));
    }
    return objects;
}

ObjectResult<void> refuseNamed(const QString& function, const CallArguments& arguments) {
    if (!arguments.named.empty())
        return objectError(ObjectError::Kind::BadArgument,
                           function + "() takes no named arguments");
    return {};
}

}  // namespace Tamrix
