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
/// share the connection.
///
/// Operations with `RequestError*` are for the runner, which has to know why something failed; they
/// give false on failure. A time-out of -1 is requestTimeout().
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
    bool lookUp(const ObjectName& name, Wire::Wanted wanted, bool wantNearMisses,
                LookUpAnswer* answer, RequestError* error, int timeout = -1,
                AgentConnection::Patience patience = AgentConnection::Patience::UntilTimeout);
    bool lookUp(SharedPtr<Object> object, Wire::Wanted wanted, LookUpAnswer* answer,
                RequestError* error, int timeout = -1);
    /// Ready means that the object, or without one that of the name, has the properties; the
    /// obstacle is what it has otherwise.
    bool expect(SharedPtr<Object> object, const ObjectName& name, const ObjectName& properties,
                bool wantNearMisses, LookUpAnswer* answer, RequestError* error, int timeout = -1);
    /// An item of a view; see Wire::FindItem.
    bool findItem(SharedPtr<Object> view, const QString& text, int row, int column, bool wantReady,
                  LookUpAnswer* answer, RequestError* error, int timeout = -1);
    /// The object with this RemoteObjectBase::remoteId(), null when it is gone.
    SharedPtr<Object> objectById(int remoteId, QString* error);

    /// Gets the class that describes the application's global functions, which scripts need first.
    bool readGlobalClass(int timeout, RequestError* error);

    // What the runner does with the application. False, null or a null text on failure.
    /// A screen rectangle.
    SharedPtr<Object> globalBounds(SharedPtr<Object> object, QString* error);
    /// `event.handle` is set here from `target`; null means the screen.
    bool mouseEvent(SharedPtr<Object> target, Wire::MouseEvent event, QString* error);
    bool keyEvent(const QString& key, bool press, QString* error);
    bool highlight(SharedPtr<Object> object, int milliseconds, QString* error);
    bool stopHighlight(QString* error);
    QString environmentVariable(const QString& name, QString* error);
    /// Asks the application's windows to close.
    bool quit(QString* error);
    QByteArray snapshot(SharedPtr<Object> object, bool withImages, QString* error);
    /// All objects with their names; empty on failure.
    Wire::ObjectListing listing(QString* error);
    /// The events that came: callback and object.
    std::vector<std::pair<QString, SharedPtr<Object>>> takeEvents();

    // ObjectModel
    SharedPtr<Object> findObject(const ObjectName& name, QString* error) override;
    ObjectList topLevelObjects(QString* error) override;
    const Class* classByName(const QString& name) override;
    const Class* globalClass() override;
    SharedPtr<Object> invokeGlobal(const QString& method, const ObjectList& arguments,
                                   QString* error) override;
    /// Through the global function that has the class's name.
    SharedPtr<Object> construct(const Class* objectClass, const ObjectList& arguments,
                                QString* error) override;
    QVariant nativeRequest(const QString& name, const QVariantList& arguments,
                           QString* error) override;
    bool installEventHandler(SharedPtr<Object> object, const QString& className,
                             const QString& event, const QString& callback,
                             QString* error) override;
    bool uninstallEventHandler(SharedPtr<Object> object, const QString& className,
                               const QString& event, const QString& callback,
                               QString* error) override;
    bool sendEvent(const Event* event, SharedPtr<Object> target, const ObjectList& parameters,
                   QString* error) override;
    QByteArray snapshot(SharedPtr<Object> object, QString* error) override;

private:
    /// A request whose answer is a LookUpResult.
    bool lookUp(Wire::MessageType type, const QByteArray& body, int timeout, LookUpAnswer* answer,
                QList<NearMiss>* misses, RequestError* error,
                AgentConnection::Patience patience = AgentConnection::Patience::UntilTimeout);
    bool handlerRequest(Wire::MessageType type, const SharedPtr<Object>& object,
                        const QString& className, const QString& event, const QString& callback,
                        QString* error);

    std::shared_ptr<RemoteLink> m_link;
};

}  // namespace Tamrix
