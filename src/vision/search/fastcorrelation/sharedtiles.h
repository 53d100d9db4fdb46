#pragma once

#include <QSize>
#include <mutex>
#include <vector>

#include "vision/search/fastcorrelation/scratch.h"
#include "vision/search/fastcorrelation/searchpicture.h"
#include "vision/search/fastcorrelation/tilegrid.h"
#include "vision/search/fastcorrelation/tilekernels.h"

namespace Tamrix::Vision {

/// A cut of a picture into tiles with the spectra of its first channel, which are made when first
/// needed and shared by the searches that use the same cut. What is kept has half precision: it is
/// half as much to keep and to read, and its errors are known. May be used by several threads.
class SharedTiles {
public:
    SharedTiles(const SearchPicture& picture, const TileGrid& grid, bool keepsSpectra);

    /// What the error of a correlation depends on.
    struct Norms {
        /// Sum of the squares of what was transformed.
        double energy = 0;
        /// Sum of the squares of what the tiles would change by if the kept spectrum were
        /// transformed back, in comparison with single precision.
        double lostEnergy = 0;
    };

    /// What the spectra of a cut take when they are kept.
    static std::size_t keptBytes(const TileGrid& grid);

    const TileGrid& grid() const { return m_grid; }
    const TileShape& shape() const { return m_shape; }

    /// The correlation of a pair of tiles with the needle of this spectrum, up to the backward
    /// column passes and for the first `columns` columns, in `work`, which holds a tile. `line`
    /// holds shape().lineFloats().
    Norms correlate(Channel channel, TileContent content, int pair, const float* needle,
                    int columns, float* line, float* work) const;

private:
    struct Kept {
        std::once_flag once;
        Norms norms;
    };

    double transformColumns(Channel channel, TileContent content, int pair, float* work) const;

    const SearchPicture& m_picture;
    TileGrid m_grid;
    TileShape m_shape;
    mutable std::vector<Kept> m_kept;
    /// The spectra of all pairs, if they are kept, in multiples of m_unit.
    mutable Scratch<std::uint16_t> m_spectra;
    float m_unit;
};

}  // namespace Tamrix::Vision
