#include "runner/services/remoteapplication.h"

#include <gtest/gtest.h>

#include "runner/relay/remoteprogram.h"
#include "support/outcomes.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

ApplicationPlaces places() {
    ConfiguredApplication shop;
    shop.name = "shop";
    shop.path = "/opt/shop";
    shop.arguments = QStringList{"--demo"};
    shop.launcher = Launcher::find("preload");
    shop.environment = {{"SECRET", "42"}};
    ConfiguredApplication game;
    game.name = "game";
    game.launcher = Launcher::find("none");
    return {"/suite", "/suite/config.xml", {shop, game}};
}

TEST(RemoteApplication, IsStartedByAHelperThatIsToldInItsEnvironment) {
    const Outcome<ApplicationStart> start =
        remoteApplication("shop 'a b'", {"lab", 2222}, places());
    ASSERT_TRUE(start);
    EXPECT_EQ(start->name, "shop");
    EXPECT_EQ(start->host, "lab");
    EXPECT_TRUE(start->program.program.endsWith("/lib/exec/tamrixremote"));
    EXPECT_EQ(start->program.arguments, (QStringList{"lab", "shop"}));
    ASSERT_EQ(start->program.environment.size(), 1);
    Relay::RemoteProgram program;
    ASSERT_TRUE(Relay::decode(start->program.environment[0].second.toLatin1(), &program));
    EXPECT_EQ(program.target.port, 2222);
    EXPECT_EQ(program.start.words, (QStringList{"/opt/shop", "--demo", "a b"}));
    EXPECT_EQ(program.start.hook, "preload");
    EXPECT_EQ(program.start.environment, places().configured[0].environment);
}

TEST(RemoteApplication, RefusesWhatCannotBeStartedThere) {
    EXPECT_EQ(errorOf(remoteApplication("game", {"lab"}, places())),
              "application 'game' has hook=\"none\" in /suite/config.xml: without an agent it can "
              "be driven on this machine only");
    EXPECT_EQ(errorOf(remoteApplication("  ", {"lab"}, places())), "no program is named");
    EXPECT_NE(errorOf(remoteApplication("'unfinished", {"lab"}, places())), "");
}

}  // namespace
}  // namespace Tamrix
