// The messages of a whole session, as they are.

#include <QJsonArray>
#include <QJsonDocument>

#include "dap/fakesession.h"
#include "dap/protocol/messages.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using DapMessages = Test::FakeSession;

TEST_F(DapMessages, OfAWholeSessionFitTheProtocol) {
    script.lines = {{file, 1},
                    {file,
                     2,
                     {},
                     R"({"kind":"output","message":"printed\n","extra":"stdout"})"
                     "\n"},
                    {file,
                     11,
                     {file + ": 2"},
                     R"({"kind":"result","type":11,"message":"Not verified","detail":"a",)"
                     R"("callStack":[{"file":"/suite/case/test.py","line":11}]})"
                     "\n"},
                    {file, 3},
                    {file, -1},
                    {file, 4}};
    script.listings = {{"", "int#count=3,dict#+table={...}"}, {"+table", "int#table.['a']=1"}};
    script.evaluate = [](const QString& code, int) -> QString {
        return code == "bad" ? "NameError: bad" : "3";
    };
    const QJsonObject thread{{"threadId", 1}};
    start({2, QJsonObject{{"line", 3}, {"hitCondition", "often"}}}, {{"stopOnEntry", true}},
          {"failedVerdict"});
    client.stop();
    client.body("threads");
    client.body("continue", thread);
    client.stop();
    client.variables(client.variables()["table"].toObject()["variablesReference"].toInt());
    client.body("evaluate", {{"expression", "table"}, {"context", "hover"}, {"frameId", 1}});
    client.error("evaluate", {{"expression", "bad"}});
    client.body("setVariable", {{"variablesReference", 1}, {"name", "count"}, {"value", "4"}});
    client.body("setExpression", {{"expression", "count"}, {"value", "4"}});
    client.body("completions", {{"text", "c"}, {"column", 2}});
    client.body("stepIn", thread);
    client.stop();
    client.body("exceptionInfo", thread);
    client.body("stepOut", thread);
    client.stop();
    client.error("source", {{"source", QJsonObject{{"path", "/no/such"}}}, {"sourceReference", 0}});
    client.body("next", thread);
    client.body("pause", thread);
    client.body("terminate");
    client.event("terminated");
    client.body("restart");
    client.stop();
    client.body("disconnect");

    EXPECT_TRUE(client.fitsProtocol());
    EXPECT_TRUE(Tamrix::Test::compareWithGolden(
        "dap/session.jsonl", Tamrix::Test::Normaliser().path(
                                 folder.path(), "<SUITE>")(QString::fromUtf8(client.dialogue()))));
}

/// What a launch configuration may say, by its field's names.
struct FieldNames {
    QStringList names;
    template <typename T>
    void operator()(const char* name, const T&) {
        names.append(name);
    }
};

TEST(LaunchConfiguration, IsTheSameForTheServerAndForVisualStudioCode) {
    FieldNames fields;
    const Dap::LaunchArguments arguments;
    Dap::LaunchArguments::visitFields(arguments, fields);
    // That one is the editor's own.
    fields.names.removeAll("noDebug");
    fields.names.sort();
    const QJsonObject manifest =
        QJsonDocument::fromJson(
            Tamrix::Test::readFile(TAMRIX_TEST_SOURCE_DIR "/editors/vscode/package.json"))
            .object();
    const QJsonObject debugger =
        manifest["contributes"].toObject()["debuggers"].toArray().at(0).toObject();
    const QJsonObject launch = debugger["configurationAttributes"].toObject()["launch"].toObject();
    EXPECT_EQ(launch["properties"].toObject().keys(), fields.names);
    EXPECT_EQ(launch["required"].toArray(), QJsonArray{"suite"});
}

}  // namespace
}  // namespace Tamrix
