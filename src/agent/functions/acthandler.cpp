#include "agent/functions/acthandler.h"

#include <QElapsedTimer>
#include <algorithm>

#include "agent/core/globalfunctions.h"
#include "agent/readiness/target.h"

namespace Tamrix::Agent {

namespace {

/// The answer of a global function, told as what was done with the target.
class ActResponder : public Responder {
public:
    ActResponder(ResponderPtr responder, Wire::ObjectInfo object)
        : m_responder(std::move(responder)), m_object(std::move(object)) {}

    void reply(const QByteArray& body) override {
        Wire::Value value;
        if (Wire::decode(body, &value))
            m_responder->replyBody(Wire::ActResult{m_object, value.value});
        else
            fail(FailureKind::Failed, QStringLiteral("the function's value can't be read"));
    }
    void fail(FailureKind kind, const QString& text) override { m_responder->fail(kind, text); }
    void miss(const Wire::Missed& missed) override { m_responder->miss(missed); }
    void finish() override { m_responder->finish(); }
    bool isWanted() const override { return m_responder->isWanted(); }

private:
    ResponderPtr m_responder;
    Wire::ObjectInfo m_object;
};

void act(const Wire::Act& request, const ResponderPtr& responder) {
    QElapsedTimer clock;
    clock.start();
    whenThere(request.target, responder, [request, responder, clock](const Element& element) {
        const Wire::ObjectInfo object = Session::self()->info(element);
        const qint64 left = request.timeout - clock.elapsed();
        const Wire::Invoke call{0, request.method,
                                QVariantList{QVariant::fromValue(object)} + request.arguments,
                                static_cast<qint32>(std::max<qint64>(left, 0))};
        callGlobalFunction(call, std::make_shared<ActResponder>(responder, object));
    });
}

}  // namespace

void registerActHandler(Session* session) {
    session->setBodyHandler<Wire::Act>(Wire::MessageType::Act, act);
}

}  // namespace Tamrix::Agent
