// Scenes of Qt Quick, each a file that a program of Qt shows.

#include <gmock/gmock.h>

#include <QRect>

#include "agent/input/inputtest.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Wire::MessageType;

class SceneTest : public InputTest {
protected:
    explicit SceneTest(const char* scene) : m_scene(scene) {}

    QString target() const override { return sceneViewer(qtVersion()); }
    QStringList arguments() const override {
        return {QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/tests/agent/input/scenes/") + m_scene};
    }
    /// A click of a person who looks at nothing.
    void clickBlindly(const QString& name) {
        const Wire::ObjectHandle handle{program().object(name).handle};
        const QPoint point = program()
                                 .client()
                                 .request<Wire::Value>(MessageType::GlobalBounds, handle)
                                 .value.toRect()
                                 .center();
        for (const bool press : {true, false}) {
            Wire::MouseEvent event;
            event.mask = 8;
            event.x = point.x();
            event.y = point.y();
            event.buttonChange = true;
            event.press = press;
            program().client().tell(MessageType::MouseEvent, event);
        }
        program().sync();
    }

private:
    QString m_scene;
};

struct CoversTest : SceneTest {
    CoversTest() : SceneTest("covers.qml") {}
};
struct PopupsTest : SceneTest {
    PopupsTest() : SceneTest("popups.qml") {}
};
struct ListsTest : SceneTest {
    ListsTest() : SceneTest("lists.qml") {}
};

TAMRIX_FOR_EACH_PLATFORM(CoversTest);
TAMRIX_FOR_EACH_PLATFORM(PopupsTest);
TAMRIX_FOR_EACH_PLATFORM(ListsTest, {"offscreen", "xcb", "wayland"});

TEST_P(CoversTest, AreWhatTakesAClickAndNothingElse) {
    const struct {
        const char* target;
        bool isCovered;
    } cases[] = {
        {"rectangle", false},    {"label", false},        {"area", true},
        {"noButtons", false},    {"rightOnly", false},    {"disabledArea", false},
        {"disabledItem", false}, {"invisible", false},    {"transparent", true},
        {"composed", false},     {"composedTaken", true}, {"hoverHandler", false},
        {"tapHandler", true},    {"tapTaken", true},      {"tapDisabled", false},
        {"dragHandler", true},   {"pointHandler", false}, {"wheelHandler", false},
        {"pinchHandler", false}, {"tapRight", false},     {"masked", false},
        {"flickable", true},     {"still", false},        {"touchArea", true},
        {"pane", true},          {"button", true},        {"clipped", false},
    };
    for (const auto& row : cases) {
        // What the agent says is what Qt does.
        clickBlindly(row.target);
        const QString log = row.isCovered ? QString() : QString(row.target);
        SCOPED_TRACE(row.target);
        EXPECT_EQ(program().takeLog(), log);
        const QString error = program().call("click", row.target, {}, row.isCovered ? 200 : 5000);
        EXPECT_EQ(program().takeLog(), log);
        EXPECT_EQ(error.contains(" covers the point (29, 19)"), row.isCovered)
            << error.toStdString();
    }
    EXPECT_EQ(program().call("click", "tapped"), "");
    EXPECT_THAT(program().takeLog().toStdString(), testing::HasSubstr("tapped"));
    EXPECT_EQ(program().call("click", "rightClicked", {"right"}), "");
    EXPECT_EQ(program().takeLog(), "right");
}

TEST_P(PopupsTest, CoverWhatIsBelowThemAndBlockWhenTheyAreModal) {
    const Wire::ObjectInfo window = program().object("main");
    const auto click = [this](const char* name) {
        const QString error = program().call("click", name, {}, 1000);
        return error.isEmpty() ? program().takeLog() : error;
    };
    const struct {
        const char* popup;
        /// What a click on the button beside it, on the one below it and inside it gives.
        QString beside;
        QString below;
        const char* inside;
    } cases[] = {
        {"popup", "behind", "Button 'Covered' is not ready: .* covers the point .*", "inPopup"},
        {"menu", "behind", "Button 'Covered' is not ready: .* covers the point .*", "entry"},
        {"toolTip", "behind", "Button 'Covered' is not ready: .* covers the point .*", nullptr},
        {"dialog", "Button 'Behind' is not ready: the modal window .*'Sure\\?' blocks it",
         "Button 'Covered' is not ready: the modal window .*'Sure\\?' blocks it", "inDialog"},
        {"drawer", "Button 'Behind' is not ready: the modal window .* blocks it",
         "Button 'Covered' is not ready: the modal window .* blocks it", "inDrawer"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.popup);
        program().client().invoke(window, "setOpen", {row.popup, true});
        EXPECT_EQ(program().client().lastError(), "");
        EXPECT_THAT(click("behind").toStdString(), testing::MatchesRegex(row.beside.toStdString()));
        EXPECT_THAT(click("covered").toStdString(), testing::MatchesRegex(row.below.toStdString()));
        if (row.inside) {
            EXPECT_EQ(click(row.inside), row.inside);
        }
        EXPECT_EQ(program().call("press", "main", {"F5"}, 500), "");
        program().client().invoke(window, "setOpen", {row.popup, false});
        EXPECT_EQ(click("covered"), "covered");
    }
}

TEST_P(ListsTest, ItemsAreSelectedThatAreNotMadeYet) {
    const struct {
        const char* object;
        QVariant text;
        const char* error;
        const char* log;
    } cases[] = {
        {"ofModel", "Row 3", "", "Row 3"},
        {"ofModel", "Row 250", "", "Row 250"},
        {"ofModel", "Row 400", "QQuickListView 'ofModel' has no item 'Row 400'", ""},
        {"ofArray", "Entry 120", "", "Entry 120"},
        {"ofNumbers", "Number 140", "", "Number 140"},
        {"ofNumbers", "Number 2", "", "Number 2"},
        {"menus", "File.Open...", "", "open"},
        {"menus", "File.Recent.a.txt", "", "a.txt"},
        {"menus", QVariantList{"Edit", "Copy"}, "", "copy"},
        {"menus", "Edit.Paste", "the menu 'Edit' has no item 'Paste'; it has: Copy", ""},
        {"long", "Choice 70", "", ""},
    };
    for (const auto& row : cases) {
        const int timeout = *row.error == '\0' ? 5000 : 300;
        EXPECT_EQ(program().call("selectItem", row.object, {row.text}, timeout), row.error);
        EXPECT_EQ(program().takeLog(), row.log) << row.object;
    }
    EXPECT_EQ(program().read("long", "currentIndex").toInt(), 70);
    const Wire::ObjectInfo item = program().item("ofModel", "Row 100");
    EXPECT_EQ(program().client().read(item, "text"), "Row 100");
    Wire::FindItem byRow;
    byRow.handle = program().object("ofArray").handle;
    byRow.item.row = 60;
    byRow.wantReady = true;
    const auto found = program().client().request<Wire::LookUpResult>(MessageType::FindItem, byRow);
    EXPECT_TRUE(found.isReady) << found.obstacle.toStdString();
    byRow.item.row = 200;
    EXPECT_EQ(program().client().request<Wire::LookUpResult>(MessageType::FindItem, byRow).obstacle,
              "QQuickListView 'ofArray' has no item in row 200");
}

TEST_P(ListsTest, FieldsInsideOtherItemsAreFilled) {
    EXPECT_EQ(program().call("fill", "spin", {"123"}), "");
    EXPECT_EQ(program().read("spin", "value").toInt(), 123);
    EXPECT_EQ(program().call("fill", "editable", {"three"}), "");
    EXPECT_EQ(program().read("editable", "editText").toString(), "three");
    EXPECT_THAT(program().call("fill", "fixedSpin", {"7"}).toStdString(),
                testing::HasSubstr("is read only"));
}

}  // namespace
}  // namespace Tamrix
