#pragma once

#include <QDeadlineTimer>
#include <QRect>
#include <array>
#include <memory>

#include "platform/objectmodel/display/xconnection.h"

namespace Tamrix::Display {

/// A red frame around a part of the screen, made of four windows beside it that no window manager
/// knows. It goes with the object.
class HighlightFrame {
public:
    /// -1 ms: without end.
    HighlightFrame(std::shared_ptr<XConnection> connection, const QRect& bounds, int milliseconds);
    ~HighlightFrame();
    HighlightFrame(const HighlightFrame&) = delete;
    HighlightFrame& operator=(const HighlightFrame&) = delete;

    bool isOver() const { return m_end.hasExpired(); }

private:
    std::shared_ptr<XConnection> m_connection;
    std::array<xcb_window_t, 4> m_sides = {};
    QDeadlineTimer m_end;
};

}  // namespace Tamrix::Display
