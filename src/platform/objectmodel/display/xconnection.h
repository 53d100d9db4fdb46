#pragma once

#include <xcb/xcb.h>

#include <QByteArray>
#include <QHash>
#include <QRect>
#include <QString>
#include <array>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "base/outcome.h"

namespace Tamrix::Display {

struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
/// What the library gives to be freed: replies and events.
template <typename T>
using Owned = std::unique_ptr<T, FreeMemory>;

/// Where an X server is, and who may come in.
struct DisplayAddress {
    /// ":99"
    QString name;
    /// A file of cookies; empty for that of this process's environment.
    QString authorityFile;
};

/// A connection to an X server. The server is another process, which may end, stop or answer
/// anything: no request waits for ever, and after the end of the connection all replies are null.
/// Script thread only; nothing throws.
class XConnection {
public:
    /// How long an answer may take, in milliseconds, before the server counts as lost.
    static constexpr int answerTimeout = 10000;

    static Outcome<std::shared_ptr<XConnection>> open(const DisplayAddress& address);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    xcb_connection_t* get() const { return m_connection; }
    QString name() const { return m_name; }
    int descriptor() const;
    bool isOpen() const;
    /// Why it is not open, a whole sentence.
    QString endReason() const;
    tl::unexpected<Failure> ended() const { return fail(FailureKind::Ended, endReason()); }

    const xcb_setup_t* setup() const { return m_setup; }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }
    /// As it is now: a screen may get another size at any time. Empty without a server.
    QRect rootGeometry();

    /// The reply to a request; null when the request failed, as for a window that is gone, and when
    /// the connection has ended.
    template <typename Cookie, typename Reply>
    Owned<Reply> reply(Cookie cookie, Reply* (*)(xcb_connection_t*, Cookie, xcb_generic_error_t**)) {
        return Owned<Reply>(static_cast<Reply*>(waitForReply(cookie.sequence).release()));
    }
    /// Whether a checked request without reply went well.
    bool succeeded(xcb_void_cookie_t cookie);
    /// Waits until the server has done all that was asked.
    void synchronize();
    void flush() { xcb_flush(m_connection); }

    /// The number of a name; 0 without a server.
    xcb_atom_t atom(const QByteArray& name);
    /// What an atom is called, for the few that the connection itself has named.
    QByteArray nameOf(xcb_atom_t atom) const { return m_atoms.key(atom); }
    xcb_get_property_cookie_t requestProperty(xcb_window_t window, const QByteArray& name);
    /// The bytes of a property that has elements of 8 bits; empty for any other.
    QByteArray bytesOf(xcb_get_property_cookie_t cookie);
    /// The elements of a property that has elements of 32 bits; empty for any other.
    std::vector<uint32_t> numbersOf(xcb_get_property_cookie_t cookie);
    std::vector<uint32_t> numbers(xcb_window_t window, const QByteArray& name) {
        return numbersOf(requestProperty(window, name));
    }

    /// Sends five numbers to a window as a message of this type, in the way in which window
    /// managers and clients are asked for something.
    void sendMessage(xcb_window_t receiver, xcb_window_t window, const QByteArray& type,
                     const std::array<uint32_t, 5>& data, uint32_t eventMask);

    /// What takeEvents() gives the events to that have come.
    void setEventHandler(std::function<void(const xcb_generic_event_t& event)> handler) {
        m_handler = std::move(handler);
    }
    void takeEvents();

private:
    XConnection(const QString& name, xcb_connection_t* connection, int screenNumber);
    Owned<void> waitForReply(unsigned int sequence);

    QString m_name;
    xcb_connection_t* m_connection;
    const xcb_setup_t* m_setup = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    bool m_isStuck = false;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    std::function<void(const xcb_generic_event_t&)> m_handler;
};

/// What the protocol has for no window.
inline constexpr xcb_window_t noWindow = XCB_WINDOW_NONE;
/// The server's current time, for requests and messages that need one.
inline constexpr uint32_t currentTime = XCB_CURRENT_TIME;

}  // namespace Tamrix::Display
