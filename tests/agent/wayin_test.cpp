// How a program gets the agent, and what it does not do to the program.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <array>

#include "support/agentclient.h"
#include "support/processes.h"
#include "support/qtversions.h"
#include "support/waituntil.h"

namespace Tamrix {

namespace {

using Test::waitUntil;

const QMap<QString, QString> refused = {{"TAMRIX_AUTS", "another"}};

struct Way {
    WayIn wayIn;
    int qtVersion;
};

std::vector<Way> ways() {
    std::vector<Way> list;
    for (const int version : qtVersions()) {
        for (const WayIn wayIn : {WayIn::Plugin, WayIn::Hook})
            list.push_back({wayIn, version});
    }
    return list;
}

class WaysIn : public testing::TestWithParam<Way> {
protected:
    static QString target(const QString& name) { return forQt(name, GetParam().qtVersion); }
    static WayIn wayIn() { return GetParam().wayIn; }
};

TEST_P(WaysIn, AProgramAnnouncesItself) {
    // Without such a folder Qt would complain.
    const QTemporaryDir runtime;
    AgentClient client(target("widgets_target"), {"an argument"}, wayIn(),
                       {{"XDG_RUNTIME_DIR", runtime.path()}});
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    EXPECT_EQ(client.hello().pid, client.pid());
    EXPECT_EQ(client.hello().parentPid, ::getpid());
    EXPECT_EQ(QFileInfo(client.hello().program).fileName(), target("widgets_target"));
    EXPECT_EQ(client.hello().arguments, QStringList{"an argument"});
    EXPECT_EQ(client.hello().qtVersion.section('.', 0, 0).toInt(), GetParam().qtVersion);
    EXPECT_EQ(client.hello().platform, "offscreen");
    EXPECT_TRUE(client.exchange(Wire::MessageType::Ping));
    // Qt tells of plug-ins of another version; what it says of its own platform is the program's.
    QStringList lines = client.errorOutput().split('\n', Qt::SkipEmptyParts);
    lines.removeAll("This plugin does not support propagateSizeHints()");
    EXPECT_EQ(lines.join('\n').toStdString(), "");
}

TEST_P(WaysIn, ARefusedProgramIsLeftAlone) {
    AgentClient client(target("widgets_target"), {}, wayIn(), refused);
    EXPECT_FALSE(client.acceptHello(1500));
    QFile maps(QString("/proc/%1/maps").arg(client.pid()));
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    EXPECT_FALSE(
        maps.readAll().contains(forQt("libtamrixagent", GetParam().qtVersion).toUtf8() + ".so"));
}

TEST_P(WaysIn, AllowedChildrenAnnounceThemselvesToo) {
    for (const char* how : {"child", "shell"}) {
        AgentClient client(target("processes_target"), {how}, wayIn());
        ASSERT_TRUE(client.accept());
        const std::unique_ptr<Wire::FrameChannel> first = client.takeChannel();
        ASSERT_TRUE(client.accept()) << how << client.errorOutput().toStdString();
        EXPECT_NE(client.hello().pid, client.pid());
        EXPECT_EQ(client.hello().arguments, QStringList{"follow"});
        EXPECT_TRUE(client.exchange(Wire::MessageType::Ping));
    }
}

INSTANTIATE_TEST_SUITE_P(, WaysIn, testing::ValuesIn(ways()), [](const auto& test) {
    return (test.param.wayIn == WayIn::Plugin ? "Plugin" : "Hook") + qtName(test.param.qtVersion);
});

using WayInTest = QtTest;
TAMRIX_FOR_EACH_QT(WayInTest);

TEST_P(WayInTest, BothWaysAtOnceStartOneAgent) {
    AgentClient client(forQt("widgets_target", GetParam()), {}, WayIn::Plugin,
                       {{"LD_PRELOAD", hookPreload()}});
    ASSERT_TRUE(client.accept());
    const std::unique_ptr<Wire::FrameChannel> first = client.takeChannel();
    EXPECT_FALSE(client.acceptHello(1000));
}

TEST_P(WayInTest, APythonProgramGetsIn) {
    AgentClient client("/usr/bin/python3",
                       {"-c", QString("from PyQt%1.QtWidgets import QApplication, QPushButton\n"
                                      "a = QApplication(['x'])\nb = QPushButton('Py')\nb.show()\n"
                                      "a.exec()")
                                  .arg(GetParam())});
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    EXPECT_NE(client.find({"type=QPushButton", "text=Py"}).handle, 0U);
}

TEST_P(WayInTest, ARunnerThatIsNotThereTakesOneLine) {
    AgentClient client(forQt("processes_target", GetParam()), {"twice"}, WayIn::Plugin,
                       {{"TAMRIX_AGENT_CONNECT", "/nowhere/socket"}});
    EXPECT_TRUE(waitUntil([&] { return client.errorOutput().contains("/nowhere/socket"); }));
    EXPECT_EQ(client.waitForEnd(1000), -1) << "the program must live on";
    EXPECT_EQ(client.errorOutput().count("tamrixagent:"), 1);
}

TEST_P(WayInTest, ARefusalIsToldAndTheProgramLivesOn) {
    AgentClient client(forQt("widgets_target", GetParam()));
    ASSERT_TRUE(client.acceptHello());
    Wire::Text text;
    text.text = "version 1 here, 7 there";
    client.channel().sendBody(0, Wire::MessageType::Refusal, text);
    EXPECT_FALSE(client.nextFrame());
    EXPECT_FALSE(client.channel().isOpen());
    EXPECT_TRUE(client.errorOutput().contains("version 1 here, 7 there"));
    EXPECT_EQ(client.waitForEnd(300), -1);
}

TEST_P(WayInTest, GarbageAndALostRunnerDoNoHarm) {
    for (const bool isGreeted : {false, true}) {
        AgentClient client(forQt("widgets_target", GetParam()));
        ASSERT_TRUE(isGreeted ? client.accept() : client.acceptHello());
        const std::array<char, 100> garbage{'x', 'y'};
        ASSERT_GT(::write(client.channel().descriptor(), garbage.data(), garbage.size()), 0);
        EXPECT_FALSE(client.nextFrame());
        EXPECT_FALSE(client.channel().isOpen());
        EXPECT_EQ(client.waitForEnd(300), -1);
    }
}

TEST_P(WayInTest, AForkedChildLeavesTheConnectionToItsParent) {
    AgentClient client(forQt("processes_target", GetParam()), {"fork"});
    ASSERT_TRUE(client.accept());
    ASSERT_TRUE(waitUntil([&] { return Tamrix::Test::hasChild(client.pid()); }));
    // The child's event loop goes on as well.
    ::usleep(200 * 1000);
    for (int round = 0; round < 20; ++round)
        ASSERT_TRUE(client.exchange(Wire::MessageType::TopLevelObjects));
    EXPECT_NE(client.find({"text=label of fork"}).handle, 0U);
    EXPECT_EQ(client.errorOutput().count("tamrixagent"), 0);
}

TEST_P(WayInTest, ASecondApplicationObjectRunsWithoutAgent) {
    AgentClient client(forQt("processes_target", GetParam()), {"twice"});
    ASSERT_TRUE(client.accept());
    EXPECT_FALSE(client.nextFrame());
    EXPECT_FALSE(client.channel().isOpen());
    EXPECT_EQ(client.waitForEnd(500), -1) << "the program must live on";
}

}  // namespace

}  // namespace Tamrix
