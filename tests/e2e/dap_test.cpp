// Editors that debug scripts, over the Debug Adapter Protocol.

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>
#include <csignal>

#include "base/bytestream.h"
#include "e2e/runnerprocess.h"
#include "support/dapclient.h"
#include "support/dapprocess.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

const QString suite = QDir(TAMRIX_TEST_SOURCE_DIR).canonicalPath() + "/tests/e2e/suites/debugging";
const QString helper = suite + "/shared/scripts/keypad.py";

QString script(const QString& testCase) {
    return suite + '/' + testCase + "/test.py";
}

/// An editor and the server that it has started.
class DapRun : public testing::Test {
protected:
    void launch(const QString& testCase, QJsonObject arguments = {}) {
        arguments["suite"] = suite;
        arguments["cases"] = QJsonArray{testCase};
        client.launch(arguments);
    }
    void go() { client.body("configurationDone"); }
    QString after(const QString& request) {
        client.body(request, {{"threadId", 1}});
        return client.stop();
    }
    int exitCodeOfRun() {
        const int exitCode = client.event("exited")["exitCode"].toInt(-1);
        client.event("terminated");
        return exitCode;
    }
    /// Ends the session, and expects that the server ends as well.
    void leave() {
        client.body("disconnect");
        EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
    }
    /// The functions of the stack, the innermost first, each with its line.
    QString stack() {
        QStringList frames;
        for (const auto& each :
             client.body("stackTrace", {{"threadId", 1}})["stackFrames"].toArray()) {
            const QJsonObject frame = each.toObject();
            frames.append(QStringLiteral("%1:%2").arg(frame["name"].toString(),
                                                      QString::number(frame["line"].toInt())));
        }
        return frames.join(' ');
    }
    QString evaluated(const QString& expression) {
        return client.body("evaluate", {{"expression", expression}, {"context", "watch"}})["result"]
            .toString();
    }
    static int reference(const QJsonValue& variable) {
        return variable.toObject()["variablesReference"].toInt();
    }
    static QString value(const QJsonValue& variable) {
        return variable.toObject()["value"].toString();
    }

    DapProcess process{
        TAMRIX_TEST_PREFIX "/bin/tamrixrunner", {"dap"}, {{"QT_QPA_PLATFORM", "offscreen"}}};
    DapClient client{process.stream()};
};

TEST_F(DapRun, AFeatureFileAndItsSteps) {
    QTemporaryDir folder;
    const QString shop = QFileInfo(folder.path()).canonicalFilePath() + "/suite_shop";
    const QString feature = shop + "/order/test.feature";
    const QString steps = shop + "/order/steps/order.py";
    ASSERT_TRUE(writeFile(feature,
                          "Feature: orders\n"
                          "  Scenario: pies\n"
                          "    Given 2 pies\n"
                          "    When they are\n"
                          "      | eaten |\n"
                          "    Then none is left\n"));
    ASSERT_TRUE(writeFile(steps,
                          "from bdd import given, when\n"  // 1
                          "@given('{int} pies')\n"         // 2
                          "def pies(context, count):\n"    // 3
                          "    context.count = count\n"    // 4
                          "@when('they are')\n"            // 5
                          "def they_are(context):\n"       // 6
                          "    context.count = 0\n"));     // 7
    client.launch({{"suite", shop}});
    client.setBreakPoints(feature, {5});
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"missingStep"}}});
    go();

    EXPECT_EQ(client.stop(), "breakpoint test.feature:4");
    EXPECT_EQ(evaluated("1 + 1"), "2");
    EXPECT_EQ(after("stepIn"), "step order.py:7");
    EXPECT_EQ(stack(), "they_are:7 When they are:4");
    EXPECT_EQ(evaluated("context.count"), "2");
    EXPECT_EQ(after("stepOut"), "step test.feature:6");

    // The step is written while it stands.
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(client.stop(), "exception test.feature:6");
    EXPECT_EQ(stack(), "Then none is left:6");
    ASSERT_TRUE(writeFile(shop + "/order/steps/left.py",
                          "from bdd import then\n"
                          "@then('none is left')\n"
                          "def none_is_left(context):\n"
                          "    test.compare(context.count, 0)\n"));
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 0);
    leave();
    EXPECT_TRUE(client.fitsProtocol());
}

TEST_F(DapRun, AWholeSessionWithAnApplication) {
    launch("sums");
    client.setBreakPoints(helper, {QJsonObject{{"line", 7}, {"condition", "key == '5'"}}});
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"failedVerdict"}}});
    go();

    EXPECT_EQ(client.stop(), "breakpoint keypad.py:7");
    EXPECT_EQ(stack(), "press:7 add:8 main:15");
    QJsonObject variables = client.variables();
    EXPECT_EQ(value(variables["key"]), "'5'");
    const QJsonObject typed = client.variables(reference(variables["typed"]));
    const QJsonObject keys = client.variables(reference(typed["['keys']"]));
    EXPECT_EQ(value(keys["1"]), "'+'");
    EXPECT_EQ(keys["1"].toObject()["evaluateName"], "typed['keys'][1]");
    const QJsonObject button = client.variables(reference(variables["button"]));
    EXPECT_TRUE(value(button["text"]).contains('5')) << qPrintable(value(button["text"]));
    EXPECT_EQ(evaluated("key + '!'"), "'5!'");
    EXPECT_EQ(evaluated("typed['keys']"), "['7', '+']");

    // What a caller holds.
    const int caller = client.body("scopes", {{"frameId", 2}})["scopes"]
                           .toArray()
                           .at(0)
                           .toObject()["variablesReference"]
                           .toInt();
    EXPECT_EQ(value(client.variables(caller)["text"]), "'7 + 5 ='");

    EXPECT_EQ(after("stepOut"), "step test.py:9");
    EXPECT_EQ(evaluated("typed['keys'][-1]"), "'='");
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 0);
    EXPECT_EQ(client.output("stdout"), "the sum is 12\n");
    EXPECT_TRUE(
        client.output("console").contains("test.py:16: Pass: Comparison: "
                                          "'12' and '12' are equal\n"))
        << qPrintable(client.output("console"));
    leave();

    EXPECT_TRUE(client.fitsProtocol());
}

TEST_F(DapRun, FailuresStopWhereTheyHappen) {
    launch("verdicts");
    client.body("setExceptionBreakpoints",
                {{"filters", QJsonArray{"failedVerdict", "scriptError"}}});
    go();
    EXPECT_EQ(client.stop(), "exception test.py:5");
    EXPECT_EQ(client.body("exceptionInfo", {{"threadId", 1}})["description"],
              "Comparison: '1' and '2' are not equal");
    // Code that is evaluated does not stop.
    EXPECT_EQ(evaluated("check(3)"), "None");
    EXPECT_EQ(evaluated("test.breakpoint()"), "None");
    EXPECT_EQ(after("next"), "step test.py:6");
    EXPECT_EQ(after("continue"), "exception test.py:11");
    EXPECT_TRUE(client.body("exceptionInfo", {{"threadId", 1}})["description"].toString().contains(
        "ValueError: after all"));
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 1);
    EXPECT_EQ(client.output("stderr"),
              "test.py:5: Fail: Comparison: '1' and '2' are not equal\n"
              "test.py:5: Fail: Comparison: '3' and '2' are not equal\n"
              "test.py:11: Error: Script Error: ValueError: after all\n");
    leave();
}

TEST_F(DapRun, AnObjectThatIsNotFoundStopsBeforeItsError) {
    launch("missing");
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray{"objectNotFound"}}});
    go();
    EXPECT_EQ(client.stop(), "exception test.py:7");
    const QString details =
        client.body("exceptionInfo", {{"threadId", 1}})["description"].toString();
    EXPECT_TRUE(details.startsWith("{text='55' type='Button'}\n")) << qPrintable(details);
    EXPECT_TRUE(details.contains("Nearest:\n")) << qPrintable(details);
    // Looked for again, and not there again.
    EXPECT_EQ(after("continue"), "exception test.py:7");
    client.body("setExceptionBreakpoints", {{"filters", QJsonArray()}});
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 1);
    leave();
}

TEST_F(DapRun, ASignalEndsServerAndRun) {
    launch("endless");
    go();
    while (!client.output("stdout").contains("ready"))
        client.event("output");
    process.sendSignal(SIGTERM);
    EXPECT_EQ(process.exitCode(), 0) << process.errors().constData();
}

TEST_F(DapRun, ARunningScriptIsPausedChangedAndRestarted) {
    launch("endless", {{"stopOnEntry", true}});
    go();
    EXPECT_EQ(client.stop(), "entry test.py:1");
    client.body("continue", {{"threadId", 1}});
    while (!client.output("stdout").contains("ready"))
        client.event("output");
    client.body("pause", {{"threadId", 1}});
    EXPECT_TRUE(client.stop().startsWith("pause test.py:")) << qPrintable(stack());
    client.body("continue", {{"threadId", 1}});
    // A break point that comes while it runs.
    EXPECT_EQ(client.setBreakPoints(script("endless"), {10}).at(0).toObject()["verified"], false);
    EXPECT_EQ(client.event("breakpoint")["breakpoint"].toObject()["verified"], true);
    EXPECT_EQ(client.stop(), "breakpoint test.py:10");

    client.body("restart");
    EXPECT_EQ(client.stop(), "entry test.py:1");
    EXPECT_EQ(after("continue"), "breakpoint test.py:10");
    EXPECT_EQ(client.body("setExpression", {{"expression", "rounds"}, {"value", "-7"}})["value"],
              "-7");
    client.setBreakPoints(script("endless"), {});
    client.body("continue", {{"threadId", 1}});
    EXPECT_EQ(exitCodeOfRun(), 0);
    EXPECT_TRUE(client.output("stdout").endsWith("released\n"));
    leave();
}

TEST_F(DapRun, EachCaseOfARunHasTheBreakPoints) {
    client.launch({{"suite", suite}, {"cases", QJsonArray{"first", "second"}}});
    client.setBreakPoints(suite + "/shared/scripts/counting.py",
                          {QJsonObject{{"line", 7}, {"hitCondition", "% 4"}},
                           QJsonObject{{"line", 8}, {"logMessage", "{total} up to {until}"}}});
    go();
    for (const QString testCase : {"first", "second"}) {
        EXPECT_EQ(client.stop(), "breakpoint counting.py:7");
        EXPECT_EQ(stack(), "count:7 main:7");
        const QJsonArray threads = client.body("threads")["threads"].toArray();
        EXPECT_EQ(threads.at(0).toObject()["name"], testCase);
        EXPECT_EQ(evaluated("number"), "3");
        // Out of the function: what is only logged on the way does not hold a step up.
        EXPECT_EQ(after("stepOut"), "step test.py:8");
        client.body("continue", {{"threadId", 1}});
    }
    EXPECT_EQ(exitCodeOfRun(), 0);
    EXPECT_EQ(client.output("console").count("counting.py:8: 6 up to 4\n"), 2)
        << qPrintable(client.output("console"));
    leave();
}

TEST_F(DapRun, DisconnectingEndsARunThatDoesNotEnd) {
    launch("endless");
    go();
    while (!client.output("stdout").contains("ready"))
        client.event("output");
    leave();
}

TEST_F(DapRun, ARunThatCanNotBeginTellsWhy) {
    launch("no_such_case");
    go();
    EXPECT_EQ(exitCodeOfRun(), 2);
    EXPECT_TRUE(client.output("stderr").contains("no_such_case"))
        << qPrintable(client.output("stderr"));
    leave();
}

TEST_F(DapRun, AStreamThatIsNoneIsToldOnStandardError) {
    client.writeRaw("GET / HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_EQ(process.errors(),
              "tamrixrunner: the client can't be understood: the header of a message has a line "
              "without a name: 'GET / HTTP/1.1'\n");
}

TEST(DapPort, ServesOneClientOnTheLoopback) {
    RunnerProcess runner;
    runner.start({"dap", "--port", "0"});
    ASSERT_TRUE(runner.waitForErrors("\n"));
    const int port = runner.errors().section(' ', -1).trimmed().toInt();
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<in_port_t>(port));
    ASSERT_EQ(::connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address), 0)
        << qPrintable(runner.errors());
    DapClient client({[&](const QByteArray& bytes) { DescriptorWriter(connection).write(bytes); },
                      [&] {
                          QByteArray bytes(4096, Qt::Uninitialized);
                          const ssize_t count = ::read(connection, bytes.data(), 4096);
                          return bytes.left(static_cast<int>(count));
                      }});
    EXPECT_EQ(client.body("initialize", {{"adapterID", "x"}})["supportsLogPoints"], true);
    client.body("disconnect");
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 0);
    ::close(connection);
}

}  // namespace
}  // namespace Tamrix
