#pragma once

#include <QImage>
#include <QSize>
#include <array>
#include <cstdint>
#include <vector>

#include "vision/search/fastcorrelation/searchpicture.h"
#include "vision/search/fastcorrelation/tilekernels.h"

namespace Tamrix::Vision {

/// A needle's values by channel, 0 where it has a hole: what a search needs of it. Not changed once
/// it is made.
class SearchNeedle {
public:
    /// Of an image whose pixels are words of 32 bits; those with an alpha above 127 are visible.
    explicit SearchNeedle(const QImage& image);

    QSize size() const { return m_size; }
    bool hasHoles() const { return m_visible < std::int64_t(m_size.width()) * m_size.height(); }
    std::int64_t visiblePixels() const { return m_visible; }

    /// Sum of value + 1 over the visible pixels.
    double sum(Channel channel) const { return m_sums[channel]; }
    /// Sum of (value + 1)^2 over the visible pixels.
    double energy(Channel channel) const { return m_energies[channel]; }
    ExactNeedle exact(Channel channel) const;

    /// value + 1, times `factor`, row by row without padding.
    std::vector<float> values(Channel channel, float factor) const;
    /// `factor` where a pixel is visible, else 0, likewise.
    std::vector<float> mask(float factor) const;

private:
    std::vector<float> unpadded(const std::int16_t* from, float factor) const;

    QSize m_size;
    int m_stride;
    std::int64_t m_visible = 0;
    std::array<double, 3> m_sums = {};
    std::array<double, 3> m_energies = {};
    /// The channels' values, then the mask.
    std::vector<std::int16_t> m_values;
};

/// The score of the needle's position at (x, y) of the picture, from exact sums: the lowest of the
/// channels' normalised correlations, from 0 to 1. Once a channel is below `bar`, its score is
/// returned without a look at the others.
double exactScore(const SearchPicture& picture, const SearchNeedle& needle, int x, int y,
                  double bar = 0);

}  // namespace Tamrix::Vision
