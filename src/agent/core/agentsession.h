#pragma once

#include <QHash>
#include <QPointer>
#include <QQueue>
#include <QSocketNotifier>
#include <QWindow>
#include <memory>
#include <vector>

#include "agent/core/handletable.h"
#include "agent/core/session.h"
#include "agent/core/toolkit.h"
#include "wire/framechannel.h"

namespace Tamrix::Agent {

/// The session over a socket. Starts the handshake when it is made, and accepts requests once that
/// has succeeded. When the connection ends, whichever side ends it, the session becomes inactive:
/// the application lives on as without an agent.
class AgentSession : public Session {
public:
    /// Takes over a connected socket.
    AgentSession(int descriptor, const QString& token);
    ~AgentSession() override;

    void setHandler(Wire::MessageType type, const Handler& handler) override;
    void sendEvent(const Wire::EventFired& event) override;
    void sendObservation(const Wire::Observation& observation) override;
    void addToolkit(std::unique_ptr<Toolkit> toolkit) override;
    Element element(QObject* object) const override;
    QVector<Element> topLevels() const override;
    TypeTraits traitsOf(const QString& typeName) const override;
    quint64 handle(const Element& element) override { return m_handles.handle(element); }
    Wire::ObjectInfo info(const Element& element) override;
    Outcome<Element> find(quint64 handle) override { return m_handles.find(handle); }
    QString describe(const Element& element) const override;

    bool isOpen() const { return m_channel.isOpen(); }
    int descriptor() const { return m_channel.descriptor(); }

    /// For responders: `number` counts requests.
    void answer(quint32 sequence, Wire::MessageType type, const QByteArray& body);
    void finish(quint64 number);

private:
    QVector<int> pathTo(const Element& element, const QWindowList& windows) const;
    void sayHello(const QString& token);
    void read();
    void takeHandshake(const Wire::Frame& frame);
    void scheduleNext();
    void workOnNext();
    void goSilent();
    /// Sends on what is queued when the runner reads again.
    void watchQueue();

    Wire::FrameChannel m_channel;
    std::unique_ptr<QSocketNotifier> m_notifier;
    /// Enabled while something is queued.
    std::unique_ptr<QSocketNotifier> m_writable;
    bool m_isWelcome = false;
    bool m_isScheduled = false;
    QQueue<Wire::Frame> m_requests;
    /// The number of the request that is worked on, 0 for none.
    quint64 m_current = 0;
    quint64 m_lastNumber = 0;
    QHash<int, Handler> m_handlers;
    std::vector<std::unique_ptr<Toolkit>> m_toolkits;
    HandleTable m_handles;
};

}  // namespace Tamrix::Agent
