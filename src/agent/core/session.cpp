#include "agent/core/session.h"

namespace Tamrix::Agent {

Responder::~Responder() = default;

void Responder::lose(const QString& text) {
    fail(FailureKind::Gone, text);
    finish();
}

Element Session::findOrFail(quint64 handle, const ResponderPtr& responder) {
    const Outcome<Element> element = find(handle);
    if (!element)
        responder->fail(element.error().kind, element.error().text);
    return element.value_or(Element());
}

}  // namespace Tamrix::Agent
