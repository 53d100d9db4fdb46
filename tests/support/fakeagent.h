#pragma once

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>

#include "wire/framechannel.h"
#include "wire/messages.h"

namespace Tamrix::Test {

/// The other end of a connection, played by a function on a thread of its own: what it does is up
/// to the test, right or wrong. Ends with the function, which sees the end of the connection in
/// next(). Destroying the fake makes next() return nothing.
class FakeAgent {
public:
    static constexpr char token[] = "the token";

    explicit FakeAgent(const std::function<void(FakeAgent&)>& play) {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
            throw std::runtime_error("no pair of sockets");
        m_runnerDescriptor = ends[0];
        m_channel = std::make_unique<Wire::FrameChannel>(ends[1]);
        m_thread = std::thread([this, play] {
            play(*this);
            m_channel->close();
        });
    }
    ~FakeAgent() {
        m_isStopped = true;
        m_thread.join();
    }
    FakeAgent(const FakeAgent&) = delete;
    FakeAgent& operator=(const FakeAgent&) = delete;

    /// The runner's end, to be owned by the caller.
    int runnerDescriptor() const { return m_runnerDescriptor; }

    // For the playing function.
    static Wire::Hello hello() {
        Wire::Hello hello;
        hello.token = token;
        hello.pid = ::getpid();
        hello.program = "/bin/fake";
        return hello;
    }
    void sayHello(const Wire::Hello& body = hello()) {
        m_channel->sendBody(0, Wire::MessageType::Hello, body);
    }
    /// The next frame; nothing when the connection has ended.
    std::optional<Wire::Frame> next() {
        while (!m_isStopped) {
            if (auto frame = m_channel->takeFrame())
                return frame;
            if (!m_channel->isOpen())
                break;
            pollfd watched{m_channel->descriptor(), POLLIN, 0};
            ::poll(&watched, 1, 10);
            m_channel->receive();
        }
        return std::nullopt;
    }
    void reply(const Wire::Frame& request, const QByteArray& body = {}) {
        m_channel->send(request.sequence, Wire::MessageType::Reply, body);
    }
    void fail(const Wire::Frame& request, FailureKind kind, const QString& text) {
        m_channel->sendBody(request.sequence, Wire::MessageType::Failure,
                            Wire::Failure{kind, text});
    }
    void miss(const Wire::Frame& request, const Wire::Missed& missed) {
        m_channel->sendBody(request.sequence, Wire::MessageType::Missed, missed);
    }
    void fire(const QString& callback, const Wire::ObjectInfo& object) {
        m_channel->sendBody(0, Wire::MessageType::EventFired, Wire::EventFired{callback, object});
    }
    void sendBytes(const QByteArray& bytes) {
        // The bytes of a test fit the socket's buffer.
        if (::send(m_channel->descriptor(), bytes.constData(), static_cast<size_t>(bytes.size()),
                   MSG_NOSIGNAL) != bytes.size())
            throw std::runtime_error("the bytes were not sent");
    }
    void hangUp() { m_channel->close(); }

    /// Says hello, then hands each request to `answer` until the connection ends.
    static std::function<void(FakeAgent&)> serving(
        const std::function<void(FakeAgent&, const Wire::Frame&)>& answer) {
        return [answer](FakeAgent& agent) {
            agent.sayHello();
            while (const auto frame = agent.next()) {
                if (frame->type != Wire::MessageType::Welcome)
                    answer(agent, *frame);
            }
        };
    }

private:
    int m_runnerDescriptor = -1;
    std::unique_ptr<Wire::FrameChannel> m_channel;
    std::atomic<bool> m_isStopped = false;
    std::thread m_thread;
};

}  // namespace Tamrix::Test
