#include "vision/correlation/sharedtiles.h"

namespace Tamrix::Vision {

SharedTiles::SharedTiles(const SearchPicture& picture, const TileGrid& grid, bool keepsSpectra)
    : m_picture(picture),
      m_grid(grid),
      m_shape(m_grid.tileSize().width(), m_grid.tileSize().height()),
      m_kept(keepsSpectra ? m_grid.pairs() : 0),
      m_spectra(keepsSpectra ? Scratch<float>(m_shape.floats() * m_grid.pairs())
                             : Scratch<float>()) {}

std::size_t SharedTiles::keptBytes(const TileGrid& grid) {
    const QSize size = grid.tileSize();
    return std::size_t(grid.pairs()) * size.width() * size.height() * 2 * sizeof(float);
}

SharedTiles::Spectrum SharedTiles::spectrum(Channel channel, TileContent content, int pair,
                                            float* work, Scratch<float>& spectrum) const {
    if (!m_kept.empty() && channel == Green && content == TileContent::Value) {
        Kept& kept = m_kept[pair];
        float* const values = m_spectra.data() + m_shape.floats() * pair;
        std::call_once(kept.once,
                       [&] { kept.energy = transform(channel, content, pair, work, values); });
        return {values, kept.energy};
    }
    if (spectrum.isEmpty())
        spectrum = Scratch<float>(m_shape.floats());
    const double energy = transform(channel, content, pair, work, spectrum.data());
    return {spectrum.data(), energy};
}

double SharedTiles::transform(Channel channel, TileContent content, int pair, float* work,
                              float* spectrum) const {
    const int tiles = m_grid.tilesAcross() * m_grid.tilesDown();
    const TilePixels first = m_picture.tileAt(channel, m_grid.originOf(pair * 2), m_shape);
    TilePixels second;
    if (pair * 2 + 1 < tiles)
        second = m_picture.tileAt(channel, m_grid.originOf(pair * 2 + 1), m_shape);
    return tileKernels().transformTiles(m_shape, first, second, content, work, spectrum);
}

}  // namespace Tamrix::Vision
