#pragma once

#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "vision/search/basicimagelookup.h"
#include "vision/search/fastcorrelation/sharedtiles.h"
#include "vision/search/haystack.h"

/// The fast correlation search for a needle at one size: the results of the reference, see
/// referencecorrelation.h, from exact scores.
namespace Tamrix::Vision::BasicImageLookup {

/// The cuts of a haystack into tiles for the sizes of a multi-scale search. Sizes near each other
/// share a cut and its spectra, which are freed when the last of them has been searched. The
/// spectra of all cuts together take at most some haystacks' memory: a search for which there is no
/// room at its time makes its spectra itself. May be used by several threads.
class ScaleTiles {
public:
    /// `sizes` from the widest to the narrowest; each is searched `searches` times at most.
    ScaleTiles(Haystack& haystack, const QList<Resize*>& sizes, int searches);

    /// The cut for one search of this size, which must fit in the haystack's bounding box.
    std::shared_ptr<const SharedTiles> take(Haystack& haystack, QSize size);

private:
    struct Class {
        QSize largest;
        QSize smallest;
        TileGrid grid;
        /// Whether several searches share the spectra.
        bool isShared = false;
        /// Searches that are to come.
        int searches = 0;
        /// With spectra; null until the first search for which there was room.
        std::shared_ptr<const SharedTiles> tiles;
    };

    bool hasRoomFor(const Class& common) const;

    /// Most bytes that kept spectra may take.
    double m_mostSpectrumBytes;
    std::mutex m_mutex;
    std::vector<Class> m_classes;
    /// All cuts whose spectra may still be there.
    std::vector<std::weak_ptr<const SharedTiles>> m_kept;
};

/// How many occurrences lie before the position, and whether there is one at it.
QPair<int, bool> fastOccurrenceAt(Haystack& haystack, const Resize& resize, double threshold,
                                  QPoint position, ScaleTiles& tiles);

/// The occurrences in the order of text, at most limit + 1.
QList<QRect> fastAllOccurrences(Haystack& haystack, const Resize& resize, double threshold,
                                int limit, ScaleTiles& tiles);

/// What the sizes of a best search know of each other.
struct BestBar {
    /// All scores from here on are equally good.
    double cap;
    /// Scores below don't matter.
    std::atomic<double> floor;
};

/// The places of a size with the highest score.
struct BestOfSize {
    /// The highest truncated score of an allowed position, 0 if none reaches the bar's floor.
    double score = 0;
    /// At most as many as were asked for, in the order of text, with their truncated scores. Not
    /// there when there were too many places as good as this to be noted: fastOccurrencesFrom()
    /// finds them.
    std::optional<QList<QPair<double, QRect>>> occurrences;
};

/// Finds the best places of a size. A score from `required` on raises the bar's floor for the other
/// sizes; not if `required` is above the bar's cap.
BestOfSize fastBestOfSize(Haystack& haystack, const Resize& resize, double required, int limit,
                          BestBar& bar, ScaleTiles& tiles);

/// At most `limit` occurrences whose truncated scores are `bar` or more, with these scores.
QList<QPair<double, QRect>> fastOccurrencesFrom(Haystack& haystack, const Resize& resize,
                                                double bar, int limit, ScaleTiles& tiles);

}  // namespace Tamrix::Vision::BasicImageLookup
