#include "runner/mcp/protocol/client.h"

#include <utility>

namespace Tamrix::Mcp {

int Client::descriptor() const {
    return m_hasReadAll || m_isGone ? -1 : m_reader.descriptor();
}

void Client::receive() {
    if (m_hasReadAll || m_isGone || m_waiting.size() >= mostWaiting)
        return;
    QByteArray bytes;
    m_hasReadAll = m_reader.read(&bytes) == ByteReader::State::Ended;
    // What stands at the end without a line feed is a line, too.
    if (m_hasReadAll && (!bytes.isEmpty() || m_lines.isInsideLine()))
        bytes += '\n';
    m_lines.append(bytes);
    while (const std::optional<LineReader::Line> line = m_lines.take())
        takeLine(*line);
}

void Client::takeLine(const LineReader::Line& line) {
    if (line.isTooLong) {
        write(errorResponse(
            Json::nullValue, ErrorCode::InvalidRequest,
            QStringLiteral("the message is longer than %1 bytes").arg(longestMessage)));
        return;
    }
    if (line.text.trimmed().isEmpty())
        return;
    Message message = readMessage(line.text);
    std::shared_ptr<Batch> batch;
    if (message.isBatch) {
        batch = std::make_shared<Batch>();
        for (const Json::Value& error : message.errors)
            batch->answers.append(error);
        // Itself, until all of it is taken.
        batch->open = 1;
    } else {
        for (const Json::Value& error : message.errors)
            write(error);
    }
    for (Request& request : message.requests) {
        if (batch)
            ++batch->open;
        takeRequest({std::move(request), batch});
    }
    if (batch)
        finish({{}, batch}, Json::nullValue);
}

void Client::takeRequest(Pending pending) {
    const Request& request = pending.request;
    if (request.method == "notifications/cancelled") {
        cancel(request.params["requestId"]);
        finish(pending, Json::nullValue);
    } else if (request.method == "ping") {
        finish(pending, response(request.id, Json::Value(Json::objectValue)));
    } else {
        m_waiting.push_back(std::move(pending));
    }
}

void Client::cancel(const Json::Value& id) {
    const auto isMeant = [&](const Pending& pending) {
        return !pending.request.isNotification && pending.request.id == id;
    };
    if (m_current && isMeant(*m_current))
        m_current->isCancelled = true;
    for (auto pending = m_waiting.begin(); pending != m_waiting.end();) {
        if (isMeant(*pending)) {
            finish(*pending, Json::nullValue);
            pending = m_waiting.erase(pending);
        } else {
            ++pending;
        }
    }
}

std::optional<Request> Client::take() {
    if (m_waiting.empty())
        return std::nullopt;
    m_current = std::move(m_waiting.front());
    m_waiting.pop_front();
    return m_current->request;
}

void Client::answer(const Json::Value& response) {
    const Pending current = *std::exchange(m_current, std::nullopt);
    finish(current, current.isCancelled ? Json::Value() : response);
}

bool Client::serveMeanwhile() {
    receive();
    m_isGone = m_isGone || !m_writer.isOpen();
    return !m_isGone && !(m_current && m_current->isCancelled);
}

void Client::finish(const Pending& pending, const Json::Value& response) {
    const bool isWanted = !response.isNull() && !pending.request.isNotification;
    if (!pending.batch) {
        if (isWanted)
            write(response);
        return;
    }
    Batch& batch = *pending.batch;
    if (isWanted)
        batch.answers.append(response);
    if (--batch.open == 0 && !batch.answers.empty())
        write(batch.answers);
}

void Client::write(const Json::Value& message) {
    m_isGone = !m_writer.write(jsonLine(message) + '\n') || m_isGone;
}

}  // namespace Tamrix::Mcp
