#include "platform/objectmodel/remote/remotemodel.h"

#include "platform/objectmodel/inspector.h"
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

/// A failure that was found before anything was sent.
RequestError refusedHere(const QString& text) {
    return {RequestError::Kind::Refused, FailureKind::BadArgument, text};
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

bool RemoteModel::lookUp(MessageType type, const QByteArray& body, int timeout,
                         LookUpAnswer* answer, QList<NearMiss>* misses, RequestError* error,
                         AgentConnection::Patience patience) {
    Wire::LookUpResult result;
    if (!m_link->connection().request(type, body, timeout < 0 ? requestTimeout() : timeout, &result,
                                      error, patience))
        return false;
    answer->object = m_link->object(result.object);
    answer->isReady = result.isReady;
    answer->obstacle = result.obstacle;
    *misses = result.nearMisses;
    return true;
}

bool RemoteModel::lookUp(const ObjectName& name, Wire::Wanted wanted, bool wantNearMisses,
                         LookUpAnswer* answer, RequestError* error, int timeout,
                         AgentConnection::Patience patience) {
    *answer = {};
    Wire::LookUp request;
    request.wanted = wanted;
    request.wantNearMisses = wantNearMisses;
    QString fault;
    if (!makeQuery(name, &request.query, &fault)) {
        *error = refusedHere(fault);
        return false;
    }
    QList<NearMiss> misses;
    if (!lookUp(MessageType::LookUp, encode(request), timeout, answer, &misses, error, patience))
        return false;
    if (!answer->object)
        answer->missText = missText(name, misses);
    return true;
}

bool RemoteModel::lookUp(SharedPtr<Object> object, Wire::Wanted wanted, LookUpAnswer* answer,
                         RequestError* error, int timeout) {
    *answer = {};
    Wire::LookUp request;
    request.wanted = wanted;
    QString fault;
    if (!m_link->handleOf(object, &request.handle, &fault)) {
        *error = refusedHere(fault);
        return false;
    }
    QList<NearMiss> misses;
    if (!lookUp(MessageType::LookUp, encode(request), timeout, answer, &misses, error))
        return false;
    if (!answer->object)
        answer->missText = QStringLiteral("The object is gone");
    return true;
}

bool RemoteModel::expect(SharedPtr<Object> object, const ObjectName& name,
                         const ObjectName& properties, bool wantNearMisses, LookUpAnswer* answer,
                         RequestError* error, int timeout) {
    *answer = {};
    Wire::Expect request;
    request.wantNearMisses = wantNearMisses;
    QString fault;
    const bool isNamed = !object;
    if (!(isNamed ? makeQuery(name, &request.query, &fault)
                  : m_link->handleOf(object, &request.handle, &fault)) ||
        !makeQuery(properties, &request.properties, &fault)) {
        *error = refusedHere(fault);
        return false;
    }
    QList<NearMiss> misses;
    if (!lookUp(MessageType::Expect, encode(request), timeout, answer, &misses, error))
        return false;
    answer->lack = QStringLiteral("not as expected");
    answer->isReady = answer->object && misses.isEmpty();
    if (answer->object && !misses.isEmpty())
        answer->obstacle = differenceText(misses.first());
    else if (!answer->object)
        answer->missText = missText(name, misses);
    return true;
}

bool RemoteModel::findItem(SharedPtr<Object> view, const QString& text, int row, int column,
                           bool wantReady, LookUpAnswer* answer, RequestError* error, int timeout) {
    *answer = {};
    Wire::FindItem request;
    request.text = text;
    request.row = row;
    request.column = column;
    request.wantReady = wantReady;
    QString fault;
    if (!m_link->handleOf(view, &request.handle, &fault)) {
        *error = refusedHere(fault);
        return false;
    }
    QList<NearMiss> misses;
    const bool isAnswered =
        lookUp(MessageType::FindItem, encode(request), timeout, answer, &misses, error);
    // An item that is not there is no failure here, as with other look-ups.
    if (!isAnswered && error->isRefused(FailureKind::NotFound)) {
        answer->missText = error->text;
        return true;
    }
    if (isAnswered && !answer->object) {
        // The application tells there why it found none.
        if (!answer->obstacle.isEmpty())
            answer->missText = std::exchange(answer->obstacle, QString());
        else if (text.isNull())
            answer->missText = QStringLiteral("There is no item at row %1, column %2")
                                   .arg(QString::number(row), QString::number(column));
        else
            answer->missText = QStringLiteral("There is no item '%1'").arg(text);
    }
    return isAnswered;
}

SharedPtr<Object> RemoteModel::objectById(int remoteId, QString* error) {
    Wire::LookUp request;
    request.handle = static_cast<quint64>(remoteId);
    Wire::LookUpResult result;
    if (remoteId <= 0)
        *error = QStringLiteral("%1 is no object's number").arg(remoteId);
    else if (m_link->ask(MessageType::LookUp, encode(request), &result, error) &&
             result.object.handle == 0)
        *error = QStringLiteral("The object %1 is gone").arg(remoteId);
    return m_link->object(result.object);
}

SharedPtr<Object> RemoteModel::findObject(const ObjectName& name, QString* error) {
    LookUpAnswer answer;
    RequestError failure;
    // This one does not wait for objects, so it does not wait for a stopped application either.
    if (!lookUp(name, Wire::Wanted::Existence, true, &answer, &failure, -1,
                AgentConnection::Patience::WhileItRuns))
        *error = failure.text;
    else if (!answer.object)
        *error = answer.missText;
    return answer.object;
}

ObjectList RemoteModel::topLevelObjects(QString* error) {
    Wire::ObjectInfoList infos;
    m_link->ask(MessageType::TopLevelObjects, {}, &infos, error);
    return m_link->objects(infos);
}

// Classes and calls

const Class* RemoteModel::classByName(const QString& name) {
    QString error;
    const Class* const known = m_link->classByName(name, &error);
    if (!error.isEmpty())
        Inspector::self()->setLastError(error);
    return known;
}

bool RemoteModel::readGlobalClass(int timeout, RequestError* error) {
    return m_link->readClass(globalClassName(), timeout, error) || error->text.isEmpty();
}

const Class* RemoteModel::globalClass() {
    return classByName(globalClassName());
}

SharedPtr<Object> RemoteModel::invokeGlobal(const QString& method, const ObjectList& arguments,
                                            QString* error) {
    return m_link->invoke(0, method, arguments, error);
}

SharedPtr<Object> RemoteModel::construct(const Class* objectClass, const ObjectList& arguments,
                                         QString* error) {
    const Class* const global = m_link->classByName(globalClassName(), error);
    if (!global)
        return {};
    if (global->methodsByName(objectClass->name()).isEmpty()) {
        *error = QStringLiteral("The application can't make objects of class '%1'")
                     .arg(objectClass->name());
        return {};
    }
    return m_link->invoke(0, objectClass->name(), arguments, error);
}

QVariant RemoteModel::nativeRequest(const QString& name, const QVariantList& arguments,
                                    QString* error) {
    Wire::NativeRequest request;
    request.name = name;
    QVariant wireArguments;
    if (!m_link->wireValue(arguments, &wireArguments, error))
        return {};
    request.arguments = wireArguments.toList();
    Wire::Value answer;
    m_link->ask(MessageType::NativeRequest, encode(request), &answer, error);
    return answer.value;
}

// Events

bool RemoteModel::handlerRequest(MessageType type, const SharedPtr<Object>& object,
                                 const QString& className, const QString& event,
                                 const QString& callback, QString* error) {
    Wire::EventHandler handler;
    if (object && !m_link->handleOf(object, &handler.handle, error))
        return false;
    handler.className = className;
    handler.event = event;
    handler.callback = callback;
    return m_link->tell(type, encode(handler), error);
}

bool RemoteModel::installEventHandler(SharedPtr<Object> object, const QString& className,
                                      const QString& event, const QString& callback,
                                      QString* error) {
    return handlerRequest(MessageType::InstallHandler, object, className, event, callback, error);
}

bool RemoteModel::uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                        const QString& event, const QString& callback,
                                        QString* error) {
    return handlerRequest(MessageType::UninstallHandler, object, className, event, callback, error);
}

bool RemoteModel::sendEvent(const Event* event, SharedPtr<Object> target,
                            const ObjectList& parameters, QString* error) {
    Wire::SendEvent request;
    request.event = event->name();
    return m_link->handleOf(target, &request.handle, error) &&
           m_link->wireValues(parameters, &request.arguments, error) &&
           m_link->tell(MessageType::SendEvent, encode(request), error);
}

std::vector<std::pair<QString, SharedPtr<Object>>> RemoteModel::takeEvents() {
    std::vector<std::pair<QString, SharedPtr<Object>>> events;
    for (const Wire::EventFired& event : m_link->connection().takeEvents())
        events.emplace_back(event.callback, m_link->object(event.object));
    return events;
}

// What the runner does with the application

QByteArray RemoteModel::snapshot(SharedPtr<Object> object, QString* error) {
    return snapshot(object, false, error);
}

QByteArray RemoteModel::snapshot(SharedPtr<Object> object, bool withImages, QString* error) {
    Wire::Snapshot request;
    request.withImages = withImages;
    if (object && !m_link->handleOf(object, &request.handle, error))
        return {};
    Wire::Value answer;
    m_link->ask(MessageType::Snapshot, encode(request), &answer, error);
    return answer.value.toByteArray();
}

Wire::ObjectListing RemoteModel::listing(QString* error) {
    Wire::ObjectListing listing;
    m_link->ask(MessageType::ListObjects, QByteArray(), &listing, error);
    return listing;
}

SharedPtr<Object> RemoteModel::globalBounds(SharedPtr<Object> object, QString* error) {
    Wire::ObjectHandle request;
    Wire::Value answer;
    if (!m_link->handleOf(object, &request.handle, error) ||
        !m_link->ask(MessageType::GlobalBounds, encode(request), &answer, error))
        return {};
    return {new ValueObject(answer.value.toRect(),
                            ValueObject::valueClass(QStringLiteral("ScreenRectangle")))};
}

bool RemoteModel::mouseEvent(SharedPtr<Object> target, Wire::MouseEvent event, QString* error) {
    event.handle = 0;
    return (!target || m_link->handleOf(target, &event.handle, error)) &&
           m_link->tell(MessageType::MouseEvent, encode(event), error);
}

bool RemoteModel::keyEvent(const QString& key, bool press, QString* error) {
    return m_link->tell(MessageType::KeyEvent, encode(Wire::KeyEvent{key, press}), error);
}

bool RemoteModel::highlight(SharedPtr<Object> object, int milliseconds, QString* error) {
    Wire::Highlight request;
    request.milliseconds = milliseconds;
    return m_link->handleOf(object, &request.handle, error) &&
           m_link->tell(MessageType::Highlight, encode(request), error);
}

bool RemoteModel::stopHighlight(QString* error) {
    return m_link->tell(MessageType::StopHighlight, {}, error);
}

QString RemoteModel::environmentVariable(const QString& name, QString* error) {
    Wire::Text answer;
    m_link->ask(MessageType::EnvironmentVariable, encode(Wire::Text{name}), &answer, error);
    return answer.text;
}

bool RemoteModel::quit(QString* error) {
    return m_link->tell(MessageType::Quit, {}, error);
}

}  // namespace Tamrix
