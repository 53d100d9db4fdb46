#pragma once

#include <QImage>

namespace Tamrix::Display {

/// An image in QImage::Format_RGB32 whose pixels are still to be written. Its memory is that of a
/// picture that nobody needs any more, where there is one: fresh memory of this size costs several
/// times as much as filling it. Null when there is not enough memory. Any thread.
QImage unfilledImage(const QSize& size);

}  // namespace Tamrix::Display
