#pragma once

#include <QPoint>
#include <QVariantList>
#include <QWindow>
#include <exception>
#include <functional>
#include <optional>

#include "agent/core/itempath.h"
#include "agent/core/readiness.h"
#include "agent/core/session.h"
#include "agent/input/elementref.h"
#include "agent/input/stepqueue.h"

namespace Tamrix::Agent {

/// Ends a call of a global function with a failure; callGlobalFunction() turns it into the answer.
class CallError : public std::exception {
public:
    explicit CallError(Failure failure) : m_failure(std::move(failure)) {}
    CallError(FailureKind kind, const QString& text) : CallError(Failure{kind, text}) {}
    FailureKind kind() const { return m_failure.kind; }
    QString text() const { return m_failure.text; }
    const char* what() const noexcept override { return "a global function failed"; }

private:
    Failure m_failure;
};

/// A call of a global function on its way. The take...() functions read one argument after another;
/// they throw CallError with what was wrong.
class Call {
public:
    Call(const Wire::Invoke& call, const ResponderPtr& responder)
        : m_arguments(call.arguments), m_timeout(call.timeout), m_responder(responder) {}

    const ResponderPtr& responder() const { return m_responder; }
    /// In ms, for each wait of the call.
    int timeout() const { return m_timeout; }

    bool hasNumber(int ahead = 0) const;
    bool hasText() const;
    bool isAtEnd() const { return m_next >= m_arguments.size(); }

    /// Throws also when the object is gone.
    Element takeObject();
    int takeNumber(const char* name);
    QPoint takePoint(const char* x, const char* y);
    QString takeText(const char* name);
    /// A text, or a list of steps.
    ItemPath takePath(const char* name);
    void takeEnd() const;

private:
    [[noreturn]] void failArgument(const QString& text) const;
    QVariant take(const char* name);

    QVariantList m_arguments;
    int m_timeout;
    ResponderPtr m_responder;
    int m_next = 0;
};

/// "QPushButton 'OK' is not ready: it is disabled".
QString notReadyText(const Element& element, const QString& obstacle);
/// The same, or that the element is gone.
QString notReadyText(const ElementRef& element, const QString& obstacle);
/// Fails the call when the element is gone; false when it is there.
bool failIfGone(const Call& call, const ElementRef& element);

/// Calls `act` with the point to use when the element is ready; fails the call when it is not in
/// time.
void whenReady(const Call& call, const Element& element, const Aim& aim,
               const std::function<void(const ElementRef& element, const QPoint& point)>& act);

/// Adds a step that answers the call. Comes before the last input, which may end the program.
void addAnswer(StepQueue* queue, const Call& call);
/// Starts the queue and finishes the request at its end.
void run(StepQueue* queue, const Call& call);

}  // namespace Tamrix::Agent
