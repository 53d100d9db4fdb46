#pragma once

#include <xcb/shm.h>

#include <QImage>
#include <QRect>
#include <memory>

#include "platform/objectmodel/display/pixels.h"
#include "platform/objectmodel/display/xconnection.h"

namespace Tamrix::Display {

/// Takes pictures of what a display shows, without the mouse's cursor. They come through memory that
/// the server shares, which is kept for the next one, or else through the connection. Script thread
/// only.
class ScreenGrab {
public:
    enum class Way { Any, OnlyConnection };

    explicit ScreenGrab(std::shared_ptr<XConnection> connection, Way way = Way::Any);
    ~ScreenGrab();
    ScreenGrab(const ScreenGrab&) = delete;
    ScreenGrab& operator=(const ScreenGrab&) = delete;

    /// The part of the screen in a rectangle, of which the screen shows all. Fails when the server is
    /// gone, or its pixels are of a kind that is not known.
    Outcome<QImage> grab(const QRect& rect);
    /// Only lets the server put the part into the shared memory.
    Outcome<> fill(const QRect& rect);
    /// Whether the last picture came through shared memory.
    bool isShared() const { return m_memory != nullptr; }

private:
    Outcome<QImage> grabThroughConnection(const QRect& rect);
    bool ensureMemory(qint64 byteCount);
    tl::unexpected<Failure> noPicture() const;
    void releaseMemory();

    std::shared_ptr<XConnection> m_connection;
    PixelFormat m_format;
    bool m_canShare = false;
    xcb_shm_seg_t m_segment = 0;
    uchar* m_memory = nullptr;
    qint64 m_size = 0;
};

}  // namespace Tamrix::Display
