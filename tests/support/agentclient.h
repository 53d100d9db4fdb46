#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <optional>

#include "wire/framechannel.h"
#include "wire/messages.h"
#include "wire/observations.h"

namespace Tamrix {

/// How a program gets the agent.
enum class WayIn { Plugin, Hook };

/// The value of LD_PRELOAD with the hook in front of what the test itself has preloaded.
QString hookPreload();

/// A program with the agent in it, and the runner's end of the connection, for tests: no event
/// loop, every call waits. The program is killed at the end.
class AgentClient {
public:
    /// Milliseconds, for what comes as soon as it can. A busy machine may take long.
    static constexpr int patience = 100'000;

    /// A program below the build folder's tests/, or by its whole path.
    explicit AgentClient(const QString& program, const QStringList& arguments = {},
                         WayIn wayIn = WayIn::Plugin,
                         const QMap<QString, QString>& environment = {});
    ~AgentClient();
    AgentClient(const AgentClient&) = delete;
    AgentClient& operator=(const AgentClient&) = delete;

    /// Accepts the next process that announces itself and greets it. False when none came in time.
    bool accept(int timeout = patience);
    /// As accept(), but leaves the answer to the hello to the caller.
    bool acceptHello(int timeout = patience);
    /// As the last process announced itself.
    const Wire::Hello& hello() const { return m_hello; }
    Wire::FrameChannel& channel() { return *m_channel; }
    /// Keeps the connection open beside the next one.
    std::unique_ptr<Wire::FrameChannel> takeChannel() { return std::move(m_channel); }

    /// The next frame of the agent; none when it doesn't come in time or the connection ends.
    std::optional<Wire::Frame> nextFrame(int timeout = patience);
    /// Sends a request and waits for the frame that answers it. Events that come before are kept.
    std::optional<Wire::Frame> exchange(Wire::MessageType type, const QByteArray& body = {});
    /// Events that came while something else was waited for.
    QList<Wire::EventFired> takeEvents();
    /// The same of what a person did.
    QList<Wire::Observation> takeObservations();

    /// A request with its answer as a body: a default one and lastError() set on failure.
    template <typename Answer, typename Body>
    Answer request(Wire::MessageType type, const Body& body) {
        return decoded<Answer>(exchange(type, Wire::encode(body)));
    }
    template <typename Answer>
    Answer request(Wire::MessageType type) {
        return decoded<Answer>(exchange(type));
    }
    /// Whether a request whose answer has no body succeeded.
    template <typename Body>
    bool tell(Wire::MessageType type, const Body& body) {
        return isReply(exchange(type, Wire::encode(body)));
    }

    // Requests that most tests make.
    /// An object by criteria, "type=QPushButton" each; its handle is 0 for none.
    Wire::ObjectInfo find(const QStringList& criteria, int occurrence = 1);
    QVariant read(const Wire::ObjectInfo& object, const QString& property);
    QVariant invoke(const Wire::ObjectInfo& object, const QString& method,
                    const QVariantList& arguments = {});

    /// What the last request failed with; empty after a success.
    QString lastError() const { return m_failure.text; }
    FailureKind lastKind() const { return m_failure.kind; }

    int pid() const { return m_pid; }
    QString socketPath() const { return m_folder.filePath("socket"); }
    /// Waits for the program's end; its exit status as of waitpid(), -1 when it runs on.
    int waitForEnd(int timeout = patience);
    /// All that the program wrote to standard error by now.
    QString errorOutput() const;

private:
    bool isReply(const std::optional<Wire::Frame>& frame);
    template <typename Answer>
    Answer decoded(const std::optional<Wire::Frame>& frame) {
        Answer answer;
        if (isReply(frame) && !Wire::decode(frame->body, &answer))
            m_failure.text = QStringLiteral("the answer can't be read");
        return answer;
    }

    QTemporaryDir m_folder;
    int m_listener = -1;
    int m_pid = -1;
    int m_status = -1;
    quint32 m_sequence = 0;
    std::unique_ptr<Wire::FrameChannel> m_channel;
    Wire::Hello m_hello;
    Wire::Failure m_failure;
    QList<Wire::EventFired> m_events;
    QList<Wire::Observation> m_observations;
};

/// Names of criteria as Wire::Query has them: "text=Save", "text*=Sa*", "text~=^S".
Wire::Query makeQuery(const QStringList& criteria, int occurrence = 1);

}  // namespace Tamrix
