#include "vision/search/fastcorrelation/searchpicture.h"

#include <algorithm>
#include <cstring>

#include "vision/search/fastcorrelation/tileworkers.h"

namespace Tamrix::Vision {
namespace {

// Both rows of a cache line's length and room for a vector behind the last pixel. Odd multiples of
// the line keep columns from falling into few places of the caches.
std::ptrdiff_t paddedWidth(int width) {
    const std::ptrdiff_t lines = (width + 32 + 63) / 64;
    return (lines | 1) * 64;
}

constexpr int rowsOfTask = 64;

}  // namespace

SearchPicture::SearchPicture(const QImage& image, const QRect& box)
    : m_width(box.width()),
      m_height(box.height()),
      m_stride(paddedWidth(m_width)),
      m_sumsStride((m_width + 1 + 16 + 15) / 16 * 16),
      m_planes(std::size_t(m_stride) * m_height * channels.size() + 64) {
    const TileKernels& kernels = tileKernels();
    // The middle of the transformed values: what lies beyond the picture adds nothing.
    constexpr int padding = static_cast<int>(valueMiddle) - 1;
    const auto split = [&](int task, int) {
        for (int y = task * rowsOfTask; y < std::min(m_height, (task + 1) * rowsOfTask); ++y) {
            std::array<std::uint8_t*, 3> rows = {};
            for (const Channel channel : channels) {
                rows[channel] =
                    m_planes.data() + (std::ptrdiff_t(channel) * m_height + y) * m_stride;
                std::memset(rows[channel] + m_width, padding, m_stride - m_width);
            }
            const uchar* const line =
                image.constScanLine(box.y() + y) + std::ptrdiff_t(box.x()) * 4;
            kernels.splitPixels(reinterpret_cast<const std::uint32_t*>(line), m_width, rows[Blue],
                                rows[Green], rows[Red]);
        }
    };
    forEachIndex((m_height + rowsOfTask - 1) / rowsOfTask, workerCount(), split);
    std::memset(m_planes.data() + m_stride * m_height * channels.size(), padding, 64);
}

const std::uint32_t* SearchPicture::sums() const {
    std::call_once(m_sumsOnce, [&] {
        m_sums = Scratch<std::uint32_t>(std::size_t(m_sumsStride) * (m_height + 1) + 16);
        sumSquares(channels[0], QRect(0, 0, m_width, m_height), m_sumsStride, m_sums.data());
    });
    return m_sums.data();
}

void SearchPicture::sumSquares(Channel channel, const QRect& window, std::ptrdiff_t stride,
                               std::uint32_t* table) const {
    std::fill_n(table, stride, 0U);
    for (int y = 0; y < window.height(); ++y, table += stride) {
        table[stride] = 0;
        tileKernels().addSquares(pixels(channel, window.x(), window.y() + y), window.width(), table,
                                 table + stride);
    }
}

TilePixels SearchPicture::tileAt(Channel channel, QPoint origin, const TileShape& shape) const {
    if (origin.x() >= m_width || origin.y() >= m_height)
        return {};
    return {pixels(channel, origin.x(), origin.y()), m_stride,
            std::min(shape.width, m_width - origin.x()),
            std::min(shape.height, m_height - origin.y())};
}

}  // namespace Tamrix::Vision
