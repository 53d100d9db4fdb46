#include "platform/objectmodel/passwordfields.h"

#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

bool isForPasswords(const SharedPtr<Object>& object) {
    const Class* const objectClass = object ? object->objectClass() : nullptr;
    const Property* const echoMode =
        objectClass ? objectClass->property(QStringLiteral("echoMode")) : nullptr;
    const Outcome<SharedPtr<Object>> value =
        echoMode ? object->readProperty(*echoMode) : SharedPtr<Object>();
    // 0: what is entered is shown.
    return value && *value && (*value)->toVariant().toInt() != 0;
}

}  // namespace Tamrix
