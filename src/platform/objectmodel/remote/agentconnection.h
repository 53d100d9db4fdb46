#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QString>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include "base/export.h"
#include "base/outcome.h"
#include "wire/framechannel.h"
#include "wire/messages.h"
#include "wire/observations.h"

namespace Tamrix {

/// The runner's end of the connection to the agent in one application. Script thread only; no
/// thread and no event loop of its own.
///
/// The peer of a new connection is not trusted: nothing but a hello of limited size is accepted
/// until the token has authenticated it. An open connection takes requests, one at a time, and
/// queues the events that come meanwhile.
///
/// A request that injects input (calls of global functions, mouse and key events, sent events,
/// Quit) is answered before the input takes effect. The next request is therefore preceded by a
/// Sync, so that it sees what the input did. When the application does not come to rest within
/// syncTimeout(), the request is sent all the same, as long as it has time left: the time of the
/// Sync counts as time of the request. A ping goes without.
class TAMRIX_EXPORT AgentConnection {
public:
    enum class State { Greeting, Open, Closed };

    /// Called during waits, at least every idleInterval ms; false cancels the wait. It may pump()
    /// other connections, but makes no request on this one.
    using IdleHook = std::function<bool()>;

    static constexpr int idleInterval = 50;

    /// How long a request waits.
    enum class Patience {
        UntilTimeout,  ///< for its answer
        WhileItRuns    ///< no longer than a second for an application that does nothing
    };
    static constexpr int stallInterval = 1000;

    /// More events than that without takeEvents() end the connection, and as many observations.
    static constexpr int maximalEventCount = 100'000;

    /// Owns `descriptor`, an accepted socket. `token` authenticates the peer.
    AgentConnection(int descriptor, const QString& token);
    ~AgentConnection();
    AgentConnection(const AgentConnection&) = delete;
    AgentConnection& operator=(const AgentConnection&) = delete;

    /// A number of this connection in this process, from 1.
    quint16 number() const { return m_number; }
    State state() const { return m_state; }
    bool isOpen() const { return m_state == State::Open; }
    /// To be polled for reading while state() is not Closed; then pump(). -1 when closed.
    int descriptor() const { return m_channel.descriptor(); }
    /// Why the connection is closed.
    QString errorText() const { return m_channel.errorText(); }
    /// Whether it is closed because the handshake failed: the peer is no agent of this run.
    bool isRefused() const { return m_isRefused; }
    /// What the peer told of itself; meaningful once open.
    const Wire::Hello& hello() const { return m_hello; }

    /// Waits for the hello. False, and the connection is closed, when none that is right comes
    /// within `timeout` ms, or the idle hook gives up. A peer of another version or with a wrong
    /// token is told so.
    bool waitForHello(int timeout);
    /// Processes pending frames without waiting, in each state: hello, events, late answers.
    /// Returns the state after that.
    State pump();
    /// Closes for good. Requests fail from now on with this reason; one that is under way, as when
    /// the idle hook closes, still gets an answer that has come.
    void close(const QString& reason);

    void setIdleHook(const IdleHook& hook) { m_idleHook = hook; }
    /// Called before each request, except for a ping and settle(). It may make requests on other
    /// connections.
    void setTurnHook(const std::function<void()>& hook) { m_turnHook = hook; }
    /// What tells how the application ended, better than the connection can; asked when a request
    /// fails since the connection is closed. An empty text leaves it to the connection.
    void setEndText(const std::function<QString()>& endText) { m_endText = endText; }
    /// A descriptor that becomes readable when the process ends, such as a pidfd: waits see the end
    /// at once. Not owned; -1 for none.
    void setProcessDescriptor(int descriptor) { m_processDescriptor = descriptor; }
    /// Tells whether the process has done nothing and wants to do nothing since the last call, as
    /// one that is stopped. Asked once each stallInterval; without it no answer is reason enough.
    void setStallTest(const std::function<bool()>& isStalled) { m_isStalled = isStalled; }
    int syncTimeout() const { return m_syncTimeout; }
    void setSyncTimeout(int milliseconds) { m_syncTimeout = milliseconds; }

    /// Sends a request and waits for its answer, up to `timeout` ms. An answer that comes after its
    /// request was given up is dropped. What the application refuses has the kind that it gave;
    /// TimedOut is no answer in time, also none with little patience, and Ended the end of the
    /// connection or of the process. When the idle hook gave up, or the answer can't be read, the
    /// kind is Failed.
    Outcome<QByteArray> request(Wire::MessageType type, const QByteArray& body, int timeout,
                                Patience patience = Patience::UntilTimeout);
    /// The same with the answer as it is, a Reply, a Failure or Missed. Fails only without one.
    Outcome<Wire::Frame> answerTo(Wire::MessageType type, const QByteArray& body, int timeout,
                                  Patience patience = Patience::UntilTimeout);
    /// The same with the answer's body read.
    template <typename Reply>
    Outcome<Reply> ask(Wire::MessageType type, const QByteArray& body, int timeout,
                       Patience patience = Patience::UntilTimeout) {
        const Outcome<QByteArray> bytes = request(type, body, timeout, patience);
        if (!bytes)
            return fail(bytes.error());
        Reply reply;
        if (!Wire::decode(*bytes, &reply))
            return fail(unreadableAnswer(type));
        return reply;
    }
    /// Whether the application's event loop answers within `timeout` ms.
    Outcome<> ping(int timeout);

    /// Waits until the application has come to rest after the last input, up to `timeout` ms, with
    /// little patience. At once when it is known to be at rest, and while a request is under way.
    Outcome<> settle(int timeout);

    /// The events that came, in order; they are given once.
    std::vector<Wire::EventFired> takeEvents();
    /// What a person did, in order; it is given once.
    std::vector<Wire::Observation> takeObservations();

    /// How the application, or the connection to it, has ended; meaningful once it has.
    Failure disconnected() const;
    /// "The application's answer to request 32 can't be read".
    static Failure unreadableAnswer(Wire::MessageType type);

private:
    void shut(const QString& reason);
    /// Frames that have come: false when the connection is closed now. `wanted` is the sequence of
    /// the answer that is waited for, 0 for none.
    bool takeFrames(quint32 wanted, Wire::Frame* answer, bool* isAnswered);
    void takeHello(const Wire::Frame& frame);
    void takeEvent(const Wire::Frame& frame);
    void takeObservation(const Wire::Frame& frame);
    /// Waits a moment for bytes. False when the idle hook gave up.
    bool waitForBytes(const QDeadlineTimer& deadline, bool* hasProcessEnded);
    Outcome<Wire::Frame> waitForAnswer(quint32 sequence, const QDeadlineTimer& deadline,
                                       int timeout);
    bool send(quint32 sequence, Wire::MessageType type, const QByteArray& body);
    Outcome<Wire::Frame> exchange(Wire::MessageType type, const QByteArray& body,
                                  const QDeadlineTimer& deadline, int timeout);
    Outcome<> syncBefore(Wire::MessageType type, const QDeadlineTimer& deadline, int timeout);
    /// Whether a request with little patience ends now.
    bool hasStalled();

    quint16 m_number;
    State m_state = State::Greeting;
    Wire::FrameChannel m_channel;
    QString m_token;
    Wire::Hello m_hello;
    IdleHook m_idleHook;
    std::function<void()> m_turnHook;
    std::function<QString()> m_endText;
    std::function<bool()> m_isStalled;
    Patience m_patience = Patience::UntilTimeout;
    QDeadlineTimer m_nextStallTest;
    QDeadlineTimer m_nextIdle;
    int m_processDescriptor = -1;
    int m_syncTimeout = 5000;
    quint32 m_lastSequence = 0;
    bool m_isRequesting = false;
    /// Why it closes once the request that is under way has looked for its answer.
    std::optional<QString> m_closesFor;
    bool m_isRefused = false;
    /// Input was injected and may not have taken effect yet.
    bool m_isSyncDue = false;
    std::vector<Wire::EventFired> m_events;
    std::vector<Wire::Observation> m_observations;
};

}  // namespace Tamrix
