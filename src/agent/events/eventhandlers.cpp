#include <QCoreApplication>

#include "agent/core/handlers.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/events/eventfactory.h"
#include "agent/events/eventnames.h"
#include "agent/events/eventwatch.h"
#include "agent/input/stepqueue.h"

namespace Tamrix::Agent {

namespace {

void handleInstall(EventWatch* watch, const Wire::EventHandler& request,
                   const ResponderPtr& responder) {
    const QSet<int> types = eventTypesOf(request.event);
    if (types.isEmpty()) {
        responder->fail(FailureKind::BadArgument,
                        QStringLiteral("unknown event '%1'").arg(request.event));
        return;
    }
    QObject* object = nullptr;
    if (request.handle != 0) {
        const Element element = Session::self()->findOrFail(request.handle, responder);
        if (element.isNull())
            return;
        if (element.isItem()) {
            responder->fail(FailureKind::Refused, QStringLiteral("%1 has no events of its own")
                                                      .arg(Session::self()->describe(element)));
            return;
        }
        object = element.object;
    }
    watch->install(request, object, types);
    responder->reply();
}

void handleUninstall(EventWatch* watch, const Wire::EventHandler& request,
                     const ResponderPtr& responder) {
    if (watch->uninstall(request))
        responder->reply();
    else
        responder->fail(FailureKind::NotFound,
                        QStringLiteral("there is no such handler for '%1'").arg(request.event));
}

void handleSendEvent(const Wire::SendEvent& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    if (element.isItem()) {
        responder->fail(FailureKind::Refused, QStringLiteral("%1 takes no events of its own")
                                                  .arg(Session::self()->describe(element)));
        return;
    }
    QString error;
    const QPoint origin = element.toolkit->globalBounds(element).topLeft();
    std::vector<std::unique_ptr<QEvent>> events =
        makeEvents(request.event, request.arguments, origin, &error);
    if (events.empty()) {
        responder->fail(FailureKind::BadArgument, error);
        return;
    }
    responder->reply();
    for (std::unique_ptr<QEvent>& event : events)
        QCoreApplication::postEvent(element.object, event.release());
    auto* const queue = StepQueue::create();
    // Runs behind what was posted.
    queue->call([] {});
    queue->start([responder] { responder->finish(); });
}

}  // namespace

void registerEventHandlers(Session* session) {
    using Wire::MessageType;
    auto* const watch = new EventWatch(session);
    session->setBodyHandler<Wire::EventHandler>(
        MessageType::InstallHandler,
        [watch](const Wire::EventHandler& request, const ResponderPtr& responder) {
            handleInstall(watch, request, responder);
        });
    session->setBodyHandler<Wire::EventHandler>(
        MessageType::UninstallHandler,
        [watch](const Wire::EventHandler& request, const ResponderPtr& responder) {
            handleUninstall(watch, request, responder);
        });
    session->setBodyHandler<Wire::SendEvent>(MessageType::SendEvent, handleSendEvent);
}

}  // namespace Tamrix::Agent
