#include "vision/search/fastcorrelation.h"

#include <algorithm>
#include <functional>

#include "vision/search/fastcorrelation/correlationsearch.h"
#include "vision/search/fastcorrelation/occurrencescan.h"
#include "vision/search/fastcorrelation/tileworkers.h"
#include "vision/search/referencecorrelation.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

// A cut serves needles down to this part of its largest one's width.
constexpr double classRange = 0.7;

// Bytes for each pixel that kept spectra may take, besides the channels and their running sums.
constexpr double mostSpectrumBytes = 5;

// When several sizes are searched at once, a tile shall have at most this part of the haystack's
// pixels, unless that is very little.
constexpr double largestPart = 1.0 / 8;
constexpr double littleTile = 256 * 256;

// What rounding can do to a truncated score.
constexpr double tiny = 1e-12;

bool fits(const Haystack& haystack, QSize size) {
    return !haystack.positionsOf(size).isEmpty();
}

// The search for one needle and where its first position is.
class OneSearch {
public:
    OneSearch(Haystack& haystack, const Resize& resize, ScaleTiles& tiles)
        : m_haystack(haystack),
          m_positions(haystack.positionsOf(resize.image.size())),
          m_needle(resize.image),
          m_search(haystack.picture(), checked(resize), tiles.take(haystack, resize.image.size()),
                   workerCount()) {}

    CorrelationSearch& search() { return m_search; }
    QPoint origin() const { return m_positions.topLeft(); }

    OccurrenceScan scan(int limit) const {
        std::function<bool(const QRect&)> isAllowed;
        if (m_haystack.region().rectangles().size() > 1)
            isAllowed = [this](const QRect& rect) { return m_haystack.allows(rect); };
        return {origin(), m_positions.size(), m_needle.size(), limit, std::move(isAllowed)};
    }

    bool allows(int x, int y) const {
        return m_haystack.allows(QRect(origin() + QPoint(x, y), m_needle.size()));
    }

    double score(QPoint place) const {
        const QPoint at = place - origin();
        return exactScore(m_haystack.picture(), m_needle, at.x(), at.y());
    }

private:
    const SearchNeedle& checked(const Resize& resize) const {
        if (m_needle.visiblePixels() == 0)
            throw TooMuchTransparency(resize.image);
        return m_needle;
    }

    Haystack& m_haystack;
    const QRect m_positions;
    const SearchNeedle m_needle;
    CorrelationSearch m_search;
};

}  // namespace

ScaleTiles::ScaleTiles(Haystack& haystack, const QList<Resize*>& sizes, int searches) {
    for (const Resize* const resize : sizes) {
        const QSize size = resize->image.size();
        if (!fits(haystack, size))
            continue;
        const bool isNear =
            !m_classes.empty() && size.width() >= classRange * m_classes.back().largest.width();
        if (!isNear)
            m_classes.push_back({size, size, {}, false, 0, nullptr});
        Class& common = m_classes.back();
        common.largest = common.largest.expandedTo(size);
        common.smallest = common.smallest.boundedTo(size);
        common.searches += searches;
    }
    const QSize box = haystack.boundingBox().size();
    const double pixels = double(box.width()) * box.height();
    m_mostSpectrumBytes = mostSpectrumBytes * pixels;
    for (Class& common : m_classes) {
        common.isShared = common.searches > searches;
        const double fewValues =
            sizes.size() > 1 ? std::max(littleTile, largestPart * pixels) : TileGrid::unlimited;
        common.grid = TileGrid(box, common.smallest, common.largest, fewValues);
    }
}

bool ScaleTiles::hasRoomFor(const Class& common) const {
    auto bytes = static_cast<double>(SharedTiles::keptBytes(common.grid));
    for (const auto& each : m_kept) {
        if (const auto tiles = each.lock())
            bytes += static_cast<double>(SharedTiles::keptBytes(tiles->grid()));
    }
    return bytes <= m_mostSpectrumBytes;
}

std::shared_ptr<const SharedTiles> ScaleTiles::take(Haystack& haystack, QSize size) {
    const SearchPicture& picture = haystack.picture();
    const std::lock_guard lock(m_mutex);
    const auto common = std::find_if(m_classes.begin(), m_classes.end(), [&](const Class& each) {
        return each.smallest.boundedTo(size) == each.smallest &&
               each.largest.expandedTo(size) == each.largest;
    });
    std::shared_ptr<const SharedTiles> tiles = common->tiles;
    if (!tiles) {
        const bool keepsSpectra = common->isShared && hasRoomFor(*common);
        tiles = std::make_shared<SharedTiles>(picture, common->grid, keepsSpectra);
        if (keepsSpectra) {
            common->tiles = tiles;
            m_kept.emplace_back(tiles);
        }
    }
    if (--common->searches == 0)
        common->tiles.reset();
    return tiles;
}

QPair<int, bool> fastOccurrenceAt(Haystack& haystack, const Resize& resize, double threshold,
                                  QPoint position, ScaleTiles& tiles) {
    const QRect positions = haystack.positionsOf(resize.image.size());
    if (!positions.contains(position))
        return {0, false};
    OneSearch one(haystack, resize, tiles);
    const bool isFound = one.score(position) >= threshold;
    const QPoint at = position - one.origin();
    OccurrenceScan scan = one.scan(positions.width() * positions.height());
    // Its neighbours are no earlier occurrences.
    if (isFound)
        scan.avoid(position);
    PositionBitmap accepted(positions.size());
    const int rows = at.y() + 1;
    one.search().markAccepted(ScoreTest::atLeast(threshold), rows, accepted, [&](int complete) {
        return scan.advance(accepted, complete, complete == rows ? at.x() : positions.width());
    });
    return {scan.occurrences().size(), isFound};
}

QList<QRect> fastAllOccurrences(Haystack& haystack, const Resize& resize, double threshold,
                                int limit, ScaleTiles& tiles) {
    const QRect positions = haystack.positionsOf(resize.image.size());
    if (positions.isEmpty())
        return {};
    OneSearch one(haystack, resize, tiles);
    OccurrenceScan scan = one.scan(limit);
    PositionBitmap accepted(positions.size());
    one.search().markAccepted(ScoreTest::atLeast(threshold), positions.height(), accepted,
                              [&](int complete) { return scan.advance(accepted, complete); });
    return scan.occurrences();
}

namespace {

// Raises the value to `to`, if it is lower.
void raise(std::atomic<double>& value, double to) {
    double from = value;
    while (from < to && !value.compare_exchange_weak(from, to)) {
    }
}

// The best positions of one size while they are found, by several threads.
class BestPositions {
public:
    explicit BestPositions(double cap) : m_cap(cap) {}

    struct Position {
        double score;
        QPoint place;
    };

    // The score that the next position must have to be of interest.
    double bar() const {
        const double best = m_best;
        if (!m_hasOverflowed)
            return std::min(best, m_cap) - tiny;
        // Places that are as good don't count any more, and none is better than the cap.
        return best >= m_cap ? 2 : best + scoreStep - tiny;
    }

    void take(double truncated, int x, int y) {
        const std::lock_guard lock(m_mutex);
        if (truncated < std::min(m_best.load(), m_cap))
            return;
        if (truncated > m_best && m_best < m_cap) {
            m_positions.clear();
            m_hasOverflowed = false;
        }
        raise(m_best, truncated);
        if (m_positions.size() < mostNoted)
            m_positions.push_back({truncated, {x, y}});
        else
            m_hasOverflowed = true;
    }

    // When all threads are done.
    double best() const { return m_best; }
    bool hasOverflowed() const { return m_hasOverflowed; }
    const std::vector<Position>& positions() const { return m_positions; }

private:
    static constexpr std::size_t mostNoted = 256;

    const double m_cap;
    std::atomic<double> m_best = 0;
    std::atomic<bool> m_hasOverflowed = false;
    std::mutex m_mutex;
    std::vector<Position> m_positions;
};

QList<QPair<double, QRect>> withScores(const OneSearch& one, const OccurrenceScan& scan) {
    QList<QPair<double, QRect>> scored;
    for (const QRect& rect : scan.occurrences())
        scored.append({truncatedScore(one.score(rect.topLeft())), rect});
    return scored;
}

}  // namespace

BestOfSize fastBestOfSize(Haystack& haystack, const Resize& resize, double required, int limit,
                          BestBar& bar, ScaleTiles& tiles) {
    if (!fits(haystack, resize.image.size()))
        return {};
    OneSearch one(haystack, resize, tiles);
    BestPositions best(bar.cap);
    CorrelationSearch::RisingBar rising;
    rising.bar = [&] { return std::max(bar.floor - tiny, best.bar()); };
    rising.offer = [&](double score, int x, int y) {
        const double truncated = truncatedScore(score);
        best.take(truncated, x, y);
        if (truncated >= required && required <= bar.cap)
            raise(bar.floor, std::min(truncated, bar.cap));
    };
    rising.isAllowed = [&](int x, int y) { return one.allows(x, y); };
    one.search().offerBest(rising);
    BestOfSize result;
    result.score = best.best();
    if (!best.hasOverflowed()) {
        PositionBitmap accepted(one.search().positions());
        for (const BestPositions::Position& position : best.positions())
            accepted.set(position.place.x(), position.place.y());
        OccurrenceScan scan = one.scan(limit);
        scan.advance(accepted, accepted.size().height());
        result.occurrences = withScores(one, scan).mid(0, limit);
    }
    return result;
}

QList<QPair<double, QRect>> fastOccurrencesFrom(Haystack& haystack, const Resize& resize,
                                                double bar, int limit, ScaleTiles& tiles) {
    const QRect positions = haystack.positionsOf(resize.image.size());
    if (positions.isEmpty())
        return {};
    OneSearch one(haystack, resize, tiles);
    const auto isEnough = [bar](double score) { return truncatedScore(score) >= bar; };
    const ScoreTest test = {bar - tiny, bar + 1.1 * scoreStep, isEnough};
    OccurrenceScan scan = one.scan(limit - 1);  // which ends behind `limit`
    PositionBitmap accepted(positions.size());
    one.search().markAccepted(test, positions.height(), accepted,
                              [&](int complete) { return scan.advance(accepted, complete); });
    return withScores(one, scan);
}

}  // namespace Tamrix::Vision::BasicImageLookup
