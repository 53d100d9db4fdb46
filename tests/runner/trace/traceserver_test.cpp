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

TEST_F(TraceServerTest, AnswersAConnectionOnceAndNotForLong) {
    // 1. What comes behind a request is dropped.
    const QByteArray request = "GET / HTTP/1.1\r\nHost: localhost\r\n\r\n";
    EXPECT_EQ(ask(request + request).count("200 OK"), 1);
    EXPECT_EQ(ask(QByteArray(1000000, 'x')).count("HTTP/1.1 431"), 1);
    // 2. Half requests, and readers that don't read, keep nobody else waiting, nor do they stay.
    writeFile(folder.filePath("trace/case-0001/steps-0002.js"), QByteArray(20000000, ' '));
    TraceServer impatient(folder.filePath("trace"), nullptr, 300);
    ASSERT_TRUE(impatient.listen(0));
    QTcpSocket half;
    QTcpSocket deaf;
    deaf.setReadBufferSize(1);
    for (QTcpSocket* const socket : {&half, &deaf})
        socket->connectToHost("127.0.0.1", impatient.port());
    half.write("GET / HTT");
    deaf.write("GET /case-0001/steps-0002.js HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_TRUE(get("/").contains("<p>page"));
    QElapsedTimer timer;
    timer.start();
    while ((half.state() != QAbstractSocket::UnconnectedState ||
            deaf.state() == QAbstractSocket::ConnectingState) &&
           timer.elapsed() < 20000)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    EXPECT_EQ(half.state(), QAbstractSocket::UnconnectedState);
    // Its end is behind what it has not read.
    deaf.setReadBufferSize(0);
    qint64 read = 0;
    while (deaf.state() != QAbstractSocket::UnconnectedState && timer.elapsed() < 20000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        read += deaf.readAll().size();
    }
    EXPECT_EQ(deaf.state(), QAbstractSocket::UnconnectedState);
    EXPECT_LT(read, 20000000);
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
