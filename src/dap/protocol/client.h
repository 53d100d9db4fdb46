#pragma once

#include <QString>
#include <deque>
#include <optional>
#include <vector>

#include "base/bytestream.h"
#include "dap/protocol/envelope.h"
#include "dap/protocol/frames.h"
#include "dap/protocol/json.h"

namespace Tamrix::Dap {

/// The editor at the other end of the stream: its requests in their order, and what it is sent.
class Client {
public:
    /// Neither is owned.
    Client(ByteReader& reader, ByteWriter& writer) : m_reader(reader), m_writer(writer) {}

    int descriptor() const { return m_reader.descriptor(); }
    /// Reads what has come. What is no request is told the client at once.
    void receive();
    /// The next request; nothing when none has come.
    std::optional<Request> take();
    /// Whether one of these has come and was not taken yet.
    bool isWaiting(const std::vector<QString>& commands) const;
    /// Whether no more requests will come.
    bool hasEnded() const { return m_hasEnded; }
    /// Why the stream can't be read on; empty when it just ended.
    QString problem() const { return m_problem; }

    void send(const Response& response);
    /// While a request is held, events wait until its response has gone.
    template <typename Body>
    void send(const char* event, const Body& body) {
        sendEvent({QString::fromLatin1(event), toJson(body)});
    }
    void send(const char* event) { sendEvent({QString::fromLatin1(event), {}}); }

    /// Events are kept until the next response has gone.
    void holdEvents() { m_holdsEvents = true; }

private:
    void sendEvent(const Event& event);
    void complain(const BadMessage& message);
    void end(const QString& problem);
    template <typename Message>
    void write(const Message& message);

    ByteReader& m_reader;
    ByteWriter& m_writer;
    FrameReader m_frames;
    std::deque<Request> m_requests;
    std::vector<Event> m_heldEvents;
    QString m_problem;
    int m_lastSeq = 0;
    bool m_hasEnded = false;
    bool m_holdsEvents = false;
};

}  // namespace Tamrix::Dap
