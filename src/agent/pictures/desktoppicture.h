#pragma once

#include <QImage>
#include <QPoint>

namespace Tamrix::Agent {

/// A picture and where it belongs on the screen.
struct Picture {
    QImage image;
    /// Screen position of its top-left corner.
    QPoint origin;
    /// Image pixels for each unit of screen coordinates.
    double scale = 1;
    /// The screen's device pixel ratio.
    double density = 1;
};

/// The whole virtual desktop as the window system shows it; where that gives nothing, the
/// application's visible windows over each other. A null image when there is no screen.
Picture desktopPicture();

}  // namespace Tamrix::Agent
