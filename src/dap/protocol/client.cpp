#include "dap/protocol/client.h"

#include <algorithm>

#include "dap/protocol/messages.h"

namespace Tamrix::Dap {

void Client::receive() {
    if (m_hasEnded)
        return;
    QByteArray bytes;
    const ByteReader::State state = m_reader.read(&bytes);
    m_frames.append(bytes);
    while (true) {
        const Outcome<std::optional<QByteArray>> message = m_frames.take();
        if (!message) {
            end(message.error().text);
            return;
        }
        if (!*message)
            break;
        auto request = readRequest(**message);
        if (request)
            m_requests.push_back(std::move(*request));
        else
            complain(request.error());
    }
    if (state == ByteReader::State::Ended)
        end(m_frames.isInsideMessage() ? QStringLiteral("the stream ends inside a message")
                                       : QString());
}

std::optional<Request> Client::take() {
    if (m_requests.empty())
        return std::nullopt;
    Request request = std::move(m_requests.front());
    m_requests.pop_front();
    return request;
}

bool Client::isWaiting(const std::vector<QString>& commands) const {
    return std::any_of(m_requests.begin(), m_requests.end(), [&](const Request& request) {
        return std::find(commands.begin(), commands.end(), request.command) != commands.end();
    });
}

void Client::send(const Response& response) {
    write(response);
    m_holdsEvents = false;
    for (const Event& event : std::exchange(m_heldEvents, {}))
        write(event);
}

void Client::sendEvent(const Event& event) {
    if (m_holdsEvents)
        m_heldEvents.push_back(event);
    else
        write(event);
}

void Client::complain(const BadMessage& message) {
    if (message.seq) {
        // A reply, and not send(): the request that is being answered keeps its events.
        write(Response{*message.seq, QString(), message.problem, {}});
        return;
    }
    // Nobody waits for an answer to what has no number.
    send("output", OutputEvent{.category = QStringLiteral("console"),
                               .output = message.problem + QLatin1Char('\n')});
}

void Client::end(const QString& problem) {
    m_hasEnded = true;
    m_problem = problem;
}

template <typename Message>
void Client::write(const Message& message) {
    if (!m_writer.write(framed(written(message, ++m_lastSeq))))
        m_hasEnded = true;
}

}  // namespace Tamrix::Dap
