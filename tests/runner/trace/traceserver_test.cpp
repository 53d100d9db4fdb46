#include "runner/trace/traceserver.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include "runner/coreapplication.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class TraceServerTest : public testing::Test {
protected:
    TraceServerTest() {
        writeFile(folder.filePath("trace/index.html"), "<p>page");
        writeFile(folder.filePath("trace/case-0001/steps-0001.js"), "traceStep({});");
        writeFile(folder.filePath("trace/tiles/0af3.png"), QByteArray("\0png", 4));
        writeFile(folder.filePath("trace/notes.txt"), "secret");
        writeFile(folder.filePath("outside.js"), "secret");
        EXPECT_TRUE(server.listen(0));
    }

    QByteArray ask(const QByteArray& request) {
        QTcpSocket client;
        client.connectToHost("127.0.0.1", server.port());
        client.write(request);
        QByteArray answer;
        QElapsedTimer timer;
        timer.start();
        while (client.state() != QAbstractSocket::UnconnectedState && timer.elapsed() < 100'000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            answer += client.readAll();
        }
        return answer + client.readAll();
    }

    QByteArray get(const QByteArray& path, const QByteArray& host = "127.0.0.1") {
        return ask("GET " + path + " HTTP/1.1\r\nHost: " + host + "\r\n\r\n");
    }

    QCoreApplication& application = coreApplication();
    QTemporaryDir folder;
    TraceServer server{folder.filePath("trace")};
};

TEST_F(TraceServerTest, GivesTheFilesOfATrace) {
    const struct {
        const char* path;
        const char* type;
        QByteArray body;
    } rows[] = {{"/", "text/html", "<p>page"},
                {"/index.html?1", "text/html", "<p>page"},
                {"/case-0001/steps-0001.js", "text/javascript", "traceStep({});"},
                {"/tiles/0af3.png", "image/png", QByteArray("\0png", 4)}};
    for (const auto& row : rows) {
        const QByteArray answer = get(row.path, "localhost:80");
        EXPECT_TRUE(answer.startsWith("HTTP/1.1 200 OK\r\n")) << row.path;
        EXPECT_TRUE(answer.contains(row.type)) << row.path;
        EXPECT_TRUE(answer.endsWith("\r\n\r\n" + row.body)) << row.path;
    }
    EXPECT_TRUE(ask("HEAD / HTTP/1.1\r\nHost: localhost\r\n\r\n").endsWith("\r\n\r\n"));
}

TEST_F(TraceServerTest, RefusesEverythingElse) {
    const struct {
        QByteArray request;
        const char* status;
    } rows[] = {
        {"GET /notes.txt HTTP/1.1\r\nHost: localhost\r\n\r\n", "404"},
        {"GET /../outside.js HTTP/1.1\r\nHost: localhost\r\n\r\n", "404"},
        {"GET /case-0001/%2e%2e/%2e%2e/outside.js HTTP/1.1\r\nHost: localhost\r\n\r\n", "404"},
        {"GET /none.js HTTP/1.1\r\nHost: localhost\r\n\r\n", "404"},
        {"GET / HTTP/1.1\r\nHost: evil.example\r\n\r\n", "403"},
        {"GET / HTTP/1.1\r\nHost: localhost.evil.example\r\n\r\n", "403"},
        {"GET / HTTP/1.1\r\n\r\n", "403"},
        {"POST / HTTP/1.1\r\nHost: localhost\r\n\r\n", "405"},
        {"nonsense\r\n\r\n", "400"},
        {QByteArray(100000, 'x'), "431"}};
    for (const auto& row : rows) {
        const QByteArray answer = ask(row.request);
        EXPECT_TRUE(answer.startsWith(QByteArray("HTTP/1.1 ") + row.status))
            << row.request.left(80).constData() << ": " << answer.constData();
        EXPECT_FALSE(answer.contains("secret"));
    }
}

TEST_F(TraceServerTest, ATakenPortIsTold) {
    TraceServer second(folder.path());
    const Outcome<> refused = second.listen(server.port());
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().text.startsWith(
        QString("port %1 can't be listened on: ").arg(server.port())));
}

}  // namespace
}  // namespace Tamrix
