#pragma once

#include <QObject>
#include <QVector>
#include <functional>
#include <memory>

#include "agent/core/element.h"
#include "base/export.h"
#include "wire/framechannel.h"
#include "wire/messages.h"
#include "wire/observations.h"

namespace Tamrix::Agent {

class Toolkit;
struct TypeTraits;

/// The one answer to a request, and the end of its work. Shared by whoever works on the request;
/// the session takes the next request when finish() was called, or when the last copy is gone: a
/// request that was not answered by then fails with FailureKind::Failed.
class TAMRIX_EXPORT Responder {
public:
    virtual ~Responder();

    virtual void reply(const QByteArray& body = QByteArray()) = 0;
    virtual void fail(FailureKind kind, const QString& text) = 0;
    /// Nothing was done, since the request's target was not there or not as wanted.
    virtual void miss(const Wire::Missed& missed) = 0;
    /// The request's target has gone before anything was done with it. Who knows the target by a
    /// name looks for it again; else the request fails with this text, and is finished.
    virtual void lose(const QString& text);
    /// Lets the session go on with the next request. Work that was answered may go on before this
    /// call: input is injected between answer and end.
    virtual void finish() = 0;
    /// False when the runner went away: nobody waits for the answer.
    virtual bool isWanted() const = 0;

    template <typename Body>
    void replyBody(const Body& body) {
        reply(Wire::encode(body));
    }
};

using ResponderPtr = std::shared_ptr<Responder>;

/// The agent's side of the connection: takes requests one at a time, in order, from queued calls of
/// the event loop, and knows all objects. One for each process. GUI thread only.
class TAMRIX_EXPORT Session : public QObject {
public:
    /// Works on one request: answers now or later.
    using Handler = std::function<void(const QByteArray& body, const ResponderPtr& responder)>;

    /// The running session, null when there is none.
    static Session* self();

    /// Registers what answers requests of a type; the later call wins. A handler is called from the
    /// event loop with nothing of the session on the stack; nested event loops of the application
    /// call the next handler only when the request before is finished.
    virtual void setHandler(Wire::MessageType type, const Handler& handler) = 0;
    /// The same with the body decoded; a malformed one fails with BadRequest.
    template <typename Body>
    void setBodyHandler(Wire::MessageType type,
                        std::function<void(const Body&, const ResponderPtr&)> handler) {
        setHandler(type, [handler](const QByteArray& bytes, const ResponderPtr& responder) {
            Body body;
            if (Wire::decode(bytes, &body))
                handler(body, responder);
            else
                responder->fail(FailureKind::Failed,
                                QStringLiteral("the request's body can't be read"));
        });
    }
    /// Tells the runner that an event happened.
    virtual void sendEvent(const Wire::EventFired& event) = 0;
    /// Tells the runner what a person did.
    virtual void sendObservation(const Wire::Observation& observation) = 0;

    // Objects.
    virtual void addToolkit(std::unique_ptr<Toolkit> toolkit) = 0;
    /// The element of an object, of the toolkit that knows it.
    virtual Element element(QObject* object) const = 0;
    /// Every top-level element of all toolkits, visible or not: shown ones in the order in which
    /// they were first shown, then those that never were.
    virtual QVector<Element> topLevels() const = 0;
    /// What any of the toolkits knows of a type.
    virtual TypeTraits traitsOf(const QString& typeName) const = 0;
    /// The element's handle, made on first use; the same for the same element ever after.
    virtual quint64 handle(const Element& element) = 0;
    /// Handle, type and name, as they travel; handle 0 for a null element.
    virtual Wire::ObjectInfo info(const Element& element) = 0;
    /// The element of a handle; a failure of kind Gone when it does not exist any more.
    virtual Outcome<Element> find(quint64 handle) = 0;
    /// As above, and fails the request when it is gone.
    Element findOrFail(quint64 handle, const ResponderPtr& responder);
    /// A name for people in messages: type, then text or name in quotes.
    virtual QString describe(const Element& element) const = 0;
};

}  // namespace Tamrix::Agent
