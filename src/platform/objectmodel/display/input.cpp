#include "platform/objectmodel/display/input.h"

#include <xcb/xtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>

#include "base/blocking.h"
#include "platform/objectmodel/display/keysyms.h"

namespace Tamrix::Display {

namespace {

// Pauses, in milliseconds. A button is held so long that programs see it that look at its state now
// and then.
constexpr int pressPause = 10;
constexpr int doubleClickPause = 40;
constexpr int dragStepPause = 5;
/// Programs take two presses for a double click within this time and distance, as toolkits have it.
constexpr int doubleClickTime = 500;
constexpr int doubleClickDistance = 10;
// What a drag does between press and release.
constexpr int dragStepLength = 10;
constexpr int leastDragSteps = 5;
constexpr int mostDragSteps = 40;

void pause(int milliseconds) {
    blockingSleep(static_cast<unsigned long>(milliseconds) * 1000);
}

/// The buttons as X numbers them.
constexpr struct {
    Qt::MouseButton button;
    uint8_t number;
} buttonNumbers[] = {{Qt::LeftButton, 1},
                     {Qt::MiddleButton, 2},
                     {Qt::RightButton, 3},
                     {Qt::BackButton, 8},
                     {Qt::ForwardButton, 9}};

}  // namespace

Outcome<std::unique_ptr<Input>> Input::open(std::shared_ptr<XConnection> connection) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection->get(), &xcb_test_id);
    if (!connection->isOpen())
        return connection->ended();
    if (!extension || extension->present == 0) {
        return fail(FailureKind::Refused,
                    QStringLiteral("the display '%1' takes no mouse and keys from programs: it has "
                                   "no extension XTEST")
                        .arg(connection->name()));
    }
    return std::unique_ptr<Input>(new Input(std::move(connection)));
}

Input::Input(std::shared_ptr<XConnection> connection)
    : m_connection(std::move(connection)), m_keyMap(m_connection) {}

Input::~Input() {
    for (const Down& each : m_keys) {
        sendKey(each.code, false);
        if (each.shift != 0)
            sendKey(each.shift, false);
    }
    for (const auto& [button, number] : m_buttons)
        sendButton(number, false);
    m_connection->synchronize();
}

// Keys

void Input::sendKey(xcb_keycode_t code, bool isPress) {
    xcb_test_fake_input(m_connection->get(), isPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE, code,
                        currentTime, m_connection->root(), 0, 0, 0);
}

Qt::KeyboardModifiers Input::modifiers() const {
    Qt::KeyboardModifiers modifiers;
    for (const Down& each : m_keys)
        modifiers |= Wire::modifierOfKey(each.key);
    return modifiers;
}

Outcome<> Input::pressSymbol(int key, quint32 keySym) {
    const Outcome<KeyStroke> stroke = m_keyMap.strokeFor(keySym);
    if (!stroke)
        return fail(stroke.error());
    Down down{key, stroke->code, 0};
    if (stroke->withShift && (modifiers() & Qt::ShiftModifier) == 0) {
        const Outcome<KeyStroke> shift = m_keyMap.strokeFor(XKB_KEY_Shift_L);
        if (!shift)
            return fail(shift.error());
        down.shift = shift->code;
        sendKey(down.shift, true);
    }
    sendKey(down.code, true);
    m_keys.push_back(down);
    return {};
}

Outcome<> Input::press(const Wire::Key& key) {
    const Outcome<quint32> keySym = keySymOf(key);
    if (!keySym)
        return fail(keySym.error());
    const Outcome<> pressed = pressSymbol(key.code, *keySym);
    m_connection->synchronize();
    return pressed;
}

void Input::release(const Wire::Key& key) {
    const auto down = std::find_if(m_keys.rbegin(), m_keys.rend(),
                                   [&](const Down& each) { return each.key == key.code; });
    if (down == m_keys.rend())
        return;
    sendKey(down->code, false);
    if (down->shift != 0)
        sendKey(down->shift, false);
    m_keys.erase(std::next(down).base());
    m_connection->synchronize();
}

Outcome<> Input::pressCombination(const Wire::KeyCombination& keys) {
    Outcome<> done;
    auto pressed = keys.cbegin();
    for (; pressed != keys.cend() && done; ++pressed)
        done = press(*pressed);
    while (pressed != keys.cbegin())
        release(*--pressed);
    return done;
}

Outcome<> Input::type(const QString& text) {
    const QVector<uint> characters = QString(text).remove(u'\r').toUcs4();
    for (const uint character : characters) {
        const Wire::Key key = Wire::keyOfCharacter(character);
        // Keys are known by their upper-case letters, characters by themselves.
        const bool isNamed = key.code >= Qt::Key_Escape;
        const Outcome<quint32> keySym =
            isNamed ? keySymOf(key) : Outcome<quint32>(keySymOfCharacter(character));
        if (!keySym)
            return fail(keySym.error());
        if (const Outcome<> pressed = pressSymbol(key.code, *keySym); !pressed)
            return pressed;
        release(key);
    }
    return {};
}

// The mouse

QPoint Input::position() {
    const auto pointer = m_connection->reply(
        xcb_query_pointer(m_connection->get(), m_connection->root()), xcb_query_pointer_reply);
    return pointer ? QPoint(pointer->root_x, pointer->root_y) : QPoint();
}

void Input::move(const QPoint& point) {
    xcb_test_fake_input(m_connection->get(), XCB_MOTION_NOTIFY, 0, currentTime,
                        m_connection->root(), static_cast<int16_t>(point.x()),
                        static_cast<int16_t>(point.y()), 0);
    m_connection->synchronize();
}

void Input::sendButton(uint8_t button, bool isPress) {
    xcb_test_fake_input(m_connection->get(), isPress ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE,
                        button, currentTime, m_connection->root(), 0, 0, 0);
}

uint8_t Input::physicalButton(Qt::MouseButton button) {
    uint8_t wanted = 1;
    for (const auto& [known, number] : buttonNumbers) {
        if (known == button)
            wanted = number;
    }
    // A left-handed person's mouse has them the other way round.
    const auto mapping = m_connection->reply(xcb_get_pointer_mapping(m_connection->get()),
                                             xcb_get_pointer_mapping_reply);
    if (!mapping)
        return wanted;
    const uint8_t* const begin = xcb_get_pointer_mapping_map(mapping.get());
    const uint8_t* const end = begin + xcb_get_pointer_mapping_map_length(mapping.get());
    const uint8_t* const found = std::find(begin, end, wanted);
    return found == end ? wanted : static_cast<uint8_t>(found - begin + 1);
}

Outcome<> Input::pressButton(Qt::MouseButton button) {
    const uint8_t number = physicalButton(button);
    if (!m_connection->isOpen())
        return m_connection->ended();
    m_lastPress = position();
    m_sinceLastPress.start();
    sendButton(number, true);
    m_buttons.emplace_back(button, number);
    m_connection->synchronize();
    return {};
}

void Input::releaseButton(Qt::MouseButton button) {
    const auto down = std::find_if(m_buttons.begin(), m_buttons.end(),
                                   [&](const auto& each) { return each.first == button; });
    if (down == m_buttons.end())
        return;
    sendButton(down->second, false);
    m_buttons.erase(down);
    m_connection->synchronize();
}

void Input::approach(const QPoint& point) {
    // Two moves, as menus take the first one for the result of their own appearing.
    move(point - QPoint(1, 0));
    move(point);
}

void Input::separateClicks(const QPoint& point) {
    const bool isNear =
        m_lastPress && (*m_lastPress - point).manhattanLength() <= 2 * doubleClickDistance;
    const qint64 passed = isNear ? m_sinceLastPress.elapsed() : doubleClickTime;
    if (passed < doubleClickTime)
        pause(static_cast<int>(doubleClickTime - passed));
}

Outcome<> Input::click(const QPoint& point, const Wire::MouseStyle& style, int count) {
    return withModifiers(style.modifiers, [&]() -> Outcome<> {
        approach(point);
        separateClicks(point);
        for (int number = 0; number < count; ++number) {
            if (number > 0)
                pause(doubleClickPause);
            if (const Outcome<> pressed = pressButton(style.button); !pressed)
                return pressed;
            pause(pressPause);
            releaseButton(style.button);
        }
        return {};
    });
}

Outcome<> Input::drag(const QPoint& from, const QPoint& to, const Wire::MouseStyle& style) {
    return withModifiers(style.modifiers, [&]() -> Outcome<> {
        approach(from);
        separateClicks(from);
        if (const Outcome<> pressed = pressButton(style.button); !pressed)
            return pressed;
        const QPoint way = to - from;
        const int count =
            qBound(leastDragSteps, way.manhattanLength() / dragStepLength, mostDragSteps);
        for (int step = 1; step <= count; ++step) {
            pause(dragStepPause);
            move(from + way * step / count);
        }
        pause(dragStepPause);
        releaseButton(style.button);
        return {};
    });
}

}  // namespace Tamrix::Display
