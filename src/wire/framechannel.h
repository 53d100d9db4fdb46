#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "wire/messages.h"
#include "wire/protocol.h"

namespace Tamrix::Wire {

/// One message: its head and the bytes of its body.
struct Frame {
    quint32 sequence = 0;
    MessageType type = MessageType::Ping;
    QByteArray body;
};

/// Frames over a connected stream socket, for both sides. Owns the socket, which it makes
/// non-blocking and close-on-exec. No thread and no event loop of its own: the owner watches
/// descriptor() and calls receive() when it is readable. Frames are, in network byte order, the
/// length of the body (32 bits), the sequence number (32), the type (16), then the body.
///
/// After a failure, the end of the stream or a malformed frame the channel is closed for good, and
/// errorText() says why.
class FrameChannel {
public:
    /// -1 makes a closed channel.
    explicit FrameChannel(int descriptor = -1);
    ~FrameChannel();
    FrameChannel(const FrameChannel&) = delete;
    FrameChannel& operator=(const FrameChannel&) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    int descriptor() const { return m_descriptor; }
    QString errorText() const { return m_errorText; }

    /// The longest body that is accepted, in bytes; lowered until the peer is authenticated.
    void setMaximalBodySize(quint32 size) { m_maximalBodySize = size; }
    /// Turns an oversized reply into a Failure and skips its body: the channel stays open. Other
    /// oversized messages still close it.
    void setLongAnswersFail(bool on) { m_longAnswersFail = on; }

    /// Reads what is there, some megabytes at most, without waiting. False when the channel is
    /// closed now; frames that came before that can still be taken.
    bool receive();
    /// The next whole frame that was received.
    std::optional<Frame> takeFrame();

    /// Sends a frame behind those that are queued, waiting up to `timeout` milliseconds for the
    /// peer to read. False when the channel is closed now; a frame that could be sent in part only
    /// closes it.
    bool send(quint32 sequence, MessageType type, const QByteArray& body, int timeout = 10000);
    template <typename Body>
    bool sendBody(quint32 sequence, MessageType type, const Body& body) {
        return send(sequence, type, encode(body));
    }

    /// Queues a frame and sends without waiting; flush() sends the rest. False when the channel is
    /// closed now.
    bool enqueue(quint32 sequence, MessageType type, const QByteArray& body);
    /// Sends what the peer takes of what is queued, without waiting. False when the channel is
    /// closed now.
    bool flush();
    /// Whether the socket is to be watched for writing, and then flush() to be called.
    bool hasQueued() const { return queuedSize() > 0; }
    /// In bytes.
    int queuedSize() const { return m_queued.size() - m_sent; }

    /// Closes the socket; `reason` becomes the error text when there is none yet.
    void close(const QString& reason = QString());

private:
    /// Handles the head of an oversized reply.
    Frame failLongAnswer(quint32 length);
    void dropTaken();

    int m_descriptor;
    quint32 m_maximalBodySize = maximalBodySize;
    bool m_longAnswersFail = false;
    /// Of the body that is skipped.
    quint32 m_skippedSize = 0;
    QByteArray m_queued;
    /// How much of `m_queued` has been sent.
    int m_sent = 0;
    QByteArray m_received;
    /// Where the first frame that was not taken begins.
    int m_taken = 0;
    QString m_errorText;
};

/// Connects to a listening local socket; the descriptor is the caller's.
Outcome<int> connectLocalSocket(const QString& path);
/// Listens at a new local socket that only this user can reach; the descriptor is the caller's.
Outcome<int> listenLocalSocket(const QString& path);

}  // namespace Tamrix::Wire
