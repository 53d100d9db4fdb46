#pragma once

#include <QImage>
#include <QRect>
#include <array>
#include <cstdint>
#include <mutex>

#include "vision/search/fastcorrelation/scratch.h"
#include "vision/search/fastcorrelation/tilekernels.h"

namespace Tamrix::Vision {

/// The colour channels, in the order in which a search looks at them: the first one alone decides
/// most positions.
enum Channel { Green, Red, Blue };
inline constexpr std::array channels = {Green, Red, Blue};

/// The part of an image that is searched, as planes of its channels, with running sums that are
/// made when first asked for. May be used by several threads.
class SearchPicture {
public:
    /// `box` lies within the image, whose pixels are words of 32 bits.
    SearchPicture(const QImage& image, const QRect& box);

    int width() const { return m_width; }
    int height() const { return m_height; }
    QSize size() const { return {m_width, m_height}; }

    /// A channel's pixel at (x, y). Rows are padded so that whole vectors can be read.
    const std::uint8_t* pixels(Channel channel, int x, int y) const {
        return m_planes.data() + (std::ptrdiff_t(channel) * m_height + y) * m_stride + x;
    }
    std::ptrdiff_t stride() const { return m_stride; }

    /// Running sums of squares of value + 1 modulo 2^32 of the first channel, which every search
    /// needs: at (x, y) the sum of all pixels left of x and above y.
    const std::uint32_t* sums() const;
    std::ptrdiff_t sumsStride() const { return m_sumsStride; }
    /// The same of the part `window` of any channel, into a table of `stride` * (height + 1) words
    /// and 16 more. `stride` is at least the width and 9.
    void sumSquares(Channel channel, const QRect& window, std::ptrdiff_t stride,
                    std::uint32_t* table) const;

    /// The pixels that a tile with this first pixel covers.
    TilePixels tileAt(Channel channel, QPoint origin, const TileShape& shape) const;

private:
    int m_width;
    int m_height;
    std::ptrdiff_t m_stride;
    std::ptrdiff_t m_sumsStride;
    Scratch<std::uint8_t> m_planes;
    mutable std::once_flag m_sumsOnce;
    mutable Scratch<std::uint32_t> m_sums;
};

}  // namespace Tamrix::Vision
