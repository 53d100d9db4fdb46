#include "vision/search/fastcorrelation/searchneedle.h"

#include <algorithm>
#include <cmath>

namespace Tamrix::Vision {

SearchNeedle::SearchNeedle(const QImage& image)
    : m_size(image.size()),
      m_stride((image.width() + 15) / 16 * 16),
      m_values(std::size_t(m_stride) * image.height() * (channels.size() + 1)) {
    const std::size_t plane = std::size_t(m_stride) * image.height();
    std::array<std::int64_t, 3> sums = {};
    std::array<std::int64_t, 3> energies = {};
    for (int y = 0; y < image.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        std::int16_t* const row = m_values.data() + std::size_t(y) * m_stride;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = line[x];
            if (qAlpha(pixel) <= 127)
                continue;
            std::array<int, 3> value = {};
            value[Green] = qGreen(pixel) + 1;
            value[Red] = qRed(pixel) + 1;
            value[Blue] = qBlue(pixel) + 1;
            for (const Channel channel : channels) {
                row[channel * plane + x] = static_cast<std::int16_t>(value[channel]);
                sums[channel] += value[channel];
                energies[channel] += value[channel] * value[channel];
            }
            row[channels.size() * plane + x] = -1;
            ++m_visible;
        }
    }
    std::copy(sums.begin(), sums.end(), m_sums.begin());
    std::copy(energies.begin(), energies.end(), m_energies.begin());
}

ExactNeedle SearchNeedle::exact(Channel channel) const {
    const std::size_t plane = std::size_t(m_stride) * m_size.height();
    return {m_values.data() + channel * plane, m_values.data() + channels.size() * plane, m_stride,
            m_size.height()};
}

std::vector<float> SearchNeedle::values(Channel channel, float factor) const {
    return unpadded(exact(channel).values, factor);
}

std::vector<float> SearchNeedle::mask(float factor) const {
    return unpadded(exact(Green).mask, -factor);
}

std::vector<float> SearchNeedle::unpadded(const std::int16_t* from, float factor) const {
    std::vector<float> values;
    values.reserve(std::size_t(m_size.width()) * m_size.height());
    for (int y = 0; y < m_size.height(); ++y, from += m_stride) {
        for (int x = 0; x < m_size.width(); ++x)
            values.push_back(static_cast<float>(from[x]) * factor);
    }
    return values;
}

double exactScore(const SearchPicture& picture, const SearchNeedle& needle, int x, int y,
                  double bar) {
    double score = 1;
    for (const Channel channel : channels) {
        const ExactSums sums = tileKernels().exactSums(picture.pixels(channel, x, y),
                                                       picture.stride(), needle.exact(channel));
        const double energies = needle.energy(channel) * static_cast<double>(sums.energy);
        score = std::min(score, static_cast<double>(sums.product) / std::sqrt(energies));
        if (score < bar)
            return score;
    }
    return score;
}

}  // namespace Tamrix::Vision
