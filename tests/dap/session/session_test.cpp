// What a client sees of a script, against a simulated one.

#include <QJsonArray>
#include <QJsonDocument>
#include <csignal>

#include "dap/fakesession.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::SimulatedScript;

class DapSession : public Test::FakeSession {
protected:
    /// Lines of the file that nobody called, one after the other.
    void setLines(const QList<int>& numbers) {
        for (const int number : numbers)
            script.lines.push_back({file, number});
    }
    /// A line of a function that line `caller` called.
    SimulatedScript::Line called(int number, int caller) {
        return {file, number, {QStringLiteral("%1: %2").arg(file, QString::number(caller))}};
    }
    /// Goes on and returns the next stop.
    QString after(const QString& request) {
        client.body(request, {{"threadId", 1}});
        return client.stop();
    }
    /// Goes on to the end and returns the exit code.
    int exitCodeAfter(const QString& request) {
        client.body(request, {{"threadId", 1}});
        const int exitCode = client.event("exited")["exitCode"].toInt(-1);
        client.event("terminated");
        return exitCode;
    }
    QString evaluated(const QString& expression, const QString& context = "watch") {
        return client.body("evaluate", {{"expression", expression}, {"context", context}})["result"]
            .toString();
    }
};

TEST_F(DapSession, StopsAtABreakPointAndRunsToTheEnd) {
    setLines({1, 2, 3, 4});
    script.exitCode = 1;
    start({3});
    EXPECT_EQ(client.event("breakpoint")["breakpoint"].toObject()["verified"], true);
    EXPECT_EQ(client.stop(), "breakpoint test.py:3");
    EXPECT_EQ(exitCodeAfter("continue"), 1);
    EXPECT_EQ(client.error("continue", {{"threadId", 1}}),
              "continue: the script does not stand still");
    client.body("disconnect");
    EXPECT_FALSE(server.serve(0));
}

TEST_F(DapSession, StartsTheRunThatTheConfigurationTells) {
    setLines({1});
    start({}, {{"cases", QJsonArray{"a", "b"}},
               {"arguments", QJsonArray{"--fast", "x y"}},
               {"display", ":7"},
               {"env", QJsonObject{{"A", "1"}, {"B", QJsonValue()}}}});
    client.event("exited");
    ASSERT_EQ(script.starts.size(), 1u);
    const Dap::ProgramStart& started = script.starts[0];
    EXPECT_EQ(started.program, "tamrixrunner");
    EXPECT_EQ(started.arguments.mid(0, 4).join(' '), "run --debugger --no-console --result-dir");
    EXPECT_EQ(started.arguments.mid(5),
              (QStringList{"--aut-display", ":7", folder.path(), "a", "b", "--", "--fast", "x y"}));
    EXPECT_EQ(started.environment, (Dap::TextMap{{"A", "1"}, {"B", std::nullopt}}));
}

TEST_F(DapSession, ASuiteThatIsNoFolderIsTold) {
    client.body("initialize", {{"adapterID", "tamrix"}});
    EXPECT_EQ(client.error("launch", {{"suite", "/no/such"}}),
              "launch: the suite '/no/such' is no folder");
    EXPECT_EQ(client.error("launch"), "launch: 'suite' is missing");
    EXPECT_EQ(client.error("restart"), "restart: no run has been launched yet");
    EXPECT_EQ(client.error("pause", {{"threadId", 1}}), "pause: no script is running");
}

TEST_F(DapSession, WaitsForTheConfigurationAndStopsOnEntry) {
    setLines({1, 2});
    client.launch({{"suite", folder.path()}, {"stopOnEntry", true}});
    client.body("threads");
    EXPECT_TRUE(script.commands.isEmpty());
    client.body("configurationDone");
    EXPECT_EQ(client.stop(), "entry test.py:1");
    const QJsonArray threads = client.body("threads")["threads"].toArray();
    EXPECT_EQ(threads.at(0).toObject()["name"], "a_case");
}

TEST_F(DapSession, WithoutDebuggingNothingStops) {
    setLines({1, 2});
    start({2}, {{"noDebug", true}, {"stopOnEntry", true}}, {"failedVerdict"});
    EXPECT_EQ(client.event("exited")["exitCode"], 0);
    EXPECT_EQ(script.commands, QStringList{"continue"});
}

TEST_F(DapSession, ConditionsCountsAndMessagesDecideAboutAStop) {
    setLines({1, 5, 6, 7, 5, 6, 7, 5, 6, 7, 9});
    int round = 0;
    script.evaluate = [&](const QString& code, int line) -> QString {
        if (code == "bool(n == 2)")
            return ++round == 2 ? "True" : "False";
        if (code == "bool(wrong)")
            return "NameError: name 'wrong' is not defined";
        return line == 7 ? QString::number(round) : code;
    };
    start({QJsonObject{{"line", 5}, {"condition", "n == 2"}},
           QJsonObject{{"line", 6}, {"hitCondition", ">= 3"}},
           QJsonObject{{"line", 7}, {"logMessage", "n is {n}."}},
           QJsonObject{{"line", 9}, {"condition", "wrong"}}});
    EXPECT_EQ(client.stop(), "breakpoint test.py:5");
    EXPECT_EQ(after("continue"), "breakpoint test.py:6");
    client.body("continue", {{"threadId", 1}});
    // A condition that fails stops, and says why.
    EXPECT_EQ(client.event("stopped")["text"],
              "The condition 'wrong' failed: NameError: name 'wrong' is not defined");
    EXPECT_EQ(client.output("console"),
              "test.py:7: n is 1.\ntest.py:7: n is 2.\ntest.py:7: n is 3.\n");
}

TEST_F(DapSession, AStepGoesOnBehindABreakPointThatLetsItPass) {
    script.lines = {{file, 1},     {file, 2},     called(11, 2), called(12, 2),
                    {file, 3},     called(11, 3), called(12, 3), {file, 4},
                    called(11, 4), called(12, 4), {file, 5}};
    script.evaluate = [](const QString&, int) { return QString("False"); };
    start({2, QJsonObject{{"line", 12}, {"condition", "False"}}});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    EXPECT_EQ(after("next"), "step test.py:3");
    EXPECT_EQ(after("stepIn"), "step test.py:11");
    EXPECT_EQ(after("next"), "step test.py:12");
    EXPECT_EQ(after("stepOut"), "step test.py:4");
    // Out of the outermost function is to the end.
    EXPECT_EQ(after("stepIn"), "step test.py:11");
    EXPECT_EQ(after("stepOut"), "step test.py:5");
}

TEST_F(DapSession, ABreakPointOnTheWayEndsAStep) {
    script.lines = {{file, 1}, {file, 2}, called(11, 2), called(12, 2), {file, 3}};
    start({2, 12});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    EXPECT_EQ(after("next"), "breakpoint test.py:12");
    EXPECT_EQ(after("next"), "step test.py:3");
}

TEST_F(DapSession, BreakPointsThatAreGoneStopNoMore) {
    setLines({1, 2, 3, 4, 5});
    const QString other = "/suite/case/late.py";
    script.lateFiles = {other};
    script.lines.push_back({other, 1});
    script.lines.push_back({file, 6});
    start({2});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    client.setBreakPoints(other, {1});
    client.setBreakPoints(file, {2, 3, 4, 6});
    // The debugger can't delete one of a file that is not loaded.
    client.setBreakPoints(other, {});
    client.setBreakPoints(file, {4, 6});
    EXPECT_EQ(after("continue"), "breakpoint test.py:4");
    EXPECT_EQ(after("continue"), "breakpoint test.py:6");
    EXPECT_TRUE(script.commands.contains("delete " + file + ":3"));
}

TEST_F(DapSession, BreakPointsTellTheirState) {
    setLines({1, 2});
    script.lateFiles = {"/suite/case/late.py"};
    start({2});
    client.stop();
    const auto states = [&](const QString& path, const QJsonArray& breakPoints) {
        QStringList result;
        for (const auto& each : client.setBreakPoints(path, breakPoints)) {
            const QJsonObject breakPoint = each.toObject();
            result += QString(breakPoint["verified"].toBool() ? "verified" : "not verified") + ' ' +
                      breakPoint["message"].toString();
        }
        return result.join('\n');
    };
    EXPECT_EQ(states("/suite/case/late.py", {1}),
              "verified The script has not loaded this file yet.");
    EXPECT_EQ(states(file, {-5}), "not verified invalid line number");
    EXPECT_EQ(
        states(file, {QJsonObject{{"line", 2}, {"hitCondition", "x"}}}),
        "not verified the hit condition 'x' is none: a number from 1 on is expected, alone or "
        "behind ==, >, >=, <, <= or %");
}

TEST_F(DapSession, ARunningScriptIsInterruptedForBreakPointsAndPauses) {
    setLines({1, 2, -1, 3, 4, 5});
    start({2});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    client.body("continue", {{"threadId", 1}});
    const QJsonArray set = client.setBreakPoints(file, {4});
    EXPECT_EQ(set.at(0).toObject()["message"], "It takes effect when the script stops next.");
    EXPECT_EQ(client.event("breakpoint")["reason"], "changed");
    EXPECT_EQ(client.stop(), "breakpoint test.py:4");
    EXPECT_EQ(script.signalNumbers, QList<int>{SIGINT});
}

TEST_F(DapSession, APauseStopsAtTheNextLine) {
    setLines({1, -1, 3, 4});
    start();
    client.body("threads");
    client.body("pause", {{"threadId", 1}});
    EXPECT_EQ(client.stop(), "pause test.py:3");
    // One that stands still stays so.
    client.body("pause", {{"threadId", 1}});
    EXPECT_EQ(exitCodeAfter("continue"), 0);
    EXPECT_EQ(script.signalNumbers, QList<int>{SIGINT});
}

TEST_F(DapSession, FailedVerdictsStopWithTheirText) {
    const QByteArray verdict =
        R"({"kind":"result","type":11,"message":"Comparison","detail":"'1' and '2' are not equal",)"
        R"("callStack":[{"file":"/suite/case/test.py","line":3}]})"
        "\n";
    script.lines = {{file, 1}, {file, 2}, {file, 3}};
    script.lines.push_back(
        {file, 3, {}, verdict, {}, "@line 3, column -1, " + file.toUtf8() + ':'});
    script.lines.push_back({file, 4});
    start({}, {}, {"failedVerdict", "objectNotFound"});
    const QJsonObject stopped = client.event("stopped");
    EXPECT_EQ(stopped["reason"], "exception");
    EXPECT_EQ(stopped["description"], "Failed verdict");
    EXPECT_EQ(stopped["text"], "Comparison: '1' and '2' are not equal");
    EXPECT_EQ(client.body("exceptionInfo", {{"threadId", 1}})["description"],
              "Comparison: '1' and '2' are not equal");
    EXPECT_EQ(client.output("stderr"), "test.py:3: Fail: Comparison: '1' and '2' are not equal\n");
    EXPECT_TRUE(script.commands.contains("eval testSettings.breakOnFailure%20%3D%20True"));
    EXPECT_TRUE(script.commands.contains("eval testSettings.objectNotFoundDebugging%20%3D%20True"));
    EXPECT_TRUE(script.commands.contains("enableObjectNotFoundDebugging"));
    EXPECT_EQ(client.error("setExceptionBreakpoints", {{"filters", QJsonArray{"what"}}}),
              "setExceptionBreakpoints: there is no exception filter 'what'");
}

TEST_F(DapSession, ScriptErrorsStopIfThatIsWanted) {
    const QByteArray stop =
        "@notify ScriptError\tValueError: a\\,b\nTDBG:@line 2, column -1, " + file.toUtf8() + ':';
    script.lines = {{file, 1}, {file, 2, {}, {}, {}, stop}, {file, 2, {}, {}, {}, stop}, {file, 3}};
    start({}, {}, {"scriptError"});
    const QJsonObject stopped = client.event("stopped");
    EXPECT_EQ(stopped["description"], "Script error");
    EXPECT_EQ(stopped["text"], "ValueError: a,b");
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray()}});
    EXPECT_EQ(exitCodeAfter("continue"), 0);
}

TEST_F(DapSession, AnObjectThatIsNotFoundStopsWithTheNearMisses) {
    const QByteArray stop =
        "@objLookupError 2\t-1\t" + file.toUtf8() + "\t:button\tnearest: \\\"button2\\\"";
    script.lines = {{file, 1}, {file, 2, {}, {}, {}, stop}, {file, 2, {}, {}, {}, stop}, {file, 3}};
    start({}, {}, {"objectNotFound"});
    EXPECT_EQ(client.event("stopped")["text"], ":button");
    EXPECT_EQ(client.body("exceptionInfo", {{"threadId", 1}})["description"],
              ":button\nnearest: \"button2\"");
    // Looked for again, it is not there again; then the error takes its course.
    EXPECT_EQ(after("continue"), "exception test.py:2");
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray()}});
    EXPECT_EQ(exitCodeAfter("continue"), 0);
    EXPECT_EQ(client.error("exceptionInfo", {{"threadId", 1}}),
              "exceptionInfo: the script does not stand at a failure or an error");
}

TEST_F(DapSession, ASearchForAnImageIsMendedWhereItStands) {
    const QByteArray stop = "@imgLookupError 2\t-1\t" + file.toUtf8() + "\tsave.png\t3\t/tmp/a\\,b";
    script.lines = {{file, 1}, {file, 2, {}, {}, {}, stop}, {file, 3}};
    script.searchState = R"({"imageSearchOccurrence":1})";
    start({}, {}, {"imageNotFound"});
    EXPECT_TRUE(script.commands.contains("enableImageNotFoundDebugging"));
    EXPECT_TRUE(script.commands.contains("eval testSettings.imageNotFoundDebugging%20%3D%20True"));
    EXPECT_EQ(client.event("stopped")["description"], "Image not found");
    const QJsonObject search{{"subject", "save.png"},
                             {"screenshot", "/tmp/a,b"},
                             {"state", QJsonObject{{"imageSearchOccurrence", 1}}}};
    EXPECT_EQ(client.event("tamrixSearchFailed"), search);
    EXPECT_EQ(client.body("tamrixSearch", {}), search);
    const QJsonObject change{{"state", QJsonObject{{"imageSearchName", "a b"}}}};
    EXPECT_EQ(client.body("tamrixSetSearchState", change), search);
    EXPECT_TRUE(
        script.commands.contains("setInterpreterStateFor ImageLookup "
                                 "%7B%22imageSearchName%22%3A%22a%20b%22%7D"));
    script.searchStateError = "Unknown keys: foo";
    EXPECT_EQ(client.error("tamrixSetSearchState", change),
              "tamrixSetSearchState: Unknown keys: foo");
    EXPECT_EQ(client.error("tamrixSetSearchState", {{"state", 5}}),
              "tamrixSetSearchState: 'state' is to be an object");
    EXPECT_EQ(exitCodeAfter("continue"), 0);
    EXPECT_EQ(client.error("tamrixSearch", {}),
              "tamrixSearch: the script does not stand at a search that failed");
}

TEST_F(DapSession, TellsWhatTheScriptWritesInItsOrder) {
    script.lines = {{file, 1},
                    {file,
                     2,
                     {},
                     R"({"kind":"output","message":"printed\n","extra":"stdout"})"
                     "\n"},
                    {file, 3, {}, {}, "raw"},
                    {file,
                     4,
                     {},
                     R"({"kind":"result","type":7,"message":"logged"})"
                     "\n"}};
    start({4});
    client.stop();
    EXPECT_EQ(client.output("stdout"), "rawprinted\n");
    EXPECT_EQ(client.output("console"), "Log: logged\n");
}

TEST_F(DapSession, TheStackCanBeReadInPieces) {
    script.lines = {{file, 1},
                    {file, 30, {file + ": 20", "/suite/case/helper.py: 10", file + ": 2"}}};
    start({30});
    client.event("stopped");
    const QJsonObject all = client.body("stackTrace", {{"threadId", 1}});
    EXPECT_EQ(all["totalFrames"], 4);
    const QJsonArray frames = all["stackFrames"].toArray();
    ASSERT_EQ(frames.size(), 4);
    EXPECT_EQ(frames.at(2).toObject()["source"].toObject()["path"], "/suite/case/helper.py");
    EXPECT_EQ(frames.at(2).toObject()["line"], 10);
    const QJsonArray some =
        client
            .body("stackTrace", {{"threadId", 1}, {"startFrame", 1}, {"levels", 2}})["stackFrames"]
            .toArray();
    EXPECT_EQ(some, (QJsonArray{frames.at(1), frames.at(2)}));
    // Code can't be evaluated in what is below the top.
    EXPECT_EQ(client.error("scopes", {{"frameId", 5}}), "scopes: there is no frame 5");
    EXPECT_EQ(client.error("evaluate", {{"expression", "x"}, {"frameId", 2}}),
              "evaluate: only the function in which the script stands can be looked into");
}

TEST_F(DapSession, VariablesAreReadALevelAndAPageAtATime) {
    setLines({1, 2, 3});
    script.listings = {{"", "int#count=3,dict#+person={...},Button#+button,set#+seen={...}"},
                       {"+person", "str#person.['name']='Ann',list#+person.['a.b']=[...]"},
                       {"+person.['a.b']",
                        "int#person.['a.b'].0=7,int#person.['a.b'].1=8,"
                        "rest#+person.['a.b'].@2=9 more"},
                       {"+person.['a.b'].@2", "int#person.['a.b'].2=9"},
                       {"+button", "str#button.text='OK'"},
                       {"+seen", "int#seen.0=1"}};
    start({2});
    client.stop();
    EXPECT_FALSE(script.commands.contains("print variables"));
    const QJsonObject top = client.variables();
    EXPECT_EQ(top.keys(), (QStringList{"button", "count", "person", "seen"}));
    EXPECT_EQ(top["count"].toObject()["value"], "3");
    EXPECT_EQ(top["count"].toObject()["variablesReference"], 0);
    EXPECT_EQ(top["button"].toObject()["value"], "Button");
    const auto reference = [](const QJsonValue& variable) {
        return variable.toObject()["variablesReference"].toInt();
    };
    const int person = reference(top["person"]);
    const QJsonObject inside = client.variables(person);
    EXPECT_EQ(inside["['name']"].toObject()["evaluateName"], "person['name']");
    const int tags = reference(inside["['a.b']"]);
    const QJsonObject elements = client.variables(tags);
    EXPECT_EQ(elements["1"].toObject()["evaluateName"], "person['a.b'][1]");
    EXPECT_EQ(elements["..."].toObject()["value"], "9 more");
    EXPECT_FALSE(elements["..."].toObject().contains("evaluateName"));
    const QJsonObject rest = client.variables(reference(elements["..."]));
    EXPECT_EQ(rest["2"].toObject()["evaluateName"], "person['a.b'][2]");
    const QJsonObject seen = client.variables(reference(top["seen"]));
    EXPECT_FALSE(seen["0"].toObject().contains("evaluateName"));

    const QJsonArray page =
        client
            .body("variables",
                  {{"variablesReference", tags}, {"start", 1}, {"count", 1}})["variables"]
            .toArray();
    ASSERT_EQ(page.size(), 1);
    EXPECT_EQ(page.at(0).toObject()["value"], "8");
    // Each level was asked for once.
    EXPECT_EQ(script.commands.filter("print variables").size(), 5);

    after("next");
    EXPECT_EQ(client.error("variables", {{"variablesReference", person}}),
              QString("variables: the script has gone on since the variables %1 were listed")
                  .arg(person));
}

TEST_F(DapSession, CallersShowTheirOwnVariables) {
    script.lines = {{file, 1}, called(11, 2)};
    script.listings = {
        {"", "int#x=1"}, {"+^1", "int#^1.x=2,list#+^1.y=[...]"}, {"+^1.y", "int#^1.y.0=3"}};
    start({11});
    client.stop();
    const int outer = client.body("scopes", {{"frameId", 2}})["scopes"]
                          .toArray()
                          .at(0)
                          .toObject()["variablesReference"]
                          .toInt();
    const QJsonObject variables = client.variables(outer);
    EXPECT_EQ(variables["x"].toObject()["value"], "2");
    EXPECT_FALSE(variables["x"].toObject().contains("evaluateName"));
    const QJsonObject below =
        client.variables(variables["y"].toObject()["variablesReference"].toInt());
    EXPECT_EQ(below["0"].toObject()["value"], "3");
    EXPECT_EQ(client.variables()["x"].toObject()["value"], "1");
}

TEST_F(DapSession, CodeIsEvaluatedAndValuesAreChanged) {
    setLines({1, 2});
    script.listings = {{"", "int#count=3,dict#+person={...}"},
                       {"+person", "str#person.['name']='Ann',str#person.?=1"}};
    script.evaluate = [this](const QString& code, int) -> QString {
        if (code == "count = 4") {
            script.listings[""] = "int#count=4,dict#+person={...}";
            return "";
        }
        return code == "count" ? "3" : code == "person" ? "{...}" : "NameError: " + code;
    };
    start({2});
    client.stop();
    EXPECT_EQ(evaluated("count"), "3");
    EXPECT_EQ(client.error("evaluate", {{"expression", "ä b"}, {"context", "hover"}}),
              "evaluate: NameError: ä b");
    const QJsonObject top = client.variables();
    const QJsonObject known =
        client.body("evaluate", {{"expression", "person"}, {"context", "watch"}});
    EXPECT_EQ(known["variablesReference"], top["person"].toObject()["variablesReference"]);

    const int reference = client.body("scopes", {{"frameId", 1}})["scopes"]
                              .toArray()
                              .at(0)
                              .toObject()["variablesReference"]
                              .toInt();
    const auto set = [&](int parent, const QString& name) {
        return QJsonObject{{"variablesReference", parent}, {"name", name}, {"value", "4"}};
    };
    EXPECT_EQ(client.body("setVariable", set(reference, "count"))["value"], "4");
    client.event("invalidated");
    EXPECT_EQ(client.error("setVariable", set(reference, "other")),
              "setVariable: there is no variable 'other'");
    const int person = top["person"].toObject()["variablesReference"].toInt();
    EXPECT_EQ(client.error("setVariable", set(person, "?")),
              "setVariable: nothing can be assigned to '?'");
    EXPECT_EQ(client.body("setExpression", {{"expression", "count"}, {"value", "4"}})["value"],
              "3");
    EXPECT_EQ(client.error("setExpression", {{"expression", "1"}, {"value", "4"}}),
              "setExpression: NameError: 1 = 4");
}

TEST_F(DapSession, NamesAreCompleted) {
    setLines({1, 2});
    script.listings = {{"", "int#count=3,int#cost=4,Person#+person"},
                       {"+person", "str#person.name='Ann',int#person.number=1"}};
    start({2});
    client.stop();
    const auto completed = [&](const QString& text, int column) {
        const QJsonObject answer = client.body("completions", {{"text", text}, {"column", column}});
        QString labels;
        for (const auto& each : answer["targets"].toArray()) {
            const QJsonObject item = each.toObject();
            labels += QStringLiteral("%1@%2 ").arg(item["label"].toString(),
                                                   QString::number(item["start"].toInt()));
        }
        return labels.trimmed();
    };
    EXPECT_EQ(completed("co", 3), "count@1 cost@1");
    EXPECT_EQ(completed("1 + cou + 2", 8), "count@5");
    EXPECT_EQ(completed("person.", 8), "name@8 number@8");
    EXPECT_EQ(completed("f(person.na", 12), "name@10");
    EXPECT_EQ(completed("count.x", 8), "");
    EXPECT_EQ(completed("c", 99), "count@1 cost@1");
    EXPECT_EQ(completed("c", -5), "count@1 cost@1 person@1");
}

TEST_F(DapSession, ARestartBeginsAnewWithTheBreakPoints) {
    setLines({1, 2, 3});
    start({2, QJsonObject{{"line", 3}, {"hitCondition", "1"}}});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    EXPECT_EQ(after("continue"), "breakpoint test.py:3");
    client.body(
        "restart",
        {{"arguments", QJsonObject{{"suite", folder.path()}, {"cases", QJsonArray{"other"}}}}});
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    EXPECT_EQ(after("continue"), "breakpoint test.py:3");
    ASSERT_EQ(script.starts.size(), 2u);
    EXPECT_EQ(script.starts[1].arguments.last(), "other");
}

TEST_F(DapSession, EndsTheRunWithTheSession) {
    setLines({1, 2, -1, 3});
    start({2});
    client.stop();
    client.body("terminate");
    client.event("terminated");
    EXPECT_EQ(script.commands.last(), "quit");
    client.body("restart");
    EXPECT_EQ(client.stop(), "breakpoint test.py:2");
    client.body("continue", {{"threadId", 1}});
    client.body("disconnect");
    EXPECT_EQ(script.signalNumbers, QList<int>{SIGTERM});
}

TEST_F(DapSession, CountsAsTheClientDoes) {
    setLines({1, 2});
    client.body("initialize",
                {{"adapterID", "x"}, {"linesStartAt1", false}, {"columnsStartAt1", false}});
    client.body("launch", {{"suite", folder.path()}});
    const QJsonArray set = client.setBreakPoints(file, {1});
    EXPECT_EQ(set.at(0).toObject()["line"], 1);
    client.body("configurationDone");
    EXPECT_EQ(client.stop(), "breakpoint test.py:1");
    EXPECT_TRUE(script.commands.contains("break " + file + ":2"));
    EXPECT_EQ(client.error("initialize", {{"adapterID", "x"}, {"pathFormat", "uri"}}),
              "initialize: 'pathFormat' is 'uri'; sources are told by 'path' only");
}

TEST_F(DapSession, GivesTheTextOfASource) {
    const QString path = folder.filePath("a.py");
    ASSERT_TRUE(Tamrix::Test::writeFile(path, "ä = 1\n"));
    const auto source = [](const QString& of) {
        return QJsonObject{{"source", QJsonObject{{"path", of}}}, {"sourceReference", 0}};
    };
    EXPECT_EQ(client.body("source", source(path))["content"], "ä = 1\n");
    EXPECT_EQ(client.error("source", source("/no/such")),
              "source: '/no/such' can't be read: No such file or directory");
    EXPECT_EQ(client.error("source", source("/dev/zero")), "source: '/dev/zero' is no file");
    EXPECT_EQ(client.error("source", {{"sourceReference", 1}}), "source: 'source.path' is missing");
}

}  // namespace
}  // namespace Tamrix
