#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "runner/coreapplication.h"
#include "runner/services/runner.h"
#include "support/environmentguard.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/sshserver.h"

namespace Tamrix {
namespace {

using namespace Test;

class RemoteSystemsTest : public testing::Test {
protected:
    RemoteSystemsTest() { coreApplication(); }

    int connect(const QString& host = {}, int port = -1) {
        error.clear();
        return runner.connectToRemoteSystem(host, port, &error);
    }
    QMap<QString, QVariant> execute(int handle, const QList<QVariant>& command,
                                    bool keepLineEnding = false,
                                    const QString& encoding = "UTF-8") {
        error.clear();
        return runner.executeCommand(handle, command, {}, {}, keepLineEnding, false, 30, encoding,
                                     &error);
    }

    QTemporaryDir settings;
    EnvironmentGuard settingsGuard{"TAMRIX_USER_SETTINGS_DIR", settings.path()};
    Runner runner;
    QString error;
};

TEST_F(RemoteSystemsTest, TheDefaultIsThisMachineUnlessTheSettingsNameAnother) {
    const int here = connect();
    EXPECT_GT(here, 0) << qPrintable(error);
    EXPECT_EQ(runner.getOSName(here, &error), "Linux");

    ASSERT_TRUE(writeFile(settings.filePath("ver1/server.ini"),
                          "[General]\nhost = \"127.0.0.1\"\nport = 1\n"));
    EXPECT_EQ(connect(), -1);
    EXPECT_TRUE(error.startsWith("127.0.0.1:1 can't be reached: ")) << qPrintable(error);

    const SshServer server;
    ASSERT_TRUE(writeFile(
        settings.filePath("ver1/server.ini"),
        "[General]\nhost = \"127.0.0.1\"\nport = " + QByteArray::number(server.port()) + '\n'));
    const int there = connect();
    EXPECT_GT(there, here) << qPrintable(error);
    EXPECT_NE(runner.getEnvironmentVariable(there, "SSH_CONNECTION", &error), "");
}

TEST_F(RemoteSystemsTest, HandlesThatWereClosedOrNeverGivenAreTold) {
    const int handle = connect();
    runner.closeRemoteSystemConnection(handle, &error);
    EXPECT_EQ(error, "");
    const QString wanted = "there is no connection %1: it was closed or never made";
    for (const int wrong : {handle, handle + 1, 0, -1}) {
        error.clear();
        EXPECT_FALSE(runner.remotePathExists(wrong, "/", &error));
        EXPECT_EQ(error, wanted.arg(wrong));
        error.clear();
        runner.closeRemoteSystemConnection(wrong, &error);
        EXPECT_EQ(error, wanted.arg(wrong));
    }
    // A test case leaves no connection to the next one.
    const int open = connect();
    runner.startCase("next", "/next.py");
    error.clear();
    runner.getOSName(open, &error);
    EXPECT_EQ(error, wanted.arg(open));
}

TEST_F(RemoteSystemsTest, CommandsTellTextsOfTheirEncoding) {
    const int handle = connect();
    using Answer = QMap<QString, QVariant>;
    EXPECT_EQ(execute(handle, {"sh", "-c", "printf 'a\\r\\n\\374'; exit $0", 3}, false, "latin1"),
              (Answer{{"exitcode", 3}, {"stderr", ""}, {"stdout", "a\nü"}}));
    EXPECT_EQ(execute(handle, {"printf", "a\\r\\n"}, true).value("stdout"), QVariant("a\r\n"));
    EXPECT_EQ(execute(handle, {"true"}, true, "klingon"), Answer());
    EXPECT_EQ(error, "the encoding 'klingon' is not known");
    error.clear();
    EXPECT_TRUE(
        runner.executeCommand(handle, {"sleep", "1000"}, {}, {}, false, false, 1, "UTF-8", &error)
            .isEmpty());
    EXPECT_EQ(error, "'sleep' did not end within 1 s and was ended");
}

}  // namespace
}  // namespace Tamrix
