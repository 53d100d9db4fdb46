#pragma once

#include <memory>

#include "platform/objectmodel/object.h"
#include "wire/messages.h"

namespace Tamrix {

class RemoteLink;

/// An object of an application, seen over a connection. Keeps the connection's end alive; after the
/// connection has ended, or the object in the application is gone, every operation that asks the
/// application fails with a text that says so. What it knows itself, class name and object name,
/// are those of the time when it was found.
class TAMRIX_EXPORT RemoteObject : public RemoteObjectBase {
public:
    /// `info.handle` is not 0.
    RemoteObject(std::shared_ptr<RemoteLink> link, const Wire::ObjectInfo& info);
    ~RemoteObject() override;

    QString objectName() const override;
    QString realName() const override;
    QString className() const override { return m_info.className; }
    ObjectList children() const override;
    SharedPtr<Object> parent() const override;
    /// Asked of the application on first use; null when that fails.
    const Class* objectClass() const override;
    int remoteId() const override { return static_cast<int>(m_info.handle); }
    Outcome<SharedPtr<Object>> readProperty(const Property& property) const override;
    Outcome<PropertyList> readProperties() const override;
    Outcome<> writeProperty(const Property& property, SharedPtr<Object> value) const override;
    Outcome<SharedPtr<Object>> invokeMethod(const Method& method,
                                            const ObjectList& arguments) const override;

    /// The application's own handle; handle() differs for objects of different connections.
    quint64 wireHandle() const { return m_info.handle; }
    RemoteLink& link() const { return *m_link; }
    /// Class and name, for messages: QPushButton 'ok'.
    QString description() const;

private:
    /// Asks about this object; a default answer with the failure kept by the inspector.
    template <typename Reply>
    Reply ask(Wire::MessageType type) const;
    Wire::PropertyAccess access(const Property& property) const;

    std::shared_ptr<RemoteLink> m_link;
    Wire::ObjectInfo m_info;
    mutable const Class* m_describedClass = nullptr;
};

}  // namespace Tamrix
