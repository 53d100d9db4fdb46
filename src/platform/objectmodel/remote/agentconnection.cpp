#include "platform/objectmodel/remote/agentconnection.h"

#include <QScopedValueRollback>
#include <algorithm>

#include "base/blocking.h"

namespace Tamrix {

using Wire::Frame;
using Wire::MessageType;

namespace {

quint16 nextNumber() {
    static quint16 s_last = 0;
    // 0 means no connection, also after 65535 of them.
    s_last = static_cast<quint16>(s_last == 0xffff ? 1 : s_last + 1);
    return s_last;
}

bool isAnswer(MessageType type) {
    return type == MessageType::Reply || type == MessageType::Failure ||
           type == MessageType::Missed;
}

/// Whether the application acts only after its answer.
bool injectsInput(MessageType type, const QByteArray& body) {
    switch (type) {
        case MessageType::MouseEvent:
        case MessageType::KeyEvent:
        case MessageType::SendEvent:
        case MessageType::Act:
        case MessageType::Quit:
            return true;
        case MessageType::Invoke: {
            Wire::Invoke call;
            return Wire::decode(body, &call) && call.handle == 0;
        }
        default:
            return false;
    }
}

}  // namespace

AgentConnection::AgentConnection(int descriptor, const QString& token)
    : m_number(nextNumber()), m_channel(descriptor), m_token(token), m_nextIdle(idleInterval) {
    m_channel.setMaximalBodySize(Wire::maximalHelloSize);
    if (!m_channel.isOpen())
        m_state = State::Closed;
}

AgentConnection::~AgentConnection() = default;

void AgentConnection::close(const QString& reason) {
    // An answer that has come already still counts.
    if (m_isRequesting)
        m_closesFor = reason;
    else
        shut(reason);
}

void AgentConnection::shut(const QString& reason) {
    m_channel.close(reason);
    m_state = State::Closed;
}

// Coming in

AgentConnection::State AgentConnection::pump() {
    if (m_state == State::Closed || m_isRequesting)
        return m_state;
    if (m_closesFor) {
        shut(*m_closesFor);
        return m_state;
    }
    m_channel.receive();
    Frame answer;
    bool isAnswered = false;
    takeFrames(0, &answer, &isAnswered);
    return m_state;
}

bool AgentConnection::takeFrames(quint32 wanted, Frame* answer, bool* isAnswered) {
    while (m_state != State::Closed && !*isAnswered) {
        const std::optional<Frame> frame = m_channel.takeFrame();
        if (!frame)
            break;
        if (m_state == State::Greeting) {
            takeHello(*frame);
        } else if (frame->type == MessageType::EventFired) {
            takeEvent(*frame);
        } else if (frame->type == MessageType::Observed) {
            takeObservation(*frame);
        } else if (!isAnswer(frame->type) || frame->sequence == 0 ||
                   frame->sequence > m_lastSequence) {
            shut(QStringLiteral("the application sent a message of type %1 that nobody asked for")
                     .arg(static_cast<int>(frame->type)));
        } else if (frame->sequence == wanted) {
            *answer = *frame;
            *isAnswered = true;
        }
        // Everything else answers a request that was given up.
    }
    if (!m_channel.isOpen() && !*isAnswered)
        m_state = State::Closed;
    return m_state != State::Closed;
}

void AgentConnection::takeHello(const Frame& frame) {
    m_isRefused = true;
    Wire::Hello hello;
    Wire::Text reason;
    // One that stands between runner and agent may have none to offer.
    if (frame.type == MessageType::Refusal && Wire::decode(frame.body, &reason)) {
        shut(reason.text);
        return;
    }
    if (frame.type != MessageType::Hello || !Wire::decode(frame.body, &hello) ||
        hello.magic != Wire::magicNumber) {
        shut(QStringLiteral("the other side is no agent"));
        return;
    }
    QString refusal;
    if (hello.version != Wire::protocolVersion) {
        refusal = QStringLiteral(
                      "the agent in the application speaks version %1 of the protocol, the runner "
                      "version %2: both must be of the same installation")
                      .arg(QString::number(hello.version), QString::number(Wire::protocolVersion));
    } else if (hello.token != m_token) {
        refusal = QStringLiteral("the agent of process %1 shows a token that is not of this run")
                      .arg(hello.pid);
    }
    if (!refusal.isEmpty()) {
        m_channel.sendBody(0, MessageType::Refusal, Wire::Text{refusal});
        shut(refusal);
        return;
    }
    m_isRefused = false;
    m_hello = hello;
    m_channel.setMaximalBodySize(Wire::maximalBodySize);
    m_channel.setLongAnswersFail(true);
    m_state = m_channel.send(0, MessageType::Welcome, {}) ? State::Open : State::Closed;
}

void AgentConnection::takeEvent(const Frame& frame) {
    Wire::EventFired event;
    if (!Wire::decode(frame.body, &event))
        shut(QStringLiteral("the application sent an event that can't be read"));
    else if (m_events.size() >= maximalEventCount)
        shut(QStringLiteral("more than %1 events came").arg(maximalEventCount));
    else
        m_events.push_back(event);
}

std::vector<Wire::EventFired> AgentConnection::takeEvents() {
    return std::exchange(m_events, {});
}

void AgentConnection::takeObservation(const Frame& frame) {
    Wire::Observation observation;
    if (!Wire::decode(frame.body, &observation))
        shut(QStringLiteral("the application sent an observation that can't be read"));
    else if (m_observations.size() >= maximalEventCount)
        shut(QStringLiteral("more than %1 observations came").arg(maximalEventCount));
    else
        m_observations.push_back(std::move(observation));
}

std::vector<Wire::Observation> AgentConnection::takeObservations() {
    return std::exchange(m_observations, {});
}

// Waiting

bool AgentConnection::waitForBytes(const QDeadlineTimer& deadline, bool* hasProcessEnded) {
    pollfd watched[] = {{m_channel.descriptor(), POLLIN, 0}, {m_processDescriptor, POLLIN, 0}};
    const qint64 left = std::min(deadline.remainingTime(), m_nextIdle.remainingTime());
    blockingPoll(watched, std::size(watched), static_cast<int>(std::max<qint64>(left, 0)));
    *hasProcessEnded = watched[1].revents != 0;
    // Answers that come at once never wait for the hook.
    bool goesOn = true;
    if (m_nextIdle.hasExpired()) {
        goesOn = !m_idleHook || m_idleHook();
        m_nextIdle.setRemainingTime(idleInterval);
    }
    // Behind the end of the process, also one that the hook has seen, all is here that ever comes.
    m_channel.receive();
    return goesOn;
}

bool AgentConnection::waitForHello(int timeout) {
    const QDeadlineTimer deadline(timeout);
    const QScopedValueRollback<bool> requesting(m_isRequesting, true);
    Frame answer;
    bool isAnswered = false;
    bool hasProcessEnded = false;
    while (takeFrames(0, &answer, &isAnswered) && m_state == State::Greeting) {
        if (m_closesFor)
            shut(*m_closesFor);
        else if (hasProcessEnded)
            shut(QStringLiteral("the process has ended"));
        else if (deadline.hasExpired())
            shut(QStringLiteral("the other side sent no hello within %1 ms").arg(timeout));
        else if (!waitForBytes(deadline, &hasProcessEnded))
            shut(QStringLiteral("the wait for the hello was given up"));
    }
    return m_state == State::Open;
}

Outcome<Frame> AgentConnection::waitForAnswer(quint32 sequence, const QDeadlineTimer& deadline,
                                              int timeout) {
    Frame answer;
    bool hasProcessEnded = false;
    bool isAnswered = false;
    bool goesOn = true;
    while (takeFrames(sequence, &answer, &isAnswered) && !isAnswered) {
        if (m_closesFor) {
            shut(*m_closesFor);
        } else if (hasProcessEnded) {
            shut(QStringLiteral("the process has ended"));
        } else if (!goesOn) {
            return fail(FailureKind::Failed, QStringLiteral("The wait was given up"));
        } else if (deadline.hasExpired()) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("The application did not answer within %1 ms").arg(timeout));
        } else if (hasStalled()) {
            return fail(FailureKind::TimedOut, QStringLiteral("The application does not answer"));
        } else {
            goesOn = waitForBytes(deadline, &hasProcessEnded);
        }
    }
    if (!isAnswered)
        return fail(disconnected());
    return answer;
}

bool AgentConnection::hasStalled() {
    if (m_patience == Patience::UntilTimeout || !m_nextStallTest.hasExpired())
        return false;
    m_nextStallTest.setRemainingTime(stallInterval);
    return !m_isStalled || m_isStalled();
}

// Requests

Failure AgentConnection::disconnected() const {
    const QString endText = m_endText ? m_endText() : QString();
    if (!endText.isEmpty())
        return {FailureKind::Ended, endText};
    return {FailureKind::Ended,
            QStringLiteral("The connection to the application has ended: %1").arg(errorText())};
}

Failure AgentConnection::unreadableAnswer(MessageType type) {
    return {FailureKind::Failed,
            QStringLiteral("The application's answer to request %1 can't be read")
                .arg(static_cast<int>(type))};
}

bool AgentConnection::send(quint32 sequence, MessageType type, const QByteArray& body) {
    // A small message goes at once, a large one as fast as the application reads.
    constexpr int smallSize = 64 * 1024;
    if (body.size() <= smallSize)
        return m_channel.send(sequence, type, body);
    return BlockingSection::run([&] { return m_channel.send(sequence, type, body); });
}

Outcome<Frame> AgentConnection::exchange(MessageType type, const QByteArray& body,
                                         const QDeadlineTimer& deadline, int timeout) {
    const quint32 sequence = ++m_lastSequence;
    if (send(sequence, type, body))
        return waitForAnswer(sequence, deadline, timeout);
    m_state = State::Closed;
    return fail(disconnected());
}

Outcome<> AgentConnection::syncBefore(MessageType type, const QDeadlineTimer& deadline,
                                      int timeout) {
    // A ping asks whether the application answers at all, at rest or not.
    if (!m_isSyncDue || type == MessageType::Ping || type == MessageType::Sync)
        return {};
    const auto left = static_cast<int>(std::min<qint64>(m_syncTimeout, deadline.remainingTime()));
    const QDeadlineTimer syncDeadline(left);
    const Outcome<Frame> answer = exchange(MessageType::Sync, {}, syncDeadline, left);
    if (!answer) {
        // An application that does nothing will not come to rest either.
        const bool isStalled = !syncDeadline.hasExpired();
        if (answer.error().kind != FailureKind::TimedOut || isStalled)
            return fail(answer.error());
        // Sent now, the request would act after its failure was told.
        if (deadline.hasExpired()) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("The application did not come to rest within %1 ms after "
                                       "the last input")
                            .arg(timeout));
        }
    }
    m_isSyncDue = false;
    return {};
}

Outcome<QByteArray> AgentConnection::request(MessageType type, const QByteArray& body, int timeout,
                                             Patience patience) {
    const Outcome<Frame> answer = answerTo(type, body, timeout, patience);
    if (!answer)
        return fail(answer.error());
    Failure failure;
    if (answer->type == MessageType::Failure && Wire::decode(answer->body, &failure))
        return fail(failure);
    if (answer->type != MessageType::Reply)
        return fail(unreadableAnswer(type));
    return answer->body;
}

Outcome<Frame> AgentConnection::answerTo(MessageType type, const QByteArray& body, int timeout,
                                         Patience patience) {
    if (m_isRequesting) {
        return fail(FailureKind::Failed,
                    QStringLiteral("Another request to the application is under way"));
    }
    if (m_turnHook && type != MessageType::Ping && type != MessageType::Sync)
        m_turnHook();
    if (m_closesFor)
        shut(*m_closesFor);
    if (m_state != State::Open)
        return fail(disconnected());
    if (static_cast<quint32>(body.size()) > Wire::maximalBodySize) {
        return fail(FailureKind::BadArgument,
                    QStringLiteral("The request is too long: it has %1 bytes of at most %2")
                        .arg(QString::number(body.size()), QString::number(Wire::maximalBodySize)));
    }
    const QScopedValueRollback<bool> requesting(m_isRequesting, true);
    m_patience = patience;
    // The first test only begins the interval that the second one looks at.
    if (patience == Patience::WhileItRuns) {
        m_nextStallTest.setRemainingTime(stallInterval);
        if (m_isStalled)
            m_isStalled();
    }
    const QDeadlineTimer deadline(timeout);
    const Outcome<> sync = syncBefore(type, deadline, timeout);
    if (!sync)
        return fail(sync.error());
    const Outcome<Frame> answer = exchange(type, body, deadline, timeout);
    // Also a request that was given up may still act, but none that failed.
    if ((!answer || answer->type == MessageType::Reply) && injectsInput(type, body))
        m_isSyncDue = true;
    return answer;
}

Outcome<> AgentConnection::settle(int timeout) {
    if (!m_isSyncDue || m_isRequesting)
        return {};
    const Outcome<QByteArray> answer =
        request(MessageType::Sync, {}, timeout, Patience::WhileItRuns);
    if (!answer)
        return fail(answer.error());
    m_isSyncDue = false;
    return {};
}

Outcome<> AgentConnection::ping(int timeout) {
    const Outcome<QByteArray> answer = request(MessageType::Ping, QByteArray(), timeout);
    if (!answer)
        return fail(answer.error());
    return {};
}

}  // namespace Tamrix
