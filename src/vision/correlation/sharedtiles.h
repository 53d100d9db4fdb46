#pragma once

#include <QSize>
#include <mutex>
#include <vector>

#include "vision/correlation/scratch.h"
#include "vision/correlation/searchpicture.h"
#include "vision/correlation/tilegrid.h"
#include "vision/correlation/tilekernels.h"

namespace Tamrix::Vision {

/// A cut of a picture into tiles with the spectra of its first channel, which are made when first
/// needed and shared by the searches that use the same cut. May be used by several threads.
class SharedTiles {
public:
    SharedTiles(const SearchPicture& picture, const TileGrid& grid, bool keepsSpectra);

    struct Spectrum {
        const float* values;
        /// Sum of the squares of what was transformed.
        double energy;
    };

    /// What the spectra of a cut take when they are kept.
    static std::size_t keptBytes(const TileGrid& grid);

    const TileGrid& grid() const { return m_grid; }
    const TileShape& shape() const { return m_shape; }

    /// The transform of a pair of tiles: the kept one, or one that is made in `spectrum`, which is
    /// allocated if it is empty. `work` holds a tile.
    Spectrum spectrum(Channel channel, TileContent content, int pair, float* work,
                      Scratch<float>& spectrum) const;

private:
    struct Kept {
        std::once_flag once;
        double energy = 0;
    };

    double transform(Channel channel, TileContent content, int pair, float* work,
                     float* spectrum) const;

    const SearchPicture& m_picture;
    TileGrid m_grid;
    TileShape m_shape;
    mutable std::vector<Kept> m_kept;
    /// The spectra of all pairs, if they are kept.
    mutable Scratch<float> m_spectra;
};

}  // namespace Tamrix::Vision
