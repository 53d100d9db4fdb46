#include "interpreter/objects/objectcall.h"

#include "interpreter/objects/objectvalues.h"

namespace Tamrix {

tl::unexpected<ObjectError> applicationError(const Failure& failure) {
    Inspector::self()->keep(failure);
    const bool isLookup =
        failure.kind == FailureKind::NotFound || failure.kind == FailureKind::NotReady;
    return objectError(isLookup ? ObjectError::Kind::NotFound : ObjectError::Kind::Failed,
                       failure.text);
}

ObjectResult<SharedPtr<ScriptArgument>> scriptValue(ScriptContext& context,
                                                    const Outcome<SharedPtr<Object>>& value) {
    if (!value)
        return applicationError(value.error());
    return valueOfObject(&context, *value);
}

ObjectResult<ObjectList> objectsOfArguments(const QString& function,
                                            const ScriptArgument::List& values, size_t first) {
    ObjectList objects;
    for (size_t index = first; index < values.size(); ++index) {
        const Outcome<SharedPtr<Object>> object = objectOfValue(values[index]);
        if (!object)
            return objectError(ObjectError::Kind::BadArgument,
                               QStringLiteral("%1() argument %2: %3")
                                   .arg(function, QString::number(index + 1), object.error().text));
        objects.push_back(*object);
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
