#include "vision/search/fastcorrelation/tilegrid.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Tamrix::Vision {
namespace {

// Lengths with transforms of few passes. The largest image has 32767 pixels in a row.
constexpr std::array tileLengths = {32,   64,   96,    128,   160,   192,   256,   320,  384,  512,
                                    640,  768,  1024,  1280,  1536,  2048,  2560,  3072, 4096, 5120,
                                    6144, 8192, 10240, 12288, 16384, 20480, 24576, 32768};

// Values of a tile that the caches hold; larger ones take longer for each value.
constexpr double cachedValues = 320 * 256;

int countOf(int length, int step) {
    return (length + step - 1) / step;
}

}  // namespace

TileGrid::TileGrid(QSize picture, QSize smallest, QSize largest, QSize tileSize)
    : m_tileSize(tileSize),
      m_step((tileSize.width() - largest.width() + 1) / 8 * 8,
             tileSize.height() - largest.height() + 1) {
    m_across = countOf(picture.width() - smallest.width() + 1, m_step.width());
    m_down = countOf(picture.height() - smallest.height() + 1, m_step.height());
}

TileGrid::TileGrid(QSize picture, QSize smallest, QSize largest, double fewValues) {
    double best = std::numeric_limits<double>::infinity();
    for (const int width : tileLengths) {
        if (width < largest.width() + 7)
            continue;
        for (const int height : tileLengths) {
            if (height < largest.height() + 7)
                continue;
            const TileGrid grid(picture, smallest, largest, QSize(width, height));
            const double values = grid.values();
            const double cost = grid.cost() * (values > fewValues ? 1 + values / fewValues : 1);
            if (cost < best) {
                best = cost;
                *this = grid;
            }
            if (grid.m_down == 1)
                break;  // Still higher tiles are only more work.
        }
    }
}

QRect TileGrid::positionsOf(int tile, QSize positions) const {
    if (tile >= m_across * m_down)
        return {};
    const QPoint origin = originOf(tile);
    return QRect(origin, m_step) & QRect(QPoint(0, 0), positions);
}

QPoint TileGrid::originOf(int tile) const {
    return {tile % m_across * m_step.width(), tile / m_across * m_step.height()};
}

double TileGrid::cost() const {
    const double crowding =
        values() > cachedValues ? 1 + 0.15 * std::log2(values() / cachedValues) : 1;
    return pairs() * values() * (std::log2(values()) + 4) * crowding;
}

}  // namespace Tamrix::Vision
