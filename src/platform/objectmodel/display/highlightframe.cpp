#include "platform/objectmodel/display/highlightframe.h"

namespace Tamrix::Display {

namespace {

constexpr int frameWidth = 3;

/// Red, as the screen's own pixels have it.
uint32_t redPixel(XConnection& connection) {
    constexpr uint16_t all = 0xffff;
    const auto colour = connection.reply(
        xcb_alloc_color(connection.get(), connection.screen().default_colormap, all, 0, 0),
        xcb_alloc_color_reply);
    return colour ? colour->pixel : connection.screen().white_pixel;
}

/// The sides of a frame around the rectangle, within the screen.
std::array<QRect, 4> sidesAround(const QRect& bounds, const QRect& screen) {
    const QRect outer =
        bounds.adjusted(-frameWidth, -frameWidth, frameWidth, frameWidth) & screen;
    return {QRect(outer.left(), outer.top(), outer.width(), frameWidth),
            QRect(outer.left(), outer.bottom() - frameWidth + 1, outer.width(), frameWidth),
            QRect(outer.left(), outer.top(), frameWidth, outer.height()),
            QRect(outer.right() - frameWidth + 1, outer.top(), frameWidth, outer.height())};
}

}  // namespace

HighlightFrame::HighlightFrame(std::shared_ptr<XConnection> connection, const QRect& bounds,
                               int milliseconds)
    : m_connection(std::move(connection)),
      m_end(milliseconds < 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                             : QDeadlineTimer(milliseconds)) {
    // In the order in which the protocol numbers them.
    const std::array<uint32_t, 2> values{redPixel(*m_connection), 1};
    const auto sides = sidesAround(bounds, m_connection->rootGeometry());
    for (size_t index = 0; index < sides.size(); ++index) {
        const QRect& side = sides[index];
        if (side.isEmpty())
            continue;
        m_sides[index] = xcb_generate_id(m_connection->get());
        xcb_create_window(m_connection->get(), XCB_COPY_FROM_PARENT, m_sides[index],
                          m_connection->root(), static_cast<int16_t>(side.x()),
                          static_cast<int16_t>(side.y()), static_cast<uint16_t>(side.width()),
                          static_cast<uint16_t>(side.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT,
                          values.data());
        xcb_map_window(m_connection->get(), m_sides[index]);
    }
    m_connection->synchronize();
}

HighlightFrame::~HighlightFrame() {
    for (const xcb_window_t side : m_sides) {
        if (side != 0)
            xcb_destroy_window(m_connection->get(), side);
    }
    m_connection->synchronize();
}

}  // namespace Tamrix::Display
