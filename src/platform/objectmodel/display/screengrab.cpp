#include "platform/objectmodel/display/screengrab.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace Tamrix::Display {

namespace {

constexpr uint32_t allPlanes = ~0U;

/// How the screen's own pixels are laid out.
PixelFormat formatOf(const XConnection& connection) {
    const xcb_screen_t& screen = connection.screen();
    PixelFormat format;
    format.depth = screen.root_depth;
    format.isBigEndian = connection.setup()->image_byte_order == XCB_IMAGE_ORDER_MSB_FIRST;
    for (auto each = xcb_setup_pixmap_formats_iterator(connection.setup()); each.rem > 0;
         xcb_format_next(&each)) {
        if (each.data->depth != screen.root_depth)
            continue;
        format.bitsPerPixel = each.data->bits_per_pixel;
        format.linePad = each.data->scanline_pad;
    }
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0;
             xcb_visualtype_next(&visual)) {
            const bool hasColours = visual.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR ||
                                    visual.data->_class == XCB_VISUAL_CLASS_DIRECT_COLOR;
            if (visual.data->visual_id != screen.root_visual || !hasColours)
                continue;
            format.redMask = visual.data->red_mask;
            format.greenMask = visual.data->green_mask;
            format.blueMask = visual.data->blue_mask;
        }
    }
    return format;
}

/// Whether memory can be shared by passing a descriptor, which leaves nothing behind when a process
/// ends.
bool canShareMemory(XConnection& connection) {
    const xcb_query_extension_reply_t* const extension =
        xcb_get_extension_data(connection.get(), &xcb_shm_id);
    if (!extension || extension->present == 0)
        return false;
    const auto version =
        connection.reply(xcb_shm_query_version(connection.get()), xcb_shm_query_version_reply);
    constexpr int firstMinorWithDescriptors = 2;
    return version && (version->major_version > 1 ||
                       (version->major_version == 1 &&
                        version->minor_version >= firstMinorWithDescriptors));
}

}  // namespace

ScreenGrab::ScreenGrab(std::shared_ptr<XConnection> connection, Way way)
    : m_connection(std::move(connection)), m_format(formatOf(*m_connection)) {
    m_canShare = way == Way::Any && canShareMemory(*m_connection);
}

ScreenGrab::~ScreenGrab() {
    releaseMemory();
}

void ScreenGrab::releaseMemory() {
    if (!m_memory)
        return;
    xcb_shm_detach(m_connection->get(), m_segment);
    ::munmap(std::exchange(m_memory, nullptr), static_cast<size_t>(std::exchange(m_size, 0)));
}

bool ScreenGrab::ensureMemory(qint64 byteCount) {
    if (m_size >= byteCount)
        return true;
    releaseMemory();
    const int descriptor = ::memfd_create("tamrix-screen", MFD_CLOEXEC);
    if (descriptor < 0)
        return false;
    const auto size = static_cast<size_t>(byteCount);
    void* memory = MAP_FAILED;
    if (::ftruncate(descriptor, byteCount) == 0)
        memory = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (memory == MAP_FAILED) {
        ::close(descriptor);
        return false;
    }
    m_segment = xcb_generate_id(m_connection->get());
    // The connection closes the descriptor when it has gone out.
    if (!m_connection->succeeded(
            xcb_shm_attach_fd_checked(m_connection->get(), m_segment, descriptor, 0))) {
        ::munmap(memory, size);
        return false;
    }
    m_memory = static_cast<uchar*>(memory);
    m_size = byteCount;
    return true;
}

Outcome<QImage> ScreenGrab::grab(const QRect& rect) {
    if (const Outcome<> checked = checkFormat(m_format); !checked)
        return fail(checked.error());
    if (!m_canShare)
        return grabThroughConnection(rect);
    const Outcome<> filled = fill(rect);
    if (filled)
        return imageOf(m_memory, m_size, rect.size(), m_format);
    if (!m_connection->isOpen())
        return fail(filled.error());
    // A server that refuses, as one on another machine, is not asked again.
    m_canShare = m_memory != nullptr;
    return grabThroughConnection(rect);
}

Outcome<> ScreenGrab::fill(const QRect& rect) {
    const qint64 byteCount = m_format.bytesPerLine(rect.width()) * rect.height();
    if (!ensureMemory(byteCount))
        return noPicture();
    const auto picture = m_connection->reply(
        xcb_shm_get_image(m_connection->get(), m_connection->root(),
                          static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                          static_cast<uint16_t>(rect.width()),
                          static_cast<uint16_t>(rect.height()), allPlanes,
                          XCB_IMAGE_FORMAT_Z_PIXMAP, m_segment, 0),
        xcb_shm_get_image_reply);
    if (!picture || picture->depth != m_format.depth || picture->size < byteCount)
        return noPicture();
    return {};
}

tl::unexpected<Failure> ScreenGrab::noPicture() const {
    if (!m_connection->isOpen())
        return m_connection->ended();
    return fail(FailureKind::Failed,
                QStringLiteral("the display '%1' gave no picture").arg(m_connection->name()));
}

Outcome<QImage> ScreenGrab::grabThroughConnection(const QRect& rect) {
    const auto picture = m_connection->reply(
        xcb_get_image(m_connection->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection->root(),
                      static_cast<int16_t>(rect.x()), static_cast<int16_t>(rect.y()),
                      static_cast<uint16_t>(rect.width()), static_cast<uint16_t>(rect.height()),
                      allPlanes),
        xcb_get_image_reply);
    if (!picture || picture->depth != m_format.depth)
        return noPicture();
    return imageOf(xcb_get_image_data(picture.get()), xcb_get_image_data_length(picture.get()),
                   rect.size(), m_format);
}

}  // namespace Tamrix::Display
