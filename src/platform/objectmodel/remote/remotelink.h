#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>

#include "platform/objectmodel/access.h"
#include "platform/objectmodel/object.h"
#include "platform/objectmodel/remote/agentconnection.h"

namespace Tamrix {

class Class;

/// What a model and its objects share: the connection, what is known of the application's classes,
/// and how values are converted in both directions. Kept alive by the objects; script thread only.
class RemoteLink : public std::enable_shared_from_this<RemoteLink> {
public:
    explicit RemoteLink(std::shared_ptr<AgentConnection> connection);

    AgentConnection& connection() const { return *m_connection; }
    int requestTimeout() const { return m_requestTimeout; }
    void setRequestTimeout(int milliseconds) { m_requestTimeout = milliseconds; }
    /// How long calls wait for their object to be ready.
    int readyTimeout() const { return m_readyTimeout; }
    void setReadyTimeout(int milliseconds) { m_readyTimeout = milliseconds; }

    // Requests with the usual time-out.
    template <typename Reply>
    Outcome<Reply> ask(Wire::MessageType type, const QByteArray& body) {
        return m_connection->ask<Reply>(type, body, m_requestTimeout);
    }
    /// A request without answer body.
    Outcome<> tell(Wire::MessageType type, const QByteArray& body);
    /// A request that is answered by a value.
    Outcome<SharedPtr<Object>> askValue(Wire::MessageType type, const QByteArray& body);
    /// Calls a method of an object, or a global function for handle 0.
    Outcome<SharedPtr<Object>> invoke(quint64 handle, const QString& method,
                                      const ObjectList& arguments);

    /// Described once for each connection. Null when the application knows no such class. A
    /// time-out of -1 is the usual one.
    Outcome<const Class*> classByName(const QString& name, int timeout = -1);

    /// An object of the application; null for handle 0.
    SharedPtr<Object> object(const Wire::ObjectInfo& info);
    ObjectList objects(const Wire::ObjectInfoList& infos);
    /// A value as an object: an object of the application, or a ValueObject.
    SharedPtr<Object> valueObject(const QVariant& wireValue);

    /// The target as it travels; with an object of something else it fails.
    Outcome<Wire::Target> wireTarget(const Target& target) const;
    /// A request with a target: what became of it, and when it was not missed, the answer's body.
    struct Targeted {
        TargetAnswer answer;
        Outcome<QByteArray> body;
    };
    Outcome<Targeted> requestWithTarget(Wire::MessageType type, const QByteArray& body,
                                        const Target& target, int timeout);
    /// The object's handle on the wire. Fails for null and for an object of something else.
    Outcome<quint64> handleOf(const SharedPtr<Object>& object) const;
    /// A value as it travels. Fails when it holds an object that is not of this application.
    Outcome<QVariant> wireValue(const QVariant& value) const;
    Outcome<QVariantList> wireValues(const ObjectList& arguments) const;

private:
    QVariant localValue(const QVariant& wireValue);

    std::shared_ptr<AgentConnection> m_connection;
    int m_requestTimeout = 20000;
    int m_readyTimeout = 20000;
    QHash<QString, const Class*> m_classes;
};

}  // namespace Tamrix
