// Single events, handlers, pictures and the wait for an idle program.

#include <gmock/gmock.h>

#include <QElapsedTimer>
#include <QThread>
#include <algorithm>
#include <limits>

#include "agent/input/inputtest.h"
#include "support/printqt.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {
namespace {

using Wire::MessageType;

class LowLevelTest : public InputTest {
protected:
    AgentClient& client() { return program().client(); }
    QString mouse(const QString& name, int mask, QPoint point, bool isChange, bool isPress,
                  int button = 1) {
        Wire::MouseEvent event;
        event.target.handle = name.isEmpty() ? 0 : program().object(name).handle;
        event.mask = mask;
        event.x = point.x();
        event.y = point.y();
        event.button = button;
        event.buttonChange = isChange;
        event.press = isPress;
        client().tell(MessageType::MouseEvent, event);
        return client().lastError();
    }
    QRect bounds(const QString& name) {
        return client()
            .request<Wire::Value>(MessageType::GlobalBounds,
                                  Wire::ObjectHandle{program().object(name).handle})
            .value.toRect();
    }
    Screenshot picture(const QString& name, const QVariantList& arguments = {}) {
        return Screenshot::fromVariant(
            client()
                .request<Wire::Value>(MessageType::NativeRequest,
                                      Wire::NativeRequest{name, arguments})
                .value);
    }
    QStringList firedEvents() {
        QStringList texts;
        const QList<Wire::EventFired> events = client().takeEvents();
        for (const Wire::EventFired& event : events)
            texts.append(event.callback + ":" + event.object.objectName);
        return texts;
    }
};

TAMRIX_FOR_EACH_PLATFORM(LowLevelTest, {"offscreen", "xcb", "wayland"});

TEST_P(LowLevelTest, SingleMouseEventsArriveInTheirPlaces) {
    const QPoint pad = bounds("pad").topLeft();
    EXPECT_EQ(mouse("pad", 1 + 8, QPoint(4, 5), true, true), "");
    EXPECT_EQ(mouse("", 8, pad + QPoint(20, 25), false, false), "");
    EXPECT_EQ(mouse("", 0, QPoint(), true, false), "");  // where the mouse is
    program().sync();
    EXPECT_EQ(program().takeLog(), "enter|press 4,5 1 1|release 20,25 1 0");
    EXPECT_EQ(program().read("pad", "lastMove").toPoint(), QPoint(20, 25));
    EXPECT_EQ(mouse("", 8, pad + QPoint(30, 30), true, true, 2), "");
    EXPECT_EQ(mouse("", 8, pad + QPoint(30, 30), true, false, 2), "");
    program().sync();
    EXPECT_EQ(program().takeLog(), "press 30,30 2 2|release 30,30 2 0");
    EXPECT_EQ(mouse("pad", 1, QPoint(), true, true, 3),
              "3 is no mouse button: 1 is left, 2 right, 4 middle");
}

struct DragTest : LowLevelTest {};
/// Without Wayland, whose compositors make drags themselves, of presses that they know.
TAMRIX_FOR_EACH_PLATFORM(DragTest);

TEST_P(DragTest, ThingsAreDraggedAndDropped) {
    const QRect from = bounds("dragLabel");
    const QPoint way = bounds("dropLabel").center() - from.center();
    EXPECT_EQ(program().call("drag", "dragLabel",
                             {from.width() / 2, from.height() / 2, way.x(), way.y()}),
              "");
    // The offscreen platform ends every drag at once.
    const bool hasDrags = QString(GetParam().platform) == "xcb";
    EXPECT_EQ(program().takeLog(), hasDrags ? "drop Drag me|dragged" : "not dragged");
    EXPECT_EQ(program().call("click", "Plain"), "");
    EXPECT_EQ(program().takeLog(), "clicked");
}

TEST_P(LowLevelTest, HandlersTellOfEvents) {
    const quint64 plain = program().object("Plain").handle;
    const Wire::EventHandler handlers[] = {
        {plain, "", "MouseButtonPress", "one"},
        {0, "QAbstractButton", "QMouseEvent", "class"},
        {0, "", "QCloseEvent", "all"},
    };
    for (const Wire::EventHandler& handler : handlers)
        EXPECT_TRUE(client().tell(MessageType::InstallHandler, handler));
    EXPECT_EQ(program().call("click", "Plain"), "");
    QStringList events = firedEvents();
    events.removeDuplicates();
    EXPECT_EQ(events, QStringList({"class:Plain", "one:Plain"}));
    EXPECT_EQ(program().call("click", "pad"), "");
    EXPECT_EQ(firedEvents(), QStringList());
    EXPECT_TRUE(client().tell(MessageType::UninstallHandler, handlers[1]));
    EXPECT_FALSE(client().tell(MessageType::UninstallHandler, handlers[1]));
    EXPECT_EQ(program().call("click", "Modal"), "");
    EXPECT_EQ(program().call("closeWindow", client().find({"type=QMessageBox"})), "");
    EXPECT_EQ(firedEvents(), QStringList({"all:"}));
    EXPECT_FALSE(
        client().tell(MessageType::InstallHandler, Wire::EventHandler{0, "", "Blub", "x"}));
    EXPECT_EQ(client().lastError(), "unknown event 'Blub'");
}

TEST_P(LowLevelTest, EventsAreSent) {
    struct {
        const char* object;
        const char* event;
        QVariantList arguments;
        const char* error;
        const char* log;
    } const cases[] = {
        {"pad", "QMouseEvent", {"MouseButtonPress", 3, 4, 1, 0}, "", "press 3,4 1 1"},
        {"pad",
         "QMouseEvent",
         {"KeyPress", 3, 4, 1, 0},
         "'KeyPress' is no type of QMouseEvent",
         ""},
        {"pad", "QKeyEvent", {"Ctrl+B"}, "", "down 42/4000000 'b'|up 42/4000000 'b'"},
        {"pad", "QKeyEvent", {"Blub"}, "unknown key 'Blub' in 'Blub'", ""},
        {"pad", "QCloseEvent", {}, "", "close event"},
        {"pad", "QCloseEvent", {1}, "QCloseEvent takes 0 arguments (), not 1", ""},
        {"pad", "QBlubEvent", {}, "unknown event 'QBlubEvent'", ""},
    };
    for (const auto& row : cases) {
        const Wire::SendEvent request{program().object(row.object).handle, row.event,
                                      row.arguments};
        client().tell(MessageType::SendEvent, request);
        EXPECT_EQ(client().lastError(), row.error);
        program().sync();
        EXPECT_EQ(program().takeLog(), row.log);
    }
}

TEST_P(LowLevelTest, PicturesShowTheScreenAndItsObjects) {
    const QRect busy = bounds("Busy");
    const Screenshot desktop = picture("desktopScreenshot");
    ASSERT_FALSE(desktop.image().isNull());
    EXPECT_EQ(desktop.imageToNative(QPoint(7, 9)), QPoint(7, 9));
    const Screenshot button =
        picture("grabObjectScreenshot", {program().object("Busy").handle, 0, 0});
    EXPECT_EQ(button.image().size(), busy.size());
    EXPECT_EQ(button.imageToNative(QPoint(0, 0)), busy.topLeft());
    // The same on both: the button's red icon is in its place.
    const QImage cut = desktop.image().copy(desktop.nativeToImage(busy));
    const auto hasRed = [](const QImage& image) {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == QColor(Qt::red))
                    return true;
        return false;
    };
    EXPECT_TRUE(hasRed(cut));
    EXPECT_TRUE(hasRed(button.image()));
    const QByteArray icon =
        client()
            .request<Wire::Value>(
                MessageType::NativeRequest,
                Wire::NativeRequest{"getPixmapAsImage", {program().object("Busy").handle}})
            .value.toByteArray();
    EXPECT_EQ(QImage::fromData(icon, "PNG").pixelColor(3, 3), QColor(Qt::red));
    picture("getPixmapAsImage", {program().object("line").handle});
    EXPECT_EQ(client().lastError(), "QLineEdit 'old' has no picture of its own");
    picture("blub");
    EXPECT_EQ(client().lastError(), "the agent knows no native request 'blub'");
}

TEST_P(LowLevelTest, TellsTheWindowsAndTheLastPress) {
    const auto layout = [this] {
        return client()
            .request<Wire::Value>(MessageType::NativeRequest,
                                  Wire::NativeRequest{"screenLayout", {}})
            .value.toMap();
    };
    EXPECT_FALSE(layout().contains("lastPress"));
    const QRect plain = bounds("Plain");
    QRect all;
    const QVariantList windows = layout()["windows"].toList();
    for (const QVariant& window : windows) {
        const QVariantList numbers = window.toList();
        all |= QRect(numbers.value(0).toInt(), numbers.value(1).toInt(), numbers.value(2).toInt(),
                     numbers.value(3).toInt());
    }
    EXPECT_TRUE(all.contains(plain));
    EXPECT_EQ(program().call("click", "Plain", {4, 5}), "");
    EXPECT_EQ(program().call("hover", "Busy"), "");
    const QPoint press = plain.topLeft() + QPoint(4, 5);
    EXPECT_EQ(layout()["lastPress"], QVariant(QVariantList{press.x(), press.y()}));
}

TEST_P(LowLevelTest, RectanglesOfTheScreenAreTargets) {
    const auto call = [this](const QString& function, const QVariantList& arguments,
                             int timeout = 200) {
        Wire::Invoke request;
        request.method = function;
        request.arguments = arguments;
        request.timeout = timeout;
        client().request<Wire::Value>(MessageType::Invoke, request);
        program().sync();
        return client().lastError();
    };
    const QRect plain = bounds("Plain");
    const QRect pad = bounds("pad");
    EXPECT_EQ(call("click", {plain}), "");
    EXPECT_EQ(call("click", {plain, 4, 5}), "");
    EXPECT_EQ(program().takeLog(), "clicked|clicked");
    // A place beside the rectangle, with another button.
    const QRect corner(pad.topLeft(), QSize(2, 2));
    EXPECT_EQ(call("click", {corner, 7, 8, 2}), "");
    EXPECT_EQ(program().takeLog(), "enter|press 7,8 2 2|release 7,8 2 0");
    EXPECT_EQ(call("hover", {corner, 20, 21}), "");
    EXPECT_EQ(program().read("pad", "lastMove").toPoint(), QPoint(20, 21));

    // What is there has to be ready, as where it has a name.
    program().write("Disabled", "enabled", false);
    const QPoint point = bounds("Disabled").center();
    EXPECT_EQ(call("click", {bounds("Disabled")}),
              QStringLiteral("The point %1, %2 of the screen is not ready: QPushButton 'Disabled' "
                             "is there, and it is disabled")
                  .arg(QString::number(point.x()), QString::number(point.y())));
    EXPECT_EQ(call("click", {QRect(-5000, -5000, 10, 10)}),
              "The point -4995, -4995 of the screen is not ready: no window of the application is "
              "there");
    EXPECT_TRUE(call("fill", {plain, "x"}).startsWith("fill: the argument object is no object"))
        << "keys have no place";

    Wire::Highlight highlight;
    highlight.place = plain;
    highlight.milliseconds = 50;
    EXPECT_TRUE(client().tell(MessageType::Highlight, highlight));
    EXPECT_EQ(call("click", {plain}), "");
    EXPECT_EQ(program().takeLog(), "leave|clicked");
}

TEST_P(LowLevelTest, AHighlightShowsAndIsInNobodysWay) {
    const Wire::ObjectInfo plain = program().object("Plain");
    const int before = client().request<Wire::ObjectInfoList>(MessageType::TopLevelObjects).size();
    EXPECT_TRUE(client().tell(MessageType::Highlight, Wire::Highlight{{plain.handle}, -1}));
    program().sync();
    const QRect place = bounds("Plain");
    if (QString(GetParam().platform) == "xcb") {  // the offscreen platform shows no such windows
        const QImage screen = picture("desktopScreenshot").image();
        EXPECT_EQ(screen.pixelColor(place.topLeft() - QPoint(1, -5)), QColor(Qt::red));
    }
    EXPECT_EQ(client().request<Wire::ObjectInfoList>(MessageType::TopLevelObjects).size(), before);
    EXPECT_EQ(program().call("click", "Plain"), "");
    EXPECT_EQ(program().call("click", "Plain", {1, 1}), "");
    EXPECT_EQ(program().takeLog(), "clicked|clicked");
    client().exchange(MessageType::StopHighlight);
    EXPECT_TRUE(client().tell(MessageType::Highlight, Wire::Highlight{{plain.handle}, 100}));
    // Neither a frame that is there nor one that has been keeps the program from its end.
    EXPECT_EQ(program().call("closeWindow", "Plain"), "");
    EXPECT_TRUE(program().endsWith(0));
}

TEST_P(LowLevelTest, AProgramThatNeverRestsIsIdleAtLast) {
    // The least of some, since the machine may have more to do.
    const auto millisecondsUntilIdle = [&](int enough) {
        int least = std::numeric_limits<int>::max();
        for (int round = 0; round < 10 && least >= enough; ++round) {
            QElapsedTimer clock;
            clock.start();
            program().sync();
            least = std::min(least, static_cast<int>(clock.elapsed()));
        }
        return least;
    };
    EXPECT_LT(millisecondsUntilIdle(400), 400);
    EXPECT_EQ(program().call("click", "Busy"), "");
    EXPECT_LT(millisecondsUntilIdle(2000), 2000);
    EXPECT_EQ(program().call("click", "Plain"), "");
    EXPECT_EQ(program().takeLog(), "clicked");
}

TEST_P(LowLevelTest, QuittingAsksTheWindowsToClose) {
    client().exchange(MessageType::Quit);
    EXPECT_TRUE(program().endsWith(0));
}

}  // namespace
}  // namespace Tamrix
