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

/// Hands a failure's text to the inspector.
class ErrorForInspector {
public:
    ErrorForInspector() = default;
    ErrorForInspector(const ErrorForInspector&) = delete;
    ErrorForInspector& operator=(const ErrorForInspector&) = delete;
    ~ErrorForInspector() {
        if (!m_text.isEmpty())
            Inspector::self()->setLastError(m_text);
    }
    operator QString*() { return &m_text; }

private:
    QString m_text;
};

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
        Inspector::self()->setLastError(m_link->connection().disconnected().text);
    return m_info.objectName;
}

QString RemoteObject::realName() const {
    ErrorForInspector error;
    Wire::Text name;
    m_link->ask(MessageType::RealName, encode(Wire::ObjectHandle{m_info.handle}), &name, error);
    return name.text;
}

ObjectList RemoteObject::children() const {
    ErrorForInspector error;
    Wire::ObjectInfoList infos;
    m_link->ask(MessageType::Children, encode(Wire::ObjectHandle{m_info.handle}), &infos, error);
    return m_link->objects(infos);
}

SharedPtr<Object> RemoteObject::parent() const {
    ErrorForInspector error;
    Wire::ObjectInfo info;
    m_link->ask(MessageType::Parent, encode(Wire::ObjectHandle{m_info.handle}), &info, error);
    return m_link->object(info);
}

const Class* RemoteObject::objectClass() const {
    if (!m_describedClass) {
        ErrorForInspector error;
        m_describedClass = m_link->classByName(m_info.className, error);
    }
    return m_describedClass;
}

SharedPtr<Object> RemoteObject::readProperty(const Property& property) const {
    ErrorForInspector error;
    Wire::PropertyAccess access;
    access.handle = m_info.handle;
    access.name = property.name();
    return m_link->askValue(MessageType::ReadProperty, encode(access), error);
}

std::vector<std::pair<QString, SharedPtr<Object>>> RemoteObject::readProperties() const {
    ErrorForInspector error;
    Wire::Value answer;
    m_link->ask(MessageType::ReadProperties, encode(Wire::ObjectHandle{m_info.handle}), &answer,
                error);
    QVariantMap values = answer.value.toMap();
    std::vector<std::pair<QString, SharedPtr<Object>>> properties;
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

bool RemoteObject::writeProperty(const Property& property, SharedPtr<Object> value) const {
    ErrorForInspector error;
    Wire::PropertyAccess access;
    access.handle = m_info.handle;
    access.name = property.name();
    return m_link->wireValue(argumentValue(value), &access.value, error) &&
           m_link->tell(MessageType::WriteProperty, encode(access), error);
}

SharedPtr<Object> RemoteObject::invokeMethod(const Method& method,
                                             const ObjectList& arguments) const {
    ErrorForInspector error;
    return m_link->invoke(m_info.handle, method.name(), arguments, error);
}

}  // namespace Tamrix
