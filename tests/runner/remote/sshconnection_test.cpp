#include "runner/remote/sshconnection.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "runner/coreapplication.h"
#include "runner/remote/sshsystem.h"
#include "runner/remote/systemoperations.h"
#include "support/files.h"
#include "support/outcomes.h"
#include "support/printqt.h"
#include "support/sshserver.h"

namespace Tamrix {
namespace {

using namespace Test;

const QString loopbackHost = QStringLiteral("127.0.0.1");

/// For servers that say nothing, in milliseconds: one that is only slow answers sooner.
constexpr int silence = 2500;

/// The texts of this test without what is new for each server.
QString plain(QString text, int port) {
    text.replace(QString::number(port), "PORT");
    text.replace(QRegularExpression("SHA256:[A-Za-z0-9+/=]+"), "SHA256:HASH");
    return text.replace(QRegularExpression("user '[^']+'"), "user 'NAME'");
}

class SshConnectionTest : public testing::Test {
protected:
    SshConnectionTest() { coreApplication(); }

    QString errorOfConnecting(int port, const SshPatience& patience = {}) {
        return plain(errorOf(SshConnection::open({loopbackHost, port}, patience)), port);
    }
    std::unique_ptr<SshSystem> connect(int port, const SshPatience& patience = {}) {
        Outcome<std::unique_ptr<SshSystem>> system =
            SshSystem::connect({loopbackHost, port}, patience);
        EXPECT_EQ(errorOf(system), "") << qPrintable(server.log());
        return system ? std::move(*system) : nullptr;
    }
    void forgetHosts() { writeFile(server.home() + "/.ssh/known_hosts"); }

    SshServer server;
};

TEST_F(SshConnectionTest, RefusesHostsThatAreUnknownOrHaveAnotherKey) {
    forgetHosts();
    EXPECT_EQ(errorOfConnecting(server.port()),
              "the host 127.0.0.1:PORT is not in known_hosts; its key is ssh-ed25519 SHA256:HASH. "
              "Compare it with that of the machine, and connect once with 'ssh' to accept it");
    // Nobody can switch that off.
    ASSERT_TRUE(writeFile(server.home() + "/.ssh/config", "StrictHostKeyChecking no\n"));
    EXPECT_TRUE(errorOfConnecting(server.port()).contains("is not in known_hosts"));
    // A changed key.
    server.makeKnown(server.port(), readFile(server.home() + "/.ssh/id_ed25519.pub"));
    EXPECT_EQ(errorOfConnecting(server.port()),
              "the key of the host 127.0.0.1:PORT is not the one in known_hosts, but ssh-ed25519 "
              "SHA256:HASH: somebody may be in between, or the host was set up anew; nothing was "
              "sent to it");
    forgetHosts();
    ASSERT_TRUE(QFile::remove(server.home() + "/.ssh/known_hosts"));
    EXPECT_TRUE(errorOfConnecting(server.port()).contains("is not in known_hosts"));
}

TEST_F(SshConnectionTest, RefusedUsersAreToldWhatTheServerAccepts) {
    ASSERT_TRUE(QFile::remove(server.home() + "/.ssh/id_ed25519"));
    const EnvironmentGuard noAgent("SSH_AUTH_SOCK", QString());
    EXPECT_EQ(errorOfConnecting(server.port()),
              "127.0.0.1:PORT accepts no key of the agent or of the folder .ssh for the user "
              "'NAME' (it accepts: publickey)");
}

TEST_F(SshConnectionTest, ReadsTheConfigurationOfTheUser) {
    ASSERT_TRUE(writeFile(
        server.home() + "/.ssh/config",
        "Host lab\n  HostName 127.0.0.1\n  Port " + QByteArray::number(server.port()) + '\n'));
    EXPECT_EQ(errorOf(SshConnection::open({"lab"})), "");
}

TEST_F(SshConnectionTest, TellsWhatKeepsItFromAServer) {
    EXPECT_TRUE(errorOfConnecting(1).startsWith("PORT27.0.0.PORT:PORT can't be reached: "));
    for (const int port : {0, 65536, -2})
        EXPECT_EQ(errorOf(SshConnection::open({loopbackHost, port})),
                  QString("%1 is no port").arg(port));
    EXPECT_NE(errorOf(SshConnection::open({"no.such.host.invalid"})), "");
    // One that takes connections and says nothing.
    FailingNetwork network(server.port());
    network.freeze();
    SshPatience patience;
    patience.connecting = 500;
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(errorOfConnecting(network.port(), patience).contains("can't be reached"));
    EXPECT_LT(timer.elapsed(), SshPatience().connecting);
}

TEST_F(SshConnectionTest, ASilentServerIsNotWaitedForForEver) {
    SshPatience patience;
    patience.silence = silence;
    struct Row {
        const char* what;
        std::function<QString(SshSystem&)> operation;
    };
    const Row rows[] = {
        {"a file", [](SshSystem& system) { return errorOf(system.facts("/")); }},
        {"a program", [](SshSystem& system) { return errorOf(system.execute({{"true"}})); }}};
    for (const Row& row : rows) {
        FailingNetwork network(server.port());
        server.makeKnown(network.port(), server.hostKey());
        const std::unique_ptr<SshSystem> system = connect(network.port(), patience);
        ASSERT_TRUE(system);
        ASSERT_TRUE(system->facts("/"));
        network.freeze();
        QElapsedTimer timer;
        timer.start();
        const QString wanted = QString(
                                   "the connection to 127.0.0.1:%1 has ended: the server has "
                                   "not answered for 2.5 s")
                                   .arg(network.port());
        EXPECT_EQ(row.operation(*system), wanted) << row.what;
        EXPECT_LT(timer.elapsed(), SshPatience().silence) << row.what;
        timer.start();
        EXPECT_EQ(row.operation(*system), wanted) << "told again";
        EXPECT_LT(timer.elapsed(), silence) << "at once";
    }
}

TEST_F(SshConnectionTest, ALongProgramIsNoSilence) {
    SshPatience patience;
    patience.silence = silence;
    const std::unique_ptr<SshSystem> system = connect(server.port(), patience);
    ASSERT_TRUE(system);
    EXPECT_EQ(errorOf(system->execute({{"sleep", "6"}})), "");
}

TEST_F(SshConnectionTest, AFullDiskThereIsTold) {
    QTemporaryDir small;
    if (::mount("tmpfs", small.path().toLocal8Bit(), "tmpfs", 0, "size=256k") != 0)
        GTEST_SKIP() << "file systems can't be mounted here";
    const std::unique_ptr<SshSystem> system = connect(server.port());
    QTemporaryDir folder;
    ASSERT_TRUE(writeFile(folder.filePath("big"), QByteArray(1024 * 1024, 'x')));
    const QString target = small.filePath("target");
    EXPECT_EQ(errorOf(system->writeFile(target, "old")), "");
    const QString error = errorOf(system->upload(folder.filePath("big"), target));
    const QStringList left =
        QDir(small.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    const QByteArray content = readFile(target);
    ::umount2(small.path().toLocal8Bit(), MNT_DETACH);
    EXPECT_EQ(error, QString("no space is left for '%1'").arg(target));
    EXPECT_EQ(left, QStringList("target"));
    EXPECT_EQ(content, "old");
}

/// Cuts the connection at many moments of transfers: nothing half-written has a name ever.
TEST_F(SshConnectionTest, CutTransfersLeaveNothingHalf) {
    QTemporaryDir folder;
    const QByteArray bytes(1024 * 1024, 'n');
    ASSERT_TRUE(writeFile(folder.filePath("source"), bytes));
    const auto names = [&] {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    constexpr int moments = 50;
    int completed = 0;
    quint32 random = 20;
    for (int moment = 0; moment < moments; ++moment) {
        random = random * 1664525 + 1013904223;
        const bool isUpload = moment % 2 == 0;
        FailingNetwork network(server.port());
        server.makeKnown(network.port(), server.hostKey());
        const std::unique_ptr<SshSystem> system = connect(network.port());
        ASSERT_TRUE(system);
        ASSERT_TRUE(writeFile(folder.filePath("target"), "old"));
        network.cutAfter((random >> 8) % (bytes.size() + 20000));
        const Outcome<> done =
            isUpload ? system->upload(folder.filePath("source"), folder.filePath("target"))
                     : system->download(folder.filePath("source"), folder.filePath("target"));
        completed += done ? 1 : 0;
        const QByteArray content = readFile(folder.filePath("target"));
        if (done)
            EXPECT_TRUE(content == bytes) << moment;
        else
            EXPECT_TRUE(content == "old" || content == bytes) << moment;
        EXPECT_EQ(done || done.error().kind == FailureKind::Ended, true)
            << moment << ' ' << qPrintable(errorOf(done));
        // The server can't be told any more to remove its part; this machine leaves none.
        QStringList left = names();
        left.removeOne("source");
        left.removeOne("target");
        EXPECT_TRUE(isUpload || left.isEmpty()) << moment;
        for (const QString& name : qAsConst(left)) {
            EXPECT_TRUE(name.startsWith(".tamrix-") && name.endsWith(".part")) << qPrintable(name);
            QFile::remove(folder.filePath(name));
        }
    }
    EXPECT_LT(completed, moments);
}

}  // namespace
}  // namespace Tamrix
