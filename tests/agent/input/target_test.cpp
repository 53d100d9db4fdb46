// Requests that say what they are about by a name: the agent finds it, waits for it, and acts.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QRect>

#include "agent/input/inputtest.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Wire::MessageType;
using Wire::Wanted;

class TargetTest : public InputTest {
protected:
    static Wire::Target named(const QString& name, int timeout = 200) {
        Wire::Target target;
        target.query = makeQuery({"name=" + name});
        target.wanted = Wanted::Reach;
        target.timeout = timeout;
        return target;
    }

    /// What became of a request with a target: "", "missed: why" or the failure. The body of a
    /// reply is left in `reply`.
    QString outcomeOf(MessageType type, const QByteArray& body) {
        const auto frame = program().client().exchange(type, body);
        reply.clear();
        Wire::Missed missed;
        Wire::Failure failure;
        if (frame && frame->type == MessageType::Reply)
            reply = frame->body;
        else if (frame && frame->type == MessageType::Missed && Wire::decode(frame->body, &missed))
            return "missed: " + missed.object.objectName + "|" + missed.obstacle + "|" +
                   (missed.nearMisses.isEmpty() ? "" : missed.nearMisses.first().object);
        else if (frame && Wire::decode(frame->body, &failure))
            return failure.text;
        else
            return "no answer";
        program().sync();
        return {};
    }
    QString act(const Wire::Target& target, const QString& method,
                const QVariantList& arguments = {}, int timeout = 1000) {
        return outcomeOf(MessageType::Act, encode(Wire::Act{target, method, arguments, timeout}));
    }

    QByteArray reply;
};

TAMRIX_FOR_EACH_PLATFORM(TargetTest, {"offscreen"});

TEST_P(TargetTest, FunctionsAreCalledWithWhatIsFound) {
    const Wire::ObjectInfo plain = program().object("Plain");
    EXPECT_EQ(act(named("Plain"), "click"), "");
    EXPECT_EQ(program().takeLog(), "clicked");
    Wire::ActResult result;
    ASSERT_TRUE(Wire::decode(reply, &result));
    EXPECT_EQ(result.object.handle, plain.handle);
    EXPECT_EQ(result.object.className, "QPushButton");
    // By handle, and with arguments behind the object.
    Wire::Target byHandle;
    byHandle.handle = program().object("line").handle;
    EXPECT_EQ(act(byHandle, "fill", {"new"}), "");
    EXPECT_EQ(program().read("line", "text").toString(), "new");
    // An item of what is found.
    Wire::Target item = named("list");
    item.isItem = true;
    item.item.text = "Row 3";
    EXPECT_EQ(act(item, "click"), "");
    EXPECT_EQ(program().read("list", "currentRow").toInt(), 3);
    // The function waits itself for what only it knows, and fails in its own words.
    EXPECT_EQ(act(named("Plain"), "fill", {"x"}),
              "QPushButton 'Plain' is no field that takes text");
    EXPECT_THAT(
        act(named("Covered"), "click", {}, 200).toStdString(),
        testing::MatchesRegex("QPushButton 'Covered' is not ready: .* covers the point .*"));
}

TEST_P(TargetTest, IsWaitedForAsLongAsItSays) {
    EXPECT_EQ(act(named("EnableLater"), "click"), "");
    EXPECT_EQ(act(named("Disabled", 20000), "click", {}, 20000), "");
    EXPECT_EQ(program().takeLog(), "impossible");

    Wire::Target none = named("Plane");
    EXPECT_EQ(act(none, "click"), "missed: ||");
    none.query = makeQuery({"type=QPushButton", "text=Plai"});
    none.wantNearMisses = true;
    EXPECT_EQ(act(none, "click"), "missed: ||QPushButton 'Plain'");
    EXPECT_EQ(act(named("dragLabel"), "click"), "");
    Wire::Target item = named("list");
    item.isItem = true;
    item.item.text = "Row 177";
    EXPECT_EQ(act(item, "click"), "missed: |QListWidget 'list' has no item 'Row 177'|");
    Wire::Target gone;
    gone.handle = 987654;
    EXPECT_EQ(act(gone, "click"), "the object does not exist any more");
}

TEST_P(TargetTest, IsLookedForAgainWhenItGoes) {
    Wire::Target replaced = named("Replaced");
    replaced.wanted = Wanted::Existence;
    EXPECT_EQ(act(named("ReplaceLater"), "click"), "");
    EXPECT_EQ(act(replaced, "click", {}, 20000), "");
    EXPECT_EQ(program().takeLog(), "new");
}

TEST_P(TargetTest, ItemsAreLookedForAgainWhenTheyGo) {
    Wire::Target rows = named("rows");
    rows.wanted = Wanted::Existence;
    EXPECT_EQ(act(named("ReplaceLater"), "click"), "");
    EXPECT_EQ(act(rows, "selectItem", {"Only row"}, 20000), "");
    EXPECT_EQ(program().read("rows", "currentRow").toInt(), 0);
}

TEST_P(TargetTest, WhoHasGrabbedTheMouseGetsTheClick) {
    EXPECT_EQ(act(named("Grab"), "click"), "");
    EXPECT_THAT(act(named("Plain"), "click", {}, 200).toStdString(),
                testing::MatchesRegex(
                    "QPushButton 'Plain' is not ready: QFrame 'pad' covers the point .*"));
    EXPECT_EQ(act(named("pad"), "click"), "");
    EXPECT_EQ(act(named("Plain"), "click"), "");
    EXPECT_THAT(program().takeLog().toStdString(), testing::HasSubstr("clicked"));
}

TEST_P(TargetTest, StandingStillIsRemembered) {
    program().call("click", "Plain");
    QElapsedTimer timer;
    timer.start();
    constexpr int clicks = 10;
    for (int count = 0; count < clicks; ++count)
        EXPECT_EQ(act(named("Plain"), "click"), "");
    // Each would take two looks of 20 ms that tell nothing new.
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    program().write("Disabled", "enabled", false);
    EXPECT_EQ(act(named("Disabled", 0), "click"), "missed: Disabled|it is disabled|");
}

TEST_P(TargetTest, MouseHighlightAndSnapshotTakeOne) {
    Wire::MouseEvent event;
    event.target = named("pad");
    event.mask = 9;
    event.x = 5;
    event.y = 6;
    event.buttonChange = true;
    for (const bool press : {true, false}) {
        event.press = press;
        EXPECT_EQ(outcomeOf(MessageType::MouseEvent, encode(event)), "");
    }
    EXPECT_EQ(program().takeLog(), "enter|press 5,6 1 1|release 5,6 1 0");
    event.target = named("none", 0);
    EXPECT_EQ(outcomeOf(MessageType::MouseEvent, encode(event)), "missed: ||");

    EXPECT_EQ(outcomeOf(MessageType::Highlight, encode(Wire::Highlight{named("Plain"), 10})), "");
    EXPECT_EQ(outcomeOf(MessageType::Highlight, encode(Wire::Highlight{named("none", 0), 10})),
              "missed: ||");
    EXPECT_EQ(outcomeOf(MessageType::Snapshot, encode(Wire::Snapshot{named("Plain"), false})), "");
    Wire::Value tree;
    ASSERT_TRUE(Wire::decode(reply, &tree));
    EXPECT_TRUE(tree.value.toByteArray().size() > 0);
}

TEST_P(TargetTest, QuestionsAboutNames) {
    AgentClient& client = program().client();
    const auto matches =
        client.request<Wire::MatchList>(MessageType::FindMatches, makeQuery({"name=Plain"}, 7));
    ASSERT_EQ(matches.count, 1) << "whatever occurrence is asked for";
    const Wire::Match plain = matches.matches.first();
    EXPECT_TRUE(plain.isVisible);
    const Wire::ScreenPoint middle{plain.bounds.center().x(), plain.bounds.center().y()};
    EXPECT_EQ(client.request<Wire::ObjectInfo>(MessageType::ObjectAt, middle).handle,
              plain.object.handle);
    const Wire::ScreenPoint outside{-3000, -3000};
    EXPECT_EQ(client.request<Wire::ObjectInfo>(MessageType::ObjectAt, outside).handle, 0U);
    const auto buttons =
        client.request<Wire::MatchList>(MessageType::FindMatches, makeQuery({"type=QPushButton"}));
    EXPECT_GT(buttons.count, 5);
    EXPECT_EQ(buttons.matches.size(), buttons.count);
    EXPECT_EQ(buttons.matches.at(1).object.handle, client.find({"type=QPushButton"}, 2).handle);
    const auto names = client.request<Wire::TextList>(MessageType::ListNames,
                                                      Wire::ObjectHandle{plain.object.handle});
    EXPECT_EQ(names.texts.first(), "{name='Plain' type='QPushButton'}");
    EXPECT_TRUE(names.texts.contains("{text='Plain' type='QPushButton'}"))
        << names.texts.join('\n').toStdString();
    EXPECT_TRUE(names.texts.contains("{occurrence='2' type='QPushButton'}") ||
                names.texts.contains("{type='QPushButton'}"))
        << names.texts.join('\n').toStdString();
}

}  // namespace
}  // namespace Tamrix
