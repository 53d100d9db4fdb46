#include "dap/server.h"

#include <poll.h>

#include <algorithm>

#include "dap/requests/request.h"

namespace Tamrix::Dap {

Server::Server(ByteReader& reader, ByteWriter& writer, const QString& runner, ProgramStarter start)
    : m_client(reader, writer),
      m_session(m_client,
                {runner, std::move(start), [this](int milliseconds) { wait(milliseconds); }}) {}

bool Server::serve(int milliseconds) {
    if (m_session.isOver())
        return false;
    wait(milliseconds);
    m_session.update();
    while (const std::optional<Request> request = m_client.take()) {
        answer(*request);
        if (m_session.isOver())
            return false;
        // What a request has brought about comes before the answer to the next one.
        m_session.update();
    }
    return !m_client.hasEnded();
}

void Server::serveToTheEnd() {
    const int withoutLimit = -1;
    while (serve(withoutLimit)) {
    }
    m_session.end();
}

void Server::wait(int milliseconds) {
    std::vector<pollfd> watched;
    // An end that was read once is there for good.
    if (m_client.descriptor() >= 0 && !m_client.hasEnded())
        watched.push_back({m_client.descriptor(), POLLIN, 0});
    m_session.watch(&watched);
    const int soon = 20;
    int limit = milliseconds;
    if (m_session.hasMoreToDo() && (limit < 0 || limit > soon))
        limit = soon;
    // What can't be watched is looked at again and again.
    if (m_client.descriptor() < 0)
        limit = 0;
    ::poll(watched.data(), watched.size(), limit);
    m_client.receive();
}

void Server::answer(const Request& request) {
    m_client.holdEvents();
    Response response;
    response.requestSeq = request.seq;
    response.command = request.command;
    const std::vector<RequestKind>& kinds = requestKinds();
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const RequestKind& each) {
        return request.command == QLatin1String(each.command);
    });
    if (kind == kinds.end()) {
        response.error = QStringLiteral("there is no request '%1'").arg(request.command);
    } else {
        const Outcome<QJsonObject> body = kind->answer(m_session, request.arguments);
        if (body)
            response.body = *body;
        else
            response.error = QStringLiteral("%1: %2").arg(request.command, body.error().text);
    }
    m_client.send(response);
}

}  // namespace Tamrix::Dap
