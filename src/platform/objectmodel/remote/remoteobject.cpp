#include "platform/objectmodel/remote/remoteobject.h"

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/remotelink.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

using Wire::encode;
using Wire::MessageType;

namespace {

/// Handles of different connections differ: the connection's number stands above the application's
/// own, which never needs the upper bits.
constexpr int connectionShift = 48;

quint64 combinedHandle(const RemoteLink& link, quint64 wireHandle) {
    return (static_cast<quint64>(link.connection().number()) << connectionShift) ^ wireHandle;
}

}  // namespace

RemoteObject::RemoteObject(std::shared_ptr<RemoteLink> link, const Wire::ObjectInfo& info)
    : RemoteObjectBase(combinedHandle(*link, info.handle)), m_link(std::move(link)), m_info(info) {}

RemoteObject::~RemoteObject() = default;

QString RemoteObject::description() const {
    return m_info.className + (m_info.objectName.isEmpty()
                                   ? QString()
                                   : QStringLiteral(" '%1'").arg(m_info.objectName));
}

QString RemoteObject::objectName() const {
    // Known here, but no fact of an application that is not there any more.
    if (!m_link->connection().isOpen())
        Inspector::self()->keep(m_link->connection().disconnected());
    return m_info.objectName;
}

template <typename Reply>
Reply RemoteObject::ask(MessageType type) const {
    return Inspector::self()->take(
        m_link->ask<Reply>(type, encode(Wire::ObjectHandle{m_info.handle})));
}

QString RemoteObject::realName() const {
    return ask<Wire::Text>(MessageType::RealName).text;
}

ObjectList RemoteObject::children() const {
    return m_link->objects(ask<Wire::ObjectInfoList>(MessageType::Children));
}

SharedPtr<Object> RemoteObject::parent() const {
    return m_link->object(ask<Wire::ObjectInfo>(MessageType::Parent));
}

const Class* RemoteObject::objectClass() const {
    if (!m_describedClass)
        m_describedClass = Inspector::self()->take(m_link->classByName(m_info.className));
    return m_describedClass;
}

Wire::PropertyAccess RemoteObject::access(const Property& property) const {
    return {m_info.handle, property.name(), {}};
}

Outcome<SharedPtr<Object>> RemoteObject::readProperty(const Property& property) const {
    return m_link->askValue(MessageType::ReadProperty, encode(access(property)));
}

Outcome<PropertyList> RemoteObject::readProperties() const {
    const auto answer = m_link->ask<Wire::Value>(MessageType::ReadProperties,
                                                 encode(Wire::ObjectHandle{m_info.handle}));
    if (!answer)
        return fail(answer.error());
    QVariantMap values = answer->value.toMap();
    PropertyList properties;
    const auto add = [&](const QString& name, const QVariant& value) {
        properties.emplace_back(name, m_link->valueObject(value));
    };
    const Class* const known = values.isEmpty() ? nullptr : objectClass();
    for (int index = 0; known && index < known->numProperties(); ++index) {
        const QString name = known->property(index)->name();
        const auto value = values.find(name);
        if (value == values.end())
            continue;
        add(name, *value);
        values.erase(value);
    }
    // What this one object has beyond its class.
    for (auto it = values.cbegin(); it != values.cend(); ++it)
        add(it.key(), it.value());
    return properties;
}

Outcome<> RemoteObject::writeProperty(const Property& property, SharedPtr<Object> value) const {
    const Outcome<QVariant> wireValue = m_link->wireValue(argumentValue(value));
    if (!wireValue)
        return fail(wireValue.error());
    Wire::PropertyAccess written = access(property);
    written.value = *wireValue;
    return m_link->tell(MessageType::WriteProperty, encode(written));
}

Outcome<SharedPtr<Object>> RemoteObject::invokeMethod(const Method& method,
                                                      const ObjectList& arguments) const {
    return m_link->invoke(m_info.handle, method.name(), arguments);
}

}  // namespace Tamrix
