#include "platform/objectmodel/object.h"

#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

Object::Object(quint64 handle, const Class* objectClass) : m_handle(handle), m_class(objectClass) {}

bool Object::isNull() const {
    return m_handle == 0;
}

QString Object::objectName() const {
    return {};
}

QString Object::realName() const {
    return {};
}

QString Object::className() const {
    return m_class ? m_class->name() : QString();
}

bool Object::isA(const Class* other) const {
    return other && m_class == other;
}

ObjectList Object::children() const {
    return {};
}

SharedPtr<Object> Object::parent() const {
    return {};
}

const Class* Object::objectClass() const {
    return m_class;
}

SharedPtr<Object> Object::readProperty(const Property&) const {
    return {};
}

}  // namespace Tamrix
