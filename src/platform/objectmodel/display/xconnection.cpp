#include "platform/objectmodel/display/xconnection.h"

#include <X11/Xauth.h>
#include <xcb/xcbext.h>

#include <QDeadlineTimer>
#include <QFile>
#include <algorithm>
#include <array>

#include "base/blocking.h"

namespace Tamrix::Display {

namespace {

constexpr char cookieProtocol[] = "MIT-MAGIC-COOKIE-1";
/// How much of a property is read, in bytes: titles and lists of windows are far shorter.
constexpr uint32_t mostPropertyBytes = 64 * 1024;
constexpr int replyPollInterval = 50;

struct DisposeAuthority {
    void operator()(Xauth* entry) const { XauDisposeAuth(entry); }
};
struct CloseFile {
    void operator()(FILE* file) const { std::fclose(file); }
};

/// The number in ":99", "host:0.1".
QByteArray displayNumber(const QString& name) {
    return name.section(QLatin1Char(':'), -1).section(QLatin1Char('.'), 0, 0).toLatin1();
}

/// The cookie in a file that fits the display; empty for none.
QByteArray cookieFor(const DisplayAddress& address) {
    const std::unique_ptr<FILE, CloseFile> file(
        std::fopen(QFile::encodeName(address.authorityFile).constData(), "rb"));
    const QByteArray number = displayNumber(address.name);
    while (file) {
        const std::unique_ptr<Xauth, DisposeAuthority> entry(XauReadAuth(file.get()));
        if (!entry)
            break;
        const QByteArray entryNumber(entry->number, entry->number_length);
        const bool fits = entryNumber.isEmpty() || entryNumber == number;
        if (fits && QByteArray(entry->name, entry->name_length) == cookieProtocol)
            return QByteArray(entry->data, entry->data_length);
    }
    return {};
}

xcb_connection_t* connectTo(const DisplayAddress& address, int* screenNumber) {
    const QByteArray name = address.name.toLocal8Bit();
    if (address.authorityFile.isEmpty())
        return xcb_connect(name.constData(), screenNumber);
    QByteArray protocol(cookieProtocol);
    QByteArray cookie = cookieFor(address);
    xcb_auth_info_t authority{static_cast<int>(protocol.size()), protocol.data(),
                              static_cast<int>(cookie.size()), cookie.data()};
    return xcb_connect_to_display_with_auth_info(
        name.constData(), cookie.isEmpty() ? nullptr : &authority, screenNumber);
}

QString connectionErrorText(int error) {
    switch (error) {
        case XCB_CONN_CLOSED_EXT_NOTSUPPORTED:
            return QStringLiteral("the X server lacks an extension");
        case XCB_CONN_CLOSED_MEM_INSUFFICIENT:
            return QStringLiteral("there is not enough memory");
        case XCB_CONN_CLOSED_REQ_LEN_EXCEED:
            return QStringLiteral("a request was longer than the X server takes");
        case XCB_CONN_CLOSED_PARSE_ERR:
            return QStringLiteral("this is no name of a display");
        case XCB_CONN_CLOSED_INVALID_SCREEN:
            return QStringLiteral("the display has no such screen");
        default:
            return QStringLiteral("there is no X server, or it lets nobody in without its cookie");
    }
}

}  // namespace

Outcome<std::shared_ptr<XConnection>> XConnection::open(const DisplayAddress& address) {
    if (address.name.isEmpty())
        return fail(FailureKind::NotFound,
                    QStringLiteral("there is no X display: DISPLAY is not set"));
    int screenNumber = 0;
    xcb_connection_t* const connection = connectTo(address, &screenNumber);
    std::shared_ptr<XConnection> made(new XConnection(address.name, connection, screenNumber));
    const int error = xcb_connection_has_error(connection);
    if (error != 0 || !made->m_screen) {
        return fail(FailureKind::Failed,
                    QStringLiteral("the display '%1' can't be reached: %2")
                        .arg(address.name, connectionErrorText(
                                               error != 0 ? error : XCB_CONN_CLOSED_INVALID_SCREEN)));
    }
    return made;
}

XConnection::XConnection(const QString& name, xcb_connection_t* connection, int screenNumber)
    : m_name(name), m_connection(connection) {
    if (xcb_connection_has_error(connection) != 0)
        return;
    m_setup = xcb_get_setup(connection);
    for (auto screen = xcb_setup_roots_iterator(m_setup); screen.rem > 0;
         xcb_screen_next(&screen), --screenNumber) {
        if (screenNumber == 0)
            m_screen = screen.data;
    }
}

XConnection::~XConnection() {
    xcb_disconnect(m_connection);
}

int XConnection::descriptor() const {
    return isOpen() ? xcb_get_file_descriptor(m_connection) : -1;
}

bool XConnection::isOpen() const {
    return !m_isStuck && xcb_connection_has_error(m_connection) == 0;
}

QString XConnection::endReason() const {
    if (m_isStuck)
        return QStringLiteral("The display '%1' has not answered for %2 ms")
            .arg(m_name, QString::number(answerTimeout));
    return QStringLiteral("The connection to the display '%1' has ended").arg(m_name);
}

QRect XConnection::rootGeometry() {
    const auto geometry = reply(xcb_get_geometry(m_connection, root()), xcb_get_geometry_reply);
    return geometry ? QRect(0, 0, geometry->width, geometry->height) : QRect();
}

// Replies. The library's own wait has no end when the server is stopped.

Owned<void> XConnection::waitForReply(unsigned int sequence) {
    flush();
    const QDeadlineTimer deadline(answerTimeout);
    while (isOpen()) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(m_connection, sequence, &reply, &error) != 0) {
            std::free(error);
            return Owned<void>(reply);
        }
        if (deadline.hasExpired()) {
            m_isStuck = true;
            xcb_discard_reply(m_connection, sequence);
            break;
        }
        pollfd waiting{xcb_get_file_descriptor(m_connection), POLLIN, 0};
        blockingPoll(&waiting, 1, replyPollInterval);
    }
    return nullptr;
}

bool XConnection::succeeded(xcb_void_cookie_t cookie) {
    // The reply to a later request comes when this one is done, and its error before.
    synchronize();
    if (!isOpen())
        return false;
    const Owned<xcb_generic_error_t> error(xcb_request_check(m_connection, cookie));
    return error == nullptr;
}

void XConnection::synchronize() {
    reply(xcb_get_input_focus(m_connection), xcb_get_input_focus_reply);
}

// Atoms, properties, messages

xcb_atom_t XConnection::atom(const QByteArray& name) {
    const auto known = m_atoms.constFind(name);
    if (known != m_atoms.cend())
        return *known;
    const auto answer =
        reply(xcb_intern_atom(m_connection, 0, static_cast<uint16_t>(name.size()), name.constData()),
              xcb_intern_atom_reply);
    if (!answer)
        return XCB_ATOM_NONE;
    m_atoms.insert(name, answer->atom);
    return answer->atom;
}

xcb_get_property_cookie_t XConnection::requestProperty(xcb_window_t window,
                                                       const QByteArray& name) {
    return xcb_get_property(m_connection, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0,
                            mostPropertyBytes / sizeof(uint32_t));
}

QByteArray XConnection::bytesOf(xcb_get_property_cookie_t cookie) {
    const auto property = reply(cookie, xcb_get_property_reply);
    if (!property || property->format != 8)
        return {};
    return {static_cast<const char*>(xcb_get_property_value(property.get())),
            xcb_get_property_value_length(property.get())};
}

std::vector<uint32_t> XConnection::numbersOf(xcb_get_property_cookie_t cookie) {
    const auto property = reply(cookie, xcb_get_property_reply);
    if (!property || property->format != 32)
        return {};
    const auto* const begin = static_cast<const uint32_t*>(xcb_get_property_value(property.get()));
    const auto count = static_cast<size_t>(xcb_get_property_value_length(property.get()));
    return {begin, begin + count / sizeof(uint32_t)};
}

void XConnection::sendMessage(xcb_window_t receiver, xcb_window_t window, const QByteArray& type,
                              const std::array<uint32_t, 5>& data, uint32_t eventMask) {
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atom(type);
    std::copy(data.begin(), data.end(), message.data.data32);
    xcb_send_event(m_connection, 0, receiver, eventMask, reinterpret_cast<const char*>(&message));
    flush();
}

void XConnection::takeEvents() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        if (m_handler)
            m_handler(*event);
    }
}

}  // namespace Tamrix::Display
