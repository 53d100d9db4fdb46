#pragma once

#include <deque>
#include <optional>
#include <vector>

#include "platform/objectmodel/display/xconnection.h"

namespace Tamrix::Display {

/// What has to be pressed for a symbol.
struct KeyStroke {
    xcb_keycode_t code = 0;
    bool withShift = false;
};

/// The display's keyboard as it is laid out now. A symbol that no key gives is put on a key that
/// gives nothing, for the time of the object. Script thread only.
class KeyMap {
public:
    explicit KeyMap(std::shared_ptr<XConnection> connection);
    /// Gives the borrowed keys back.
    ~KeyMap();
    KeyMap(const KeyMap&) = delete;
    KeyMap& operator=(const KeyMap&) = delete;

    /// Fails when neither a key nor a free one is there.
    Outcome<KeyStroke> strokeFor(quint32 keySym);
    /// The layout may have changed.
    void markStale() { m_isStale = true; }
    /// What a key gives without modifiers, in each of its columns.
    std::vector<quint32> symbolsOf(xcb_keycode_t code) const;

private:
    struct Borrowed {
        xcb_keycode_t code;
        quint32 keySym;
    };

    void load();
    std::optional<KeyStroke> find(quint32 keySym, int group, bool hasCapsLock) const;
    Outcome<KeyStroke> borrow(quint32 keySym);
    void assign(xcb_keycode_t code, quint32 keySym);

    std::shared_ptr<XConnection> m_connection;
    bool m_isStale = true;
    int m_columns = 0;
    std::vector<quint32> m_symbols;
    /// Keys that give nothing, and those of them that are in use, the oldest first.
    std::vector<xcb_keycode_t> m_free;
    std::deque<Borrowed> m_borrowed;
};

}  // namespace Tamrix::Display
