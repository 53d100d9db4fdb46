#include "platform/objectmodel/remote/remotelink.h"

#include <limits>

#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/classregistry.h"
#include "platform/objectmodel/remote/remoteobject.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

using Wire::MessageType;

// What goes out must not be refused for its depth on the other side.
static_assert(maximalValueDepth == Wire::maximalDepth);

RemoteLink::RemoteLink(std::shared_ptr<AgentConnection> connection)
    : m_connection(std::move(connection)) {}

// Classes

const Class* RemoteLink::classByName(const QString& name, QString* error) {
    RequestError failure;
    const Class* const described = readClass(name, m_requestTimeout, &failure);
    if (!failure.text.isEmpty())
        *error = failure.text;
    return described;
}

const Class* RemoteLink::readClass(const QString& name, int timeout, RequestError* error) {
    const auto known = m_classes.constFind(name);
    if (known != m_classes.cend())
        return *known;
    Wire::ClassInfo info;
    if (!m_connection->request(MessageType::DescribeClass, encode(Wire::Text{name}), timeout, &info,
                               error))
        return nullptr;
    const Class* const described = info.name.isEmpty() ? nullptr : internClass(info);
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
    QString ignored;
    return {new Object(0, classByName(info.className, &ignored))};
}

SharedPtr<Object> RemoteLink::askValue(MessageType type, const QByteArray& body, QString* error) {
    Wire::Value answer;
    return ask(type, body, &answer, error) ? valueObject(answer.value) : SharedPtr<Object>();
}

// Values that go over

bool RemoteLink::handleOf(const SharedPtr<Object>& object, quint64* handle, QString* error) const {
    const auto* const remote = dynamic_cast<const RemoteObject*>(object.get());
    if (!remote || &remote->link() != this) {
        *error = remote ? QStringLiteral(
                              "The object %1 belongs to another application or to a "
                              "connection that has ended")
                              .arg(remote->description())
                        : QStringLiteral("This is no object of the application");
        return false;
    }
    *handle = remote->wireHandle();
    return true;
}

bool RemoteLink::wireValue(const QVariant& value, QVariant* result, QString* error) const {
    if (value.userType() == qMetaTypeId<SharedPtr<Object>>()) {
        const auto object = value.value<SharedPtr<Object>>();
        Wire::ObjectInfo info;
        if (object && !object->isNull() && !handleOf(object, &info.handle, error))
            return false;
        *result = QVariant::fromValue(info);
        return true;
    }
    if (value.userType() == QMetaType::QVariantList) {
        QVariantList list = value.toList();
        for (QVariant& each : list) {
            if (!wireValue(QVariant(each), &each, error))
                return false;
        }
        *result = list;
    } else if (value.userType() == QMetaType::QVariantMap) {
        QVariantMap map = value.toMap();
        for (QVariant& each : map) {
            if (!wireValue(QVariant(each), &each, error))
                return false;
        }
        *result = map;
    } else {
        *result = value;
    }
    return true;
}

bool RemoteLink::wireValues(const ObjectList& arguments, QVariantList* results,
                            QString* error) const {
    for (const SharedPtr<Object>& argument : arguments) {
        QVariant value;
        if (!wireValue(argumentValue(argument), &value, error))
            return false;
        results->append(value);
    }
    return true;
}

SharedPtr<Object> RemoteLink::invoke(quint64 handle, const QString& method,
                                     const ObjectList& arguments, QString* error) {
    Wire::Invoke call;
    call.handle = handle;
    call.method = method;
    call.timeout = m_readyTimeout;
    if (!wireValues(arguments, &call.arguments, error))
        return {};
    Wire::Value answer;
    RequestError failure;
    // The application first waits for its object, then has the usual time.
    if (m_connection->request(MessageType::Invoke, encode(call), m_readyTimeout + m_requestTimeout,
                              &answer, &failure))
        return valueObject(answer.value);
    *error = failure.text;
    Inspector::self()->setLastErrorIsLookup(failure.isRefused(FailureKind::NotReady) ||
                                            failure.isRefused(FailureKind::NotFound));
    return {};
}

}  // namespace Tamrix
