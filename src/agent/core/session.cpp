#include "agent/core/session.h"

namespace Tamrix::Agent {

Responder::~Responder() = default;

Element Session::findOrFail(quint64 handle, const ResponderPtr& responder) {
    QString text;
    const Element element = find(handle, &text);
    if (element.isNull())
        responder->fail(Wire::FailureCode::StaleObject,
                        QStringLiteral("%1 does not exist any more").arg(text));
    return element;
}

}  // namespace Tamrix::Agent
