#include "agent/recorder/closerequests.h"

#include <QAbstractEventDispatcher>
#include <QGuiApplication>
#include <QWindow>
#include <cstring>
#include <utility>

namespace Tamrix::Agent {

namespace {

/// The part of an event of X11 that says what it is and which window it is for.
struct EventHead {
    quint8 type;
    quint8 format;
    quint16 sequence;
    quint32 window;
};

constexpr quint8 clientMessage = 33;
constexpr quint8 sentMark = 0x80;
/// Of requests to windows; texts have others.
constexpr quint8 requestFormat = 32;

}  // namespace

void CloseRequests::start() {
    QCoreApplication::instance()->installNativeEventFilter(this);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            [this] { m_told = 0; });
}

void CloseRequests::stop() {
    QCoreApplication::instance()->removeNativeEventFilter(this);
    QAbstractEventDispatcher::instance()->disconnect(this);
    m_told = 0;
}

std::optional<bool> CloseRequests::take(const QWindow& window) {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return std::nullopt;
    const quint32 told = std::exchange(m_told, 0);
    return window.handle() && told != 0 && told == window.winId();
}

bool CloseRequests::nativeEventFilter(const QByteArray& type, void* message,
                                      NativeResult* /*result*/) {
    if (type != "xcb_generic_event_t" || !message)
        return false;
    EventHead head;
    std::memcpy(&head, message, sizeof head);
    if ((head.type & ~sentMark) == clientMessage && head.format == requestFormat)
        m_told = head.window;
    return false;
}

}  // namespace Tamrix::Agent
