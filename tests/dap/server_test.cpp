// What comes in a stream that is not as it should be.

#include <QJsonArray>

#include "dap/fakesession.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using DapServer = Test::FakeSession;

QByteArray framed(const QByteArray& message) {
    return "Content-Length: " + QByteArray::number(message.size()) + "\r\n\r\n" + message;
}

TEST_F(DapServer, UnknownRequestsAndWrongArgumentsAreErrors) {
    EXPECT_EQ(client.error("fly"), "there is no request 'fly'");
    EXPECT_EQ(client.error("setBreakpoints", {{"source", 1}}),
              "setBreakpoints: 'source' is to be an object");
    EXPECT_EQ(client.error("scopes"), "scopes: 'frameId' is missing");
}

TEST_F(DapServer, GoesOnBehindAMessageThatIsNoRequest) {
    client.writeRaw(framed("{") + framed(QByteArray(5000, '[')) + framed("{\"a\":\"\xff\"}") +
                    framed(R"({"seq":9,"type":"request"})"));
    EXPECT_EQ(client.event("output")["output"],
              "a message is no JSON: unterminated object at byte 1\n");
    EXPECT_EQ(client.event("output")["output"],
              "a message is no JSON: too deeply nested document at byte 1025\n");
    EXPECT_EQ(client.event("output")["output"], "a message is not UTF-8\n");
    const QJsonObject answer = client.receive();
    EXPECT_EQ(answer["request_seq"], 9);
    EXPECT_EQ(answer["message"], "a request has no text 'command'");
    EXPECT_TRUE(client.request("threads")["success"].toBool());
}

TEST_F(DapServer, AStreamThatCanNotBeReadOnEndsTheSession) {
    struct Row {
        QByteArray bytes;
        const char* problem;
    };
    const Row rows[] = {
        {"Content-Type: x\r\n\r\n{}", "the header of a message has no Content-Length"},
        {"Content-Length: 4294967296\r\n\r\n",
         "the header of a message tells a length of 4294967296 bytes; at most 67108864 are taken"},
        {"Content-Length: 20\r\n\r\n{\"seq\":", "the stream ends inside a message"},
        {"Content-Len", "the stream ends inside a message"},
        {"", ""},
    };
    for (const Row& row : rows) {
        Tamrix::Test::MemoryStream bytes;
        Dap::Server other(bytes, bytes, "tamrixrunner", script.starter());
        bytes.toServer = framed(R"({"seq":1,"type":"request","command":"threads"})") + row.bytes;
        bytes.isClosed = true;
        other.serveToTheEnd();
        EXPECT_EQ(other.problem(), row.problem);
        // What came before was answered.
        EXPECT_TRUE(bytes.toClient.contains("\"command\":\"threads\"")) << row.problem;
    }
}

TEST_F(DapServer, AClientThatGoesAwayTakesTheRunWithIt) {
    script.lines = {{file, 1}, {file, -1}, {file, 2}};
    start();
    client.body("threads");
    stream.isClosed = true;
    EXPECT_FALSE(server.serve(0));
    server.serveToTheEnd();
    EXPECT_FALSE(script.signalNumbers.isEmpty());
}

}  // namespace
}  // namespace Tamrix
