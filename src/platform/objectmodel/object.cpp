#include "platform/objectmodel/object.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"

namespace Tamrix {

namespace {

Failure unsupported(const Object& object, const QString& what) {
    const QString name = object.className();
    return {FailureKind::Refused,
            name.isEmpty() ? QStringLiteral("The object %1").arg(what)
                           : QStringLiteral("The object of class '%1' %2").arg(name, what)};
}

}  // namespace

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
    const Class* const known = objectClass();
    return known ? known->name() : QString();
}

bool Object::isA(const Class* other) const {
    const Class* const known = objectClass();
    return other && known && (known == other || known->isOrDerivesFrom(other->name()));
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

ObjectAttribute Object::objectAttribute() const {
    return ObjectAttribute(ObjectAttribute::Kind::Pointer);
}

SharedPtr<Object> Object::cast(const Class* other) const {
    // The handle stays the same: only what is known of it may be more.
    return isA(other) ? SharedPtr<Object>(const_cast<Object*>(this)) : SharedPtr<Object>();
}

SharedPtr<Object> Object::queryInterface(const QString& name) const {
    const Class* const known = objectClass();
    if (known && known->isOrDerivesFrom(name))
        return {const_cast<Object*>(this)};
    Inspector::self()->keep(unsupported(*this, QStringLiteral("has no interface '%1'").arg(name)));
    return {};
}

QVariant Object::toVariant() const {
    return {};
}

Outcome<SharedPtr<Object>> Object::readProperty(const Property& property) const {
    return fail(unsupported(*this, QStringLiteral("has no property '%1'").arg(property.name())));
}

Outcome<PropertyList> Object::readProperties() const {
    PropertyList values;
    const Class* const known = objectClass();
    for (int index = 0; known && index < known->numProperties(); ++index) {
        const Property& property = *known->property(index);
        // One that can't be read is left out, which is no failure of the others.
        if (const Outcome<SharedPtr<Object>> value = readProperty(property))
            values.emplace_back(property.name(), *value);
    }
    return values;
}

Outcome<> Object::writeProperty(const Property& property, SharedPtr<Object>) const {
    return fail(unsupported(
        *this, QStringLiteral("has no property '%1' that can be set").arg(property.name())));
}

Outcome<SharedPtr<Object>> Object::invokeMethod(const Method& method, const ObjectList&) const {
    return fail(unsupported(*this, QStringLiteral("has no method '%1'").arg(method.name())));
}

}  // namespace Tamrix
