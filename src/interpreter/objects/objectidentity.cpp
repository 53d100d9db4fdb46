#include "interpreter/objects/objectidentity.h"

#include "interpreter/objects/objectcall.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

bool isSameObject(const SharedPtr<Object>& left, const SharedPtr<Object>& right) {
    const auto* const value = dynamic_cast<const ValueObject*>(left.get());
    const auto* const otherValue = dynamic_cast<const ValueObject*>(right.get());
    if (value || otherValue)
        return value && otherValue && left->className() == right->className() &&
               value->value() == otherValue->value();
    return left->handle() == right->handle();
}

quint64 objectHash(const SharedPtr<Object>& object) {
    return object->handle();
}

bool isTrueObject(const SharedPtr<Object>& object) {
    return !object->isNull();
}

ObjectResult<QString> objectText(const SharedPtr<Object>& object) {
    return askApplication([] { return QStringLiteral("repr"); },
                          [&]() -> ObjectResult<QString> {
                              const auto* const value =
                                  dynamic_cast<const ValueObject*>(object.get());
                              const QString name = value ? value->text() : object->realName();
                              return name.isEmpty() ? "<" + object->className() + " object>" : name;
                          });
}

}  // namespace Tamrix
