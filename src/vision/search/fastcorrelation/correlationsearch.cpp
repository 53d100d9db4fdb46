#include "vision/search/fastcorrelation/correlationsearch.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <mutex>
#include <vector>

#include "vision/search/fastcorrelation/tileworkers.h"

namespace Tamrix::Vision {
namespace {

// Half the distance of 1 to the next number in single precision.
constexpr double roundingUnit = 1.0 / (1 << 24);

// The error of a correlation is below this many rounding units times the norms of both factors. The
// largest that was seen is a quarter of it.
constexpr double transformError = 8;

// Nanoseconds of the two ways to a score, measured; only their ratio matters. A tile costs this
// much for each value and channel, an exact sum for each pixel and on its own.
constexpr double tileNanoseconds = 6;
constexpr double exactNanoseconds = 0.15;
constexpr double exactStartNanoseconds = 60;

// A window's sum of squares fits in 32 bits up to this many pixels.
constexpr int mostPixelsOfSum = 65535;

}  // namespace

ScoreTest ScoreTest::atLeast(double threshold) {
    return {threshold, threshold, [threshold](double score) { return score >= threshold; }};
}

struct CorrelationSearch::NeedleSpectra {
    struct Spectrum {
        std::once_flag once;
        Scratch<float> values;
    };
    std::array<Spectrum, 3> channels;
    Spectrum mask;
};

// What one thread works with.
struct CorrelationSearch::Worker {
    explicit Worker(const TileShape& shape, bool hasHoles, QSize step)
        : work(shape.floats()),
          line(shape.lineFloats()),
          energyWork(hasHoles ? Scratch<float>(shape.floats()) : Scratch<float>()),
          certainStride(step.width() / 8),
          certain(std::size_t(certainStride) * step.height() * 2) {}

    Scratch<float> work;
    Scratch<float> line;
    Scratch<float> energyWork;
    /// Running sums of squares of both tiles in the channels behind the first.
    Scratch<std::uint32_t> sums;

    /// For each tile of a pair: its positions and where its bits stand.
    std::array<QRect, 2> areas;
    std::array<std::uint8_t*, 2> candidates = {};
    std::ptrdiff_t candidatesStride = 0;
    std::ptrdiff_t certainStride;
    std::vector<std::uint8_t> certain;
    /// Of a best search: bits of its own, and bounds of the squared scores.
    std::vector<std::uint8_t> ownCandidates;
    Scratch<float> bounds;
    std::ptrdiff_t boundsStride = 0;

    std::uint8_t* certainOf(int side) { return certain.data() + certain.size() / 2 * side; }
};

CorrelationSearch::CorrelationSearch(const SearchPicture& picture, const SearchNeedle& needle,
                                     std::shared_ptr<const SharedTiles> tiles, int workers)
    : m_picture(picture),
      m_needle(needle),
      m_tiles(std::move(tiles)),
      m_workers(workers),
      m_positions(picture.width() - needle.size().width() + 1,
                  picture.height() - needle.size().height() + 1),
      m_spectra(std::make_unique<NeedleSpectra>()) {}

CorrelationSearch::~CorrelationSearch() = default;

void CorrelationSearch::markAccepted(const ScoreTest& test, int rows, PositionBitmap& accepted,
                                     const std::function<bool(int)>& done) {
    rows = std::min(rows, m_positions.height());
    if (rows <= 0)
        return;
    if (isDirectCheaper()) {
        for (int y = 0; y < rows; ++y) {
            for (int x = 0; x < m_positions.width(); ++x) {
                if (test.accepts(exactScore(m_picture, m_needle, x, y, test.lowest)))
                    accepted.set(x, y);
            }
        }
        done(rows);
        return;
    }
    const TileGrid& grid = m_tiles->grid();
    std::vector<std::unique_ptr<Worker>> workers(m_workers);
    const auto mark = [&](int pair, int index) {
        if (!workers[index])
            workers[index] =
                std::make_unique<Worker>(m_tiles->shape(), m_needle.hasHoles(), grid.step());
        Worker& worker = *workers[index];
        for (int side = 0; side < 2; ++side) {
            QRect area = grid.positionsOf(pair * 2 + side, m_positions);
            area &= QRect(0, 0, m_positions.width(), rows);
            worker.areas[side] = area;
            if (!area.isEmpty())
                worker.candidates[side] = accepted.row(area.y()) + area.x() / 8;
        }
        worker.candidatesStride = accepted.stride();
        markPair(test, pair, worker);
    };
    // Batches of whole rows of tiles, with enough pairs for all threads.
    const int tileRows = std::min(grid.tilesDown(), (rows - 1) / grid.step().height() + 1);
    const int batch = std::max(1, (m_workers * 8 - 1) / grid.tilesAcross() + 1);
    int firstPair = 0;
    for (int tileRow = 0; tileRow < tileRows;) {
        tileRow = std::min(tileRows, tileRow + (m_workers > 1 ? batch : 1));
        const int endPair = (tileRow * grid.tilesAcross() + 1) / 2;
        const int start = firstPair;
        forEachIndex(endPair - start, m_workers,
                     [&](int index, int worker) { mark(start + index, worker); });
        firstPair = endPair;
        if (!done(std::min(rows, tileRow * grid.step().height())))
            return;
    }
}

// Finds the correlation of one channel and judges its positions. Returns how many candidates are
// left.
std::size_t CorrelationSearch::judge(Channel channel, int pair, double lowest, double certain,
                                     bool isRefinement, bool wantsBounds, Worker& worker) {
    const TileKernels& kernels = tileKernels();
    const TileShape& shape = m_tiles->shape();
    const QSize size = m_needle.size();
    const int columns = std::max(worker.areas[0].width(), worker.areas[1].width());
    const double needleEnergy = m_needle.energy(channel);

    TileJudgement job;
    job.shape = &shape;
    job.correlation = worker.work.data();
    const float* const needle = needleSpectrum(channel, worker);
    const SharedTiles::Norms tiles = m_tiles->correlate(
        channel, TileContent::Value, pair, needle, columns, worker.line.data(), job.correlation);
    const double middle = double(valueMiddle) * m_needle.sum(channel);
    const double norms = std::sqrt(needleEnergy * tiles.energy);
    job.correlationMiddle = static_cast<float>(middle);
    const double lost = std::sqrt(needleEnergy * tiles.lostEnergy);
    job.correlationError =
        static_cast<float>(roundingUnit * (transformError * norms + 2 * middle) + lost);

    if (m_needle.hasHoles()) {
        job.energy = worker.energyWork.data();
        const float* const mask = maskSpectrum(worker);
        const SharedTiles::Norms squares = m_tiles->correlate(
            channel, TileContent::Square, pair, mask, columns, worker.line.data(), job.energy);
        const auto visible = static_cast<double>(m_needle.visiblePixels());
        const double energyMiddle = double(squareMiddle) * visible;
        const double energyNorms = std::sqrt(visible * squares.energy);
        job.energyMiddle = static_cast<float>(energyMiddle);
        job.energyError =
            static_cast<float>(roundingUnit * (transformError * energyNorms + 2 * energyMiddle));
        job.lowestEnergy = static_cast<float>(visible);
    } else {
        takeSums(channel, worker, job);
        job.bandHeight = std::max(1, mostPixelsOfSum / size.width());
    }
    job.needleWidth = size.width();
    job.needleHeight = size.height();

    // What rounding does to the energy, the squares and the factors.
    const int bands = m_needle.hasHoles() ? 1 : (size.height() - 1) / job.bandHeight + 1;
    const double slack = roundingUnit * 2 * (8 + bands);
    lowest = std::max(lowest, 0.0);
    certain = std::max(certain, 0.0);
    job.candidateFactor = static_cast<float>(lowest * lowest * needleEnergy * (1 - slack));
    job.certainFactor = static_cast<float>(certain * certain * needleEnergy * (1 + slack));
    job.boundFactor = static_cast<float>((1 + slack) / needleEnergy);
    job.isRefinement = isRefinement;
    job.candidatesStride = worker.candidatesStride;
    job.certainStride = worker.certainStride;
    job.boundsStride = worker.boundsStride;
    for (int side = 0; side < 2; ++side) {
        const QRect& area = worker.areas[side];
        JudgedTile& tile = job.tiles[side];
        if (area.isEmpty())
            continue;
        tile.columns = area.width();
        tile.rows = area.height();
        tile.candidates = worker.candidates[side];
        tile.certain = worker.certainOf(side);
    }
    if (wantsBounds) {
        const std::ptrdiff_t half = worker.boundsStride * m_tiles->grid().step().height();
        job.tiles[0].bounds = worker.bounds.data();
        job.tiles[1].bounds = worker.bounds.data() + half;
    }
    return kernels.judge(job);
}

// The running sums that energies come from. Those of the first channel are made once for the
// picture, those of the others for the tiles that need them, which is seldom: a table takes as much
// memory as the picture.
void CorrelationSearch::takeSums(Channel channel, Worker& worker, TileJudgement& job) {
    const QSize tile = m_tiles->grid().tileSize();
    const std::ptrdiff_t stride = tile.width() + 16;
    const std::ptrdiff_t half = stride * (tile.height() + 1) + 16;
    const bool isFirst = channel == channels[0];
    job.sumsStride = isFirst ? m_picture.sumsStride() : stride;
    if (!isFirst && worker.sums.isEmpty())
        worker.sums = Scratch<std::uint32_t>(half * 2);
    for (int side = 0; side < 2; ++side) {
        const QRect& area = worker.areas[side];
        if (area.isEmpty())
            continue;
        if (isFirst) {
            job.tiles[side].sums = m_picture.sums() + area.y() * m_picture.sumsStride() + area.x();
            continue;
        }
        std::uint32_t* const table = worker.sums.data() + half * side;
        const QSize window = area.size() + m_needle.size() - QSize(1, 1);
        m_picture.sumSquares(channel, QRect(area.topLeft(), window), stride, table);
        job.tiles[side].sums = table;
    }
}

void CorrelationSearch::markPair(const ScoreTest& test, int pair, Worker& worker) {
    if (worker.areas[0].isEmpty() && worker.areas[1].isEmpty())
        return;
    // 1. The first channel: a position passes only if each channel does.
    std::size_t count = judge(Green, pair, test.lowest, test.certain, false, false, worker);
    // 2. The others, while too many positions are left for exact sums.
    bool isJudgedInAll = false;
    for (std::size_t next = 1; count > affordablePositions() && next < channels.size(); ++next) {
        count = judge(channels[next], pair, test.lowest, test.certain, true, false, worker);
        isJudgedInAll = next + 1 == channels.size();
    }
    // 3. Exact sums for what is left and not certain.
    if (count == 0)
        return;
    for (int side = 0; side < 2; ++side)
        decide(test, side, isJudgedInAll, worker);
}

void CorrelationSearch::decide(const ScoreTest& test, int side, bool usesCertain, Worker& worker) {
    const QRect& area = worker.areas[side];
    for (int y = 0; y < area.height(); ++y) {
        std::uint8_t* const row = worker.candidates[side] + y * worker.candidatesStride;
        const std::uint8_t* const certain = worker.certainOf(side) + y * worker.certainStride;
        for (int byte = 0; byte * 8 < area.width(); ++byte) {
            unsigned open = row[byte];
            if (open != 0 && usesCertain)
                open &= ~unsigned(certain[byte]);
            for (; open; open &= open - 1) {
                const int bit = __builtin_ctz(open);
                const int x = area.x() + byte * 8 + bit;
                if (!test.accepts(exactScore(m_picture, m_needle, x, area.y() + y, test.lowest)))
                    row[byte] = static_cast<std::uint8_t>(row[byte] & ~(1U << bit));
            }
        }
    }
}

void CorrelationSearch::offerBest(const RisingBar& rising) {
    if (isDirectCheaper()) {
        for (int y = 0; y < m_positions.height(); ++y) {
            for (int x = 0; x < m_positions.width(); ++x)
                offer(rising, x, y);
        }
        return;
    }
    const TileGrid& grid = m_tiles->grid();
    const QSize step = grid.step();
    std::vector<std::unique_ptr<Worker>> workers(m_workers);
    forEachIndex(grid.pairs(), m_workers, [&](int pair, int index) {
        if (rising.bar() > 1)
            return;
        if (!workers[index]) {
            workers[index] = std::make_unique<Worker>(m_tiles->shape(), m_needle.hasHoles(), step);
            workers[index]->candidatesStride = step.width() / 8;
        }
        Worker& worker = *workers[index];
        worker.ownCandidates.assign(std::size_t(worker.candidatesStride) * step.height() * 2, 0);
        for (int side = 0; side < 2; ++side) {
            worker.areas[side] = grid.positionsOf(pair * 2 + side, m_positions);
            worker.candidates[side] =
                worker.ownCandidates.data() + worker.ownCandidates.size() / 2 * side;
        }
        offerPair(rising, pair, worker);
    });
}

void CorrelationSearch::offer(const RisingBar& rising, int x, int y) {
    if (!rising.isAllowed(x, y))
        return;
    const double bar = rising.bar();
    // What is below the bar may be the score of one channel only.
    const double score = exactScore(m_picture, m_needle, x, y, bar);
    if (score >= bar)
        rising.offer(score, x, y);
}

void CorrelationSearch::offerPair(const RisingBar& rising, int pair, Worker& worker) {
    if (worker.areas[0].isEmpty() && worker.areas[1].isEmpty())
        return;
    const double bar = rising.bar();
    constexpr double never = 2;
    worker.boundsStride = m_tiles->grid().step().width() + 8;
    if (worker.bounds.isEmpty())
        worker.bounds = Scratch<float>(worker.boundsStride * m_tiles->grid().step().height() * 2);
    // 1. Bounds from the channels, until few positions are left that may reach the bar.
    for (const Channel channel : channels) {
        const bool isRefinement = channel != channels[0];
        const std::size_t count = judge(channel, pair, bar, never, isRefinement, true, worker);
        if (count == 0)
            return;
        if (count <= affordablePositions())
            break;
    }
    // 2. The position with the highest bound first: the bar rises, and the rest is cut off.
    offerByBounds(rising, worker);
}

// Calls visit(side, x, y) with each candidate, x and y counted from the area's corner.
template <typename Visit>
void CorrelationSearch::forEachCandidate(const Worker& worker, Visit visit) {
    for (int side = 0; side < 2; ++side) {
        const QRect& area = worker.areas[side];
        for (int y = 0; y < area.height(); ++y) {
            const std::uint8_t* const row = worker.candidates[side] + y * worker.candidatesStride;
            for (int byte = 0; byte * 8 < area.width(); ++byte) {
                for (unsigned bits = row[byte]; bits; bits &= bits - 1)
                    visit(side, byte * 8 + __builtin_ctz(bits), y);
            }
        }
    }
}

void CorrelationSearch::offerByBounds(const RisingBar& rising, const Worker& worker) {
    struct Bounded {
        float square;
        int x;
        int y;
    };
    const std::ptrdiff_t half = worker.boundsStride * m_tiles->grid().step().height();
    std::vector<Bounded> positions;
    const double bar = rising.bar();
    forEachCandidate(worker, [&](int side, int x, int y) {
        const float square = worker.bounds.data()[half * side + worker.boundsStride * y + x];
        if (static_cast<double>(square) >= bar * bar)
            positions.push_back({square, worker.areas[side].x() + x, worker.areas[side].y() + y});
    });
    const auto isLower = [](const Bounded& a, const Bounded& b) { return a.square < b.square; };
    std::make_heap(positions.begin(), positions.end(), isLower);
    while (!positions.empty()) {
        const Bounded& best = positions.front();
        if (static_cast<double>(best.square) < rising.bar() * rising.bar())
            return;
        offer(rising, best.x, best.y);
        std::pop_heap(positions.begin(), positions.end(), isLower);
        positions.pop_back();
    }
}

const float* CorrelationSearch::needleSpectrum(Channel channel, Worker& worker) {
    NeedleSpectra::Spectrum& spectrum = m_spectra->channels[channel];
    std::call_once(spectrum.once, [&] {
        const TileShape& shape = m_tiles->shape();
        // The transforms there and back multiply everything with the number of values.
        const float factor =
            1 / (static_cast<float>(shape.width) * static_cast<float>(shape.height));
        transformNeedle(m_needle.values(channel, factor), worker.work.data(), spectrum.values);
    });
    return spectrum.values.data();
}

const float* CorrelationSearch::maskSpectrum(Worker& worker) {
    NeedleSpectra::Spectrum& spectrum = m_spectra->mask;
    std::call_once(spectrum.once, [&] {
        const TileShape& shape = m_tiles->shape();
        const float factor =
            1 / (static_cast<float>(shape.width) * static_cast<float>(shape.height));
        transformNeedle(m_needle.mask(factor), worker.energyWork.data(), spectrum.values);
    });
    return spectrum.values.data();
}

void CorrelationSearch::transformNeedle(const std::vector<float>& values, float* work,
                                        Scratch<float>& spectrum) const {
    const TileShape& shape = m_tiles->shape();
    spectrum = Scratch<float>(shape.floats());
    const QSize size = m_needle.size();
    tileKernels().transformValues(shape, values.data(), size.width(), size.height(), work,
                                  spectrum.data());
}

double CorrelationSearch::exactTime() const {
    const QSize size = m_needle.size();
    return exactNanoseconds * size.width() * size.height() + exactStartNanoseconds;
}

bool CorrelationSearch::isDirectCheaper() const {
    const double positions = double(m_positions.width()) * m_positions.height();
    const QSize tile = m_tiles->grid().tileSize();
    const double pairs = m_tiles->grid().pairs() + 1;  // and the needle's own transform
    return positions * exactTime() < pairs * tile.width() * tile.height() * tileNanoseconds;
}

// How many exact scores take as long as judging the other channels.
std::size_t CorrelationSearch::affordablePositions() const {
    const QSize tile = m_tiles->grid().tileSize();
    const double others = 2.0 * tile.width() * tile.height() * tileNanoseconds;
    return static_cast<std::size_t>(std::max(16.0, others / exactTime()));
}

}  // namespace Tamrix::Vision
