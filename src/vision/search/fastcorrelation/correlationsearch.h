#pragma once

#include <QRect>
#include <QSize>
#include <functional>
#include <memory>
#include <vector>

#include "vision/search/fastcorrelation/positionbitmap.h"
#include "vision/search/fastcorrelation/searchneedle.h"
#include "vision/search/fastcorrelation/searchpicture.h"
#include "vision/search/fastcorrelation/sharedtiles.h"

namespace Tamrix::Vision {

/// Which scores a search accepts.
struct ScoreTest {
    /// Scores below are never accepted.
    double lowest;
    /// Scores from here on are always accepted.
    double certain;
    /// Decides between both.
    std::function<bool(double score)> accepts;

    /// Accepts scores from `threshold` on.
    static ScoreTest atLeast(double threshold);
};

/// The search for one needle in one picture by normalised correlation. Transforms only narrow the
/// positions down; what they can't tell for certain is decided by exact sums, so results depend
/// neither on the size of tiles nor on the processor.
class CorrelationSearch {
public:
    /// `tiles` are of the same picture and cover the needle's size. The needle has visible pixels
    /// and fits in the picture. `workers`: most threads that search.
    CorrelationSearch(const SearchPicture& picture, const SearchNeedle& needle,
                      std::shared_ptr<const SharedTiles> tiles, int workers);
    ~CorrelationSearch();

    /// Number of the needle's positions in both directions.
    QSize positions() const { return m_positions; }

    /// Marks the accepted positions in the first `rows` rows. Whenever some more rows are complete,
    /// done(rows) is called in this thread with their number; false ends the search.
    void markAccepted(const ScoreTest& test, int rows, PositionBitmap& accepted,
                      const std::function<bool(int)>& done);

    /// bar() tells the score from which on positions are of interest, and offer() takes the exact
    /// scores of those for which isAllowed() holds. All are called by all threads of the search.
    struct RisingBar {
        std::function<double()> bar;
        std::function<void(double score, int x, int y)> offer;
        std::function<bool(int x, int y)> isAllowed;
    };
    void offerBest(const RisingBar& rising);

private:
    struct Worker;
    struct NeedleSpectra;

    std::size_t judge(Channel channel, int pair, double lowest, double certain, bool isRefinement,
                      bool wantsBounds, Worker& worker);
    void markPair(const ScoreTest& test, int pair, Worker& worker);
    void decide(const ScoreTest& test, int side, bool usesCertain, Worker& worker);
    void offer(const RisingBar& rising, int x, int y);
    void offerPair(const RisingBar& rising, int pair, Worker& worker);
    void offerByBounds(const RisingBar& rising, const Worker& worker);
    template <typename Visit>
    static void forEachCandidate(const Worker& worker, Visit visit);
    void takeSums(Channel channel, Worker& worker, TileJudgement& job);
    const float* needleSpectrum(Channel channel, Worker& worker);
    const float* maskSpectrum(Worker& worker);
    void transformNeedle(const std::vector<float>& values, float* work,
                         Scratch<float>& spectrum) const;
    double exactTime() const;
    bool isDirectCheaper() const;
    std::size_t affordablePositions() const;

    const SearchPicture& m_picture;
    const SearchNeedle& m_needle;
    const std::shared_ptr<const SharedTiles> m_tiles;
    const int m_workers;
    const QSize m_positions;
    std::unique_ptr<NeedleSpectra> m_spectra;
};

}  // namespace Tamrix::Vision
