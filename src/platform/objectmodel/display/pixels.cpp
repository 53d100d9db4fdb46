#include "platform/objectmodel/display/pixels.h"

#include <QtEndian>
#include <algorithm>
#include <bit>

namespace Tamrix::Display {

namespace {

/// What X servers show is 16 bits wide and high.
constexpr int mostPixels = 65535;
constexpr quint32 opaque = 0xff000000;

constexpr bool isHostBigEndian = Q_BYTE_ORDER == Q_BIG_ENDIAN;

/// Whether pixels are those of QImage::Format_RGB32, but for the byte that nobody shows.
bool isPlain(const PixelFormat& format) {
    return format.bitsPerPixel == 32 && format.redMask == 0xff0000 && format.greenMask == 0xff00 &&
           format.blueMask == 0xff && format.isBigEndian == isHostBigEndian;
}

/// One colour of a pixel, as 8 bits.
class Channel {
public:
    explicit Channel(quint32 mask)
        : m_mask(mask),
          m_shift(std::countr_zero(mask)),
          m_most((mask >> m_shift)) {}

    quint32 of(quint32 pixel) const {
        const quint64 value = (pixel & m_mask) >> m_shift;
        return static_cast<quint32>((value * 255 + m_most / 2) / m_most);
    }

private:
    quint32 m_mask;
    int m_shift;
    quint32 m_most;
};

quint32 readPixel(const uchar* bytes, int count, bool isBigEndian) {
    quint32 pixel = 0;
    for (int index = 0; index < count; ++index)
        pixel |= static_cast<quint32>(bytes[isBigEndian ? count - 1 - index : index])
                 << (8 * index);
    return pixel;
}

void copyPlainLine(const uchar* from, quint32* to, int width) {
    const auto* const pixels = reinterpret_cast<const quint32*>(from);
    for (int x = 0; x < width; ++x)
        to[x] = pixels[x] | opaque;
}

}  // namespace

Outcome<> checkFormat(const PixelFormat& format) {
    const bool hasWholeBytes =
        format.bitsPerPixel == 16 || format.bitsPerPixel == 24 || format.bitsPerPixel == 32;
    if (!hasWholeBytes || format.redMask == 0 || format.greenMask == 0 || format.blueMask == 0 ||
        format.linePad < 8 || format.linePad % 8 != 0) {
        return fail(FailureKind::Refused,
                    QStringLiteral("pictures of a display with %1 bits a pixel and a palette can't "
                                   "be taken; 16, 24 and 30 bits are fine")
                        .arg(format.depth));
    }
    return {};
}

Outcome<QImage> imageOf(const uchar* bytes, qint64 byteCount, const QSize& size,
                        const PixelFormat& format) {
    if (const Outcome<> checked = checkFormat(format); !checked)
        return fail(checked.error());
    const qint64 lineBytes = format.bytesPerLine(size.width());
    if (size.isEmpty() || size.width() > mostPixels || size.height() > mostPixels ||
        byteCount < lineBytes * size.height()) {
        return fail(FailureKind::Failed,
                    QStringLiteral("the X server gave %1 bytes for a picture of %2x%3 pixels")
                        .arg(QString::number(byteCount), QString::number(size.width()),
                             QString::number(size.height())));
    }
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return fail(FailureKind::Failed,
                    QStringLiteral("there is not enough memory for a picture of %1x%2 pixels")
                        .arg(QString::number(size.width()), QString::number(size.height())));
    const bool plain = isPlain(format);
    const Channel red(format.redMask);
    const Channel green(format.greenMask);
    const Channel blue(format.blueMask);
    const int pixelBytes = format.bitsPerPixel / 8;
    for (int y = 0; y < size.height(); ++y) {
        const uchar* const from = bytes + lineBytes * y;
        auto* const to = reinterpret_cast<quint32*>(image.scanLine(y));
        if (plain) {
            copyPlainLine(from, to, size.width());
            continue;
        }
        for (int x = 0; x < size.width(); ++x) {
            const quint32 pixel = readPixel(from + x * pixelBytes, pixelBytes, format.isBigEndian);
            to[x] = opaque | red.of(pixel) << 16 | green.of(pixel) << 8 | blue.of(pixel);
        }
    }
    return image;
}

}  // namespace Tamrix::Display
