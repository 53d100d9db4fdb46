#include "runner/trace/traceserver.h"

#include <QFile>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace Tamrix {

namespace {

/// Of the head of a request, in bytes; browsers send one or two kilobytes.
constexpr int longestHead = 16 * 1024;

struct ContentType {
    const char* suffix;
    const char* type;
};

constexpr ContentType contentTypes[] = {{".html", "text/html; charset=utf-8"},
                                        {".js", "text/javascript; charset=utf-8"},
                                        {".css", "text/css; charset=utf-8"},
                                        {".png", "image/png"}};

const char* contentTypeOf(const QString& path) {
    for (const ContentType& type : contentTypes) {
        if (path.endsWith(QLatin1String(type.suffix)))
            return type.type;
    }
    return nullptr;
}

/// "Host: 127.0.0.1:8080" and its like.
bool isForThisMachine(const QByteArray& head) {
    static const QRegularExpression s_host(
        QStringLiteral("^host:[ \\t]*(127\\.0\\.0\\.1|localhost)(:[0-9]+)?[ \\t]*\\r?$"),
        QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption);
    return s_host.match(QString::fromLatin1(head)).hasMatch();
}

void send(QTcpSocket* socket, const char* status, const char* type, const QByteArray& body,
          bool hasBody = true) {
    socket->write(QByteArray("HTTP/1.1 ") + status + "\r\nContent-Type: " + type +
                  "\r\nContent-Length: " + QByteArray::number(body.size()) +
                  "\r\nCache-Control: no-cache\r\nX-Content-Type-Options: nosniff"
                  "\r\nConnection: close\r\n\r\n");
    if (hasBody)
        socket->write(body);
    socket->disconnectFromHost();
}

void refuse(QTcpSocket* socket, const char* status) {
    send(socket, status, "text/plain; charset=utf-8", QByteArray(status) + '\n');
}

}  // namespace

TraceServer::TraceServer(const QString& folder, QObject* parent, int patience)
    : QObject(parent), m_folder(folder), m_patience(patience) {
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* const socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            // Each is for one file: who does not ask, or does not read, is not waited for.
            QTimer::singleShot(m_patience, socket, [socket] { socket->abort(); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_requests.remove(socket);
                socket->deleteLater();
            });
        }
    });
}

Outcome<> TraceServer::listen(quint16 port) {
    if (m_server.listen(QHostAddress::LocalHost, port))
        return {};
    return fail(FailureKind::Failed, QStringLiteral("port %1 can't be listened on: %2")
                                         .arg(QString::number(port), m_server.errorString()));
}

void TraceServer::read(QTcpSocket* socket) {
    Request& request = m_requests[socket];
    if (request.isAnswered) {
        // What is left unread would take the answer from a client that still writes.
        socket->readAll();
        return;
    }
    request.head += socket->read(longestHead + 1 - request.head.size());
    const int end = request.head.indexOf("\r\n\r\n");
    request.isAnswered = end >= 0 || request.head.size() > longestHead;
    if (end >= 0)
        answer(socket, QByteArray(request.head).left(end + 2));
    else if (request.isAnswered)
        refuse(socket, "431 Request Header Fields Too Large");
}

void TraceServer::answer(QTcpSocket* socket, const QByteArray& head) {
    const QList<QByteArray> words = head.left(head.indexOf("\r\n")).split(' ');
    if (words.size() != 3 || !words.at(2).startsWith("HTTP/1."))
        return refuse(socket, "400 Bad Request");
    if (words.at(0) != "GET" && words.at(0) != "HEAD")
        return refuse(socket, "405 Method Not Allowed");
    if (!isForThisMachine(head))
        return refuse(socket, "403 Forbidden");
    QString path = QUrl::fromPercentEncoding(words.at(1).split('?').constFirst()).mid(1);
    if (path.isEmpty())
        path = QStringLiteral("index.html");
    // Names of our own, which lead nowhere else.
    static const QRegularExpression s_ours(
        QStringLiteral("\\A([a-z]+\\.(html|js|css)|tiles/[0-9a-f]+\\.png|"
                       "case-[0-9]+/([a-z0-9-]+\\.js|tiles/[0-9a-f]+\\.png))\\z"));
    QFile file(m_folder.filePath(path));
    if (!s_ours.match(path).hasMatch() || !file.open(QIODevice::ReadOnly))
        return refuse(socket, "404 Not Found");
    send(socket, "200 OK", contentTypeOf(path), file.readAll(), words.at(0) == "GET");
}

}  // namespace Tamrix
