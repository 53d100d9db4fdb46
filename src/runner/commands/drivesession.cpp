#include "runner/commands/drivesession.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QThread>
#include <csignal>
#include <utility>

#include "base/bytestream.h"
#include "runner/applications/usersockets.h"
#include "runner/mcp/protocol/json.h"
#include "runner/mcp/protocol/linereader.h"
#include "wire/framechannel.h"

namespace Tamrix {

namespace {

constexpr int startPatience = 10000;
constexpr int endPatience = 15000;
constexpr int pollInterval = 20;
constexpr int longestAnswer = 64 * 1024 * 1024;

const QString& socketKind() {
    static const QString s_kind = QStringLiteral("tamrix-drive");
    return s_kind;
}

Outcome<QString> socketOf(const QString& name) {
    return userSocketPath(socketKind(), name, QStringLiteral("a session"));
}

}  // namespace

Outcome<DriveSession> DriveSession::connect(const QString& name) {
    const Outcome<QString> path = socketOf(name);
    if (!path)
        return fail(path.error());
    const Outcome<int> descriptor = Wire::connectLocalSocket(*path);
    if (!descriptor)
        return fail(FailureKind::NotFound,
                    QStringLiteral("there is no session '%1': begin one with \"tamrixrunner drive "
                                   "start PROGRAM\"")
                        .arg(name));
    return DriveSession(*descriptor);
}

Outcome<DriveSession> DriveSession::connectOrStart(const QString& name, const QString& display) {
    clearLeftUserSockets(socketKind());
    Outcome<DriveSession> running = connect(name);
    if (running || running.error().kind != FailureKind::NotFound)
        return running;
    const Outcome<QString> path = socketOf(name);
    QProcess process;
    process.setProgram(QCoreApplication::applicationFilePath());
    process.setArguments({QStringLiteral("mcp"), QStringLiteral("--listen"), *path,
                          QStringLiteral("--aut-display"), display});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached())
        return fail(FailureKind::Failed,
                    QStringLiteral("the session can't be started: %1").arg(process.errorString()));
    const QDeadlineTimer deadline(startPatience);
    while (!deadline.hasExpired()) {
        Outcome<DriveSession> started = connect(name);
        if (started)
            return started;
        QThread::msleep(pollInterval);
    }
    return fail(FailureKind::TimedOut,
                QStringLiteral("the session does not listen within %1 ms").arg(startPatience));
}

DriveSession::~DriveSession() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

DriveSession::DriveSession(DriveSession&& other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1)) {}

Outcome<Json::Value> DriveSession::call(const QString& tool, const Json::Value& arguments) {
    Json::Value request(Json::objectValue);
    request["jsonrpc"] = "2.0";
    request["id"] = 1;
    request["method"] = "tools/call";
    request["params"]["name"] = Mcp::jsonText(tool);
    request["params"]["arguments"] = arguments;
    const tl::unexpected<Failure> ended =
        fail(FailureKind::Ended, QStringLiteral("the session has ended"));
    if (!DescriptorWriter(m_descriptor).write(Mcp::jsonLine(request) + '\n'))
        return ended;
    DescriptorReader reader(m_descriptor);
    Mcp::LineReader lines(longestAnswer);
    while (true) {
        pollfd watched{m_descriptor, POLLIN, 0};
        ::poll(&watched, 1, -1);
        QByteArray bytes;
        const bool isEnd = reader.read(&bytes) == ByteReader::State::Ended;
        lines.append(bytes);
        if (const std::optional<Mcp::LineReader::Line> line = lines.take()) {
            const Outcome<Json::Value> answer = Mcp::parseJson(line->text);
            if (!answer)
                return answer;
            if (answer->isMember("result"))
                return (*answer)["result"];
            return fail(FailureKind::Failed, Mcp::textOf((*answer)["error"]["message"]));
        }
        if (isEnd)
            return ended;
    }
}

Outcome<> DriveSession::stop() {
    ucred peer{};
    socklen_t size = sizeof(peer);
    if (::getsockopt(m_descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 || peer.pid <= 0 ||
        ::kill(peer.pid, SIGTERM) != 0)
        return fail(FailureKind::Failed, QStringLiteral("the session can't be ended"));
    // The connection ends with the process.
    DescriptorReader reader(m_descriptor);
    QByteArray bytes;
    const QDeadlineTimer deadline(endPatience);
    while (!deadline.hasExpired()) {
        pollfd watched{m_descriptor, POLLIN, 0};
        ::poll(&watched, 1, pollInterval);
        if (reader.read(&bytes) == ByteReader::State::Ended)
            return {};
    }
    return fail(FailureKind::TimedOut,
                QStringLiteral("the session, process %1, does not end").arg(peer.pid));
}

}  // namespace Tamrix
