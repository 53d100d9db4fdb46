#include "platform/objectmodel/remote/remotemodel.h"

#include <QImage>
#include <algorithm>

#include "platform/objectmodel/nearmisstext.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/remote/namequery.h"
#include "platform/objectmodel/remote/remotelink.h"
#include "platform/objectmodel/remote/remoteobject.h"
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

// The connection

ApplicationFacts RemoteModel::facts() const {
    const Wire::Hello& hello = connection().hello();
    return {hello.pid,      hello.program, hello.arguments, QStringLiteral("Qt ") + hello.qtVersion,
            hello.platform, hello.osName};
}

bool RemoteModel::takeNews() {
    return connection().pump() == AgentConnection::State::Open;
}

bool RemoteModel::owns(const SharedPtr<Object>& object) const {
    const auto* const remote = dynamic_cast<const RemoteObject*>(object.get());
    return remote && &remote->link().connection() == &connection();
}

void RemoteModel::setTurnHook(const std::function<void()>& hook) {
    connection().setTurnHook(hook);
}

void RemoteModel::setIdleHook(const std::function<bool()>& hook) {
    connection().setIdleHook(hook);
}

void RemoteModel::setEndText(const std::function<QString()>& endText) {
    connection().setEndText(endText);
}

void RemoteModel::setStallTest(const std::function<bool()>& isStalled) {
    connection().setStallTest(isStalled);
}

void RemoteModel::setProcessDescriptor(int descriptor) {
    connection().setProcessDescriptor(descriptor);
}

void RemoteModel::setReadyTimeout(int milliseconds) {
    m_link->setReadyTimeout(milliseconds);
}

void RemoteModel::hurry(int milliseconds) {
    connection().setSyncTimeout(milliseconds);
    setRequestTimeout(milliseconds);
}

// Look-ups

Outcome<RemoteModel::Found> RemoteModel::ask(MessageType type, const QByteArray& body, int timeout,
                                             AgentConnection::Patience patience) {
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

Outcome<RemoteModel::Found> RemoteModel::lookUp(const Target& target, int timeout,
                                                AgentConnection::Patience patience) {
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    if (!wireTarget)
        return fail(wireTarget.error());
    const Wire::LookUp request{wireTarget->handle, wireTarget->query, target.wanted,
                               target.wantNearMisses};
    Outcome<Found> found = ask(MessageType::LookUp, encode(request), timeout, patience);
    if (found && !found->answer.object) {
        found->answer.missText = target.object ? QStringLiteral("The object is gone")
                                               : missText(target.name, found->misses);
    }
    return found;
}

Outcome<TargetAnswer> RemoteModel::lookUp(const Target& target, int answerTimeout) {
    if (target.item)
        return findItem(target, answerTimeout);
    const Outcome<Found> found =
        lookUp(target, answerTimeout, AgentConnection::Patience::UntilTimeout);
    if (!found)
        return fail(found.error());
    return found->answer;
}

Outcome<TargetAnswer> RemoteModel::expect(const Target& target, const ObjectName& properties,
                                          int answerTimeout) {
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    const Outcome<Wire::Query> wanted = makeQuery(properties);
    if (!wireTarget)
        return fail(wireTarget.error());
    if (!wanted)
        return fail(wanted.error());
    const Wire::Expect request{wireTarget->handle, wireTarget->query, *wanted,
                               target.wantNearMisses};
    Outcome<Found> found = ask(MessageType::Expect, encode(request), answerTimeout,
                               AgentConnection::Patience::UntilTimeout);
    if (!found)
        return fail(found.error());
    TargetAnswer& answer = found->answer;
    answer.lack = QStringLiteral("not as expected");
    answer.isReady = answer.object && found->misses.isEmpty();
    if (!answer.object)
        answer.missText = missText(target.name, found->misses);
    else if (!answer.isReady)
        answer.obstacle = differenceText(found->misses.first());
    return answer;
}

Outcome<TargetAnswer> RemoteModel::findItem(const Target& target, int timeout) {
    const Outcome<quint64> handle = m_link->handleOf(target.object);
    if (!handle)
        return fail(handle.error());
    const Wire::ItemAddress& item = *target.item;
    const Wire::FindItem request{*handle, item, target.wanted != Wire::Wanted::Existence};
    Outcome<Found> found = ask(MessageType::FindItem, encode(request), timeout,
                               AgentConnection::Patience::UntilTimeout);
    if (!found) {
        // An item that is not there is no failure here, as with other look-ups.
        if (found.error().kind != FailureKind::NotFound)
            return fail(found.error());
        TargetAnswer answer;
        answer.missText = found.error().text;
        return answer;
    }
    TargetAnswer& answer = found->answer;
    if (!answer.object) {
        // The application tells there why it found none.
        if (!answer.obstacle.isEmpty())
            answer.missText = std::exchange(answer.obstacle, QString());
        else if (item.text.isNull())
            answer.missText = QStringLiteral("There is no item at row %1, column %2")
                                  .arg(QString::number(item.row), QString::number(item.column));
        else
            answer.missText = QStringLiteral("There is no item '%1'").arg(item.text);
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
    Target target = Target::ofName(name);
    target.wantNearMisses = true;
    const Outcome<Found> found = lookUp(target, -1, AgentConnection::Patience::WhileItRuns);
    if (!found)
        return fail(found.error());
    if (!found->answer.object)
        return fail(Failure{FailureKind::NotFound, found->answer.missText, found->misses});
    return found->answer.object;
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

Outcome<> RemoteModel::prepare(int timeout) {
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

Outcome<QVariant> RemoteModel::withPixels(const QVariant& screenshot) {
    constexpr int bytesPerPixel = 4;
    const QString pixelsKey = QStringLiteral("pixels");
    QVariantMap map = screenshot.toMap();
    // The application could not reach the memory.
    if (!map.contains(pixelsKey))
        return screenshot;
    const QVariantMap pixels = map.take(pixelsKey).toMap();
    const qint64 width = pixels.value(QStringLiteral("width")).toInt();
    const qint64 height = pixels.value(QStringLiteral("height")).toInt();
    constexpr qint64 mostBytes = 512LL << 20;
    const int format = pixels.value(QStringLiteral("format")).toInt();
    // The formats of 32 bits that need no table.
    const bool isGood = width > 0 && height > 0 && height <= mostBytes / bytesPerPixel / width &&
                        format >= QImage::Format_RGB32 &&
                        format <= QImage::Format_ARGB32_Premultiplied;
    const Wire::SharedBytes::Load load =
        isGood ? m_pixels.take(width * height * bytesPerPixel) : nullptr;
    if (!load)
        return fail(FailureKind::Failed,
                    QStringLiteral("the application's picture of %1x%2 pixels can't be read")
                        .arg(QString::number(width), QString::number(height)));
    // The image over the bytes where they are, which it keeps.
    using Load = Wire::SharedBytes::Load;
    const auto release = [](void* owner) { delete static_cast<Load*>(owner); };
    map.insert(QStringLiteral("image"),
               QImage(load.get(), static_cast<int>(width), static_cast<int>(height),
                      static_cast<int>(width) * bytesPerPixel, static_cast<QImage::Format>(format),
                      release, new Load(load)));
    return QVariant(map);
}

Outcome<QVariant> RemoteModel::nativeRequest(const QString& name, const QVariantList& arguments) {
    if (name == QLatin1String("desktopScreenshot") && arguments.isEmpty()) {
        const Wire::NativeRequest request{name, {m_pixels.path()}};
        const auto answer = m_link->ask<Wire::Value>(MessageType::NativeRequest, encode(request));
        if (!answer)
            return fail(answer.error());
        return withPixels(answer->value);
    }
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

Outcome<> RemoteModel::record(const Wire::Record& record) {
    return m_link->tell(MessageType::Record, encode(record));
}

std::vector<Wire::Observation> RemoteModel::takeObservations() {
    return m_link->connection().takeObservations();
}

// What the runner does with the application

Outcome<QByteArray> RemoteModel::askOf(const Target& target, MessageType type,
                                       const QByteArray& body) {
    const Outcome<RemoteLink::Targeted> targeted =
        m_link->requestWithTarget(type, body, target, requestTimeout());
    if (!targeted)
        return fail(targeted.error());
    if (!targeted->answer.isReady)
        return missFailure(targeted->answer);
    return targeted->body;
}

Outcome<> RemoteModel::tellOf(const Target& target, MessageType type, const QByteArray& body) {
    const Outcome<QByteArray> done = askOf(target, type, body);
    if (!done)
        return fail(done.error());
    return {};
}

Outcome<TargetAnswer> RemoteModel::act(const QString& function, const Target& target,
                                       const ObjectList& arguments, int timeout) {
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    const Outcome<QVariantList> values = m_link->wireValues(arguments);
    if (!wireTarget)
        return fail(wireTarget.error());
    if (!values)
        return fail(values.error());
    const Wire::Act request{*wireTarget, function, *values, timeout};
    const int functionTime = std::max(timeout - target.timeout, 0);
    Outcome<RemoteLink::Targeted> targeted = m_link->requestWithTarget(
        MessageType::Act, encode(request), target, functionTime + requestTimeout());
    if (!targeted)
        return fail(targeted.error());
    if (!targeted->answer.isReady)
        return targeted->answer;
    TargetAnswer& answer = targeted->answer;
    Wire::ActResult result;
    if (!targeted->body) {
        answer.result = fail(targeted->body.error());
    } else if (!Wire::decode(*targeted->body, &result)) {
        answer.result = fail(AgentConnection::unreadableAnswer(MessageType::Act));
    } else {
        answer.object = m_link->object(result.object);
        answer.result = m_link->valueObject(result.value);
    }
    return answer;
}

Outcome<QByteArray> RemoteModel::snapshotOf(const Target& target, bool withImages) {
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    if (!wireTarget)
        return fail(wireTarget.error());
    const Outcome<QByteArray> body =
        askOf(target, MessageType::Snapshot, encode(Wire::Snapshot{*wireTarget, withImages}));
    if (!body)
        return body;
    Wire::Value value;
    if (!Wire::decode(*body, &value))
        return fail(AgentConnection::unreadableAnswer(MessageType::Snapshot));
    return value.value.toByteArray();
}

Outcome<Wire::ObjectListing> RemoteModel::listing() {
    return m_link->ask<Wire::ObjectListing>(MessageType::ListObjects, QByteArray());
}

Outcome<Wire::ObjectOutline> RemoteModel::outline() {
    return m_link->ask<Wire::ObjectOutline>(MessageType::OutlineObjects, QByteArray());
}

Outcome<SharedPtr<Object>> RemoteModel::globalBounds(SharedPtr<Object> object) {
    // A place of the screen is where it is.
    if (isScreenRectangle(object))
        return object;
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

Outcome<> RemoteModel::mouseEvent(const Target& target, const Wire::MouseEvent& event) {
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    if (!wireTarget)
        return fail(wireTarget.error());
    Wire::MouseEvent sent = event;
    sent.target = *wireTarget;
    return tellOf(target, MessageType::MouseEvent, encode(sent));
}

Outcome<> RemoteModel::keyEvent(const QString& key, bool press) {
    return m_link->tell(MessageType::KeyEvent, encode(Wire::KeyEvent{key, press}));
}

Outcome<> RemoteModel::highlight(const Target& target, int milliseconds) {
    const QRect place = unwrapRemoteScreenRectangleAsQRect(target.object);
    if (place.isValid()) {
        return m_link->tell(MessageType::Highlight,
                            encode(Wire::Highlight{Wire::Target(), milliseconds, place}));
    }
    const Outcome<Wire::Target> wireTarget = m_link->wireTarget(target);
    if (!wireTarget)
        return fail(wireTarget.error());
    return tellOf(target, MessageType::Highlight,
                  encode(Wire::Highlight{*wireTarget, milliseconds}));
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

// Questions

Outcome<NameMatches> RemoteModel::matchesOf(const ObjectName& name) {
    const Outcome<Wire::Query> query = makeQuery(name);
    if (!query)
        return fail(query.error());
    const auto list = m_link->ask<Wire::MatchList>(MessageType::FindMatches, encode(*query));
    if (!list)
        return fail(list.error());
    NameMatches found;
    found.count = list->count;
    for (const Wire::Match& match : list->matches)
        found.matches.push_back({m_link->object(match.object), match.bounds, match.isVisible});
    return found;
}

Outcome<SharedPtr<Object>> RemoteModel::objectAt(const QPoint& point) {
    const auto info = m_link->ask<Wire::ObjectInfo>(
        MessageType::ObjectAt, encode(Wire::ScreenPoint{point.x(), point.y()}));
    if (!info)
        return fail(info.error());
    return m_link->object(*info);
}

Outcome<QList<CheckedName>> RemoteModel::namesOf(const SharedPtr<Object>& object) {
    const Outcome<quint64> handle = m_link->handleOf(object);
    if (!handle)
        return fail(handle.error());
    const auto proposed =
        m_link->ask<Wire::TextList>(MessageType::ListNames, encode(Wire::ObjectHandle{*handle}));
    if (!proposed)
        return fail(proposed.error());
    QList<CheckedName> names;
    QList<CheckedName> sharedNames;
    for (const QString& text : proposed->texts) {
        const ObjectName name(text);
        const Outcome<SharedPtr<Object>> found = findObject(name);
        const Outcome<NameMatches> matches = found ? matchesOf(name) : fail(found.error());
        // One that finds another object, or nothing, is no name of this one.
        if (!matches && matches.error().kind != FailureKind::NotFound)
            return fail(matches.error());
        if (matches && (*found)->handle() == object->handle())
            (matches->count == 1 ? names : sharedNames).append({text, matches->count});
    }
    return names + sharedNames;
}

Outcome<QList<NearMiss>> RemoteModel::nearMissesOf(const ObjectName& name) {
    Target target = Target::ofName(name);
    target.wantNearMisses = true;
    const Outcome<Found> found = lookUp(target, -1, AgentConnection::Patience::UntilTimeout);
    if (!found)
        return fail(found.error());
    return found->misses;
}

}  // namespace Tamrix
