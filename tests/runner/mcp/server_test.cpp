// What clients of the Model Context Protocol send, and what they get.

#include "runner/mcp/server.h"

#include <gtest/gtest.h>

#include "runner/mcp/memorystream.h"
#include "runner/mcp/protocol/linereader.h"
#include "runner/mcp/tools/arguments.h"
#include "support/printqt.h"

namespace Tamrix::Mcp {
namespace {

using Test::ClientStream;

const std::vector<Tool>& tools() {
    static const std::vector<Tool> s_tools{
        {"echo", "Says it", {{"text", ParameterType::Text, Parameter::Required}}, nullptr},
        {"work", "Takes its time", {}, nullptr}};
    return s_tools;
}

class ServerDialogue : public testing::Test {
protected:
    Outcome<ToolAnswer> call(const Tool& tool, const Json::Value& values) {
        const Outcome<Arguments> arguments = Arguments::read(tool, values);
        if (!arguments)
            return fail(arguments.error());
        if (const auto act = std::exchange(onCall, nullptr))
            act();
        ++callCount;
        return ToolAnswer{arguments->has("text") ? arguments->text("text") : "done"};
    }

    /// What the server says to the lines.
    std::string answersTo(const QByteArray& lines) {
        stream.toServer += lines;
        server.serve();
        return stream.toClient.isEmpty()
                   ? "nothing"
                   : std::exchange(stream.toClient, {}).trimmed().toStdString();
    }
    static QByteArray request(const char* id, const char* method, const char* params) {
        return QByteArray(R"({"jsonrpc":"2.0","id":)") + id + R"(,"method":")" + method +
               R"(","params":)" + params + "}\n";
    }
    static std::string error(const char* id, int code, const char* text) {
        return std::string(R"({"error":{"code":)") + std::to_string(code) + R"(,"message":")" +
               text + R"("},"id":)" + id + R"(,"jsonrpc":"2.0"})";
    }
    static std::string result(const char* id, const char* text, bool isError = false) {
        return std::string(R"({"id":)") + id +
               R"(,"jsonrpc":"2.0","result":{"content":[{"text":")" + text +
               R"(","type":"text"}],"isError":)" + (isError ? "true" : "false") + "}}";
    }

    ClientStream stream;
    /// What happens during the next call.
    std::function<void()> onCall;
    int callCount = 0;
    Server server{stream, stream, tools(), [this](const Tool& tool, const Json::Value& values) {
                      return call(tool, values);
                  }};
};

TEST_F(ServerDialogue, AgreesOnAVersion) {
    const struct {
        const char* wanted;
        const char* agreed;
    } rows[] = {{"2024-11-05", "2024-11-05"},
                {"2025-03-26", "2025-03-26"},
                {"2025-06-18", "2025-06-18"},
                {"1999-01-01", "2025-06-18"}};
    for (const auto& [wanted, agreed] : rows) {
        stream.toServer = request(
            "1", "initialize",
            QByteArray(R"({"protocolVersion":")").append(wanted).append(R"("})").constData());
        server.serve();
        const Json::Value answer = stream.takeMessages()[0]["result"];
        EXPECT_EQ(answer["protocolVersion"], agreed);
        EXPECT_TRUE(answer["capabilities"]["tools"].isObject());
        EXPECT_EQ(answer["serverInfo"]["name"], "tamrix");
    }
    EXPECT_EQ(answersTo(R"({"jsonrpc":"2.0","method":"notifications/initialized"})"
                        "\n"),
              "nothing");
    EXPECT_EQ(answersTo(request("\"a\"", "tools/list", "{}")),
              R"({"id":"a","jsonrpc":"2.0","result":{"tools":[{"description":"Says it",)"
              R"("inputSchema":{"properties":{"text":{"type":"string"}},"required":["text"],)"
              R"("type":"object"},"name":"echo"},{"description":"Takes its time",)"
              R"("inputSchema":{"properties":{},"type":"object"},"name":"work"}]}})");
}

TEST_F(ServerDialogue, AnswersWhateverALineHolds) {
    const QByteArray callEcho = R"({"name":"echo","arguments":{"text":"a\u00e4\n"}})";
    const struct {
        QByteArray line;
        std::string answer;
    } rows[] = {
        {request("1", "tools/call", callEcho), result("1", "aä\\n")},
        {request("2", "tools/call", R"({"name":"echo"})"),
         result("2", "echo: 'text' is missing", true)},
        {request("3", "tools/call", R"({"name":"echo","arguments":{"text":5}})"),
         result("3", "echo: 'text' is to be a text", true)},
        {request("4", "tools/call", R"({"name":"echo","arguments":{"text":"a","more":1}})"),
         result("4", "echo: there is no 'more'; it is called as echo TEXT", true)},
        {request("5", "tools/call", R"({"name":"echo","arguments":[]})"),
         result("5", "echo: the arguments are no object", true)},
        {request("6", "tools/call", R"({"name":"other"})"),
         error("6", -32602, "there is no tool 'other'")},
        {request("7", "tools/call", "{}"),
         error("7", -32602, R"(tools/call: \"name\" is no text)")},
        {request("8", "resources/list", "{}"),
         error("8", -32601, "there is no method 'resources/list'")},
        {request("9", "tools/call", "[]"),
         error("9", -32602, R"(the message's \"params\" is no object)")},
        {request("{}", "ping", "{}"),
         error("null", -32600,
               R"(the message's \"id\" is neither a text nor a number that comes back as it came)")},
        {request("123456789012345678901234567890", "ping", "{}"),
         error("null", -32600,
               R"(the message's \"id\" is neither a text nor a number that comes back as it came)")},
        {request("1.5", "ping", "{}"), R"({"id":1.5,"jsonrpc":"2.0","result":{}})"},
        {request("18446744073709551615", "ping", "{}"),
         R"({"id":18446744073709551615,"jsonrpc":"2.0","result":{}})"},
        {request("10", "ping", "null"), R"({"id":10,"jsonrpc":"2.0","result":{}})"},
        {"5\n", error("null", -32600, "the message is no object")},
        {"[]\n", error("null", -32600, "the list of messages is empty")},
        {"{\"id\":1}\n", error("1", -32600, R"(the message's \"jsonrpc\" is not \"2.0\")")},
        {"{\"jsonrpc\":\"2.0\",\"id\":1}\n",
         error("1", -32600, R"(the message has no \"method\")")},
        // An answer to a request that nobody made, and a blank line.
        {"{\"jsonrpc\":\"2.0\",\"id\":1,\"result\":{}}\n", "nothing"},
        {" \r\n", "nothing"},
        {"{\"a\xff\"\n", error("null", -32700, "the message is no UTF-8 at byte 4")},
        {"[{\"jsonrpc\":\"2.0\",\"id\":1,\"method\":\"ping\"},7,"
         "{\"jsonrpc\":\"2.0\",\"method\":\"x\"}]\n",
         "[" + error("null", -32600, "the message is no object") +
             R"(,{"id":1,"jsonrpc":"2.0","result":{}}])"},
    };
    for (const auto& [line, answer] : rows)
        EXPECT_EQ(answersTo(line), answer) << line.constData();
    for (const QByteArray& line :
         {QByteArray("{\n"), QByteArray("{} {}\n"), QByteArray(100000, '[') + '\n'}) {
        stream.toServer = line;
        server.serve();
        EXPECT_EQ(stream.takeMessages()[0]["error"]["code"], -32700) << line.left(9).constData();
    }
}

TEST_F(ServerDialogue, SkipsMessagesThatAreTooLong) {
    const std::string tooLong = error("null", -32600, "the message is longer than 8388608 bytes");
    // In pieces, so that the server can't keep it.
    stream.toServer = "{\"a\":\"";
    for (int piece = 0; piece < 10; ++piece) {
        stream.toServer += QByteArray(1024 * 1024, 'x');
        server.serve();
    }
    EXPECT_EQ(answersTo("\"}\n" + request("1", "ping", "{}")),
              tooLong + '\n' + R"({"id":1,"jsonrpc":"2.0","result":{}})");
    // At once, with one behind it; and one of exactly the length is none too long.
    EXPECT_EQ(answersTo(QByteArray(9 * 1024 * 1024, ' ') + '\n'), tooLong);
    const QByteArray ping = request("2", "ping", "{}");
    EXPECT_EQ(answersTo(QByteArray(Client::longestMessage - ping.size() + 1, ' ') + ping),
              R"({"id":2,"jsonrpc":"2.0","result":{}})");
}

TEST_F(ServerDialogue, ListensWhileAToolIsAtWork) {
    const QByteArray cancelled =
        R"({"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":)";
    std::vector<bool> goesOn;
    // A ping is answered meanwhile, another call waits, one is cancelled before its turn.
    onCall = [&] {
        stream.toServer = request("2", "ping", "{}") +
                          request("3", "tools/call", R"({"name":"work"})") +
                          request("4", "tools/call", R"({"name":"work"})") + cancelled + "3}}\n";
        goesOn.push_back(server.serveMeanwhile());
    };
    EXPECT_EQ(answersTo(request("1", "tools/call", R"({"name":"work"})")),
              R"({"id":2,"jsonrpc":"2.0","result":{}})"
              "\n" +
                  result("1", "done") + '\n' + result("4", "done"));
    EXPECT_EQ(callCount, 2);
    // A cancelled one ends and is not answered; other numbers mean nothing.
    onCall = [&] {
        stream.toServer = cancelled + "7}}\n" + cancelled + "\"1\"}}\n";
        goesOn.push_back(server.serveMeanwhile());
        stream.toServer = cancelled + "1}}\n";
        goesOn.push_back(server.serveMeanwhile());
    };
    EXPECT_EQ(answersTo(request("1", "tools/call", R"({"name":"work"})")), "nothing");
    // The end of the input leaves time for the answer, unless nobody is there for it.
    onCall = [&] {
        goesOn.push_back(server.serveMeanwhile());
        stream.isGone = true;
        goesOn.push_back(server.serveMeanwhile());
    };
    stream.toServer = request("1", "tools/call", R"({"name":"work"})").trimmed();
    stream.isClosed = true;
    EXPECT_FALSE(server.serve());
    EXPECT_EQ(goesOn, (std::vector<bool>{true, true, false, true, false}));
}

TEST(Json, IsAlwaysSoundUtf8) {
    // jsoncpp takes half of a pair for a character.
    const Outcome<Json::Value> half = parseJson(R"("a\udc00b")");
    ASSERT_TRUE(half);
    EXPECT_EQ(QString::fromUtf8(jsonLine(*half)).count(QChar::ReplacementCharacter), 3);
    EXPECT_EQ(jsonLine(jsonText(QString("a") + QChar(0xd800) + "\n\x01")), "\"a?\\n\\u0001\"");
}

TEST(Tools, CostFewTokens) {
    const QByteArray described = jsonLine(describeTools(allTools()));
    EXPECT_LT(described.size() / 4, 1000) << described.constData();
    EXPECT_EQ(allTools().size(), 16U);
}

TEST(Arguments, ComeFromWords) {
    const Tool tool{"wait",
                    "",
                    {{"target", ParameterType::Text, Parameter::Required},
                     {"item", ParameterType::Path, Parameter::Required},
                     {"properties", ParameterType::Properties, Parameter::Optional},
                     {"timeout", ParameterType::Number, Parameter::Optional},
                     {"on", ParameterType::Flag, Parameter::Optional}},
                    nullptr};
    EXPECT_EQ(usageOf(tool), "wait TARGET ITEM [PROPERTY=VALUE...] [timeout=N] [on=true|false]");
    const struct {
        QStringList words;
        std::string arguments;
    } rows[] = {
        {{"e7", "File.Open"}, R"({"item":"File.Open","target":"e7"})"},
        {{"5", "5", "timeout=5"}, R"({"item":"5","target":"5","timeout":5})"},
        {{"e7", R"(["a","b"])", "on=false", "timeout=0.5"},
         R"({"item":["a","b"],"on":false,"target":"e7","timeout":0.5})"},
        {{"a=b", "on=c", "text=1=2", "text*=x", "checked=true", "value=3"},
         R"({"item":"on=c","properties":{"checked":true,"text":"1=2","text*":"x","value":3},)"
         R"("target":"a=b"})"},
        {{"{type='A'}"}, R"({"target":"{type='A'}"})"},
    };
    for (const auto& [words, arguments] : rows) {
        const Outcome<Json::Value> values = argumentsOfWords(tool, words);
        ASSERT_TRUE(values) << values.error().text.toStdString();
        EXPECT_EQ(jsonLine(*values).toStdString(), arguments);
    }
    EXPECT_EQ(argumentsOfWords(tool, {"e7", "a", "b"}).error().text,
              "wait: 'b' is not understood; it is called as " + usageOf(tool));
}

}  // namespace
}  // namespace Tamrix::Mcp
