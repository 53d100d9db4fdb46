#include "base/boundedgeometry.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

const QString& screenRectangleName() {
    static const QString s_name = QStringLiteral("ScreenRectangle");
    return s_name;
}

}  // namespace

const Class* objectModelScreenRectangleClass() {
    return Inspector::self()->model() ? ValueObject::valueClass(screenRectangleName()) : nullptr;
}

bool isScreenRectangle(const SharedPtr<Object>& object) {
    const Class* const rectangleClass = objectModelScreenRectangleClass();
    return object && rectangleClass && object->isA(rectangleClass);
}

QRect unwrapRemoteScreenRectangleAsQRect(SharedPtr<Object> object) {
    const auto* const value = dynamic_cast<const ValueObject*>(object.get());
    if (!value || (value->className() != screenRectangleName() &&
                   value->className() != QLatin1String("QRect") &&
                   value->className() != QLatin1String("QRectF")))
        return {};
    return boundedRect(value->value().toRectF());
}

SharedPtr<Object> createRemoteScreenRectangle(const QRect& rectangle) {
    const Class* const rectangleClass = objectModelScreenRectangleClass();
    if (!rectangleClass) {
        Inspector::self()->keep(Inspector::noApplication().value());
        return {};
    }
    return {new ValueObject(rectangle, rectangleClass)};
}

}  // namespace Tamrix
