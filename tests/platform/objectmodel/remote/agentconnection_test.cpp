#include "platform/objectmodel/remote/agentconnection.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>

#include <QElapsedTimer>
#include <QtEndian>

#include "support/failuretext.h"
#include "support/fakeagent.h"
#include "support/printqt.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Test::failureText;
using Test::FakeAgent;
using Wire::Frame;
using Wire::MessageType;
using Kind = FailureKind;

/// Long enough for every answer that comes at all.
constexpr int patience = 100'000;

QByteArray frameHead(quint32 length, quint32 sequence, MessageType type) {
    QByteArray head(10, '\0');
    qToBigEndian(length, head.data());
    qToBigEndian(sequence, head.data() + 4);
    qToBigEndian(static_cast<quint16>(type), head.data() + 8);
    return head;
}

TEST(AgentConnection, RefusesWhoeverIsNoAgentOfThisRun) {
    const struct {
        std::function<void(FakeAgent&)> play;
        const char* reason;
        bool isTold;
    } rows[] = {
        {[](FakeAgent& agent) {
             Wire::Hello hello = FakeAgent::hello();
             hello.version = 7;
             agent.sayHello(hello);
         },
         "the agent in the application speaks version 7 of the protocol, the runner version 6: "
         "both must be of the same installation",
         true},
        {[](FakeAgent& agent) {
             Wire::Hello hello = FakeAgent::hello();
             hello.token = "guessed";
             hello.pid = 5;
             agent.sayHello(hello);
         },
         "the agent of process 5 shows a token that is not of this run", true},
        {[](FakeAgent& agent) {
             Wire::Hello hello = FakeAgent::hello();
             hello.magic = 1;
             agent.sayHello(hello);
         },
         "the other side is no agent", false},
        {[](FakeAgent& agent) { agent.sendBytes(frameHead(2, 0, MessageType::Hello) + "xy"); },
         "the other side is no agent", false},
        {[](FakeAgent& agent) { agent.sendBytes(frameHead(0, 1, MessageType::Reply)); },
         "the other side is no agent", false},
        {[](FakeAgent& agent) { agent.sendBytes("GET / HTTP/1.1\r\n\r\n"); },
         "a message of 1195725856 bytes came, at most 65536 are taken", false},
        {[](FakeAgent& agent) { agent.hangUp(); }, "the other side closed the connection", false},
        {[](FakeAgent&) {}, "the other side sent no hello within 100 ms", false},
    };
    for (const auto& row : rows) {
        std::atomic<bool> isTold = false;
        {
            const FakeAgent agent([&](FakeAgent& self) {
                row.play(self);
                while (const auto frame = self.next()) {
                    Wire::Text text;
                    isTold = frame->type == MessageType::Refusal &&
                             Wire::decode(frame->body, &text) && text.text == row.reason;
                }
            });
            AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
            // Only the last of them says nothing.
            const bool isSilent = QString(row.reason).contains("within 100 ms");
            EXPECT_FALSE(connection.waitForHello(isSilent ? 100 : patience));
            EXPECT_EQ(connection.state(), AgentConnection::State::Closed);
            EXPECT_EQ(connection.errorText(), row.reason);
            // The fake ends by itself when it reads the end of the connection.
            if (row.isTold)
                Tamrix::Test::waitUntil([&] { return isTold.load(); });
        }
        EXPECT_EQ(isTold, row.isTold) << row.reason;
    }
}

TEST(AgentConnection, TakesTheLastAnswerOfAProcessThatHasEnded) {
    std::atomic<bool> mayAnswer = false;
    std::atomic<bool> hasAnswered = false;
    const FakeAgent agent(FakeAgent::serving([&](FakeAgent& self, const Frame& frame) {
        while (!mayAnswer)
            ::usleep(1000);
        self.reply(frame, "the last");
        hasAnswered = true;
    }));
    AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
    ASSERT_TRUE(connection.waitForHello(patience)) << connection.errorText().toStdString();
    // Somebody finds out about the end before the answer was read.
    connection.setIdleHook([&] {
        mayAnswer = true;
        while (!hasAnswered)
            ::usleep(1000);
        connection.close("the process has ended");
        return true;
    });
    const Outcome<QByteArray> reply = connection.request(MessageType::RealName, {}, patience);
    ASSERT_TRUE(reply) << reply.error().text.toStdString();
    EXPECT_EQ(failureText(connection.request(MessageType::RealName, {}, patience)),
              "The connection to the application has ended: the process has ended");
    EXPECT_EQ(connection.state(), AgentConnection::State::Closed);
}

TEST(AgentConnection, GivesUpAnswersAndDropsThemWhenTheyComeLate) {
    Frame held;
    const FakeAgent agent(FakeAgent::serving([&](FakeAgent& self, const Frame& frame) {
        if (frame.type == MessageType::RealName) {
            held = frame;
        } else {
            self.fire("callback", {4, "QWidget", "w"});
            if (held.sequence != 0)
                self.reply(held, "late");
            self.reply(frame, "right");
        }
    }));
    AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
    ASSERT_TRUE(connection.waitForHello(patience)) << connection.errorText().toStdString();
    EXPECT_EQ(connection.hello().program, "/bin/fake");

    Outcome<QByteArray> reply = connection.request(MessageType::RealName, {}, 30);
    ASSERT_FALSE(reply);
    EXPECT_EQ(reply.error().kind, Kind::TimedOut);
    EXPECT_EQ(reply.error().text, "The application did not answer within 30 ms");

    int rounds = 0;
    connection.setIdleHook([&] { return ++rounds < 3; });
    EXPECT_EQ(failureText(connection.request(MessageType::RealName, {}, patience)),
              "The wait was given up");
    connection.setIdleHook([&] {
        EXPECT_FALSE(connection.ping(1)) << "one request at a time";
        return true;
    });

    reply = connection.request(MessageType::Parent, {}, patience);
    EXPECT_EQ(reply.value_or("none"), "right");
    const auto events = connection.takeEvents();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].object.objectName, "w");
    EXPECT_TRUE(connection.takeEvents().empty());
}

TEST(AgentConnection, FaultsOfThePeerEndTheRequestAtOnce) {
    const int processEnd = ::eventfd(1, EFD_CLOEXEC);
    const struct {
        std::function<void(FakeAgent&, const Frame&)> answer;
        Kind kind;
        const char* text;
        bool hasProcessEnded;
    } rows[] = {
        {[](FakeAgent& agent, const Frame&) { agent.hangUp(); }, Kind::Ended,
         "The connection to the application has ended: the other side closed the connection",
         false},
        {[](FakeAgent& agent, const Frame& frame) {
             agent.sendBytes(frameHead(100, frame.sequence, MessageType::Reply) + "cut");
             agent.hangUp();
         },
         Kind::Ended,
         "The connection to the application has ended: the other side closed the connection",
         false},
        {[](FakeAgent& agent, const Frame&) {
             agent.sendBytes(frameHead(0x10000001, 0, MessageType::EventFired));
         },
         Kind::Ended,
         "The connection to the application has ended: a message of 268435457 bytes came, at most "
         "268435456 are taken",
         false},
        {[](FakeAgent& agent, const Frame&) {
             agent.sendBytes(frameHead(0, 99, MessageType::Reply));
         },
         Kind::Ended,
         "The connection to the application has ended: the application sent a message of type 10 "
         "that nobody asked for",
         false},
        {[](FakeAgent& agent, const Frame&) {
             agent.sendBytes(frameHead(1, 0, MessageType::EventFired) + "x");
         },
         Kind::Ended,
         "The connection to the application has ended: the application sent an event that can't "
         "be read",
         false},
        {[](FakeAgent& agent, const Frame& frame) { agent.reply(frame, "no text"); }, Kind::Failed,
         "The application's answer to request 37 can't be read", false},
        {[](FakeAgent& agent, const Frame& frame) {
             agent.fail(frame, FailureKind::Gone, "It is gone");
         },
         Kind::Gone, "It is gone", false},
        {[](FakeAgent&, const Frame&) {}, Kind::Ended,
         "The connection to the application has ended: the process has ended", true},
    };
    for (const auto& row : rows) {
        const FakeAgent agent(FakeAgent::serving(row.answer));
        AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
        ASSERT_TRUE(connection.waitForHello(patience));
        if (row.hasProcessEnded)
            connection.setProcessDescriptor(processEnd);
        QElapsedTimer timer;
        timer.start();
        const auto name = connection.ask<Wire::Text>(MessageType::RealName,
                                                     Wire::encode(Wire::ObjectHandle{1}), patience);
        EXPECT_LT(timer.elapsed(), patience / 2);
        ASSERT_FALSE(name);
        EXPECT_EQ(name.error().kind, row.kind) << row.text;
        EXPECT_EQ(name.error().text, row.text);
    }
    ::close(processEnd);
}

TEST(AgentConnection, AnAnswerThatIsTooLongFailsItsRequestOnly) {
    const FakeAgent agent(FakeAgent::serving([](FakeAgent& self, const Frame& frame) {
        // The body of the long one ends in the middle of the time.
        if (frame.type == MessageType::RealName)
            self.sendBytes(
                frameHead(Wire::maximalBodySize + 1, frame.sequence, MessageType::Reply));
        else
            self.reply(frame, "right");
    }));
    AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
    ASSERT_TRUE(connection.waitForHello(patience));
    EXPECT_EQ(failureText(connection.request(MessageType::RealName, {}, patience)),
              "The application's answer is too long: a message of 268435457 bytes came, at most "
              "268435456 are taken");
    EXPECT_TRUE(connection.isOpen());
    // Nor is a request sent that the application would refuse.
    EXPECT_EQ(failureText(connection.request(MessageType::WriteProperty,
                                             QByteArray(Wire::maximalBodySize + 1, 'x'), patience)),
              "The request is too long: it has 268435457 bytes of at most 268435456");
    EXPECT_TRUE(connection.isOpen());
}

TEST(AgentConnection, LittlePatienceEndsWithAnApplicationThatDoesNothing) {
    const FakeAgent agent(FakeAgent::serving([](FakeAgent&, const Frame&) {}));
    AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
    ASSERT_TRUE(connection.waitForHello(patience));
    for (const int busyTests : {0, 2}) {
        int tests = 0;
        connection.setStallTest([&] { return tests++ > busyTests; });
        QElapsedTimer timer;
        timer.start();
        const Outcome<QByteArray> reply = connection.request(
            MessageType::LookUp, {}, patience, AgentConnection::Patience::WhileItRuns);
        ASSERT_FALSE(reply);
        EXPECT_EQ(reply.error().kind, Kind::TimedOut);
        EXPECT_EQ(reply.error().text, "The application does not answer");
        EXPECT_EQ(tests, busyTests + 2);
        EXPECT_GE(timer.elapsed(), (busyTests + 1) * AgentConnection::stallInterval - 100);
        EXPECT_LT(timer.elapsed(), patience);
    }
}

TEST(AgentConnection, SettlesOnceAfterInput) {
    std::vector<MessageType> seen;
    int turns = 0;
    {
        const FakeAgent agent(FakeAgent::serving([&](FakeAgent& self, const Frame& frame) {
            seen.push_back(frame.type);
            self.reply(frame);
        }));
        AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
        ASSERT_TRUE(connection.waitForHello(patience));
        connection.setTurnHook([&] {
            ++turns;
            // Nothing is due yet before the input, and the hook is not asked within itself.
            EXPECT_TRUE(connection.settle(patience));
        });
        EXPECT_TRUE(connection.settle(patience));
        EXPECT_TRUE(connection.request(MessageType::KeyEvent, {}, patience));
        EXPECT_TRUE(connection.settle(patience));
        EXPECT_TRUE(connection.settle(patience));
        EXPECT_TRUE(connection.ping(patience));
        EXPECT_TRUE(connection.request(MessageType::LookUp, {}, patience));
    }
    EXPECT_EQ(turns, 2);
    EXPECT_EQ(seen, (std::vector<MessageType>{MessageType::KeyEvent, MessageType::Sync,
                                              MessageType::Ping, MessageType::LookUp}));
}

TEST(AgentConnection, SyncsBeforeTheRequestAfterInput) {
    std::vector<MessageType> seen;
    bool isBusy = false;
    {
        const FakeAgent agent(FakeAgent::serving([&](FakeAgent& self, const Frame& frame) {
            seen.push_back(frame.type);
            if (frame.type == MessageType::Quit)
                isBusy = true;
            if (frame.type != MessageType::Sync || !isBusy)
                self.reply(frame);
        }));
        AgentConnection connection(agent.runnerDescriptor(), FakeAgent::token);
        ASSERT_TRUE(connection.waitForHello(patience));
        const auto send = [&](MessageType type, const QByteArray& body, int timeout = patience) {
            return connection.request(type, body, timeout);
        };
        Wire::Invoke call;
        EXPECT_TRUE(send(MessageType::Invoke, Wire::encode(call)));
        EXPECT_TRUE(connection.ping(patience));
        call.handle = 4;
        EXPECT_TRUE(send(MessageType::Invoke, Wire::encode(call)));
        EXPECT_TRUE(send(MessageType::KeyEvent, {}));
        EXPECT_TRUE(send(MessageType::Quit, {}));
        // A busy application: first the whole time is over, then only that of the Sync.
        EXPECT_EQ(failureText(send(MessageType::LookUp, {}, 20)),
                  "The application did not come to rest within 20 ms after the last input");
        connection.setSyncTimeout(20);
        EXPECT_TRUE(send(MessageType::LookUp, {}));
        EXPECT_TRUE(send(MessageType::LookUp, {}));
    }
    EXPECT_EQ(seen,
              (std::vector<MessageType>{
                  MessageType::Invoke, MessageType::Ping, MessageType::Sync, MessageType::Invoke,
                  MessageType::KeyEvent, MessageType::Sync, MessageType::Quit, MessageType::Sync,
                  MessageType::Sync, MessageType::LookUp, MessageType::LookUp}));
}

}  // namespace
}  // namespace Tamrix
