#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "base/export.h"
#include "platform/objectmodel/objectmodel.h"
#include "platform/objectmodel/objectname.h"
#include "platform/objectmodel/remote/agentconnection.h"

namespace Tamrix {

class RemoteLink;

/// What a look-up gave.
struct LookUpAnswer {
    /// Null when nothing matches.
    SharedPtr<Object> object;
    /// Meaningful when readiness was asked for.
    bool isReady = false;
    /// What is missing for being ready: "it is not visible".
    QString obstacle;
    /// What the object is as long as it isn't what was wanted.
    QString lack = QStringLiteral("not ready");
    /// Why nothing matches, with the nearest misses when they were asked for.
    QString missText;
};

/// The objects of an application over a connection. The model may end before its objects: they
/// share the connection. A time-out of -1 is requestTimeout().
class TAMRIX_EXPORT RemoteModel : public ObjectModel {
public:
    explicit RemoteModel(std::shared_ptr<AgentConnection> connection);
    ~RemoteModel() override;

    AgentConnection& connection() const;
    /// How long an answer may take, in milliseconds.
    void setRequestTimeout(int milliseconds);
    int requestTimeout() const;
    /// How long calls wait in the application for their object to be ready.
    void setReadyTimeout(int milliseconds);

    // Look-ups, once, without waiting. Nothing that matches is no failure.
    Outcome<LookUpAnswer> lookUp(
        const ObjectName& name, Wire::Wanted wanted, bool wantNearMisses, int timeout = -1,
        AgentConnection::Patience patience = AgentConnection::Patience::UntilTimeout);
    Outcome<LookUpAnswer> lookUp(SharedPtr<Object> object, Wire::Wanted wanted, int timeout = -1);
    /// Ready means that the object, or without one that of the name, has the properties; the
    /// obstacle is what it has otherwise.
    Outcome<LookUpAnswer> expect(SharedPtr<Object> object, const ObjectName& name,
                                 const ObjectName& properties, bool wantNearMisses,
                                 int timeout = -1);
    /// An item of a view; see Wire::FindItem.
    Outcome<LookUpAnswer> findItem(SharedPtr<Object> view, const QString& text, int row, int column,
                                   bool wantReady, int timeout = -1);
    /// The object with this RemoteObjectBase::remoteId().
    Outcome<SharedPtr<Object>> objectById(int remoteId);

    /// Gets the class that describes the application's global functions, which scripts need first.
    Outcome<> readGlobalClass(int timeout);

    // What the runner does with the application.
    /// A screen rectangle.
    Outcome<SharedPtr<Object>> globalBounds(SharedPtr<Object> object);
    /// `event.handle` is set here from `target`; null means the screen.
    Outcome<> mouseEvent(SharedPtr<Object> target, Wire::MouseEvent event);
    Outcome<> keyEvent(const QString& key, bool press);
    Outcome<> highlight(SharedPtr<Object> object, int milliseconds);
    Outcome<> stopHighlight();
    Outcome<QString> environmentVariable(const QString& name);
    /// Asks the application's windows to close.
    Outcome<> quit();
    Outcome<QByteArray> snapshot(SharedPtr<Object> object, bool withImages);
    /// All objects with their names.
    Outcome<Wire::ObjectListing> listing();
    /// The events that came: callback and object.
    std::vector<std::pair<QString, SharedPtr<Object>>> takeEvents();

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
    Outcome<QByteArray> snapshot(SharedPtr<Object> object) override;

private:
    /// What a LookUpResult told.
    struct Found {
        LookUpAnswer answer;
        QList<NearMiss> misses;
    };
    /// A request whose answer is a LookUpResult.
    Outcome<Found> lookUp(
        Wire::MessageType type, const QByteArray& body, int timeout,
        AgentConnection::Patience patience = AgentConnection::Patience::UntilTimeout);
    Outcome<> handlerRequest(Wire::MessageType type, const SharedPtr<Object>& object,
                             const QString& className, const QString& event,
                             const QString& callback);

    std::shared_ptr<RemoteLink> m_link;
};

}  // namespace Tamrix
