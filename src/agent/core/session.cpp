#include "agent/core/session.h"

namespace Tamrix::Agent {

Responder::~Responder() = default;

Element Session::findOrFail(quint64 handle, const ResponderPtr& responder) {
    QString error;
    const Element element = find(handle, &error);
    if (element.isNull())
        responder->fail(Wire::FailureCode::StaleObject, error);
    return element;
}

}  // namespace Tamrix::Agent
