#include "platform/objectmodel/inmemorymodel.h"

#include "platform/objectmodel/objectname.h"

namespace Tamrix {

namespace {

SharedPtr<Object> findBelow(const ObjectList& objects, const QString& realName) {
    for (const SharedPtr<Object>& object : objects) {
        if (object->realName() == realName)
            return object;
        if (SharedPtr<Object> found = findBelow(object->children(), realName))
            return found;
    }
    return {};
}

}  // namespace

InMemoryObject::InMemoryObject(quint64 handle, const Class* objectClass, const QString& name)
    : Object(handle, objectClass), m_name(name) {}

QString InMemoryObject::realName() const {
    ObjectName name;
    name.setProperty(QStringLiteral("name"), m_name);
    name.setProperty(QStringLiteral("type"), className());
    return name.qualifiedName();
}

SharedPtr<Object> InMemoryObject::readProperty(const Property& property) const {
    return m_properties.value(property.name());
}

void InMemoryObject::setProperty(const QString& name, SharedPtr<Object> value) {
    m_properties.insert(name, value);
}

Class* InMemoryModel::objectClass(const QString& name) {
    for (const auto& known : m_classes) {
        if (known->name() == name)
            return known.get();
    }
    m_classes.push_back(std::make_unique<Class>(name));
    return m_classes.back().get();
}

SharedPtr<InMemoryObject> InMemoryModel::addObject(const QString& className, const QString& name,
                                                   SharedPtr<InMemoryObject> parent) {
    SharedPtr<InMemoryObject> object(
        new InMemoryObject(++m_lastHandle, objectClass(className), name));
    object->m_parent = parent.get();
    (parent ? parent->m_children : m_topLevelObjects).push_back(object);
    return object;
}

SharedPtr<Object> InMemoryModel::findObject(const QString& realName) const {
    return findBelow(m_topLevelObjects, realName);
}

}  // namespace Tamrix
