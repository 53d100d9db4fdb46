#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>

#include "platform/objectmodel/object.h"
#include "platform/objectmodel/remote/agentconnection.h"

namespace Tamrix {

class Class;

/// What a model and its objects share: the connection, what is known of the application's classes,
/// and how values go over and come back. Kept alive by the objects; script thread only.
class RemoteLink : public std::enable_shared_from_this<RemoteLink> {
public:
    explicit RemoteLink(std::shared_ptr<AgentConnection> connection);

    AgentConnection& connection() const { return *m_connection; }
    int requestTimeout() const { return m_requestTimeout; }
    void setRequestTimeout(int milliseconds) { m_requestTimeout = milliseconds; }
    /// How long calls wait for their object to be ready.
    int readyTimeout() const { return m_readyTimeout; }
    void setReadyTimeout(int milliseconds) { m_readyTimeout = milliseconds; }

    // Requests with the usual time-out. False on failure, with `*error` set.
    template <typename Reply>
    bool ask(Wire::MessageType type, const QByteArray& body, Reply* reply, QString* error) {
        RequestError failure;
        if (m_connection->request(type, body, m_requestTimeout, reply, &failure))
            return true;
        *error = failure.text;
        return false;
    }
    /// A request without answer body.
    bool tell(Wire::MessageType type, const QByteArray& body, QString* error) {
        QByteArray nothing;
        return ask(type, body, &nothing, error);
    }
    /// A request that is answered by a value; null on failure.
    SharedPtr<Object> askValue(Wire::MessageType type, const QByteArray& body, QString* error);
    /// Calls a method of an object, or a global function for handle 0.
    SharedPtr<Object> invoke(quint64 handle, const QString& method, const ObjectList& arguments,
                             QString* error);

    /// Described once for each connection. Null when the application knows no such class, or can't
    /// be asked: `*error` is set in the latter case only.
    const Class* classByName(const QString& name, QString* error);
    /// The same with a time-out of its own. Null with `error->text` empty when there is no such
    /// class.
    const Class* readClass(const QString& name, int timeout, RequestError* error);

    /// An object of the application; null for handle 0.
    SharedPtr<Object> object(const Wire::ObjectInfo& info);
    ObjectList objects(const Wire::ObjectInfoList& infos);
    /// A value as an object: an object of the application, or a ValueObject.
    SharedPtr<Object> valueObject(const QVariant& wireValue);

    /// The object's handle on the wire. False for null and for an object of something else.
    bool handleOf(const SharedPtr<Object>& object, quint64* handle, QString* error) const;
    /// A value as it travels. False when it holds an object that is not of this application.
    bool wireValue(const QVariant& value, QVariant* result, QString* error) const;
    bool wireValues(const ObjectList& arguments, QVariantList* results, QString* error) const;

private:
    QVariant localValue(const QVariant& wireValue);

    std::shared_ptr<AgentConnection> m_connection;
    int m_requestTimeout = 20000;
    int m_readyTimeout = 20000;
    QHash<QString, const Class*> m_classes;
};

}  // namespace Tamrix
