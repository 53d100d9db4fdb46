#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "platform/objectmodel/access.h"
#include "platform/objectmodel/objectname.h"
#include "platform/objectmodel/remote/agentconnection.h"
#include "wire/sharedbytes.h"

namespace Tamrix {

class RemoteLink;

/// An application over the connection to its agent. The model may end before its objects: they
/// share the connection.
class TAMRIX_EXPORT RemoteModel : public Access {
public:
    explicit RemoteModel(std::shared_ptr<AgentConnection> connection);
    ~RemoteModel() override;

    AgentConnection& connection() const;
    /// How long an answer may take, in milliseconds.
    void setRequestTimeout(int milliseconds);
    int requestTimeout() const;

    // Access
    ApplicationFacts facts() const override;
    bool isOpen() const override { return connection().isOpen(); }
    bool takeNews() override;
    int descriptor() const override { return connection().descriptor(); }
    void close(const QString& reason) override { connection().close(reason); }
    QString endReason() const override { return connection().errorText(); }
    bool owns(const SharedPtr<Object>& object) const override;
    /// Gets the class that describes the application's global functions.
    Outcome<> prepare(int timeout) override;
    Outcome<> ping(int timeout) override { return connection().ping(timeout); }
    Outcome<> settle(int timeout) override { return connection().settle(timeout); }
    void setTurnHook(const std::function<void()>& hook) override;
    void setIdleHook(const std::function<bool()>& hook) override;
    void setEndText(const std::function<QString()>& endText) override;
    void setStallTest(const std::function<bool()>& isStalled) override;
    void setProcessDescriptor(int descriptor) override;
    void setReadyTimeout(int milliseconds) override;
    void hurry(int milliseconds) override;
    Outcome<TargetAnswer> lookUp(const Target& target, int answerTimeout) override;
    Outcome<TargetAnswer> expect(const Target& target, const ObjectName& properties,
                                 int answerTimeout) override;
    Outcome<SharedPtr<Object>> objectById(int remoteId) override;
    Outcome<TargetAnswer> act(const QString& function, const Target& target,
                              const ObjectList& arguments, int timeout) override;
    Outcome<> mouseEvent(const Target& target, const Wire::MouseEvent& event) override;
    Outcome<> keyEvent(const QString& key, bool press) override;
    Outcome<> highlight(const Target& target, int milliseconds) override;
    Outcome<> stopHighlight() override;
    Outcome<> quit() override;
    Outcome<QByteArray> snapshotOf(const Target& target, bool withImages) override;
    Outcome<Wire::ObjectListing> listing() override;
    Outcome<Wire::ObjectOutline> outline() override;
    Outcome<SharedPtr<Object>> globalBounds(SharedPtr<Object> object) override;
    Outcome<QString> environmentVariable(const QString& name) override;
    std::vector<std::pair<QString, SharedPtr<Object>>> takeEvents() override;
    Outcome<> record(const Wire::Record& record) override;
    std::vector<Wire::Observation> takeObservations() override;
    Outcome<NameMatches> matchesOf(const ObjectName& name) override;
    Outcome<SharedPtr<Object>> objectAt(const QPoint& point) override;
    Outcome<QList<CheckedName>> namesOf(const SharedPtr<Object>& object) override;
    Outcome<QList<NearMiss>> nearMissesOf(const ObjectName& name) override;

    // ObjectModel
    Outcome<SharedPtr<Object>> findObject(const ObjectName& name) override;
    Outcome<ObjectList> topLevelObjects() override;
    Outcome<const Class*> classByName(const QString& name) override;
    Outcome<const Class*> globalClass() override;
    Outcome<SharedPtr<Object>> invokeGlobal(const QString& method,
                                            const ObjectList& arguments) override;
    /// Through the global function that has the class's name.
    Outcome<SharedPtr<Object>> construct(const Class* objectClass,
                                         const ObjectList& arguments) override;
    Outcome<QVariant> nativeRequest(const QString& name, const QVariantList& arguments) override;
    Outcome<> installEventHandler(SharedPtr<Object> object, const QString& className,
                                  const QString& event, const QString& callback) override;
    Outcome<> uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                                    const QString& event, const QString& callback) override;
    Outcome<> sendEvent(const Event* event, SharedPtr<Object> target,
                        const ObjectList& parameters) override;

private:
    /// What a LookUpResult told.
    struct Found {
        TargetAnswer answer;
        QList<NearMiss> misses;
    };
    /// A request whose answer is a LookUpResult.
    Outcome<Found> ask(Wire::MessageType type, const QByteArray& body, int timeout,
                       AgentConnection::Patience patience);
    Outcome<Found> lookUp(const Target& target, int timeout, AgentConnection::Patience patience);
    Outcome<TargetAnswer> findItem(const Target& target, int timeout);
    // Requests with a target that fail when it is missed.
    Outcome<QByteArray> askOf(const Target& target, Wire::MessageType type, const QByteArray& body);
    Outcome<> tellOf(const Target& target, Wire::MessageType type, const QByteArray& body);
    Outcome<> handlerRequest(Wire::MessageType type, const SharedPtr<Object>& object,
                             const QString& className, const QString& event,
                             const QString& callback);

    /// Puts the pixels that the application has written to the memory into its answer.
    Outcome<QVariant> withPixels(const QVariant& screenshot);

    std::shared_ptr<RemoteLink> m_link;
    /// Through which pictures of the desktop come.
    Wire::SharedBytes m_pixels;
};

}  // namespace Tamrix
