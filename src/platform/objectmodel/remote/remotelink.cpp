#include "platform/objectmodel/remote/remotelink.h"

#include <limits>

#include "platform/objectmodel/nearmisstext.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/classregistry.h"
#include "platform/objectmodel/remote/namequery.h"
#include "platform/objectmodel/remote/remoteobject.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

using Wire::MessageType;

// What goes out must not be refused for its depth on the other side.
static_assert(maximalValueDepth == Wire::maximalDepth);

RemoteLink::RemoteLink(std::shared_ptr<AgentConnection> connection)
    : m_connection(std::move(connection)) {}

// Classes

Outcome<const Class*> RemoteLink::classByName(const QString& name, int timeout) {
    const auto known = m_classes.constFind(name);
    if (known != m_classes.cend())
        return *known;
    const auto info =
        m_connection->ask<Wire::ClassInfo>(MessageType::DescribeClass, encode(Wire::Text{name}),
                                           timeout < 0 ? m_requestTimeout : timeout);
    if (!info)
        return fail(info.error());
    const Class* const described = info->name.isEmpty() ? nullptr : internClass(*info);
    // A plug-in that the application loads later may bring a class that is unknown now.
    if (described)
        m_classes.insert(name, described);
    return described;
}

// Values that come back

SharedPtr<Object> RemoteLink::object(const Wire::ObjectInfo& info) {
    return info.handle == 0 ? SharedPtr<Object>()
                            : SharedPtr<Object>(new RemoteObject(shared_from_this(), info));
}

ObjectList RemoteLink::objects(const Wire::ObjectInfoList& infos) {
    ObjectList list;
    for (const Wire::ObjectInfo& info : infos) {
        if (SharedPtr<Object> each = object(info))
            list.push_back(each);
    }
    return list;
}

QVariant RemoteLink::localValue(const QVariant& wireValue) {
    if (wireValue.userType() == qMetaTypeId<Wire::ObjectInfo>()) {
        const SharedPtr<Object> found = object(wireValue.value<Wire::ObjectInfo>());
        return found ? QVariant::fromValue(found) : QVariant();
    }
    if (wireValue.userType() == QMetaType::QVariantList) {
        QVariantList list;
        for (const QVariant& each : wireValue.toList())
            list.append(localValue(each));
        return list;
    }
    if (wireValue.userType() == QMetaType::QVariantMap) {
        QVariantMap map = wireValue.toMap();
        for (QVariant& each : map)
            each = localValue(each);
        return map;
    }
    if (wireValue.userType() == QMetaType::LongLong) {
        // Most integers are what the scripts' own are.
        const qint64 number = wireValue.toLongLong();
        if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
            return static_cast<int>(number);
    }
    return wireValue;
}

SharedPtr<Object> RemoteLink::valueObject(const QVariant& wireValue) {
    if (wireValue.userType() != qMetaTypeId<Wire::ObjectInfo>())
        return {new ValueObject(localValue(wireValue))};
    const auto info = wireValue.value<Wire::ObjectInfo>();
    if (SharedPtr<Object> found = object(info))
        return found;
    // A property that could hold an object, and holds none.
    return {new Object(0, classByName(info.className).value_or(nullptr))};
}

// Requests

Outcome<> RemoteLink::tell(MessageType type, const QByteArray& body) {
    const Outcome<QByteArray> answer = m_connection->request(type, body, m_requestTimeout);
    if (!answer)
        return fail(answer.error());
    return {};
}

Outcome<SharedPtr<Object>> RemoteLink::askValue(MessageType type, const QByteArray& body) {
    const auto answer = ask<Wire::Value>(type, body);
    if (!answer)
        return fail(answer.error());
    return valueObject(answer->value);
}

// Values that go over

Outcome<quint64> RemoteLink::handleOf(const SharedPtr<Object>& object) const {
    const auto* const remote = dynamic_cast<const RemoteObject*>(object.get());
    if (!remote)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("This is no object of the application"));
    if (&remote->link() != this) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("The object %1 belongs to another application or to a "
                                   "connection that has ended")
                        .arg(remote->description()));
    }
    return remote->wireHandle();
}

Outcome<Wire::Target> RemoteLink::wireTarget(const Target& target) const {
    Wire::Target wireTarget;
    if (target.object) {
        const Outcome<quint64> handle = handleOf(target.object);
        if (!handle)
            return fail(handle.error());
        wireTarget.handle = *handle;
    } else if (target.name.isValid()) {
        const Outcome<Wire::Query> query = makeQuery(target.name);
        if (!query)
            return fail(query.error());
        wireTarget.query = *query;
    }
    wireTarget.isItem = target.item.has_value();
    wireTarget.item = target.item.value_or(Wire::ItemAddress());
    wireTarget.wanted = target.wanted;
    wireTarget.timeout = target.timeout;
    wireTarget.wantNearMisses = target.wantNearMisses;
    return wireTarget;
}

Outcome<QVariant> RemoteLink::wireValue(const QVariant& value) const {
    if (value.userType() == qMetaTypeId<SharedPtr<Object>>()) {
        const auto object = value.value<SharedPtr<Object>>();
        Wire::ObjectInfo info;
        if (object && !object->isNull()) {
            const Outcome<quint64> handle = handleOf(object);
            if (!handle)
                return fail(handle.error());
            info.handle = *handle;
        }
        return QVariant::fromValue(info);
    }
    if (value.userType() == QMetaType::QVariantList) {
        QVariantList list;
        for (const QVariant& each : value.toList()) {
            const Outcome<QVariant> converted = wireValue(each);
            if (!converted)
                return converted;
            list.append(*converted);
        }
        // Not as an element of a new list.
        return QVariant(list);
    }
    if (value.userType() == QMetaType::QVariantMap) {
        QVariantMap map = value.toMap();
        for (QVariant& each : map) {
            const Outcome<QVariant> converted = wireValue(each);
            if (!converted)
                return converted;
            each = *converted;
        }
        return QVariant(map);
    }
    return value;
}

Outcome<QVariantList> RemoteLink::wireValues(const ObjectList& arguments) const {
    QVariantList values;
    for (const SharedPtr<Object>& argument : arguments) {
        const Outcome<QVariant> value = wireValue(argumentValue(argument));
        if (!value)
            return fail(value.error());
        values.append(*value);
    }
    return values;
}

Outcome<RemoteLink::Targeted> RemoteLink::requestWithTarget(MessageType type,
                                                            const QByteArray& body,
                                                            const Target& target, int timeout) {
    const Outcome<Wire::Frame> answer =
        m_connection->answerTo(type, body, target.timeout + timeout);
    if (!answer)
        return fail(answer.error());
    Targeted targeted;
    targeted.answer.isReady = answer->type != MessageType::Missed;
    if (answer->type == MessageType::Reply)
        targeted.body = answer->body;
    Failure failure;
    if (answer->type == MessageType::Failure)
        targeted.body =
            fail(Wire::decode(answer->body, &failure) ? failure
                                                      : AgentConnection::unreadableAnswer(type));
    if (targeted.answer.isReady)
        return targeted;
    Wire::Missed missed;
    if (!Wire::decode(answer->body, &missed))
        return fail(AgentConnection::unreadableAnswer(type));
    targeted.answer.object = object(missed.object);
    targeted.answer.obstacle = missed.obstacle;
    if (!targeted.answer.object)
        targeted.answer.missText =
            missed.obstacle.isEmpty() ? missText(target.name, missed.nearMisses) : missed.obstacle;
    return targeted;
}

Outcome<SharedPtr<Object>> RemoteLink::invoke(quint64 handle, const QString& method,
                                              const ObjectList& arguments) {
    const Outcome<QVariantList> values = wireValues(arguments);
    if (!values)
        return fail(values.error());
    Wire::Invoke call;
    call.handle = handle;
    call.method = method;
    call.timeout = m_readyTimeout;
    call.arguments = *values;
    // The application first waits for its object, then has the usual time.
    const auto answer = m_connection->ask<Wire::Value>(MessageType::Invoke, encode(call),
                                                       m_readyTimeout + m_requestTimeout);
    if (!answer)
        return fail(answer.error());
    return valueObject(answer->value);
}

}  // namespace Tamrix
