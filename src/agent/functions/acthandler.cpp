#include "agent/functions/acthandler.h"

#include <QElapsedTimer>
#include <algorithm>

#include "agent/core/globalfunctions.h"
#include "agent/readiness/target.h"

namespace Tamrix::Agent {

namespace {

/// A function that is called with a target as soon as that is there.
struct Act {
    Wire::Act request;
    ResponderPtr responder;
    QElapsedTimer clock;

    /// What is left of a time in the request, in ms.
    int left(int time) const {
        return static_cast<int>(std::max<qint64>(time - clock.elapsed(), 0));
    }
};

using ActPtr = std::shared_ptr<const Act>;

void callWithTarget(const ActPtr& act);

/// The answer of a global function, told as what was done with the target.
class ActResponder : public Responder {
public:
    ActResponder(ActPtr act, Wire::ObjectInfo object)
        : m_act(std::move(act)), m_responder(m_act->responder), m_object(std::move(object)) {}

    void reply(const QByteArray& body) override {
        Wire::Value value;
        if (Wire::decode(body, &value))
            m_responder->replyBody(Wire::ActResult{m_object, value.value});
        else
            fail(FailureKind::Failed, QStringLiteral("the function's value can't be read"));
    }
    void fail(FailureKind kind, const QString& text) override { m_responder->fail(kind, text); }
    void miss(const Wire::Missed& missed) override { m_responder->miss(missed); }
    void lose(const QString& text) override {
        // Programs fill their views anew, and put widgets in each other's place.
        const bool isNamed = m_act->request.target.handle == 0;
        if (isNamed && m_act->left(m_act->request.timeout) > 0 && isWanted())
            callWithTarget(m_act);
        else
            m_responder->lose(text);
    }
    void finish() override { m_responder->finish(); }
    bool isWanted() const override { return m_responder->isWanted(); }

private:
    ActPtr m_act;
    ResponderPtr m_responder;
    Wire::ObjectInfo m_object;
};

void callWithTarget(const ActPtr& act) {
    Wire::Target target = act->request.target;
    target.timeout = act->left(target.timeout);
    whenThere(target, act->responder, [act](const Element& element) {
        const Wire::Act& request = act->request;
        const Wire::ObjectInfo object = Session::self()->info(element);
        const Wire::Invoke call{0, request.method,
                                QVariantList{QVariant::fromValue(object)} + request.arguments,
                                act->left(request.timeout)};
        callGlobalFunction(call, std::make_shared<ActResponder>(act, object));
    });
}

void handleAct(const Wire::Act& request, const ResponderPtr& responder) {
    const auto act = std::make_shared<Act>(Act{request, responder, {}});
    act->clock.start();
    callWithTarget(act);
}

}  // namespace

void registerActHandler(Session* session) {
    session->setBodyHandler<Wire::Act>(Wire::MessageType::Act, handleAct);
}

}  // namespace Tamrix::Agent
