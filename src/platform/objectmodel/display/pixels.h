#pragma once

#include <QImage>

#include "base/outcome.h"

namespace Tamrix::Display {

/// How an X server lays out the pixels of an image.
struct PixelFormat {
    int depth = 0;
    int bitsPerPixel = 0;
    /// Each line of pixels begins at a multiple of so many bits.
    int linePad = 32;
    bool isBigEndian = false;
    // Where the colours are in a pixel.
    quint32 redMask = 0;
    quint32 greenMask = 0;
    quint32 blueMask = 0;

    /// Of a line of `width` pixels.
    qint64 bytesPerLine(int width) const {
        return (static_cast<qint64>(width) * bitsPerPixel + linePad - 1) / linePad * linePad / 8;
    }
};

/// Fails, with a text that names the depth, for pixels that are no colours by themselves, as those
/// of a palette.
Outcome<> checkFormat(const PixelFormat& format);

/// The pixels of an image of this size as QImage::Format_RGB32. Fails when there are fewer bytes
/// than that takes.
Outcome<QImage> imageOf(const uchar* bytes, qint64 byteCount, const QSize& size,
                        const PixelFormat& format);

}  // namespace Tamrix::Display
