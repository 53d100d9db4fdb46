#pragma once

#include <QElapsedTimer>
#include <QPoint>
#include <optional>
#include <vector>

#include "platform/objectmodel/display/keymap.h"
#include "wire/keynames.h"
#include "wire/mousearguments.h"

namespace Tamrix::Display {

/// The display's mouse and keyboard, as if a person had them: each operation is done when it
/// returns, as far as the X server is concerned; when the programs get to it is theirs. What is
/// still down goes up with the object. Points are on the screen. Script thread only.
class Input {
public:
    /// Fails when the server takes no input from programs.
    static Outcome<std::unique_ptr<Input>> open(std::shared_ptr<XConnection> connection);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    // Keys. They go to the window that has the focus.
    Outcome<> press(const Wire::Key& key);
    void release(const Wire::Key& key);
    /// Presses all keys in order and releases them in the reverse one.
    Outcome<> pressCombination(const Wire::KeyCombination& keys);
    /// Types a text; line feeds and tabs are the keys.
    Outcome<> type(const QString& text);
    /// Those that are down.
    Qt::KeyboardModifiers modifiers() const;
    void markKeyMapStale() { m_keyMap.markStale(); }

    // The mouse.
    QPoint position();
    /// Where a button was pressed last; nothing before the first press.
    std::optional<QPoint> lastPress() const { return m_lastPress; }
    void move(const QPoint& point);
    /// Comes to the point from beside it, so that what is there notices.
    void approach(const QPoint& point);
    Outcome<> pressButton(Qt::MouseButton button);
    void releaseButton(Qt::MouseButton button);
    /// `count` 2 makes a double click.
    Outcome<> click(const QPoint& point, const Wire::MouseStyle& style, int count);
    Outcome<> drag(const QPoint& from, const QPoint& to, const Wire::MouseStyle& style);
    /// Holds the modifiers that are not down anyway, for the time of an action.
    template <typename Action>
    Outcome<> withModifiers(Qt::KeyboardModifiers modifiers, Action action);

private:
    struct Down {
        int key;
        xcb_keycode_t code;
        /// The Shift that was pressed for it; 0 for none.
        xcb_keycode_t shift;
    };

    explicit Input(std::shared_ptr<XConnection> connection);
    Outcome<> pressSymbol(int key, quint32 keySym);
    void sendKey(xcb_keycode_t code, bool isPress);
    void sendButton(uint8_t button, bool isPress);
    uint8_t physicalButton(Qt::MouseButton button);
    /// Waits until a press at the point makes no double click with an earlier one.
    void separateClicks(const QPoint& point);

    std::shared_ptr<XConnection> m_connection;
    KeyMap m_keyMap;
    std::vector<Down> m_keys;
    std::vector<std::pair<Qt::MouseButton, uint8_t>> m_buttons;
    std::optional<QPoint> m_lastPress;
    QElapsedTimer m_sinceLastPress;
};

template <typename Action>
Outcome<> Input::withModifiers(Qt::KeyboardModifiers wanted, Action action) {
    const QVector<Wire::Key> keys = Wire::keysOfModifiers(wanted & ~modifiers());
    Outcome<> done;
    for (const Wire::Key& key : keys) {
        if (done)
            done = press(key);
    }
    if (done)
        done = action();
    for (auto key = keys.crbegin(); key != keys.crend(); ++key)
        release(*key);
    return done;
}

}  // namespace Tamrix::Display
