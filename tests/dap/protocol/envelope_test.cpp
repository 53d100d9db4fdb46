#include "dap/protocol/envelope.h"

#include <gtest/gtest.h>

#include "dap/protocol/messages.h"
#include "support/printqt.h"

namespace Tamrix::Dap {
namespace {

TEST(Envelope, ReadsARequestWithAndWithoutArguments) {
    const auto request =
        readRequest(R"({"seq":7,"type":"request","command":"next","arguments":{"threadId":1}})");
    ASSERT_TRUE(request);
    EXPECT_EQ(request->seq, 7);
    EXPECT_EQ(request->command, "next");
    EXPECT_EQ(request->arguments["threadId"].toInt(), 1);
    EXPECT_TRUE(readRequest(R"({"seq":8,"type":"request","command":"threads","arguments":null})"));
}

TEST(Envelope, WhatIsNoRequestTellsWhyAndWhetherItCanBeAnswered) {
    struct Row {
        QByteArray message;
        const char* problem;
        std::optional<int> seq;
    };
    const Row rows[] = {
        {"{", "a message is no JSON: unterminated object at byte 1", {}},
        {"[1]", "a message is no JSON object", {}},
        {"{\"seq\":1,\"command\":\"\xff\"}", "a message is not UTF-8", {}},
        {QByteArray(100000, '['),
         "a message is no JSON: too deeply nested document at byte 1025",
         {}},
        {R"({"type":"request","command":"x"})", "a message has no number 'seq'", {}},
        {R"({"seq":1.5,"type":"request","command":"x"})", "a message has no number 'seq'", {}},
        {R"({"seq":1e300,"type":"request","command":"x"})", "a message has no number 'seq'", {}},
        {R"({"seq":3,"type":"event"})", "a message is no request, but its 'type' is 'event'", 3},
        {R"({"seq":3,"type":"request"})", "a request has no text 'command'", 3},
        {R"({"seq":3,"type":"request","command":"x","arguments":[]})",
         "the 'arguments' of 'x' are no object", 3},
    };
    for (const Row& row : rows) {
        const auto request = readRequest(row.message);
        ASSERT_FALSE(request) << row.message.left(100).constData();
        EXPECT_EQ(request.error().problem, row.problem);
        EXPECT_EQ(request.error().seq, row.seq);
    }
}

TEST(Json, WrongFieldsAreNamedWithTheirPlace) {
    struct Row {
        QJsonObject json;
        const char* problem;
    };
    const QJsonObject source{{"path", "a.py"}};
    const Row rows[] = {
        {{}, "'source' is missing"},
        {{{"source", 1}}, "'source' is to be an object"},
        {{{"source", QJsonObject{{"path", 1}}}}, "'source.path' is to be a text"},
        {{{"source", source}, {"breakpoints", 1}}, "'breakpoints' is to be a list"},
        {{{"source", source}, {"breakpoints", QJsonArray{QJsonObject()}}},
         "'breakpoints[0].line' is missing"},
        {{{"source", source}, {"breakpoints", QJsonArray{QJsonObject{{"line", 1.5}}}}},
         "'breakpoints[0].line' is to be a whole number"},
        {{{"source", source}, {"breakpoints", QJsonArray{QJsonObject{{"line", 1e18}}}}},
         "'breakpoints[0].line' is to be a whole number"},
    };
    for (const Row& row : rows) {
        const auto arguments = fromJson<SetBreakpointsArguments>(row.json);
        ASSERT_FALSE(arguments) << row.problem;
        EXPECT_EQ(arguments.error().text, row.problem);
    }
    const auto launch = fromJson<LaunchArguments>(
        {{"suite", "s"}, {"env", QJsonObject{{"A", 1}}}, {"stopOnEntry", true}});
    ASSERT_FALSE(launch);
    EXPECT_EQ(launch.error().text, "'env.A' is to be a text or null");
}

TEST(Json, ReadsWhatItWrites) {
    LaunchArguments launch;
    launch.suite = "suite";
    launch.cases = {{"a", "b"}};
    launch.env = TextMap{{"SET", "x"}, {"UNSET", std::nullopt}};
    launch.stopOnEntry = true;
    const QJsonObject json = toJson(launch);
    EXPECT_FALSE(json.contains("display"));
    const auto again = fromJson<LaunchArguments>(json);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->cases, launch.cases);
    EXPECT_EQ(again->env, launch.env);
    EXPECT_EQ(toJson(*again), json);
}

}  // namespace
}  // namespace Tamrix::Dap
