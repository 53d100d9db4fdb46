#pragma once

#include <QRect>
#include <QSize>
#include <limits>

namespace Tamrix::Vision {

/// How a picture is cut into overlapping tiles, so that each position of a needle has its whole
/// window in one tile. Tiles go in pairs, in the order of text, through one complex transform.
class TileGrid {
public:
    TileGrid() = default;
    /// A grid for needles from `smallest` to `largest`, chosen by the work that it makes. Both fit
    /// in the picture. Tiles of more than `fewValues` values are taken only where smaller ones make
    /// far more work, for the sake of memory.
    TileGrid(QSize picture, QSize smallest, QSize largest, double fewValues = unlimited);
    static constexpr double unlimited = std::numeric_limits<double>::infinity();

    /// Size of a tile, a multiple of 32 in both directions.
    QSize tileSize() const { return m_tileSize; }
    /// The positions that a tile answers for; a multiple of 8 in width.
    QSize step() const { return m_step; }
    int tilesAcross() const { return m_across; }
    int tilesDown() const { return m_down; }
    int pairs() const { return (m_across * m_down + 1) / 2; }

    /// The positions of a needle that the tile answers for; empty for a tile without any.
    /// `positions` is the number of the needle's positions in both directions.
    QRect positionsOf(int tile, QSize positions) const;
    /// The tile's first pixel.
    QPoint originOf(int tile) const;

    /// The time of a search over the grid, as a number of values transformed.
    double cost() const;
    /// Values of a tile.
    double values() const { return double(m_tileSize.width()) * m_tileSize.height(); }

private:
    TileGrid(QSize picture, QSize smallest, QSize largest, QSize tileSize);

    QSize m_tileSize;
    QSize m_step;
    int m_across = 0;
    int m_down = 0;
};

}  // namespace Tamrix::Vision
