#include "vision/search/fuzzylookup.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "vision/search/fastcorrelation.h"
#include "vision/search/imagelookup.h"
#include "vision/search/occurrences.h"
#include "vision/search/parallel.h"
#include "vision/search/referencecorrelation.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

using Scored = QPair<double, QRect>;

bool isPlain() {
    return searchMethod() == SearchMethod::Plain;
}

double thresholdOf(const ImageLookupOptions& options) {
    return std::min(highestThreshold, options.getThreshold() / 100);
}

// The sizes of the needle to search for.
QList<Resize*> sizesOf(Needle& needle, const ImageLookupOptions& options) {
    if (!options.getMultiscale())
        return {&needle};
    return needle.getResizes(options.getMinScaleFactor() / 100, options.getMaxScaleFactor() / 100);
}

// Searches for all sizes side by side and calls consume(Resize*, result) for each in the order of
// the list. A size that is a bad image is left out, unless it is the needle itself or the needle
// itself isn't looked for. Whatever is thrown leaves when all tasks have ended.
template <typename Search, typename Consume>
void forEachSize(const QList<Resize*>& sizes, const Needle& needle, Search search,
                 Consume consume) {
    const Resize* const original = &needle;
    const bool hasOriginal = std::find(sizes.begin(), sizes.end(), original) != sizes.end();
    mapped(sizes, search).forEach(sizes.size(), [&](int i, const auto& end) {
        const bool isBad = dynamic_cast<const BadImage*>(end.exception.data());
        if (isBad && hasOriginal && sizes[i] != original)
            return;
        consume(sizes[i], end.value());
    });
}

QPair<int, bool> occurrenceAtSize(Haystack& haystack, Resize& resize, double threshold,
                                  QPoint position, bool oneShot, ScaleTiles& tiles) {
    if (!isPlain())
        return fastOccurrenceAt(haystack, resize, threshold, position, tiles);
    const auto search =
        resize.hasHoles ? normCorrOccurrenceAtImpl<true> : normCorrOccurrenceAtImpl<false>;
    return search(haystack, resize, threshold, position, oneShot);
}

QList<QRect> allOccurrencesOfSize(Haystack& haystack, Resize& resize, double threshold, int limit,
                                  bool oneShot, ScaleTiles& tiles) {
    if (!isPlain())
        return fastAllOccurrences(haystack, resize, threshold, limit, tiles);
    const auto search =
        resize.hasHoles ? normCorrAllOccurrencesImpl<true> : normCorrAllOccurrencesImpl<false>;
    return search(haystack, resize, threshold, limit, oneShot);
}

// Walks both lists together. An element of `list` that lies behind the current one of `merged`
// moves the walk in `merged` on; any other goes in front of it, unless it is there already, and
// then both walks move on.
void mergeSize(QList<QRect>& merged, OccurrenceMap& known, const QList<QRect>& list) {
    int current = 0;
    int next = 0;
    while (next < list.size() && current < merged.size()) {
        const QRect& rect = list[next];
        if (!isLowerOccurrence(rect, merged[current])) {
            ++current;
            continue;
        }
        if (!known.hasNear(rect.topLeft())) {
            known.insert(rect.topLeft());
            merged.insert(current, rect);
        }
        ++current;
        ++next;
    }
    for (; next < list.size(); ++next) {
        if (known.hasNear(list[next].topLeft()))
            continue;
        known.insert(list[next].topLeft());
        merged.append(list[next]);
    }
}

}  // namespace

QPair<int, bool> fuzzyOccurrenceAt(Haystack& haystack, Needle& needle,
                                   const ImageLookupOptions& options, QPoint position,
                                   bool oneShot) {
    const double threshold = thresholdOf(options);
    const QList<Resize*> sizes = sizesOf(needle, options);
    ScaleTiles tiles(haystack, sizes, 1);
    if (!options.getMultiscale())
        return occurrenceAtSize(haystack, needle, threshold, position, oneShot, tiles);
    QPair<int, bool> sum(0, false);
    forEachSize(
        sizes, needle,
        [&](Resize* resize) {
            return occurrenceAtSize(haystack, *resize, threshold, position, oneShot, tiles);
        },
        [&](const Resize*, const QPair<int, bool>& result) {
            sum.first += result.first;
            sum.second |= result.second;
        });
    return sum;
}

QList<QRect> fuzzyAllOccurrences(Haystack& haystack, Needle& needle,
                                 const ImageLookupOptions& options, int limit, bool oneShot) {
    const double threshold = thresholdOf(options);
    const QList<Resize*> sizes = sizesOf(needle, options);
    ScaleTiles tiles(haystack, sizes, 1);
    if (!options.getMultiscale())
        return allOccurrencesOfSize(haystack, needle, threshold, limit, oneShot, tiles);
    QList<QRect> merged;
    OccurrenceMap known(haystack.boundingBox());
    forEachSize(
        sizes, needle,
        [&](Resize* resize) {
            return allOccurrencesOfSize(haystack, *resize, threshold, limit, oneShot, tiles);
        },
        [&](const Resize*, const QList<QRect>& list) { mergeSize(merged, known, list); });
    return merged;
}

namespace {

// A best search over all sizes of a needle.
struct BestSearch {
    Haystack& haystack;
    Needle& needle;
    QList<Resize*> sizes;
    double start;
    double cap;
    int limit;
    bool oneShot;
    bool acceptsAnyScore;

    // A score that may raise the bar: smaller copies must match better.
    double required(const Resize* resize) const {
        const double ratio = static_cast<double>(resize->image.width()) / needle.image.width();
        return ratio < 1 ? 1 - 0.01 * ratio : 0.99;
    }

    template <typename Consume>
    void forEachSizePlain(Consume consume) const {
        const auto search = [this](Resize* resize) {
            const auto best = resize->hasHoles ? normCorrBestOccurrencesImpl<true>
                                               : normCorrBestOccurrencesImpl<false>;
            return best(haystack, *resize, start, cap, limit, oneShot);
        };
        forEachSize(sizes, needle, search, consume);
    }

    template <typename Consume>
    void forEachSizeFast(Consume consume) const;
};

// The lists of the reference, but for those that don't change the result: a first round finds
// the highest score of each size, where sizes drop out as soon as another one is better for
// certain; the second lists the occurrences of those that are left.
template <typename Consume>
void BestSearch::forEachSizeFast(Consume consume) const {
    ScaleTiles tiles(haystack, sizes, 2);
    // Without a rising bar all scores from the cap on are looked for.
    std::vector<BestOfSize> best(sizes.size(), BestOfSize{cap, std::nullopt});
    BestBar bar{cap, start};
    if (start < cap) {
        // No size accepts a score below 0.99 before another one has raised the bar.
        constexpr double lowestRequired = 0.99;
        if (!acceptsAnyScore)
            bar.floor = std::max(start, std::min(cap, lowestRequired));
        // 1. The needle's own size first: where it is found, the others drop out early.
        QList<Resize*> searched = sizes;
        std::stable_partition(searched.begin(), searched.end(),
                              [this](const Resize* resize) { return resize == &needle; });
        const auto search = [&](Resize* resize) {
            const double least = acceptsAnyScore ? 0 : required(resize);
            return fastBestOfSize(haystack, *resize, least, limit, bar, tiles);
        };
        forEachSize(searched, needle, search, [&](Resize* resize, const BestOfSize& found) {
            best[sizes.indexOf(resize)] = found;
        });
    }
    // 2. The occurrences.
    const double floor = bar.floor;
    const auto list = [&](Resize* resize) {
        const auto& [highest, occurrences] = best[sizes.indexOf(resize)];
        const double score = std::min(highest, cap);
        if (score < floor || (start < cap && score <= start))
            return QList<Scored>();
        return occurrences ? *occurrences
                           : fastOccurrencesFrom(haystack, *resize, score, limit, tiles);
    };
    forEachSize(sizes, needle, list, consume);
}

// The settings under which the rectangles are found by a score.
ImageLookupOptions settingsFor(const QList<QRect>& rects, int needleWidth, double score,
                               const ImageLookupOptions& defaults) {
    ImageLookupOptions settings;
    settings.setTolerant(true);
    settings.setThreshold(score * 100);
    const auto isNarrower = [](const QRect& a, const QRect& b) { return a.width() < b.width(); };
    const auto [narrowest, widest] = std::minmax_element(rects.begin(), rects.end(), isNarrower);
    const bool isOwnSize = narrowest->width() == needleWidth && widest->width() == needleWidth;
    if (isOwnSize && !defaults.getMultiscale())
        return settings;
    settings.setMultiscale(true);
    // Integers on purpose: the middle of the steps in which sizes are tried.
    const int least = (narrowest->width() / 4 * 4 + 2) * 100 / needleWidth;
    const int most = ((widest->width() & ~3) + 2) * 100 / needleWidth;
    double minimum = 100;
    double maximum = 100;
    if (defaults.getMultiscale() && defaults.hasField(ImageLookupOptions::MinScaleFactor))
        minimum = defaults.getMinScaleFactor();
    if (defaults.getMultiscale() && defaults.hasField(ImageLookupOptions::MaxScaleFactor))
        maximum = defaults.getMaxScaleFactor();
    settings.setMinScaleFactor(std::min(minimum, static_cast<double>(least)));
    settings.setMaxScaleFactor(std::max(maximum, static_cast<double>(most)));
    return settings;
}

}  // namespace

QPair<ImageLookupOptions, QList<QRect>> fuzzyBestOccurrences(Haystack& haystack, Needle& needle,
                                                             const ImageLookupOptions& defaults,
                                                             const ImageLookupOptions& options,
                                                             int limit, bool oneShot,
                                                             BestOccurrenceFlags flags) {
    // 1. From which score on, and up to which one.
    double start = 0;
    double cap = defaults.getTolerant() ? defaults.getThreshold() / 100 : 1;
    if (options.hasField(ImageLookupOptions::Threshold))
        start = cap = options.getThreshold() / 100;
    // 2. The sizes. Whether the defaults are multi-scale doesn't matter.
    QList<Resize*> sizes = {&needle};
    if (!options.hasField(ImageLookupOptions::Multiscale) || options.getMultiscale())
        sizes =
            needle.getResizes(options.getMinScaleFactor() / 100, options.getMaxScaleFactor() / 100);
    // 3. Search for all of them.
    const bool acceptsAnyScore = flags.testFlag(AcceptAnyScore);
    const BestSearch search{haystack, needle, sizes, start, cap, limit, oneShot, acceptsAnyScore};
    // 4. Keep what has the highest score.
    double bar = start;
    QList<QRect> rects;
    OccurrenceMap known(haystack.boundingBox());
    const auto consume = [&](const Resize* resize, const QList<Scored>& scored) {
        for (const auto& [score, rect] : scored) {
            if (score > bar && cap > bar) {
                if (!acceptsAnyScore && score < search.required(resize))
                    continue;
                rects.clear();
                known.clear();
                bar = std::min(score, cap);
            } else if (score < bar) {
                continue;
            }
            if (known.hasNear(rect.topLeft()))
                continue;
            known.insert(rect.topLeft());
            const auto behind = std::partition_point(
                rects.begin(), rects.end(),
                [&place = rect](const QRect& each) { return isLowerOccurrence(each, place); });
            rects.insert(behind, rect);
        }
    };
    if (isPlain())
        search.forEachSizePlain(consume);
    else if (limit > 0)
        search.forEachSizeFast(consume);
    // 5. Nothing found.
    if (rects.isEmpty())
        return {};
    // 6. No more than asked for.
    while (rects.size() > std::max(limit, 0))
        rects.removeLast();
    // 7 and 8. The settings.
    return {settingsFor(rects, needle.image.width(), bar, defaults), rects};
}

}  // namespace Tamrix::Vision::BasicImageLookup
