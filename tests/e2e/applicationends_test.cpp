// Applications that end: nothing of them is held, and what nobody asked for is told.

#include <unistd.h>

#include <QElapsedTimer>
#include <csignal>

#include "e2e/applicationrun.h"

namespace Tamrix {
namespace {

using Test::ApplicationRun;

/// "Error at line 3: it was ended by SIGSEGV" for each failure and warning of a case.
QStringList findings(const std::vector<Json::Value>& entries, const QString& name) {
    QStringList found;
    bool isInside = false;
    for (const Json::Value& entry : entries) {
        if (entry["kind"].asString() == "caseStart")
            isInside = QString::fromStdString(entry["message"].asString()) == name;
        const int type = entry["type"].asInt();
        if (!isInside || entry["kind"].asString() != "result" || type == 7 || type == 10)
            continue;
        found.append(
            QString("%1 at line %2: %3")
                .arg(type == 9    ? "Error"
                     : type == 14 ? "Warning"
                                  : "Other")
                .arg(entry["callStack"][0]["line"].asInt())
                .arg(QString::fromStdString(entry["detail"].asString()).section('\n', 0, 0)));
    }
    return found;
}

TEST_F(ApplicationRun, EndsThatNobodyAskedForAreFindings) {
    const struct {
        const char* name;
        const char* script;
        const char* finding;
    } table[] = {
        // The lines count from that of "def main", which is line 1 here.
        {"crash", R"py(
    a = startApplication('faulty')
    os.kill(a.pid(), signal.SIGSEGV)
    time.sleep(0.1)
)py",
         "Error at line 3: The application 'faulty' has ended: it was ended by SIGSEGV "
         "(Segmentation fault)"},
        {"killed_in_cleanup", R"py(
    startApplication('faulty')
def cleanup():
    os.kill(currentApplicationContext().pid(), signal.SIGKILL)
)py",
         "Error at line 4: The application 'faulty' has ended: it was ended by SIGKILL (Killed)"},
        {"exit", R"py(
    a = startApplication('faulty')
    os.kill(a.pid(), signal.SIGUSR1)
    while a.isRunning():
        pass
    test.log('goes on')
)py",
         "Warning at line 4: The application 'faulty' has ended: it exited with code 3"},
        {"crash_at_close", R"py(
    startApplication('faulty crashes-at-close')
)py",
         "Error at line 2: The application 'faulty' has ended: it was ended by SIGSEGV "
         "(Segmentation fault)"},
        {"exit_at_close", R"py(
    startApplication('faulty exits-at-close')
)py",
         "Warning at line 2: The application 'faulty' has ended: it exited with code 5"},
        {"expected", R"py(
    a = startApplication('faulty')
    a.expectExit()
    clickOn('Crash')
    while a.isRunning():
        pass
)py",
         nullptr},
        {"stubborn", R"py(
    startApplication('faulty stubborn')
)py",
         nullptr},
    };
    for (const auto& row : table)
        addCase(row.name, "def main():" + QByteArray(row.script));
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    const auto entries = Tamrix::Test::readJournal(suite.path("results/journal.jsonl"));
    for (const auto& row : table) {
        const int lineOfMain = QByteArray(clickOn).count('\n') + 2;
        QStringList expected;
        if (row.finding) {
            const QString finding = row.finding;
            const int line = finding.section("line ", 1).section(':', 0, 0).toInt();
            expected.append(QString(finding).replace(
                QString("line %1").arg(line), QString("line %1").arg(line + lineOfMain - 1)));
        }
        EXPECT_EQ(findings(entries, row.name), expected) << row.name;
    }
    // With the last output.
    EXPECT_TRUE(resultsOf("crash").contains("about to start"));
    EXPECT_TRUE(resultsOf("crash").contains("faulty-stderr.txt"));
}

TEST_F(ApplicationRun, EndedApplicationsHoldNothing) {
    addCase("many", R"py(
def held():
    return (len(os.listdir('/proc/self/fd')), len(os.listdir('/proc/self/task')))

def once():
    a = startApplication('faulty')
    a.expectExit()
    os.kill(a.pid(), signal.SIGKILL)
    waitFor(lambda: not a.isRunning(), 60000)
    return a

def main():
    first = once()
    snooze(1)
    before = held()
    for count in range(8):
        once()
    if not waitFor(lambda: held() <= before, 60000):
        test.fatal('descriptors and threads', '%s before, %s now' % (before, held()))
    test.compare(first.readStderr(), 'about to start\n')
    test.fail('so that output is attached')
)py");
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    const QString results = resultsOf("many");
    EXPECT_FALSE(results.contains("descriptors and threads")) << qPrintable(results);
    EXPECT_EQ(results.count("What the application 'faulty' wrote to stderr"), 5)
        << qPrintable(results);
}

TEST_F(ApplicationRun, FactsOfOneThatHasEndedAreErrors) {
    addCase("facts", R"py(
def main():
    a = startApplication('faulty')
    a.expectExit()
    label = waitForObject("{type='QLabel'}")
    os.kill(a.pid(), signal.SIGKILL)
    asked = [lambda: a.environmentVariable('HOME'), lambda: a.usedMemory(), lambda: a.totalTime(),
             lambda: a.cwd(), lambda: object.objectName(label), lambda: object.properties(label),
             lambda: object.children(label), lambda: label.text, lambda: click(label),
             lambda: click("{type='QLabel'}"), lambda: fill(label, 'x'),
             lambda: findObject("{type='QLabel'}"), lambda: waitForObject("{type='QLabel'}")]
    for number, ask in enumerate(asked):
        try:
            test.fail('no error', '%d: %s' % (number, ask()))
        except Exception as error:
            test.verify('it was ended by SIGKILL' in str(error), '%d: %r' % (number, error))
    test.compare(a.name(), 'faulty')
    test.compare(a.isRunning(), False)
)py");
    runner.run({"run", suite.path("suite"), "--verbose"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
}

TEST_F(ApplicationRun, AStoppedOneIsToldAfterASecond) {
    addCase("stopped", R"py(
def main():
    a = startApplication('faulty')
    label = waitForObject("{type='QLabel'}")
    os.kill(a.pid(), signal.SIGSTOP)
    begin = time.time()
    try:
        findObject("{type='QLabel'}")
        test.fail('found')
    except Exception as error:
        test.compare(str(error), 'The application does not answer')
    test.compare(object.exists("{type='QLabel'}"), False)
    test.verify(time.time() - begin < 15, 'two looks took %.1f s' % (time.time() - begin))
    os.kill(a.pid(), signal.SIGCONT)
    test.compare(object.exists("{type='QLabel'}"), True)
)py");
    runner.run({"run", suite.path("suite"), "--verbose"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
}

TEST_F(ApplicationRun, OnesThatTakeNoAgentAreToldAtOnce) {
    const struct {
        const char* program;
        int timeout;
        const char* text;
    } table[] = {
        {FOREIGN_TARGET " libgtk-4.so.1", 600000,
         "it is a program with GTK 4, and only programs with Qt 5 or Qt 6"},
        {FOREIGN_TARGET " libQt6Core.so.6.2.4", 600000,
         "it is a program with Qt 6.2.4, and agents for Qt 6 need 6.4 or later"},
        {FOREIGN_TARGET, 600000, "it is a program with Qt 6.5.3 linked statically"},
        {"faulty busy", 5000, "has its agent, but its event loop did not run within 5000 ms"},
        {"faulty deaf", 600000, "that takes no plug-in from QT_PLUGIN_PATH"},
        {"faulty version", 600000, "its agent can't be used"},
        {"faulty token", 600000, "its agent can't be used"},
        // It says hello, and nothing else.
        {"faulty mute", 5000, "'faulty' has connected, but does not answer within 5000 ms"},
    };
    for (size_t row = 0; row < std::size(table); ++row) {
        addCase(QString::number(row),
                QString("\ndef main():\n    startApplication(\"%1\", '', -1, %2)\n")
                    .arg(table[row].program)
                    .arg(table[row].timeout)
                    .toUtf8());
    }
    QElapsedTimer timer;
    timer.start();
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    EXPECT_LT(timer.elapsed(), 250'000);
    for (size_t row = 0; row < std::size(table); ++row) {
        const QString results = resultsOf(QString::number(row));
        EXPECT_TRUE(results.contains(table[row].text)) << qPrintable(results);
        EXPECT_FALSE(results.contains("has crashed")) << qPrintable(results);
    }
}

TEST_F(ApplicationRun, ADaemonThatHasNothingOfItsProgramGoesWithTheCase) {
    addCase("daemon", R"py(
def running():
    return [pid for pid in os.listdir('/proc') if pid.isdigit() and is_it(pid)]

def is_it(pid):
    try:
        with open('/proc/%s/cmdline' % pid, 'rb') as file:
            return file.read() == b'sleep\0%s\0' % os.environb[b'FAULTY_DAEMON_SLEEP']
    except OSError:
        return False

def main():
    startApplication('faulty')
    clickOn('Daemon')
    test.verify(waitFor(lambda: running() != [], 60000))

def cleanup():
    test.verify(running() != [])
)py");
    addCase("later", "def main():\n    pass\n");
    // No other test's.
    const QByteArray seconds = "777." + QByteArray::number(::getpid());
    const QByteArray commandLine = QByteArray("sleep") + '\0' + seconds + '\0';
    runner.setVariable("FAULTY_DAEMON_SLEEP", seconds);
    runner.run({"run", suite.path("suite"), "--verbose"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    for (const QString& entry : QDir("/proc").entryList(QDir::Dirs)) {
        EXPECT_NE(Tamrix::Test::readFile("/proc/" + entry + "/cmdline"), commandLine);
    }
}

}  // namespace
}  // namespace Tamrix
