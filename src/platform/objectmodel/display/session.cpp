#include "platform/objectmodel/display/session.h"

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDeadlineTimer>
#include <algorithm>

#include "base/blocking.h"

namespace Tamrix::Display {

namespace {

// How long is waited, in milliseconds: for a window to become what it was asked to be, for a program
// to handle its input, and for one that can't tell.
constexpr int windowPatience = 1000;
constexpr int settlePatience = 1000;
constexpr int settlePause = 30;
constexpr int pollInterval = 10;
constexpr int idleInterval = 50;
/// A program's windows go a moment before it has ended.
constexpr int endPatience = 200;

/// Who asks a window manager: a tool that speaks for the user.
constexpr uint32_t userRequest = 2;
constexpr uint32_t toWindowManager =
    XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
/// The upper bit of an event's type says who made it.
constexpr uint8_t eventTypeMask = 0x7f;

int nextNumber() {
    static int s_last = 0;
    return ++s_last;
}

/// Whether the process of the descriptor has ended.
bool hasEnded(int process) {
    pollfd watched{process, POLLIN, 0};
    return process >= 0 && ::poll(&watched, 1, 0) > 0;
}

}  // namespace

Session::Session(std::shared_ptr<XConnection> connection, ProcessTest isOwn,
                 qint64 process)
    : m_connection(std::move(connection)),
      m_isOwn(std::move(isOwn)),
      m_number(nextNumber()),
      m_process(
          static_cast<int>(::syscall(SYS_pidfd_open, static_cast<pid_t>(process), 0))),
      m_grab(m_connection) {
    m_connection->setEventHandler(
        [this](const xcb_generic_event_t& event) { handleEvent(event); });
    // Programs answer pings there.
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection->get(), m_connection->root(), XCB_CW_EVENT_MASK,
                                 &mask);
    m_connection->synchronize();
}

Session::~Session() {
    m_connection->setEventHandler({});
    if (m_process >= 0)
        ::close(m_process);
}

// The connection

void Session::close(const QString& reason) {
    if (!isOpen())
        return;
    m_endReason = reason;
    m_highlight.reset();
    m_input.reset();
}

Outcome<> Session::checkOpen() {
    takeNews();
    if (isOpen())
        return {};
    const QString text = m_endText ? m_endText() : QString();
    return fail(FailureKind::Ended, text.isEmpty() ? m_endReason : text);
}

void Session::takeNews() {
    m_connection->takeEvents();
    if (!m_connection->isOpen())
        close(m_connection->endReason());
    if (hasEnded(m_process))
        close(QStringLiteral("the process has ended"));
    if (m_highlight && m_highlight->isOver())
        m_highlight.reset();
}

void Session::handleEvent(const xcb_generic_event_t& event) {
    switch (event.response_type & eventTypeMask) {
        case XCB_MAPPING_NOTIFY:
            if (m_input)
                m_input->markKeyMapStale();
            break;
        case XCB_CLIENT_MESSAGE: {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
            if (message.format == 32 && message.type == m_connection->atom("WM_PROTOCOLS") &&
                message.data.data32[0] == m_connection->atom("_NET_WM_PING"))
                m_lastAnswer = std::max(m_lastAnswer, message.data.data32[1]);
            break;
        }
        default:
            break;
    }
}

bool Session::pause(int milliseconds) {
    const QDeadlineTimer deadline(milliseconds);
    do {
        if (m_idleHook && !m_idleHook())
            return false;
        const auto left = std::min<qint64>(deadline.remainingTime(), idleInterval);
        blockingSleep(static_cast<unsigned long>(std::max<qint64>(left, 0)) * 1000);
    } while (!deadline.hasExpired());
    return true;
}

bool Session::waitUntil(int timeout, const std::function<bool()>& isDone) {
    const QDeadlineTimer deadline(timeout);
    while (!isDone()) {
        if (deadline.hasExpired() || !isOpen() || !pause(pollInterval))
            return false;
        takeNews();
    }
    return true;
}

// Windows

Outcome<WindowList> Session::listNow() {
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    return listWindows(*m_connection, m_isOwn);
}

Outcome<WindowList> Session::windows() {
    settle();
    return listNow();
}

Outcome<WindowFacts> Session::window(xcb_window_t id) {
    settle();
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    const std::optional<WindowFacts> facts = factsOf(*m_connection, id);
    if (!m_connection->isOpen())
        return m_connection->ended();
    if (facts)
        return *facts;
    waitUntil(endPatience, [this] { return !isOpen(); });
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    return fail(FailureKind::Gone, QStringLiteral("The window 0x%1 is gone").arg(id, 0, 16));
}

Outcome<QImage> Session::picture(const QRect& rect) {
    settle();
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    const QRect screen = m_connection->rootGeometry();
    const QRect part = rect.isNull() ? screen : rect & screen;
    if (!m_connection->isOpen())
        return m_connection->ended();
    if (part.isEmpty())
        return fail(FailureKind::NotReady, QStringLiteral("nothing of it is on the screen"));
    return m_grab.grab(part);
}

// Handling of input. A program that answers pings has handled all that came before.

Outcome<> Session::ping(int timeout) {
    const Outcome<WindowList> windows = listNow();
    if (!windows)
        return fail(windows.error());
    const auto asked = std::find_if(windows->begin(), windows->end(),
                                    [](const WindowFacts& window) { return window.takesPing; });
    if (asked == windows->end()) {
        return fail(FailureKind::Refused,
                    QStringLiteral("none of the application's windows can be asked whether it "
                                   "answers (_NET_WM_PING)"));
    }
    const uint32_t number = ++m_lastPing;
    m_connection->sendMessage(
        asked->id, asked->id, "WM_PROTOCOLS",
        {m_connection->atom("_NET_WM_PING"), number, asked->id, 0, 0}, XCB_EVENT_MASK_NO_EVENT);
    const QDeadlineTimer deadline(timeout);
    while (m_lastAnswer < number) {
        if (const Outcome<> open = checkOpen(); !open)
            return open;
        pollfd waiting{m_connection->descriptor(), POLLIN, 0};
        const qint64 left = std::min<qint64>(deadline.remainingTime(), idleInterval);
        if (m_lastAnswer < number && left > 0)
            blockingPoll(&waiting, 1, static_cast<int>(left));
        m_connection->takeEvents();
        const bool isGivenUp = m_idleHook && !m_idleHook();
        if (m_lastAnswer < number && (deadline.hasExpired() || isGivenUp)) {
            return fail(FailureKind::TimedOut,
                        QStringLiteral("%1 has not answered within %2 ms")
                            .arg(describe(*asked), QString::number(timeout)));
        }
    }
    return {};
}

void Session::settle() {
    if (std::exchange(m_isSettled, true))
        return;
    const Outcome<> answer = ping(settlePatience);
    if (!answer && answer.error().kind == FailureKind::Refused)
        pause(settlePause);
}

Outcome<Input*> Session::input() {
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    if (!m_input) {
        Outcome<std::unique_ptr<Input>> opened = Input::open(m_connection);
        if (!opened)
            return fail(opened.error());
        m_input = std::move(*opened);
    }
    m_isSettled = false;
    return m_input.get();
}

std::optional<QPoint> Session::lastPress() const {
    return m_input ? m_input->lastPress() : std::nullopt;
}

// Activation

tl::unexpected<Failure> Session::unusable(const WindowFacts& window, const QString& obstacle) {
    const bool isThere = isOpen() && factsOf(*m_connection, window.id).has_value();
    if (!isThere)
        waitUntil(endPatience, [this] { return !isOpen(); });
    if (const Outcome<> open = checkOpen(); !open)
        return fail(open.error());
    if (!isThere)
        return fail(FailureKind::Gone, QStringLiteral("%1 is gone").arg(describe(window)));
    return fail(FailureKind::NotReady,
                QStringLiteral("%1 is not ready: %2").arg(describe(window), obstacle));
}

bool Session::hasWindowManagerFor(const char* request) {
    const auto check = m_connection->numbers(m_connection->root(), "_NET_SUPPORTING_WM_CHECK");
    // The property may be there longer than the window manager.
    if (check.empty() ||
        m_connection->numbers(check.front(), "_NET_SUPPORTING_WM_CHECK") != check)
        return false;
    const auto supported = m_connection->numbers(m_connection->root(), "_NET_SUPPORTED");
    return std::find(supported.begin(), supported.end(), m_connection->atom(request)) !=
           supported.end();
}

xcb_window_t Session::activeWindow() {
    const auto active = m_connection->numbers(m_connection->root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? noWindow : active.front();
}

bool Session::hasFocus(const WindowFacts& window) {
    const auto focus = m_connection->reply(xcb_get_input_focus(m_connection->get()),
                                           xcb_get_input_focus_reply);
    xcb_window_t each = focus ? focus->focus : noWindow;
    // The window itself, or one in it. The first numbers are no windows.
    while (each > XCB_INPUT_FOCUS_POINTER_ROOT && each != m_connection->root()) {
        if (each == window.id)
            return true;
        const auto tree =
            m_connection->reply(xcb_query_tree(m_connection->get(), each), xcb_query_tree_reply);
        each = tree ? tree->parent : noWindow;
    }
    return false;
}

Outcome<> Session::activate(const WindowFacts& window) {
    if (!window.isVisible && !hasWindowManagerFor("_NET_ACTIVE_WINDOW"))
        return unusable(window, QStringLiteral("it is not visible"));
    // Menus have the keys by themselves.
    if (window.isPopup || hasFocus(window))
        return {};
    m_isSettled = false;
    if (hasWindowManagerFor("_NET_ACTIVE_WINDOW")) {
        m_connection->sendMessage(m_connection->root(), window.id, "_NET_ACTIVE_WINDOW",
                                  {userRequest, currentTime, activeWindow(), 0, 0},
                                  toWindowManager);
        if (!waitUntil(windowPatience,
                       [&] { return activeWindow() == window.id && hasFocus(window); }))
            return unusable(window, QStringLiteral("the window manager does not activate it"));
        return {};
    }
    const uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(m_connection->get(), window.id, XCB_CONFIG_WINDOW_STACK_MODE, &above);
    xcb_set_input_focus(m_connection->get(), XCB_INPUT_FOCUS_PARENT, window.id, currentTime);
    if (window.takesFocus) {
        m_connection->sendMessage(window.id, window.id, "WM_PROTOCOLS",
                                  {m_connection->atom("WM_TAKE_FOCUS"), currentTime, 0, 0, 0},
                                  XCB_EVENT_MASK_NO_EVENT);
    }
    if (!waitUntil(windowPatience, [&] { return hasFocus(window); }))
        return unusable(window, QStringLiteral("it does not take the keys"));
    return {};
}

Outcome<> Session::activateAny() {
    const Outcome<WindowList> all = windows();
    if (!all)
        return fail(all.error());
    const bool isAnyActive = std::any_of(
        all->begin(), all->end(), [this](const WindowFacts& window) { return hasFocus(window); });
    const auto last = std::find_if(all->rbegin(), all->rend(), [](const WindowFacts& window) {
        return window.isVisible && !window.isPopup;
    });
    if (isAnyActive || last == all->rend())
        return {};
    return activate(*last);
}

Outcome<> Session::uncover(const WindowFacts* window, const QPoint& point) {
    const QString place = QStringLiteral("%1,%2").arg(QString::number(point.x()),
                                                      QString::number(point.y()));
    if (!m_connection->rootGeometry().contains(point)) {
        const QString obstacle = QStringLiteral("its point %1 is outside of the screen").arg(place);
        return window ? unusable(*window, obstacle)
                      : tl::unexpected<Failure>(Failure{
                            FailureKind::NotReady,
                            QStringLiteral("The point %1 is outside of the screen").arg(place)});
    }
    if (!window)
        return {};
    const auto isOnTop = [&] { return frameAt(*m_connection, point) == window->frame; };
    const bool wasOnTop = isOnTop();
    // With a window manager, the click itself activates.
    if (!wasOnTop || !hasWindowManagerFor("_NET_ACTIVE_WINDOW")) {
        if (const Outcome<> active = activate(*window); !active)
            return active;
    }
    if (wasOnTop || waitUntil(windowPatience, isOnTop))
        return {};
    const xcb_window_t cover = frameAt(*m_connection, point);
    const Outcome<WindowList> all = listNow();
    QString by = QStringLiteral("a window of another program");
    for (const WindowFacts& each : all.value_or(WindowList())) {
        if (each.frame == cover)
            by = describe(each);
    }
    return unusable(*window, QStringLiteral("it is covered at %1 by %2").arg(place, by));
}

Outcome<> Session::askToClose(const WindowFacts& window) {
    if (!window.takesDelete) {
        return fail(FailureKind::Refused,
                    QStringLiteral("%1 takes no request to close (WM_DELETE_WINDOW)")
                        .arg(describe(window)));
    }
    m_isSettled = false;
    m_connection->sendMessage(window.id, window.id, "WM_PROTOCOLS",
                              {m_connection->atom("WM_DELETE_WINDOW"), currentTime, 0, 0, 0},
                              XCB_EVENT_MASK_NO_EVENT);
    return {};
}

Outcome<> Session::highlight(const QRect& bounds, int milliseconds) {
    if (const Outcome<> open = checkOpen(); !open)
        return open;
    m_highlight.reset();
    m_highlight = std::make_unique<HighlightFrame>(m_connection, bounds, milliseconds);
    return {};
}

}  // namespace Tamrix::Display
