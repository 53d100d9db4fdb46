// Traces of runs, of a real program.

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <csignal>

#include "e2e/applicationrun.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Tamrix::Test::ApplicationRun;
using Tamrix::Test::RunnerProcess;

class Traces : public ApplicationRun {
protected:
    QString trace(const QString& path = {}) const { return suite.path("results/trace/" + path); }
    QByteArray text(const QString& path) const { return Tamrix::Test::readFile(trace(path)); }

    QStringList options(const char* mode) const {
        return {"run", suite.path("suite"), "--result-dir", suite.path("results"), "--trace", mode};
    }

    static quint16 freePort() {
        QTcpServer probe;
        EXPECT_TRUE(probe.listen(QHostAddress::LocalHost));
        return probe.serverPort();
    }
};

TEST_F(Traces, AreLinkedFromReports) {
    addCase("a",
            "def main():\n    startApplication('faulty')\n"
            "    waitForObject(\"{type='QPushButton' text='Crash'}\", 60000)\n"
            "    test.fail('wrong')\n");
    addCase("b", "def main():\n    startApplication('faulty')\n");
    runner.run(options("failed") + QStringList{"--report", "html:" + suite.path("results/html")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    EXPECT_EQ(runner.errors(), "");
    const QByteArray steps = text("case-0001/steps-0001.js");
    EXPECT_TRUE(steps.contains("\"tree\":[{\"")) << steps.constData();
    EXPECT_TRUE(steps.contains("Crash"));
    EXPECT_TRUE(text("case-0001/sources.js").contains("test.fail('wrong')"));
    EXPECT_FALSE(QFile::exists(trace("case-0002")));
    const QString page = Tamrix::Test::readFile(suite.path("results/html/index.html"));
    EXPECT_TRUE(page.contains("\"trace\":\"../trace/index.html#at=")) << qPrintable(page);
    EXPECT_TRUE(page.contains("&case=a\""));
    // The results can be moved as a whole.
    EXPECT_TRUE(Tamrix::Test::readFile(suite.path("results/journal.jsonl"))
                    .contains("\"message\":\"Trace\",\"detail\":\"trace\""))
        << Tamrix::Test::readFile(suite.path("results/journal.jsonl")).left(3000).constData();
}

TEST_F(Traces, OfWorkersAreInOneFolder) {
    for (const char* const name : {"a", "b", "c"})
        addCase(name, "def main():\n    startApplication('faulty')\n");
    runner.run(options("on") + QStringList{"--jobs", "3", "--aut-display", "inherit"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_EQ(text("cases.js").count("traceCase({"), 3);
    EXPECT_EQ(text("cases.js").count("traceCaseEnds({"), 3);
    for (const char* const name : {"case-0001", "case-0002", "case-0003"})
        EXPECT_TRUE(text(QString(name) + "/steps-0001.js").contains("startApplication")) << name;
}

TEST_F(Traces, OfAKilledRunHoldEverythingUpToThenAndAreShownLive) {
    addCase("a",
            "def main():\n    startApplication('faulty')\n    print('now', flush=True)\n"
            "    snooze(600)\n");
    runner.start(options("on") + QStringList{"--trace-live", "0"});
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 2);
    EXPECT_TRUE(runner.errors().contains("--trace-live takes a port from 1 to 65535, not '0'"));
    const quint16 port = freePort();
    RunnerProcess live;
    prepare(live);
    live.start(options("on") + QStringList{"--trace-live", QString::number(port)});
    ASSERT_TRUE(live.waitForOutput("now"));
    QTcpSocket client;
    client.connectToHost("127.0.0.1", port);
    ASSERT_TRUE(client.waitForConnected(100'000));
    client.write("GET /cases.js HTTP/1.1\r\nHost: localhost\r\n\r\n");
    QByteArray answer;
    while (client.waitForReadyRead(100'000))
        answer += client.readAll();
    EXPECT_TRUE(answer.contains("traceCase({")) << answer.constData();
    live.sendSignal(SIGKILL);
    live.finish();
    EXPECT_TRUE(Tamrix::Test::waitUntil([&] { return leftProcesses().isEmpty(); }));
    const QByteArray steps = text("case-0001/steps-0001.js");
    EXPECT_TRUE(steps.endsWith(");\n"));
    EXPECT_TRUE(steps.contains("startApplication"));
}

TEST_F(Traces, AreShownUntilTheRunEnds) {
    addCase("a", "def main():\n    test.log('fine')\n");
    QTcpServer taken;
    ASSERT_TRUE(taken.listen(QHostAddress::LocalHost));
    const QString port = QString::number(taken.serverPort());
    RunnerProcess refused;
    refused.run(options("on") + QStringList{"--trace-live", port});
    EXPECT_EQ(refused.exitCode(), 2);
    EXPECT_TRUE(
        refused.errors().startsWith("tamrixrunner: port " + port + " can't be listened on: "))
        << qPrintable(refused.errors());
    EXPECT_TRUE(refused.errors().endsWith("\ntamrixrunner: the trace can't be shown\n"));
    taken.close();
    // Also when workers run the cases.
    for (const QStringList& jobs : {QStringList(), QStringList{"--jobs", "2"}}) {
        RunnerProcess shown;
        prepare(shown);
        shown.run(options("on") + QStringList{"--trace-live", port} + jobs);
        EXPECT_EQ(shown.exitCode(), 0) << qPrintable(shown.output());
        EXPECT_EQ(shown.errors(),
                  "tamrixrunner: The trace is shown at http://127.0.0.1:" + port + "/\n");
        // The server goes with the run.
        EXPECT_TRUE(Tamrix::Test::waitUntil(
            [&] { return taken.listen(QHostAddress::LocalHost, port.toUShort()); }));
        taken.close();
    }
}

TEST_F(Traces, HoldNoPasswordsNorDoReports) {
    addCase("a",
            "def main():\n    word = testSettings.getPassword('shop')\n"
            "    print('it is', word, flush=True)\n    test.fail('wrong', word)\n"
            "    startApplication('faulty')\n    waitForObject({'text': word}, 0)\n");
    runner.setVariable("TAMRIX_PASSWORD_shop", "hunter2");
    runner.run(options("on") + QStringList{"--report", "junit:" + suite.path("results/junit.xml")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    EXPECT_TRUE(text("case-0001/steps-0001.js").contains("it is ******"));
    const QString results = suite.path("results");
    int files = 0;
    for (QDirIterator each(results, QDir::Files, QDirIterator::Subdirectories); each.hasNext();) {
        const QString file = each.next();
        ++files;
        EXPECT_FALSE(Tamrix::Test::readFile(file).contains("hunter2")) << qPrintable(file);
    }
    EXPECT_GT(files, 5);
    EXPECT_FALSE(runner.output().contains("hunter2")) << qPrintable(runner.output());
}

TEST_F(Traces, NeedAFolderAndActions) {
    addCase("a", "def main():\n    pass\n");
    const std::pair<QStringList, const char*> rows[] = {
        {{"--trace", "on"}, "--trace needs --result-dir, where it goes"},
        {{"--trace", "some"}, "--trace takes on, off or failed, not 'some'"},
        {{"--trace", "on", "--result-dir", suite.path("results"), "--no-actions"},
         "--trace needs the actions that --no-actions leaves out"}};
    for (const auto& [given, message] : rows) {
        RunnerProcess process;
        process.run(QStringList{"run", suite.path("suite")} + given);
        EXPECT_EQ(process.exitCode(), 2);
        EXPECT_TRUE(process.errors().contains(message)) << qPrintable(process.errors());
    }
}

}  // namespace
}  // namespace Tamrix
