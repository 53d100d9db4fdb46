// Coding agents that drive real programs: by the Model Context Protocol, and by commands.

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>

#include "e2e/agentclient.h"
#include "e2e/documentblock.h"
#include "runner/processes/shellwords.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using namespace Test;

const std::string widgetExamples = "/usr/lib/x86_64-linux-gnu/qt5/examples/widgets/";

class Agents : public testing::Test {
protected:
    QString start(const std::string& program) {
        return agent.answer("start", arguments({{"program", program}}));
    }
    QString answer(const char* tool, const std::string& target) {
        return agent.answer(tool, arguments({{"target", target}}));
    }

    ScriptedAgent agent;
    QTemporaryDir folder;
};

TEST_F(Agents, WriteASuiteForAProgramTheyHaveNeverSeen) {
    EXPECT_EQ(agent.request(
                  "initialize",
                  arguments({{"protocolVersion", "2025-06-18"}}))["result"]["serverInfo"]["name"],
              "tamrix");
    // 1. The agent looks, and does what it sees.
    QString view = start(widgetExamples + "dialogs/classwizard/classwizard");
    const auto next = [&] {
        view = agent.act("click", arguments({{"target", refOf(view, "\\w+ \"Next >\"")}}));
        view = agent.answer("snapshot");
    };
    next();
    agent.act("fill",
              arguments({{"target", refOf(view, "QLineEdit \"Class name")}, {"text", "Gadget"}}));
    agent.act("fill",
              arguments({{"target", refOf(view, "QLineEdit \"Base class")}, {"text", "QObject"}}));
    const QString checked =
        agent.act("check", arguments({{"target", refOf(view, "QCheckBox \"Generate Q_OBJECT")}}));
    EXPECT_TRUE(checked.contains("[checked]") && checked.startsWith("check(\"{"))
        << checked.toStdString();
    next();
    next();
    // 2. What must hold.
    Json::Value properties;
    properties["text"] = "gadget.h";
    const std::string header = refOf(view, "QLineEdit \"Header file");
    const QString verdict =
        agent.act("wait", arguments({{"target", header}, {"properties", properties}}));
    EXPECT_TRUE(verdict.startsWith("test.expect(\"{")) << verdict.toStdString();
    properties["text"] = "gadget.cpp";
    EXPECT_EQ(
        agent
            .answer("wait",
                    arguments({{"target", header}, {"properties", properties}, {"timeout", 0.2}}))
            .section(": ", 0, 1),
        "error: within 0.2 s");
    // 3. The script is that of a case, also what follows; it passes by itself.
    const std::string suite = folder.filePath("suite_new").toStdString();
    const Json::Value testCase = arguments({{"suite", suite}, {"case", "tst_wizard"}});
    EXPECT_TRUE(agent.answer("record_to", testCase).contains("/tst_wizard/test.py has "));
    properties.clear();
    properties["enabled"] = true;
    agent.act("wait", arguments({{"target", header}, {"properties", properties}}));
    EXPECT_TRUE(
        readFile(folder.filePath("suite_new/tst_wizard/test.py")).contains("\"enabled\": True"));
    EXPECT_EQ(agent.answer("run_case", testCase), "1 case: 1 passed; passes 2\n");
    // 4. One that fails says where, and no more; the journal has the rest.
    writeFile(folder.filePath("suite_new/tst_fails/test.py"),
              "def main():\n    test.passes('a')\n");
    const QString failures = agent.answer("run_case", arguments({{"suite", suite}}));
    EXPECT_TRUE(failures.startsWith("2 cases: 1 passed, 1 with errors; "))
        << failures.toStdString();
    EXPECT_TRUE(failures.contains("tst_fails/test.py:2: Error: ")) << failures.toStdString();
    EXPECT_FALSE(failures.contains("tst_wizard")) << failures.toStdString();
    EXPECT_TRUE(
        agent.answer("journal", arguments({{"find", "click"}})).contains("tst_wizard/test.py:"));
    EXPECT_LT(agent.medianActSize() / 4, 150);
    EXPECT_TRUE(agent.answer("record_to", arguments({{"suite", suite}, {"case", "tst_fails"}}))
                    .endsWith("is there already: take another case"));
    agent.runner.closeInput();
    agent.runner.finish();
    EXPECT_EQ(agent.runner.exitCode(), 0) << agent.runner.errors().toStdString();
}

TEST_F(Agents, SeeAGalleryForFewTokens) {
    const QString view = start(widgetExamples + "widgets/styles/styles");
    EXPECT_LT(view.toUtf8().size() / 4, 700) << view.toStdString();
    EXPECT_GT(view.count('\n'), 15) << view.toStdString();
    // A slider, a tab, a combo box, a picture.
    EXPECT_TRUE(
        agent.act("select", arguments({{"target", refOf(view, "QComboBox ")}, {"item", "Windows"}}))
            .contains("(was \""));
    const Json::Value picture = agent.call("screenshot", arguments({{"width", 200}}))["content"][1];
    EXPECT_EQ(picture["mimeType"], "image/png");
    EXPECT_EQ(
        QImage::fromData(QByteArray::fromBase64(Mcp::textOf(picture["data"]).toLatin1())).width(),
        200);
    // The field for passwords: its text stands in no script.
    const QString filled =
        agent.act("fill", arguments({{"target", refOf(view, "QLineEdit = ")}, {"text", "s3cret"}}));
    EXPECT_TRUE(filled.contains("testSettings.getPassword(\"password\")") &&
                filled.contains("TAMRIX_PASSWORD_password"))
        << filled.toStdString();
    const std::string field = refOf(view, "QLineEdit = ");
    EXPECT_TRUE(
        agent.answer("properties", arguments({{"target", field}})).contains("\ntext = (hidden)\n"));
    for (const QString& told :
         {filled, answer("properties", field), answer("names", field), agent.answer("snapshot")})
        EXPECT_FALSE(told.contains("s3cret")) << told.toStdString();
    const QString dial = QString::fromStdString(refOf(view, "QDial"));
    EXPECT_TRUE(
        agent.answer("drag", arguments({{"target", dial.toStdString()}, {"dx", 20}, {"dy", 20}}))
            .startsWith("drag(\"{"));
    EXPECT_TRUE(
        agent.answer("properties", arguments({{"target", dial.toStdString()}, {"find", "maximum"}}))
            .contains("\nmaximum = 99\n"));
    EXPECT_TRUE(answer("names", dial.toStdString()).startsWith("{"));
}

TEST_F(Agents, DragToWhatTheySee) {
    const QString view = start(widgetExamples + "widgets/calculator/calculator");
    const auto drag = [&](const char* to) {
        return agent
            .answer("drag", arguments({{"target", refOf(view, "Button \"7\"")},
                                       {"to", refOf(view, QString("Button \"%1\"").arg(to))}}))
            .section('\n', 0, 0);
    };
    const auto numbers = [](const QString& line) { return line.section("\", ", 1); };
    // The button beside it, and the one below it.
    EXPECT_TRUE(
        QRegularExpression("^\\d+, \\d+, \\d\\d+, 0\\)$").match(numbers(drag("8"))).hasMatch())
        << drag("8").toStdString();
    EXPECT_TRUE(
        QRegularExpression("^\\d+, \\d+, 0, \\d\\d+\\)$").match(numbers(drag("4"))).hasMatch())
        << drag("4").toStdString();
}

TEST_F(Agents, SelectInMenusByTheirTitlesToo) {
    const QString view = start(widgetExamples + "mainwindows/application/application");
    const auto select = [&](const QString& expression, const Json::Value& item) {
        return agent.act("select",
                         arguments({{"target", refOf(view, expression)}, {"item", item}}));
    };
    Json::Value steps(Json::arrayValue);
    steps.append("Help");
    steps.append("About");
    for (const auto& [target, item] :
         {std::pair("QAction \"Help", "About"), std::pair("QMenuBar", "Help.About")}) {
        const QString about = select(target, item);
        EXPECT_TRUE(about.startsWith("selectItem(\"{type='QMenuBar'}\", \"Help.About\")\n"))
            << about.toStdString();
        EXPECT_TRUE(about.contains("new window e")) << about.toStdString();
        agent.act("press", arguments({{"keys", "Escape"}}));
    }
    EXPECT_TRUE(select("QMenuBar", steps).contains("[\"Help\", \"About\"]"));
    agent.act("press", arguments({{"keys", "Escape"}}));
    // Of a long line the beginning is told.
    const QString filled = agent.act("fill", arguments({{"target", refOf(view, "QPlainTextEdit")},
                                                        {"text", std::string(1200, 'x')}}));
    EXPECT_TRUE(filled.contains("xxx... (12")) << filled.toStdString();
    EXPECT_LT(filled.size(), 1500);
}

TEST_F(Agents, SurviveWhatProgramsDo) {
    EXPECT_EQ(agent.answer("snapshot"), "error: no program is started: start one");
    EXPECT_TRUE(start("/no/such/program").startsWith("error: "));
    QString view = start(FAULTY_TARGET);
    const auto click = [&](const QString& button) {
        return answer("click", refOf(view, "QPushButton \"" + button + "\""));
    };
    // An object that goes.
    const std::string label = refOf(view, "QLabel \"label of ");
    click("Remove later");
    EXPECT_TRUE(waitUntil([&] { return !agent.answer("snapshot").contains("label of "); }));
    EXPECT_TRUE(answer("click", label)
                    .startsWith("error: " + QString::fromStdString(label) +
                                " is gone; it was QLabel \"label of \""));
    EXPECT_EQ(answer("click", "e999"), "error: there is no e999: snapshot tells what there is");
    EXPECT_TRUE(answer("click", "Save")
                    .startsWith("error: 'Save' is neither a ref like e7 nor a name like "));
    EXPECT_EQ(agent.answer("snapshot", arguments({{"root", "{type='QLabel'}"}})),
              "error: '{type='QLabel'}' is no ref like e7");
    // Nonsense is told in short, and no name is taken for an option or makes odd folders.
    const QString unknown = answer("click", "{text='" + std::string(100000, 'x') + "'}");
    EXPECT_TRUE(unknown.startsWith("error: No object matches ")) << unknown.toStdString();
    EXPECT_LT(unknown.size(), 3000);
    const std::string suite = folder.filePath("suite_odd").toStdString();
    EXPECT_EQ(agent.answer("run_case", arguments({{"suite", suite}, {"case", "--help"}})),
              "error: there is no test case '--help'");
    for (const char* const name : {"-a", "a\nb", "../a"})
        EXPECT_TRUE(agent.answer("record_to", arguments({{"suite", suite}, {"case", name}}))
                        .endsWith(" is no name for a test case's folder"));
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(suite)));
    Json::Value nameless;
    nameless["*"] = "x";
    EXPECT_EQ(agent.answer("wait", arguments({{"target", refOf(view, "QPushButton \"Modal\"")},
                                              {"properties", nameless}})),
              "error: wait: a property has no name");
    // What can't be clicked says why.
    EXPECT_TRUE(click("Disabled").contains("it is disabled"));
    // A modal dialog is news, and keeps others from being clicked.
    const QString opened = click("Modal");
    EXPECT_TRUE(opened.contains("new window e")) << opened.toStdString();
    EXPECT_TRUE(opened.contains("QDialog \"Modal\" [modal]")) << opened.toStdString();
    EXPECT_TRUE(click("Fork").contains("Modal")) << click("Fork").toStdString();
    EXPECT_TRUE(answer("click", refOf(opened, "QPushButton \"Close it\"")).contains("gone e"));
    // A program that hangs is told as such, and can be replaced.
    const QString hung = click("Hang");
    EXPECT_TRUE(hung.startsWith("error: click(")) << hung.toStdString();
    EXPECT_TRUE(hung.contains("did not come to rest within 5000 ms")) << hung.toStdString();
    view = start(FAULTY_TARGET);
    EXPECT_TRUE(view.contains("QPushButton \"Crash\"")) << view.toStdString();
    const QString left = answer("click", label);
    EXPECT_TRUE(left.contains(" is gone; it was QLabel \"label of \". Nearest: e"))
        << left.toStdString();
    // One that ends says how, and what comes behind that, too.
    const std::string modal = refOf(view, "QPushButton \"Modal\"");
    EXPECT_TRUE(click("Exit").contains("it exited with code 3"));
    EXPECT_TRUE(answer("click", modal).contains("it exited with code 3"));
    EXPECT_TRUE(agent.answer("snapshot").contains("it exited with code 3"));
    view = start(FAULTY_TARGET);
    EXPECT_TRUE(click("Crash").contains("SIGSEGV"));
}

TEST_F(Agents, AreServedWhileAToolWaits) {
    const std::string target = refOf(start(FAULTY_TARGET), "QLabel");
    Json::Value message;
    message["jsonrpc"] = "2.0";
    message["id"] = "long";
    message["method"] = "tools/call";
    message["params"]["name"] = "wait";
    message["params"]["arguments"]["target"] = target;
    message["params"]["arguments"]["properties"]["text"] = "never";
    message["params"]["arguments"]["timeout"] = 100;
    agent.runner.type(Mcp::jsonLine(message) + '\n');
    EXPECT_TRUE(agent.request("ping", Json::objectValue)["result"].isObject());
    Json::Value cancelled;
    cancelled["jsonrpc"] = "2.0";
    cancelled["method"] = "notifications/cancelled";
    cancelled["params"]["requestId"] = "long";
    agent.runner.type(Mcp::jsonLine(cancelled) + '\n');
    EXPECT_TRUE(agent.answer("snapshot").contains("QLabel"));
    // A signal ends all in order.
    agent.runner.sendSignal(SIGTERM);
    agent.runner.finish();
    EXPECT_EQ(agent.runner.exitCode(), 143);
    EXPECT_EQ(agent.runner.output(), "");
}

/// The commands, as a shell has them.
class DriveCommands : public testing::Test {
protected:
    ~DriveCommands() override {
        RunnerProcess stop;
        prepare(stop);
        stop.run({"drive", "stop"});
    }

    void prepare(RunnerProcess& process) {
        process.setVariable("HOME", folder.path());
        process.setVariable("XDG_CONFIG_HOME", folder.path());
        process.setVariable("XDG_RUNTIME_DIR", folder.path());
        process.setWorkingDirectory(folder.path());
    }
    /// Output and errors; the exit code in front when it isn't 0.
    QString drive(const QStringList& words) {
        RunnerProcess process;
        prepare(process);
        process.run(QStringList("drive") + words);
        const QString code = process.exitCode() == 0 ? "" : QString("%1: ").arg(process.exitCode());
        return code + process.output() + process.errors();
    }

    QTemporaryDir folder;
};

TEST_F(DriveCommands, KeepTheirProgramBetweenThem) {
    EXPECT_EQ(drive({"snapshot"}),
              "2: tamrixrunner: there is no session 'default': begin one with \"tamrixrunner drive "
              "start PROGRAM\"\n");
    const QString calculator =
        QString::fromStdString(widgetExamples) + "widgets/calculator/calculator";
    const QString view = drive({"start", calculator});
    const QString display = QString::fromStdString(refOf(view, "QLineEdit"));
    for (const char* const key : {"7", "\\+", "5", "="}) {
        const QString ref = QString::fromStdString(refOf(view, QString("Button \"%1\"").arg(key)));
        EXPECT_TRUE(drive({"click", ref}).startsWith("click(\"{")) << key;
    }
    EXPECT_TRUE(drive({"wait", display, "text=12"}).startsWith("test.expect("));
    EXPECT_TRUE(drive({"wait", display, "text=13", "timeout=0.1"})
                    .startsWith("1: tamrixrunner: within 0.1 s: "));
    EXPECT_TRUE(drive({"click", "e5", "z=1"})
                    .startsWith("2: tamrixrunner: click: 'z=1' is not understood"));
    EXPECT_TRUE(drive({"record_to", "suite_sums", "tst_add"})
                    .startsWith(folder.filePath("suite_sums/tst_add/test.py")));
    EXPECT_EQ(drive({"run_case", "suite_sums"}), "1 case: 1 passed; passes 1\n");
    EXPECT_TRUE(drive({"screenshot", "file=all.png"}).endsWith("/all.png\n"));
    EXPECT_FALSE(QImage(folder.filePath("all.png")).isNull());
    EXPECT_EQ(drive({"stop"}), "");
    EXPECT_TRUE(drive({"stop"}).startsWith("2: tamrixrunner: there is no session"));
}

TEST_F(DriveCommands, GoAsTheDocumentHasThem) {
    const DocumentBlock session("agents.md", "drive");
    const QString prompt = "$ tamrixrunner drive ";
    QString recorded;
    for (const QString& line : session.lines()) {
        if (!line.startsWith(prompt))
            continue;
        const Outcome<QStringList> words = splitShellWords(line.mid(prompt.size()));
        ASSERT_TRUE(words) << line.toStdString();
        // A terminal shows no exit code.
        recorded +=
            line + '\n' +
            drive(*words).remove(QRegularExpression("^1: ")).replace(folder.path(), "/home/ann");
    }
    EXPECT_TRUE(session.compare(recorded));
    EXPECT_TRUE(DocumentBlock("agents.md", "record_to")
                    .compare(readFile(folder.filePath("suite_sums/tst_root/test.py"))));
    EXPECT_TRUE(DocumentBlock("agents.md", "drive start application")
                    .compare(drive({"start", QString::fromStdString(widgetExamples) +
                                                 "mainwindows/application/application"})));
}

}  // namespace
}  // namespace Tamrix
