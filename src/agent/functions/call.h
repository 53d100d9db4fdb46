#pragma once

#include <QPoint>
#include <QRect>
#include <QWindow>
#include <functional>

#include "agent/core/elementref.h"
#include "agent/core/itempath.h"
#include "agent/core/session.h"
#include "agent/input/stepqueue.h"
#include "agent/readiness/readiness.h"
#include "wire/callarguments.h"

namespace Tamrix::Agent {

using Wire::CallError;

/// A call of a global function on its way, whose arguments are read one after another.
/// callGlobalFunction() turns a CallError into the answer.
class Call : public Wire::CallArguments {
public:
    Call(const Wire::Invoke& call, const ResponderPtr& responder)
        : CallArguments(call.arguments), m_timeout(call.timeout), m_responder(responder) {}

    const ResponderPtr& responder() const { return m_responder; }
    /// In ms, for each wait of the call.
    int timeout() const { return m_timeout; }

    /// Throws also when the object is gone.
    Element takeObject();
    /// Whether the next argument is a rectangle of the screen.
    bool hasRectangle() const;
    QRect takeRectangle();
    /// A text, or a list of steps.
    ItemPath takePath(const char* name);

private:
    int m_timeout;
    ResponderPtr m_responder;
};

/// Fails the call: "QPushButton 'OK' is not ready: it is disabled", or that the element is gone.
void failNotReady(const Call& call, const ElementRef& element, const QString& obstacle);

/// Calls `act` with the point to use when the element is ready; fails the call when it is not in
/// time, and has it lose its target when that goes meanwhile.
void whenReady(const Call& call, const Element& element, const Aim& aim,
               const std::function<void(const ElementRef& element, const QPoint& point)>& act);

/// Adds a step that answers the call. Comes before the last input, which may end the program.
void addAnswer(StepQueue* queue, const Call& call);
/// Starts the queue and finishes the request at its end.
void run(StepQueue* queue, const Call& call);

}  // namespace Tamrix::Agent
