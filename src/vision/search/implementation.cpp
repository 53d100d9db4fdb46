#include <algorithm>
#include <stdexcept>
#include <utility>

#include "vision/search/basicimagelookup.h"
#include "vision/search/fuzzylookup.h"
#include "vision/search/haystack.h"
#include "vision/search/occurrences.h"
#include "vision/search/parallel.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

using Best = QPair<ImageLookupOptions, QList<QRect>>;

void cutTo(QList<QRect>& list, int limit) {
    if (list.size() > limit)
        list.erase(list.begin() + std::max(limit, 0), list.end());
}

// Runs the search for each needle, with several needles side by side, and merges what they find.
template <typename Search>
QList<QRect> mergedOccurrences(const QList<Needle*>& needles, Search search) {
    if (needles.size() == 1)
        return search(needles.first());
    QList<QRect> merged;
    const QList<QList<QRect>> lists = mapped(needles, search).results();
    for (const QList<QRect>& list : lists)
        merged = mergeOccurrenceLists(merged, list);
    return merged;
}

QList<QRect> strictOccurrences(const Haystack& haystack, const QList<Needle*>& needles, int limit) {
    return mergedOccurrences(needles, [&](Needle* needle) {
        return strictAllOccurrences(haystack.image(), haystack.region(), *needle, limit);
    });
}

// Takes the answer for one needle into the common one.
void takeBest(Best& common, const Best& answer) {
    auto& [result, rects] = common;
    const auto& [settings, found] = answer;
    if (found.isEmpty())
        return;
    if (settings.getThreshold() > result.getThreshold()) {
        common = answer;
        return;
    }
    if (settings.getThreshold() != result.getThreshold())
        return;
    if (settings.getMultiscale()) {
        // The smaller one for the maximum too: this is meant.
        const bool hasMinimum = result.hasField(ImageLookupOptions::MinScaleFactor);
        const bool hasMaximum = result.hasField(ImageLookupOptions::MaxScaleFactor);
        const double minimum = settings.getMinScaleFactor();
        const double maximum = settings.getMaxScaleFactor();
        result.setMultiscale(true);
        result.setMinScaleFactor(hasMinimum ? std::min(minimum, result.getMinScaleFactor())
                                            : minimum);
        result.setMaxScaleFactor(hasMaximum ? std::min(maximum, result.getMaxScaleFactor())
                                            : maximum);
    }
    rects = mergeOccurrenceLists(rects, found);
}

// Leaves in `result` what differs from the defaults and isn't fixed by the options.
void reduceToDifference(ImageLookupOptions& result, const ImageLookupOptions& defaults,
                        const ImageLookupOptions& options) {
    using Options = ImageLookupOptions;
    const auto reduce = [&](Options::Field field, auto get, void (Options::*reset)()) {
        const bool isSame = defaults.hasField(field) && result.hasField(field) &&
                            (defaults.*get)() == (result.*get)();
        if (options.hasField(field) || isSame)
            (result.*reset)();
    };
    reduce(Options::Tolerant, &Options::getTolerant, &Options::resetTolerant);
    reduce(Options::Threshold, &Options::getThreshold, &Options::resetThreshold);
    reduce(Options::Multiscale, &Options::getMultiscale, &Options::resetMultiscale);
    reduce(Options::MinScaleFactor, &Options::getMinScaleFactor, &Options::resetMinScaleFactor);
    reduce(Options::MaxScaleFactor, &Options::getMaxScaleFactor, &Options::resetMaxScaleFactor);
}

}  // namespace

ImageLookupImplementation::Cache* Implementation::newCache(const QList<QImage>& needles,
                                                           bool oneShot) {
    return new BasicCache(needles, oneShot);
}

QRect Implementation::findMatch(const QImage& image, const SearchRegion& region, Cache* cache,
                                const ImageLookupOptions& options, int occurrence) {
    const QList<QRect> occurrences = allOccurrences(image, region, cache, options, occurrence);
    return occurrences.value(occurrence - 1);
}

int Implementation::occurrenceAt(const QImage& image, const SearchRegion& region, Cache* cache,
                                 const ImageLookupOptions& options, const QPoint& position) {
    // 1. Only inside the region.
    if (!region.contains(position))
        throw std::runtime_error("The search region does not contain specified position");
    // 2. The haystack.
    Haystack haystack(image, region);
    // 3. One needle here, several side by side.
    const BasicCache& needles = static_cast<BasicCache&>(*cache);
    const auto search = [&](Needle* needle) {
        return options.getTolerant()
                   ? fuzzyOccurrenceAt(haystack, *needle, options, position, needles.oneShot)
                   : strictOccurrenceAt(haystack.image(), haystack.region(), *needle, position);
    };
    QPair<int, bool> sum(0, false);
    if (needles.needles.size() == 1) {
        sum = search(needles.needles.first());
    } else {
        const auto results = mapped(needles.needles, search).results();
        for (const auto& [count, isFound] : results) {
            sum.first += count;
            sum.second |= isFound;
        }
    }
    // 4. Numbers begin with one.
    return sum.second ? sum.first + 1 : 0;
}

QList<QRect> Implementation::allOccurrences(const QImage& image, const SearchRegion& region,
                                            Cache* cache, const ImageLookupOptions& options,
                                            int limit) {
    if (region.isEmpty())
        return {};
    Haystack haystack(image, region);
    const BasicCache& needles = static_cast<BasicCache&>(*cache);
    QList<QRect> occurrences;
    if (options.getTolerant()) {
        occurrences = mergedOccurrences(needles.needles, [&](Needle* needle) {
            return fuzzyAllOccurrences(haystack, *needle, options, limit, needles.oneShot);
        });
    } else {
        occurrences = strictOccurrences(haystack, needles.needles, limit);
    }
    cutTo(occurrences, limit);
    return occurrences;
}

QPair<ImageLookupOptions, QList<QRect>> Implementation::bestOccurrences(
    const QImage& image, const SearchRegion& region, Cache* cache,
    const ImageLookupOptions& defaults, const ImageLookupOptions& options, int limit,
    BestOccurrenceFlags flags) {
    const BasicCache& needles = static_cast<BasicCache&>(*cache);
    Haystack haystack(image, region);
    Best best;
    auto& [result, rects] = best;
    // 1. Which passes.
    const bool isFixed = options.hasField(ImageLookupOptions::Tolerant);
    const bool isExactOnly = isFixed && !options.getTolerant();
    const bool isCorrelationOnly = !isExactOnly && defaults.getTolerant();
    // 2. The exact pass.
    if (!isCorrelationOnly)
        rects = strictOccurrences(haystack, needles.needles, limit);
    // 3. The correlation pass.
    if (!isExactOnly && rects.isEmpty()) {
        result.setTolerant(true);
        result.setThreshold(0);
        const auto search = [&](Needle* needle) {
            return fuzzyBestOccurrences(haystack, *needle, defaults, options, limit,
                                        needles.oneShot, flags);
        };
        const QList<Best> answers = mapped(needles.needles, search).results();
        for (const Best& answer : answers)
            takeBest(best, answer);
    }
    // 4. Nothing found.
    if (rects.isEmpty())
        return {};
    // 5. No more than asked for.
    cutTo(rects, limit);
    // 6 and 7. The change of settings.
    reduceToDifference(result, defaults, options);
    return best;
}

}  // namespace Tamrix::Vision::BasicImageLookup
