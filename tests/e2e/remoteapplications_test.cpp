// Applications on another machine, which is this one behind a real SSH server.

#include <QSysInfo>
#include <csignal>

#include "e2e/applicationrun.h"
#include "support/processes.h"
#include "support/sshserver.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Test::ApplicationRun;
using Test::FailingNetwork;
using Test::readFile;
using Test::SshServer;
using Test::waitUntil;
using Test::writeFile;

class RemoteApplications : public ApplicationRun {
protected:
    RemoteApplications() { useServer(server.port()); }

    /// The name "lab" leads to that port.
    void useServer(int port) {
        runner.setVariable("HOME", server.home());
        EXPECT_TRUE(
            writeFile(server.home() + "/.ssh/config",
                      "Host lab\n  HostName 127.0.0.1\n  Port " + QByteArray::number(port) + '\n'));
    }

    void run() { runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")}); }

    /// The processes that a script has written down end.
    void expectEnd(const QString& pidFile) const {
        const int pid = readFile(pidFile).toInt();
        ASSERT_GT(pid, 1);
        EXPECT_TRUE(waitUntil([&] { return !Tamrix::Test::isRunning(pid); }))
            << "the program is still there";
    }

    SshServer server;
};

TEST_F(RemoteApplications, WorkAsThoseOfThisMachine) {
    addCase("remote", QByteArray(R"py(def main():
    context = startApplication('faulty', 'lab', timeout=60000)
    with open(r')py" + suite.path("pid").toUtf8() +
                                 R"py(', 'w') as file:
        file.write(str(context.pid()))
    test.compare(context.name(), 'faulty')
    test.compare(context.host(), 'lab')
    test.verify(context.isRunning())
    test.verify(not context.isFrozen(10))
    test.compare(context.osName(), ')py" +
                                 QSysInfo::prettyProductName().toUtf8() +
                                 R"py(')
    test.verify(context.usedMemory() > 1000000)
    test.verify(context.totalTime() >= 0)
    test.verify(context.environmentVariable('SSH_CONNECTION') != '')
    test.verify(context.cwd() != '')
    button = waitForObject("{type='QPushButton' text='Crash'}")
    test.compare(button.text, 'Crash')
    test.verify(object.grabScreenshot(button).width > 10)
    os.kill(context.pid(), 0)
    clickOn('Crash')
    while context.isRunning():
        snooze(0.02)
    test.log(context.readStderr())
)py"));
    run();
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    const QString results = resultsOf("remote");
    EXPECT_TRUE(results.contains("The application 'faulty' has ended: it was ended by SIGSEGV"))
        << qPrintable(results);
    EXPECT_FALSE(results.contains("are not equal")) << qPrintable(results);
    EXPECT_FALSE(results.contains("False expression")) << qPrintable(results);
    expectEnd(suite.path("pid"));
}

TEST_F(RemoteApplications, EndWithTheirTestCase) {
    addCase("left", QByteArray(R"py(def main():
    context = startApplication('faulty stubborn', 'lab', timeout=60000)
    with open(r')py" + suite.path("pid").toUtf8() +
                               R"py(', 'w') as file:
        file.write(str(context.pid()))
)py"));
    run();
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    expectEnd(suite.path("pid"));
}

TEST_F(RemoteApplications, EndWithTheConnection) {
    FailingNetwork network(server.port());
    server.makeKnown(network.port(), server.hostKey());
    useServer(network.port());
    addCase("cut", QByteArray(R"py(def main():
    context = startApplication('faulty', 'lab', timeout=60000)
    with open(r')py" + suite.path("pid").toUtf8() +
                              R"py(', 'w') as file:
        file.write(str(context.pid()))
    while True:
        waitForObject("{type='QPushButton' text='Crash'}")
)py"));
    runner.start({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    ASSERT_TRUE(waitUntil([&] { return !readFile(suite.path("pid")).isEmpty(); }));
    network.cutAfter(5000);
    runner.finish();
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
    const QString results = resultsOf("cut");
    EXPECT_TRUE(results.contains("The application 'faulty' has ended")) << qPrintable(results);
    EXPECT_TRUE(results.contains("has ended"));
    expectEnd(suite.path("pid"));
}

TEST_F(RemoteApplications, TellWhatKeepsThemFromStarting) {
    addCase("none", R"py(def main():
    for program, host in [('/no/such/program', 'lab'), ('faulty', 'no.such.host.invalid')]:
        try:
            startApplication(program, host, timeout=60000)
        except Exception as error:
            test.log(str(error))
    try:
        attachToApplication('faulty', 'lab')
    except Exception as error:
        test.log(str(error))
)py");
    run();
    const QString results = resultsOf("none");
    EXPECT_TRUE(results.contains("lab: the program '/no/such/program' was not found"))
        << qPrintable(results);
    EXPECT_TRUE(results.contains("can't be reached")) << qPrintable(results);
    EXPECT_TRUE(results.contains("this machine only, not on 'lab'")) << qPrintable(results);
}

}  // namespace
}  // namespace Tamrix
