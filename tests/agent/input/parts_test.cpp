// What is reached or named in more than one way.

#include <gmock/gmock.h>

#include <cmath>

#include <QPointF>
#include <QRect>
#include <QSizeF>

#include "agent/input/inputtest.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Wire::MessageType;

class PartsTest : public InputTest {
protected:
    QString target() const override { return forQt("parts_target", qtVersion()); }
    AgentClient& client() { return program().client(); }
    QString nameOf(const Wire::ObjectInfo& object) {
        return client()
            .request<Wire::Text>(MessageType::RealName, Wire::ObjectHandle{object.handle})
            .text;
    }
    Wire::LookUpResult lookUp(const QStringList& criteria, Wire::Wanted wanted) {
        Wire::LookUp request;
        request.query = makeQuery(criteria);
        request.wanted = wanted;
        return client().request<Wire::LookUpResult>(MessageType::LookUp, request);
    }
};

TAMRIX_FOR_EACH_PLATFORM(PartsTest, {"offscreen", "xcb", "wayland"});

TEST_P(PartsTest, WhatIsHiddenSaysBehindWhat) {
    const struct {
        QStringList criteria;
        QString obstacle;
    } cases[] = {
        {{"text=In Layers"}, "it is not visible: the dock 'Layers' is behind the tab of 'History'"},
        {{"text=Deep"}, "it is not visible: it is on the tab 'Page', which is not the current one"},
        {{"type=QAction", "text=Cut", "visible=false"}, ""},
    };
    for (const auto& row : cases) {
        const Wire::ObjectInfo object = client().find(row.criteria);
        if (row.obstacle.isEmpty()) {
            EXPECT_EQ(object.handle, 0U) << "the tool bar shows it";
            continue;
        }
        EXPECT_THAT(program().call("click", object, {}, 100).toStdString(),
                    testing::EndsWith(" is not ready: " + row.obstacle.toStdString()));
    }
}

TEST_P(PartsTest, WhatIsBehindAnotherDockIsNotShown) {
    QStringList texts;
    const auto outline = client().request<Wire::ObjectOutline>(MessageType::OutlineObjects);
    for (const Wire::OutlinedObject& object : outline.objects)
        texts.append(object.text);
    EXPECT_TRUE(texts.contains("In History")) << texts.join('|').toStdString();
    EXPECT_FALSE(texts.contains("In Layers")) << texts.join('|').toStdString();
}

TEST_P(PartsTest, ButtonsWithoutTextAreToldApart) {
    for (const QString name :
         {"{toolTip='Bold' type='QToolButton'}", "{iconName='edit-copy' type='QToolButton'}"}) {
        const QStringList criteria = name.mid(1, name.size() - 2).remove('\'').split(' ');
        const Wire::ObjectInfo button = client().find(criteria);
        ASSERT_NE(button.handle, 0U) << name.toStdString();
        EXPECT_EQ(nameOf(button), name);
    }
}

TEST_P(PartsTest, KeysGoToAMenuWhoseEntriesAreAtHomeElsewhere) {
    EXPECT_EQ(program().call("click", client().find({"text=Open", "type=QPushButton"})), "");
    for (const char* const key : {"Down", "Down", "Return"})
        EXPECT_EQ(program().call("press", "context", {key}, 500), "");
    EXPECT_EQ(program().takeLog(), "Paste");
    EXPECT_EQ(program().call("click", client().find({"text=Open", "type=QPushButton"})), "");
    EXPECT_EQ(program().call("hover", "context"), "");
    EXPECT_EQ(program().call("selectItem", "context", {"Cut"}), "");
    EXPECT_EQ(program().takeLog(), "Cut");
}

TEST_P(PartsTest, AnItemIsClickedBesideWhatLiesOnItsMiddle) {
    const QStringList disc{"type=QGraphicsEllipseItem"};
    EXPECT_FALSE(lookUp(disc, Wire::Wanted::Readiness).isReady);
    const Wire::LookUpResult found = lookUp(disc, Wire::Wanted::Reach);
    EXPECT_TRUE(found.isReady) << found.obstacle.toStdString();
    EXPECT_EQ(program().call("click", found.object, {50, 50}, 100),
              "QGraphicsEllipseItem is not ready: QGraphicsRectItem covers the point (50, 50)");
    EXPECT_EQ(program().call("click", found.object, {20, 50}), "");
    EXPECT_EQ(client().read(found.object, "selected"), true);
}

TEST_P(PartsTest, RealsTravelWholeAndHarmNothing) {
    EXPECT_EQ(program().read("main", "realPoint").toPointF(), QPointF(0.25, -1e300));
    const QSizeF size = program().read("main", "realSize").toSizeF();
    EXPECT_TRUE(std::isinf(size.width()) && std::isnan(size.height()));
    EXPECT_EQ(program().read("main", "realRect"), QRectF(0.5, 1, 2.25, 3));
    // Integers take what they can hold.
    program().write("main", "pos", QPointF(10.4, 20));
    EXPECT_EQ(program().read("main", "pos").toPoint(), QPoint(10, 20));
    program().write("main", "pos", QPointF(1e300, 0));
    EXPECT_THAT(client().lastError().toStdString(),
                testing::HasSubstr("is of type QPoint and can't be 1e+300, 0"));
    const QString usage = "; usage: click(object[, x, y][, button][, modifiers])";
    EXPECT_EQ(program().call("click", "main", {1e300, 5}),
              "click: the argument x is out of range: 1e+300" + usage);
    EXPECT_EQ(program().call("click", "main", {5, qQNaN()}),
              "click: the argument y is out of range: nan" + usage);
    EXPECT_THAT(program().call("click", "main", {5, 1 << 30}, 100).toStdString(),
                testing::HasSubstr("is outside of what can be clicked"));
}

}  // namespace
}  // namespace Tamrix
