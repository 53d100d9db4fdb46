#include "agent/core/handlers.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "agent/core/vocabulary.h"

namespace Tamrix::Agent {

namespace {

void readProperty(const Wire::PropertyAccess& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    bool isKnown = false;
    Wire::Value value;
    value.value = propertyValue(element, request.name, &isKnown);
    if (isKnown)
        responder->replyBody(value);
    else
        responder->fail(Wire::FailureCode::NoSuchProperty,
                        QStringLiteral("%1 has no property '%2'")
                            .arg(Session::self()->describe(element), request.name));
}

void readProperties(const Wire::ObjectHandle& request, const ResponderPtr& responder) {
    const Element element = Session::self()->findOrFail(request.handle, responder);
    if (element.isNull())
        return;
    QVariantMap map;
    for (const QString& name : allPropertyNames(element)) {
        bool isKnown = false;
        const QVariant value = propertyValue(element, name, &isKnown);
        if (isKnown)
            map.insert(name, value);
    }
    Wire::Value value;
    value.value = map;
    responder->replyBody(value);
}

}  // namespace

void registerPropertyHandlers(Session* session) {
    session->setBodyHandler<Wire::PropertyAccess>(Wire::MessageType::ReadProperty, readProperty);
    session->setBodyHandler<Wire::ObjectHandle>(Wire::MessageType::ReadProperties, readProperties);
}

}  // namespace Tamrix::Agent
