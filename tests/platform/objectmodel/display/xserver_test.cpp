// What X servers differ in: depth, shared memory, the extension for input, keyboards; and their
// end.

#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include "agent/input/testdisplay.h"
#include "platform/objectmodel/display/displaymodel.h"
#include "platform/objectmodel/display/input.h"
#include "platform/objectmodel/display/keymap.h"
#include "platform/objectmodel/display/keysyms.h"
#include "platform/objectmodel/display/screengrab.h"
#include "platform/objectmodel/display/windows.h"

namespace Tamrix::Display {
namespace {

std::shared_ptr<XConnection> connectTo(const TestDisplay& display) {
    const auto connection = XConnection::open({display.name(), {}});
    EXPECT_TRUE(connection) << display.name().toStdString();
    return connection.value_or(nullptr);
}

/// A window of this test in a colour of three bytes, without a border.
xcb_window_t showWindow(XConnection& connection, const QRect& bounds, QRgb colour) {
    const auto allocated =
        connection.reply(xcb_alloc_color(connection.get(), connection.screen().default_colormap,
                                         static_cast<uint16_t>(qRed(colour) * 257),
                                         static_cast<uint16_t>(qGreen(colour) * 257),
                                         static_cast<uint16_t>(qBlue(colour) * 257)),
                         xcb_alloc_color_reply);
    const uint32_t pixel = allocated ? allocated->pixel : 0;
    const xcb_window_t window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(),
                      static_cast<int16_t>(bounds.x()), static_cast<int16_t>(bounds.y()),
                      static_cast<uint16_t>(bounds.width()), static_cast<uint16_t>(bounds.height()),
                      0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      &pixel);
    xcb_map_window(connection.get(), window);
    connection.synchronize();
    return window;
}

constexpr QRgb colour = 0xffff8400;

TEST(XServerTest, PicturesComeFromServersOfAllKinds) {
    const struct {
        const char* screen;
        QStringList options;
        bool isShared;
    } table[] = {
        {"300x200x24", {}, true},
        {"300x200x24", {"-extension", "MIT-SHM"}, false},
        {"301x200x16", {}, true},
        {"300x200x30", {}, true},
    };
    for (const auto& row : table) {
        const TestDisplay display("xcb", row.screen, row.options);
        const std::shared_ptr<XConnection> connection = connectTo(display);
        ASSERT_TRUE(connection) << row.screen;
        showWindow(*connection, QRect(10, 20, 30, 40), colour);
        ScreenGrab grab(connection);
        ScreenGrab throughConnection(connection, ScreenGrab::Way::OnlyConnection);
        const Outcome<QImage> whole = grab.grab(connection->rootGeometry());
        ASSERT_TRUE(whole) << row.screen << whole.error().text.toStdString();
        EXPECT_EQ(grab.isShared(), row.isShared) << row.screen;
        EXPECT_EQ(whole->size(), connection->rootGeometry().size());
        const QRgb pixel = whole->pixel(10, 20);
        EXPECT_NEAR(qRed(pixel), qRed(colour), 4) << row.screen;
        EXPECT_NEAR(qGreen(pixel), qGreen(colour), 4) << row.screen;
        EXPECT_NEAR(qBlue(pixel), qBlue(colour), 4) << row.screen;
        EXPECT_EQ(whole->pixel(9, 20), 0xff000000) << row.screen;
        EXPECT_EQ(whole->pixel(39, 59), pixel) << row.screen;
        EXPECT_EQ(*throughConnection.grab(connection->rootGeometry()), *whole) << row.screen;
        EXPECT_EQ(*grab.grab(QRect(5, 7, 33, 55)), whole->copy(5, 7, 33, 55)) << row.screen;
    }
    const TestDisplay palette("xcb", "300x200x8");
    ScreenGrab grab(connectTo(palette));
    EXPECT_EQ(grab.grab(QRect(0, 0, 10, 10)).error().kind, FailureKind::Refused);
}

TEST(XServerTest, WindowsAreToldByTheirProcess) {
    const TestDisplay display("xcb");
    const std::shared_ptr<XConnection> connection = connectTo(display);
    const xcb_window_t window = showWindow(*connection, QRect(10, 20, 30, 40), colour);
    showWindow(*connection, QRect(0, 0, 1, 1), colour);
    std::vector<qint64> asked;
    const auto list = [&](bool isOwn) {
        return listWindows(*connection, [&asked, isOwn](qint64 process) {
            asked.push_back(process);
            return isOwn;
        });
    };
    const Outcome<WindowList> own = list(true);
    ASSERT_TRUE(own);
    ASSERT_EQ(own->size(), 1U);
    EXPECT_EQ(own->front().id, window);
    EXPECT_EQ(own->front().geometry, QRect(10, 20, 30, 40));
    EXPECT_EQ(own->front().pid, ::getpid());
    EXPECT_EQ(asked, std::vector<qint64>{::getpid()});
    EXPECT_TRUE(list(false)->empty());
    EXPECT_EQ(frameAt(*connection, QPoint(10, 20)), window);
    EXPECT_EQ(frameAt(*connection, QPoint(9, 20)), noWindow);

    xcb_destroy_window(connection->get(), window);
    EXPECT_FALSE(factsOf(*connection, window));
    EXPECT_TRUE(list(true)->empty());
}

TEST(XServerTest, AllCharactersHaveAKeyForATime) {
    const TestDisplay display("xcb");
    const std::shared_ptr<XConnection> connection = connectTo(display);
    const auto symbolOf = [&](const KeyStroke& stroke) {
        const auto mapping =
            connection->reply(xcb_get_keyboard_mapping(connection->get(), stroke.code, 1),
                              xcb_get_keyboard_mapping_reply);
        const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
        return symbols[stroke.withShift ? 1 : 0];
    };
    std::vector<xcb_keycode_t> borrowed;
    {
        KeyMap map(connection);
        for (const uint character : {97u, 65u, 49u, 33u, 126u, 32u}) {  // aA1!~ and a blank
            const Outcome<KeyStroke> stroke = map.strokeFor(keySymOfCharacter(character));
            ASSERT_TRUE(stroke) << character;
            EXPECT_EQ(symbolOf(*stroke), character);
        }
        EXPECT_TRUE(map.strokeFor(XKB_KEY_A)->withShift);
        EXPECT_FALSE(map.strokeFor(XKB_KEY_a)->withShift);
        // More than there are free keys: the oldest are given up.
        for (uint character = 0x4e00; character < 0x4e00 + 40; ++character) {
            const quint32 symbol = keySymOfCharacter(character);
            const Outcome<KeyStroke> stroke = map.strokeFor(symbol);
            ASSERT_TRUE(stroke) << character;
            EXPECT_EQ(symbolOf(*stroke), symbol);
            borrowed.push_back(stroke->code);
        }
    }
    for (const xcb_keycode_t code : borrowed)
        EXPECT_EQ(symbolOf({code, false}), static_cast<uint>(XKB_KEY_NoSymbol));
}

TEST(XServerTest, KeysHaveTheSymbolsOfX) {
    const struct {
        const char* keys;
        quint32 symbol;
    } table[] = {
        {"Return", XKB_KEY_Return},
        {"Enter", XKB_KEY_KP_Enter},
        {"F11", XKB_KEY_F11},
        {"PgUp", XKB_KEY_Page_Up},
        {"a", XKB_KEY_a},
        {"A", XKB_KEY_a},
        {"Ä", XKB_KEY_adiaeresis},
        {"€", XKB_KEY_EuroSign},
        {"+", XKB_KEY_plus},
        {"Space", XKB_KEY_space},
        {"Ctrl", XKB_KEY_Control_L},
        {"Win", XKB_KEY_Super_L},
        {"Left", XKB_KEY_Left},
        {"Menu", XKB_KEY_Menu},
    };
    for (const auto& row : table) {
        QString error;
        const Wire::KeyCombination keys = Wire::parseKeys(QString::fromUtf8(row.keys), &error);
        ASSERT_EQ(keys.size(), 1) << row.keys << error.toStdString();
        EXPECT_EQ(keySymOf(keys.first()).value_or(0), row.symbol) << row.keys;
    }
    QString error;
    const Wire::KeyCombination keys = Wire::parseKeys("MediaPlay", &error);
    ASSERT_EQ(keys.size(), 1);
    EXPECT_EQ(keySymOf(keys.first()).error().kind, FailureKind::BadArgument);
}

TEST(XServerTest, InputNeedsItsExtension) {
    const TestDisplay display("xcb", "300x200x24", {"-extension", "XTEST"});
    const auto input = Input::open(connectTo(display));
    ASSERT_FALSE(input);
    EXPECT_EQ(input.error().kind, FailureKind::Refused);
    EXPECT_EQ(input.error().text, QString("the display '%1' takes no mouse and keys from programs: "
                                          "it has no extension XTEST")
                                      .arg(display.name()));
}

TEST(XServerTest, WhatIsDownGoesUpAtTheEnd) {
    const TestDisplay display("xcb");
    const std::shared_ptr<XConnection> connection = connectTo(display);
    const auto state = [&] {
        return connection
            ->reply(xcb_query_pointer(connection->get(), connection->root()),
                    xcb_query_pointer_reply)
            ->mask;
    };
    {
        const auto input = Input::open(connection);
        ASSERT_TRUE(input);
        (*input)->move({7, 9});
        EXPECT_EQ((*input)->position(), QPoint(7, 9));
        QString error;
        EXPECT_TRUE((*input)->press(Wire::parseKeys("Ctrl", &error).first()));
        EXPECT_TRUE((*input)->pressButton(Qt::RightButton));
        EXPECT_EQ(state(), XCB_KEY_BUT_MASK_CONTROL | XCB_KEY_BUT_MASK_BUTTON_3);
        EXPECT_EQ((*input)->lastPress(), QPoint(7, 9));
    }
    EXPECT_EQ(state(), 0);
}

TEST(XServerTest, TheEndOfTheServerEndsAll) {
    TestDisplay display("xcb");
    ApplicationFacts facts;
    facts.pid = ::getpid();
    DisplayModel model(
        connectTo(display), [](qint64) { return true; }, facts);
    EXPECT_TRUE(model.takeNews());
    EXPECT_TRUE(model.listing()->objects.isEmpty());
    display.kill();
    const Outcome<QVariant> picture = model.nativeRequest("desktopScreenshot", {});
    ASSERT_FALSE(picture);
    EXPECT_EQ(picture.error().kind, FailureKind::Ended);
    EXPECT_FALSE(model.takeNews());
    EXPECT_EQ(model.endReason(),
              QString("The connection to the display '%1' has ended").arg(display.name()));
    EXPECT_EQ(model.listing().error().kind, FailureKind::Ended);
    EXPECT_EQ(model.descriptor(), -1);

    const auto again = XConnection::open({display.name(), {}});
    ASSERT_FALSE(again);
    EXPECT_EQ(
        again.error().text,
        QString("the display '%1' can't be reached: there is no X server, or it lets nobody in "
                "without its cookie")
            .arg(display.name()));
    EXPECT_EQ(XConnection::open({}).error().text, "there is no X display: DISPLAY is not set");
}

}  // namespace
}  // namespace Tamrix::Display
