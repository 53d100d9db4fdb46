#include "vision/search/fuzzylookup.h"

#include <gtest/gtest.h>

#include <QThreadPool>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "vision/search/basicimagelookup.h"
#include "vision/search/correlationscore.h"
#include "vision/search/fastcorrelation/pictures.h"
#include "vision/search/haystack.h"
#include "vision/search/imagelookup.h"
#include "vision/search/parallel.h"
#include "vision/search/referencecorrelation.h"

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
            compare(ReferenceCorrelation<true>(haystack, resize, seed % 2 == 0));
        else
            compare(ReferenceCorrelation<false>(haystack, resize, seed % 2 == 0));
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
                // Scores of the reference differ by up to a step.
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

QList<int> widths(const QList<Resize*>& sizes) {
    QList<int> list;
    for (const Resize* const size : sizes)
        list.append(size->image.width());
    return list;
}

TEST(FuzzyLookup, SizesStepByFourThroughTheNeedlesOwnWidth) {
    Needle ten(QImage(10, 6, QImage::Format_RGB32));
    EXPECT_EQ(widths(ten.getResizes(0.5, 2)), (QList<int>{22, 18, 14, 10, 6}));
    EXPECT_EQ(ten.getResizes(1, 1), (QList<Resize*>{&ten}));
    Needle odd(QImage(101, 6, QImage::Format_RGB32));
    EXPECT_EQ(widths(odd.getResizes(0.5, 0.5)), (QList<int>{49}));
    EXPECT_EQ(odd.getResizes(0.5, 0.5), odd.getResizes(0.5, 0.5));
    EXPECT_THROW(odd.getResizes(1.1, 1), std::runtime_error);
}

// A grey picture with a pattern at each of the places.
QImage withPattern(const QList<QPoint>& places, const QImage& pattern) {
    QImage image(200, 120, QImage::Format_RGB32);
    image.fill(qRgb(20, 200, 90));
    QPainter painter(&image);
    for (const QPoint& place : places)
        painter.drawImage(place, pattern);
    return image;
}

QImage noise(QSize size) {
    Random random(11);
    return Pictures::picture(size, Look::Noise, random).convertToFormat(QImage::Format_ARGB32);
}

TEST(FuzzyLookup, NumbersOccurrences) {
    const QImage pattern = noise({16, 12});
    const Engine engine{{pattern, pattern},
                        SearchRegion(QRect(0, 0, 200, 120)),
                        withPattern({{10, 10}, {100, 10}, {30, 70}}, pattern)};
    Engine one = engine;
    one.needles.removeLast();
    const ImageLookupOptions exact = options("tolerant: true, threshold: 100");
    EXPECT_EQ(one.all(exact),
              (QList<QRect>{{10, 10, 16, 12}, {100, 10, 16, 12}, {30, 70, 16, 12}}));
    EXPECT_EQ(one.all(exact, 2).size(), 2);
    EXPECT_EQ(one.at(exact, {30, 70}), 3);
    EXPECT_EQ(one.at(exact, {31, 70}), 0);
    // Two needles at one place are two occurrences, two sizes of one needle are one.
    EXPECT_EQ(engine.all(exact).size(), 6);
    EXPECT_EQ(one.all(options("tolerant: true, multiscale: true, threshold: 99.9")).size(), 3);
    EXPECT_EQ(engine.at(exact, {30, 70}), 5);
    Engine outside = one;
    outside.region = SearchRegion(QRect(150, 60, 500, 500));
    EXPECT_TRUE(outside.all(exact).isEmpty());
    EXPECT_THROW(outside.at(exact, {10, 10}), std::runtime_error);
    outside.region = SearchRegion();
    EXPECT_TRUE(outside.all(exact).isEmpty());
}

TEST(FuzzyLookup, TellsTheChangeOfSettings) {
    const QImage pattern = noise({16, 12});
    QImage changed = pattern;
    changed.setPixel(3, 3, changed.pixel(3, 3) ^ 0xffffffU);
    Engine engine{{pattern}, SearchRegion(QRect(0, 0, 200, 120)), withPattern({{50, 40}}, changed)};
    const double score = correlationScore(engine.haystack, pattern, {50, 40});
    const auto [found, rects] = engine.best({}, options("multiscale: false"));
    EXPECT_EQ(rects, (QList<QRect>{{50, 40, 16, 12}}));
    EXPECT_TRUE(found.getTolerant());
    EXPECT_FALSE(found.hasField(ImageLookupOptions::Multiscale));
    EXPECT_NEAR(found.getThreshold(), score, 0.0011);
    // What the defaults have already is not told again, and what the call fixes neither.
    EXPECT_TRUE(engine.best(options("tolerant: true"), options("threshold: 90, multiscale: false"))
                    .first.isNull());
    // The exact pass comes first where the defaults are exact.
    engine.haystack = withPattern({{50, 40}}, pattern);
    EXPECT_TRUE(engine.best({}, {}).first.isNull());
    EXPECT_EQ(engine.best({}, {}).second.size(), 1);
    EXPECT_TRUE(engine.best({}, options("tolerant: false")).first.isNull());
}

TEST(FuzzyLookup, KeepsTheKindOfFailures) {
    QImage clear(8, 8, QImage::Format_ARGB32);
    clear.fill(qRgba(1, 2, 3, 127));
    Engine engine{{noise({8, 8}), clear}, SearchRegion(QRect(0, 0, 60, 60)), noise({60, 60})};
    try {
        engine.all(options("tolerant: true"));
        FAIL() << "Nothing is visible.";
    } catch (const BadImage& failure) {
        EXPECT_STREQ(failure.what(), "The image has too much transparency");
    }
    EXPECT_THROW(engine.best(options("tolerant: true"), {}), TooMuchTransparency);
    engine.region = SearchRegion(QRect(0, 0, 5, 5));
    EXPECT_TRUE(engine.all(options("tolerant: true")).isEmpty());
}

TEST(FuzzyLookup, NestedSearchesEndOnASmallPool) {
    QThreadPool* const pool = QThreadPool::globalInstance();
    const int before = pool->maxThreadCount();
    pool->setMaxThreadCount(1);
    const Engine engine = randomEngine(4, 3);
    const ImageLookupOptions multiscale = options("tolerant: true, multiscale: true");
    const QList<QRect> fast = engine.all(multiscale);
    engine.best({}, {});
    {
        const PlainSearch plain;
        EXPECT_EQ(engine.all(multiscale), fast);
    }
    pool->setMaxThreadCount(before);
}

}  // namespace
}  // namespace Tamrix::Vision::BasicImageLookup
