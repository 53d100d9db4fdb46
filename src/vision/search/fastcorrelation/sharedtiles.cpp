#include "vision/search/fastcorrelation/sharedtiles.h"

#include <cmath>

namespace Tamrix::Vision {

namespace {

// The largest number of half precision.
constexpr double largestHalf = 65504;
// No value of a tile is farther from the middle than this; two tiles are the parts of a number.
const double mostOfValue = 128 * std::sqrt(2.0);
// For what single precision rounds while it measures what half precision lost.
constexpr double measured = 1.001;

}  // namespace

SharedTiles::SharedTiles(const SearchPicture& picture, const TileGrid& grid, bool keepsSpectra)
    : m_picture(picture),
      m_grid(grid),
      m_shape(m_grid.tileSize().width(), m_grid.tileSize().height()),
      m_kept(keepsSpectra ? m_grid.pairs() : 0),
      m_spectra(keepsSpectra ? Scratch<std::uint16_t>(m_shape.floats() * m_grid.pairs())
                             : Scratch<std::uint16_t>()),
      m_unit(static_cast<float>(mostOfValue * m_grid.values() / largestHalf)) {}

std::size_t SharedTiles::keptBytes(const TileGrid& grid) {
    const QSize size = grid.tileSize();
    return std::size_t(grid.pairs()) * size.width() * size.height() * 2 * sizeof(std::uint16_t);
}

SharedTiles::Norms SharedTiles::correlate(Channel channel, TileContent content, int pair,
                                          const float* needle, int columns, float* line,
                                          float* work) const {
    const TileKernels& kernels = tileKernels();
    if (m_kept.empty() || channel != Green || content != TileContent::Value) {
        const double energy = transformColumns(channel, content, pair, work);
        kernels.correlateRows(m_shape, needle, columns, line, work);
        return {energy, 0};
    }
    Kept& kept = m_kept[pair];
    std::uint16_t* const halves = m_spectra.data() + m_shape.floats() * pair;
    std::call_once(kept.once, [&] {
        kept.norms.energy = transformColumns(channel, content, pair, work);
        const double lost = kernels.keepRows(m_shape, work, m_unit, line, halves);
        // The transform multiplies sums of squares with the number of values.
        kept.norms.lostEnergy = lost * measured / m_grid.values();
    });
    kernels.correlateKeptRows(m_shape, halves, m_unit, needle, columns, line, work);
    return kept.norms;
}

double SharedTiles::transformColumns(Channel channel, TileContent content, int pair,
                                     float* work) const {
    const int tiles = m_grid.tilesAcross() * m_grid.tilesDown();
    const TilePixels first = m_picture.tileAt(channel, m_grid.originOf(pair * 2), m_shape);
    TilePixels second;
    if (pair * 2 + 1 < tiles)
        second = m_picture.tileAt(channel, m_grid.originOf(pair * 2 + 1), m_shape);
    return tileKernels().transformColumns(m_shape, first, second, content, work);
}

}  // namespace Tamrix::Vision
