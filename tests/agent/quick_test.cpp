// What the agent sees of Qt Quick.

#include <gtest/gtest.h>

#include <QFile>
#include <QRect>

#include "support/agentclient.h"
#include "support/printqt.h"
#include "support/qtversions.h"

namespace Tamrix {

namespace {

using QuickTest = QtTest;
TAMRIX_FOR_EACH_QT(QuickTest);

TEST_P(QuickTest, ItemsAreSeenWithPlaceNameAndText) {
    AgentClient client(forQt("quick_target", GetParam()));
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    const auto bounds = [&client](const Wire::ObjectInfo& object) {
        return client
            .request<Wire::Value>(Wire::MessageType::GlobalBounds,
                                  Wire::ObjectHandle{object.handle})
            .value.toRect();
    };
    const Wire::ObjectInfo window = client.find({"text=Scene"});
    ASSERT_NE(window.handle, 0U);
    const Wire::ObjectInfo button = client.find({"type=QQuickRectangle", "name=button"});
    EXPECT_EQ(client.read(button, "text"), "Press");
    EXPECT_EQ(bounds(button), QRect(20, 30, 100, 40).translated(bounds(window).topLeft()));
    EXPECT_NE(client.find({"type=QQuickText", "text=Press label", "window=Scene"}).handle, 0U);
    EXPECT_NE(client.find({"type=QQuickMouseArea", "container=button"}).handle, 0U);
    EXPECT_EQ(client.read(client.find({"name=gone"}), "visible"), false);
    EXPECT_EQ(
        client.request<Wire::Text>(Wire::MessageType::RealName, Wire::ObjectHandle{button.handle})
            .text,
        "{name='button' type='QQuickRectangle'}");

    // What a label covers takes the click; what lies far down is scrolled to.
    for (const QStringList& name : {QStringList{"text=Press label"}, QStringList{"name=far"}}) {
        Wire::LookUp lookUp;
        lookUp.query = makeQuery(name);
        lookUp.wanted = Wire::Wanted::Readiness;
        Wire::LookUpResult result;
        for (int look = 0; look < 20 && !result.isReady; ++look)
            result = client.request<Wire::LookUpResult>(Wire::MessageType::LookUp, lookUp);
        EXPECT_TRUE(result.isReady) << result.obstacle.toStdString();
    }
}

TEST_P(QuickTest, TheFocusIsNoName) {
    AgentClient client(forQt("quick_target", GetParam()));
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    const Wire::ObjectInfo field = client.find({"type=QQuickTextInput"});
    EXPECT_EQ(client.read(field, "activeFocus"), true);
    const auto name =
        client.request<Wire::Text>(Wire::MessageType::RealName, Wire::ObjectHandle{field.handle});
    EXPECT_EQ(name.text, "{type='QQuickTextInput'}");
}

TEST_P(QuickTest, PasswordsStayHidden) {
    AgentClient client(forQt("quick_target", GetParam()));
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    const Wire::ObjectInfo field = client.find({"type=QQuickTextInput"});
    const QString shown = client.read(field, "displayText").toString();
    EXPECT_EQ(shown.size(), 7);
    EXPECT_NE(shown, "hunter2");
    const auto listing = client.request<Wire::ObjectListing>(Wire::MessageType::ListObjects);
    const auto outline = client.request<Wire::ObjectOutline>(Wire::MessageType::OutlineObjects);
    QStringList texts;
    for (const Wire::ListedObject& object : listing.objects)
        texts << object.text << object.name;
    for (const Wire::OutlinedObject& object : outline.objects)
        texts << object.text << object.label;
    EXPECT_GE(texts.count(shown), 2);
    EXPECT_TRUE(texts.filter("hunter2").isEmpty());
    // Nor does it tell why it is not as expected, or not the one that is looked for.
    Wire::Expect expect;
    expect.handle = field.handle;
    expect.properties = makeQuery({"text=guess"});
    Wire::Expect missing;
    missing.query = makeQuery({"type=QQuickTextInput", "text=guess"});
    missing.wantNearMisses = true;
    for (const Wire::Expect& request : {expect, missing}) {
        const auto result = client.request<Wire::LookUpResult>(Wire::MessageType::Expect, request);
        ASSERT_EQ(result.nearMisses.size(), 1);
        EXPECT_EQ(result.nearMisses.first().differences.first().actual, "(hidden)");
    }
}

TEST_P(QuickTest, AProgramWithoutWidgetsGetsNone) {
    AgentClient client(forQt("quick_target", GetParam()));
    ASSERT_TRUE(client.accept()) << client.errorOutput().toStdString();
    ASSERT_NE(client.find({"text=Scene"}).handle, 0U);
    QFile maps(QString("/proc/%1/maps").arg(client.pid()));
    ASSERT_TRUE(maps.open(QIODevice::ReadOnly));
    const QByteArray libraries = maps.readAll();
    EXPECT_EQ(libraries.contains("libtamrixagentquick.so"), GetParam() == 5);
    EXPECT_EQ(libraries.contains("libtamrixagentquick-qt6.so"), GetParam() == 6);
    EXPECT_FALSE(libraries.contains("libtamrixagentwidgets"));
    EXPECT_FALSE(libraries.contains("Widgets.so"));
}

}  // namespace

}  // namespace Tamrix
