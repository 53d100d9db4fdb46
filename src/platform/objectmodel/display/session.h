#pragma once

#include <QElapsedTimer>
#include <functional>
#include <memory>

#include "platform/objectmodel/display/highlightframe.h"
#include "platform/objectmodel/display/input.h"
#include "platform/objectmodel/display/screengrab.h"
#include "platform/objectmodel/display/windownames.h"
#include "platform/objectmodel/display/windows.h"
#include "platform/objectmodel/display/xconnection.h"

namespace Tamrix::Display {

/// What is done with the windows of one application on a display: its model and its objects share
/// it. Script thread only; nothing throws.
class Session {
public:
    /// The session ends with the process.
    Session(std::shared_ptr<XConnection> connection, ProcessTest isOwn, qint64 process);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    XConnection& connection() { return *m_connection; }
    /// Tells the sessions of a process apart.
    int number() const { return m_number; }

    /// Nothing more is asked from now on; all fails with this reason.
    void close(const QString& reason);
    bool isOpen() const { return m_endReason.isEmpty(); }
    QString endReason() const { return m_endReason; }
    void setEndText(const std::function<QString()>& endText) { m_endText = endText; }
    /// A failure with the best reason there is, once it is closed.
    Outcome<> checkOpen();
    /// Works off what the server has sent, and sees whether the process has ended.
    void takeNews();

    void setIdleHook(const std::function<bool()>& hook) { m_idleHook = hook; }
    /// Lets others work meanwhile. False when the wait is to be given up.
    bool pause(int milliseconds);

    // Windows. These wait until the application has handled the input that it got before, as far as
    // its windows can tell.
    Outcome<WindowList> windows();
    /// Fails with FailureKind::Gone when it is gone.
    Outcome<WindowFacts> window(xcb_window_t id);
    /// The part of the screen, in whole when the rectangle is null.
    Outcome<QImage> picture(const QRect& rect);

    // Acts. A failure of kind NotReady tells what was in the way.
    /// Makes the window the active one, which has the keys, and brings it to the front.
    Outcome<> activate(const WindowFacts& window);
    /// Brings the window to the front where something lies over the point. For a null window only
    /// checks that the point is on the screen.
    Outcome<> uncover(const WindowFacts* window, const QPoint& point);
    /// Without a window manager no window may have the keys: then the highest one gets them.
    Outcome<> activateAny();
    Outcome<> askToClose(const WindowFacts& window);
    /// Whether the program answers within `timeout` ms. Fails with FailureKind::TimedOut when not,
    /// and is refused when none of its windows can be asked.
    Outcome<> ping(int timeout);
    /// The input; what comes next then waits for its being handled.
    Outcome<Input*> input();
    /// Where a button was pressed last.
    std::optional<QPoint> lastPress() const;

    Outcome<> highlight(const QRect& bounds, int milliseconds);
    void stopHighlight() { m_highlight.reset(); }

private:
    void handleEvent(const xcb_generic_event_t& event);
    bool hasWindowManagerFor(const char* request);
    xcb_window_t activeWindow();
    bool hasFocus(const WindowFacts& window);
    bool waitUntil(int timeout, const std::function<bool()>& isDone);
    void settle();
    Outcome<WindowList> listNow();
    /// Why nothing can be done with the window: the obstacle, unless it, or all, is gone.
    tl::unexpected<Failure> unusable(const WindowFacts& window, const QString& obstacle);

    std::shared_ptr<XConnection> m_connection;
    ProcessTest m_isOwn;
    int m_number;
    /// Readable when the process ends; -1 for none.
    int m_process;
    QString m_endReason;
    std::function<QString()> m_endText;
    std::function<bool()> m_idleHook;
    ScreenGrab m_grab;
    std::unique_ptr<Input> m_input;
    std::unique_ptr<HighlightFrame> m_highlight;
    bool m_isSettled = true;
    uint32_t m_lastPing = 0;
    uint32_t m_lastAnswer = 0;
};

}  // namespace Tamrix::Display
