#include "vision/fuzzylookup.h"

#include <gtest/gtest.h>

#include <QThreadPool>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "vision/basicimagelookup.h"
#include "vision/correlation.h"
#include "vision/correlation/pictures.h"
#include "vision/haystack.h"
#include "vision/imagelookup.h"
#include "vision/normcorrmatcher.h"
#include "vision/parallel.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

using Pictures::Look;
using Pictures::pick;
using Pictures::Random;

ImageLookupOptions options(const char* description) {
    return ImageLookupOptions::fromDescription(description);
}

// A search with the engine; the cache lives as long as the search.
struct Engine {
    QList<QImage> needles;
    SearchRegion region;
    QImage haystack;

    QList<QRect> all(const ImageLookupOptions& options, int limit = 1000) const {
        Implementation engine;
        const std::unique_ptr<ImageLookupImplementation::Cache> cache(
            engine.newCache(needles, true));
        return engine.allOccurrences(haystack, region, cache.get(), options, limit);
    }

    int at(const ImageLookupOptions& options, QPoint position) const {
        Implementation engine;
        const std::unique_ptr<ImageLookupImplementation::Cache> cache(
            engine.newCache(needles, true));
        return engine.occurrenceAt(haystack, region, cache.get(), options, position);
    }

    QPair<ImageLookupOptions, QList<QRect>> best(const ImageLookupOptions& defaults,
                                                 const ImageLookupOptions& options, int limit = 5,
                                                 BestOccurrenceFlags flags = {}) const {
        Implementation engine;
        const std::unique_ptr<ImageLookupImplementation::Cache> cache(
            engine.newCache(needles, true));
        return engine.bestOccurrences(haystack, region, cache.get(), defaults, options, limit,
                                      flags);
    }
};

class PlainSearch {
public:
    PlainSearch() { setSearchMethod(SearchMethod::Plain); }
    ~PlainSearch() { setSearchMethod(SearchMethod::Fast); }
};

Engine randomEngine(unsigned seed, int needles) {
    Random random(seed);
    const QSize size(pick(random, 60, 160), pick(random, 50, 120));
    Engine engine;
    engine.haystack = Pictures::picture(size, Look(seed % 4), random);
    for (int i = 0; i < needles; ++i) {
        const QSize needle(pick(random, 4, 30), pick(random, 4, 30));
        const QRect rect(QPoint(pick(random, 0, size.width() - needle.width()),
                                pick(random, 0, size.height() - needle.height())),
                         needle);
        engine.needles.append(Pictures::needleFrom(engine.haystack, rect, seed % 3 == 0, random));
    }
    engine.region = SearchRegion(engine.haystack.rect());
    if (seed % 4 == 1)
        engine.region =
            SearchRegion(QList<QRect>{{-10, 5, 70, 60}, {30, 30, 500, 40}, {5, 5, 20, 20}});
    return engine;
}

// Plain scores come from transforms of the whole picture in single precision, so they are less
// exact where a dark window lies in a bright picture.
TEST(FuzzyLookup, PlainScoresAreThoseOfTheFormula) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        const Engine engine = randomEngine(seed, 1);
        Haystack haystack(engine.haystack, SearchRegion(engine.haystack.rect()));
        Resize resize(engine.needles.first());
        double worst = 0;
        const auto compare = [&](const auto& matcher) {
            const QRect positions = haystack.positionsOf(resize.image.size());
            for (int y = 0; y <= positions.bottom(); ++y) {
                for (int x = 0; x <= positions.right(); ++x) {
                    const double score =
                        Pictures::evaluatedScore(engine.haystack, resize.image, {x, y});
                    worst = std::max(worst, std::abs(score - matcher.matchQuality(x, y)));
                }
            }
        };
        if (resize.hasHoles)
            compare(NormCorrMatcher<true>(haystack, resize, seed % 2 == 0));
        else
            compare(NormCorrMatcher<false>(haystack, resize, seed % 2 == 0));
        EXPECT_LT(worst, Look(seed % 4) == Look::Noise ? 2e-5 : 2e-2) << seed;
    }
}

TEST(FuzzyLookup, PlainAndFastSearchFindTheSame) {
    const std::vector<ImageLookupOptions> settings = {
        options("tolerant: true, threshold: 99.2"), options("tolerant: true, threshold: 88.3"),
        options("tolerant: true, threshold: 98.4, multiscale: true, minScale: 60, maxScale: 140")};
    for (unsigned seed = 0; seed < 40; ++seed) {
        if (seed % 4 > 1)
            continue;  // Plain scores are inexact in pictures with much contrast.
        const Engine engine = randomEngine(seed, 1 + seed % 3);
        for (const ImageLookupOptions& each : settings) {
            const QList<QRect> fast = engine.all(each);
            QList<int> numbers;
            for (const QRect& rect : fast)
                numbers.append(
                    engine.region.contains(rect.topLeft()) ? engine.at(each, rect.topLeft()) : 0);
            const PlainSearch plain;
            ASSERT_EQ(fast, engine.all(each)) << seed << each.description().toStdString();
            for (int i = 0; i < fast.size() && i < 3; ++i)
                EXPECT_EQ(numbers[i], engine.at(each, fast[i].topLeft())) << seed;
        }
    }
}

TEST(FuzzyLookup, PlainAndFastSearchFindTheSameBest) {
    const QList<std::pair<const char*, const char*>> settings = {
        {"", "multiscale: false"},
        {"", ""},
        {"tolerant: true, threshold: 95", "minScale: 50, maxScale: 150"},
        {"tolerant: true, multiscale: true, minScale: 80", "multiscale: false"},
        {"", "tolerant: true, threshold: 97, maxScale: 120"}};
    for (unsigned seed = 100; seed < 124; ++seed) {
        if (seed % 4 > 1)
            continue;
        const Engine engine = randomEngine(seed, 1 + seed % 2);
        for (const auto& [defaults, called] : settings) {
            for (const BestOccurrenceFlags flags :
                 {BestOccurrenceFlags(), BestOccurrenceFlags(AcceptAnyScore)}) {
                const auto fast = engine.best(options(defaults), options(called), 4, flags);
                const PlainSearch plain;
                const auto slow = engine.best(options(defaults), options(called), 4, flags);
                // Scores of the plain search differ by up to a step.
                EXPECT_EQ(fast.first.hasField(ImageLookupOptions::Threshold),
                          slow.first.hasField(ImageLookupOptions::Threshold));
                EXPECT_NEAR(fast.first.getThreshold(), slow.first.getThreshold(), 0.0021)
                    << seed << defaults << called;
                EXPECT_EQ(fast.second.isEmpty(), slow.second.isEmpty());
                EXPECT_EQ(fast.first.getMinScaleFactor(), slow.first.getMinScaleFactor())
                    << seed << defaults << called << flags;
            }
        }
    }
}

}  // namespace
}  // namespace Tamrix::Vision::BasicImageLookup
