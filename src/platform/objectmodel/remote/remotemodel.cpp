#include "platform/objectmodel/remote/remotemodel.h"

#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/namequery.h"
#include "platform/objectmodel/remote/remotelink.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

using Wire::encode;
using Wire::MessageType;

namespace {

/// The class that describes the application's global functions and events.
const QString& globalClassName() {
    static const QString s_name = QStringLiteral("Global");
    return s_name;
}

}  // namespace

RemoteModel::RemoteModel(std::shared_ptr<AgentConnection> connection)
    : m_link(std::make_shared<RemoteLink>(std::move(connection))) {}

RemoteModel::~RemoteModel() = default;

AgentConnection& RemoteModel::connection() const {
    return m_link->connection();
}

void RemoteModel::setRequestTimeout(int milliseconds) {
    m_link->setRequestTimeout(milliseconds);
}

int RemoteModel::requestTimeout() const {
    return m_link->requestTimeout();
}

void RemoteModel::setReadyTimeout(int milliseconds) {
    m_link->setReadyTimeout(milliseconds);
}

// Look-ups

Outcome<RemoteModel::Found> RemoteModel::lookUp(MessageType type, const QByteArray& body,
                                                int timeout, AgentConnection::Patience patience) {
    const auto result = m_link->connection().ask<Wire::LookUpResult>(
        type, body, timeout < 0 ? requestTimeout() : timeout, patience);
    if (!result)
        return fail(result.error());
    Found found;
    found.answer.object = m_link->object(result->object);
    found.answer.isReady = result->isReady;
    found.answer.obstacle = result->obstacle;
    found.misses = result->nearMisses;
    return found;
}

Outcome<LookUpAnswer> RemoteModel::lookUp(const ObjectName& name, Wire::Wanted wanted,
                                          bool wantNearMisses, int timeout,
                                          AgentConnection::Patience patience) {
    const Outcome<Wire::Query> query = makeQuery(name);
    if (!query)
        return fail(query.error());
    const Wire::LookUp request{0, *query, wanted, wantNearMisses};
    Outcome<Found> found = lookUp(MessageType::LookUp, encode(request), timeout, patience);
    if (!found)
        return fail(found.error());
    if (!found->answer.object)
        found->answer.missText = missText(name, found->misses);
    return found->answer;
}

Outcome<LookUpAnswer> RemoteModel::lookUp(SharedPtr<Object> object, Wire::Wanted wanted,
                                          int timeout) {
    const Outcome<quint64> handle = m_link->handleOf(object);
    if (!handle)
        return fail(handle.error());
    const Wire::LookUp request{*handle, {}, wanted, false};
    Outcome<Found> found = lookUp(MessageType::LookUp, encode(request), timeout);
    if (!found)
        return fail(found.error());
    if (!found->answer.object)
        found->answer.missText = QStringLiteral("The object is gone");
    return found->answer;
}

Outcome<LookUpAnswer> RemoteModel::expect(SharedPtr<Object> object, const ObjectName& name,
                                          const ObjectName& properties, bool wantNearMisses,
                                          int timeout) {
    const Outcome<quint64> handle = object ? m_link->handleOf(object) : Outcome<quint64>(0);
    const Outcome<Wire::Query> query = object ? Wire::Query() : makeQuery(name);
    const Outcome<Wire::Query> wanted = makeQuery(properties);
    if (!handle)
        return fail(handle.error());
    for (const auto* const each : {&query, &wanted}) {
        if (!*each)
            return fail(each->error());
    }
    const Wire::Expect request{*handle, *query, *wanted, wantNearMisses};
    Outcome<Found> found = lookUp(MessageType::Expect, encode(request), timeout);
    if (!found)
        return fail(found.error());
    LookUpAnswer& answer = found->answer;
    answer.lack = QStringLiteral("not as expected");
    answer.isReady = answer.object && found->misses.isEmpty();
    if (!answer.object)
        answer.missText = missText(name, found->misses);
    else if (!answer.isReady)
        answer.obstacle = differenceText(found->misses.first());
    return answer;
}

Outcome<LookUpAnswer> RemoteModel::findItem(SharedPtr<Object> view, const QString& text, int row,
                                            int column, bool wantReady, int timeout) {
    const Outcome<quint64> handle = m_link->handleOf(view);
    if (!handle)
        return fail(handle.error());
    const Wire::FindItem request{*handle, text, row, column, wantReady};
    Outcome<Found> found = lookUp(MessageType::FindItem, encode(request), timeout);
    if (!found) {
        // An item that is not there is no failure here, as with other look-ups.
        if (found.error().kind != FailureKind::NotFound)
            return fail(found.error());
        LookUpAnswer answer;
        answer.missText = found.error().text;
        return answer;
    }
    LookUpAnswer& answer = found->answer;
    if (!answer.object) {
        // The application tells there why it found none.
        if (!answer.obstacle.isEmpty())
            answer.missText = std::exchange(answer.obstacle, QString());
        else if (text.isNull())
            answer.missText = QStringLiteral("There is no item at row %1, column %2")
                                  .arg(QString::number(row), QString::number(column));
        else
            answer.missText = QStringLiteral("There is no item '%1'").arg(text);
    }
    return answer;
}

Outcome<SharedPtr<Object>> RemoteModel::objectById(int remoteId) {
    if (remoteId <= 0)
        return fail(FailureKind::BadArgument,
                    QStringLiteral("%1 is no object's number").arg(remoteId));
    const Wire::LookUp request{static_cast<quint64>(remoteId), {}, Wire::Wanted::Existence, false};
    const auto result = m_link->ask<Wire::LookUpResult>(MessageType::LookUp, encode(request));
    if (!result)
        return fail(result.error());
    if (result->object.handle == 0)
        return fail(FailureKind::Gone, QStringLiteral("The object %1 is gone").arg(remoteId));
    return m_link->object(result->object);
}

Outcome<SharedPtr<Object>> RemoteModel::findObject(const ObjectName& name) {
    // This one does not wait for objects, so it does not wait for a stopped application either.
    const Outcome<LookUpAnswer> answer =
        lookUp(name, Wire::Wanted::Existence, true, -1, AgentConnection::Patience::WhileItRuns);
    if (!answer)
        return fail(answer.error());
    if (!answer->object)
        return fail(FailureKind::NotFound, answer->missText);
    return answer->object;
}

Outcome<ObjectList> RemoteModel::topLevelObjects() {
    const auto infos = m_link->ask<Wire::ObjectInfoList>(MessageType::TopLevelObjects, {});
    if (!infos)
        return fail(infos.error());
    return m_link->objects(*infos);
}

// Classes and calls

Outcome<const Class*> RemoteModel::classByName(const QString& name) {
    return m_link->classByName(name);
}

Outcome<> RemoteModel::readGlobalClass(int timeout) {
    const Outcome<const Class*> global = m_link->classByName(globalClassName(), timeout);
    if (!global)
        return fail(global.error());
    return {};
}

Outcome<const Class*> RemoteModel::globalClass() {
    return classByName(globalClassName());
}

Outcome<SharedPtr<Object>> RemoteModel::invokeGlobal(const QString& method,
                                                     const ObjectList& arguments) {
    return m_link->invoke(0, method, arguments);
}

Outcome<SharedPtr<Object>> RemoteModel::construct(const Class* objectClass,
                                                  const ObjectList& arguments) {
    const Outcome<const Class*> global = globalClass();
    if (!global)
        return fail(global.error());
    if (!*global || (*global)->methodsByName(objectClass->name()).isEmpty()) {
        return fail(FailureKind::Refused,
                    QStringLiteral("The application can't make objects of class '%1'")
                        .arg(objectClass->name()));
    }
    return m_link->invoke(0, objectClass->name(), arguments);
}

Outcome<QVariant> RemoteModel::nativeRequest(const QString& name, const QVariantList& arguments) {
    const Outcome<QVariant> wireArguments = m_link->wireValue(arguments);
    if (!wireArguments)
        return wireArguments;
    const Wire::NativeRequest request{name, wireArguments->toList()};
    const auto answer = m_link->ask<Wire::Value>(MessageType::NativeRequest, encode(request));
    if (!answer)
        return fail(answer.error());
    return answer->value;
}

// Events

Outcome<> RemoteModel::handlerRequest(MessageType type, const SharedPtr<Object>& object,
                                      const QString& className, const QString& event,
                                      const QString& callback) {
    Wire::EventHandler handler{0, className, event, callback};
    if (object) {
        const Outcome<quint64> handle = m_link->handleOf(object);
        if (!handle)
            return fail(handle.error());
        handler.handle = *handle;
    }
    return m_link->tell(type, encode(handler));
}

Outcome<> RemoteModel::installEventHandler(SharedPtr<Object> object, const QString& className,
                                           const QString& event, const QString& callback) {
    return handlerRequest(MessageType::InstallHandler, object, className, event, callback);
}

Outcome<> RemoteModel::uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                             const QString& event, const QString& callback) {
    return handlerRequest(MessageType::UninstallHandler, object, className, event, callback);
}

Outcome<> RemoteModel::sendEvent(const Event* event, SharedPtr<Object> target,
                                 const ObjectList& parameters) {
    const Outcome<quint64> handle = m_link->handleOf(target);
    if (!handle)
        return fail(handle.error());
    const Outcome<QVariantList> arguments = m_link->wireValues(parameters);
    if (!arguments)
        return fail(arguments.error());
    return m_link->tell(MessageType::SendEvent,
                        encode(Wire::SendEvent{*handle, event->name(), *arguments}));
}

std::vector<std::pair<QString, SharedPtr<Object>>> RemoteModel::takeEvents() {
    std::vector<std::pair<QString, SharedPtr<Object>>> events;
    for (const Wire::EventFired& event : m_link->connection().takeEvents())
        events.emplace_back(event.callback, m_link->object(event.object));
    return events;
}

// What the runner does with the application

Outcome<QByteArray> RemoteModel::snapshot(SharedPtr<Object> object) {
    return snapshot(object, false);
}

Outcome<QByteArray> RemoteModel::snapshot(SharedPtr<Object> object, bool withImages) {
    Wire::Snapshot request{0, withImages};
    if (object) {
        const Outcome<quint64> handle = m_link->handleOf(object);
        if (!handle)
            return fail(handle.error());
        request.handle = *handle;
    }
    const auto answer = m_link->ask<Wire::Value>(MessageType::Snapshot, encode(request));
    if (!answer)
        return fail(answer.error());
    return answer->value.toByteArray();
}

Outcome<Wire::ObjectListing> RemoteModel::listing() {
    return m_link->ask<Wire::ObjectListing>(MessageType::ListObjects, QByteArray());
}

Outcome<SharedPtr<Object>> RemoteModel::globalBounds(SharedPtr<Object> object) {
    const Outcome<quint64> handle = m_link->handleOf(object);
    if (!handle)
        return fail(handle.error());
    const auto answer =
        m_link->ask<Wire::Value>(MessageType::GlobalBounds, encode(Wire::ObjectHandle{*handle}));
    if (!answer)
        return fail(answer.error());
    return SharedPtr<Object>(new ValueObject(
        answer->value.toRect(), ValueObject::valueClass(QStringLiteral("ScreenRectangle"))));
}

Outcome<> RemoteModel::mouseEvent(SharedPtr<Object> target, Wire::MouseEvent event) {
    event.handle = 0;
    if (target) {
        const Outcome<quint64> handle = m_link->handleOf(target);
        if (!handle)
            return fail(handle.error());
        event.handle = *handle;
    }
    return m_link->tell(MessageType::MouseEvent, encode(event));
}

Outcome<> RemoteModel::keyEvent(const QString& key, bool press) {
    return m_link->tell(MessageType::KeyEvent, encode(Wire::KeyEvent{key, press}));
}

Outcome<> RemoteModel::highlight(SharedPtr<Object> object, int milliseconds) {
    const Outcome<quint64> handle = m_link->handleOf(object);
    if (!handle)
        return fail(handle.error());
    return m_link->tell(MessageType::Highlight, encode(Wire::Highlight{*handle, milliseconds}));
}

Outcome<> RemoteModel::stopHighlight() {
    return m_link->tell(MessageType::StopHighlight, {});
}

Outcome<QString> RemoteModel::environmentVariable(const QString& name) {
    const auto answer =
        m_link->ask<Wire::Text>(MessageType::EnvironmentVariable, encode(Wire::Text{name}));
    if (!answer)
        return fail(answer.error());
    return answer->text;
}

Outcome<> RemoteModel::quit() {
    return m_link->tell(MessageType::Quit, {});
}

}  // namespace Tamrix
