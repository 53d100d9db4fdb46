#include <gtest/gtest.h>

#include <QRandomGenerator>
#include <cmath>

#include "support/printqt.h"
#include "vision/search/basicimagelookup.h"
#include "vision/search/occurrences.h"
#include "vision/search/parallel.h"
#include "vision/search/pixelkernels.h"
#include "vision/search/rareanchors.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

constexpr int noLimit = 1 << 30;

QImage filled(QSize size, QRgb pixel) {
    QImage image(size, QImage::Format_ARGB32);
    image.fill(pixel);
    return image;
}

class PlainMethod {
public:
    PlainMethod() { setSearchMethod(SearchMethod::Plain); }
    ~PlainMethod() { setSearchMethod(SearchMethod::Fast); }
    PlainMethod(const PlainMethod&) = delete;
    PlainMethod& operator=(const PlainMethod&) = delete;
};

/// The occurrences, pixel by pixel with nothing clever.
QList<QRect> everyOccurrence(const QImage& image, const SearchRegion& region,
                             const QImage& needle) {
    const auto matchesAt = [&](QPoint corner) {
        for (int y = 0; y < needle.height(); ++y) {
            for (int x = 0; x < needle.width(); ++x) {
                const QRgb wanted = needle.pixel(x, y);
                const QRgb found = image.pixel(corner + QPoint(x, y));
                if (qAlpha(wanted) == 255 ? (wanted & 0xffffff) != (found & 0xffffff)
                                          : !strictCompare<true>(wanted, found))
                    return false;
            }
        }
        return true;
    };
    QList<QRect> list;
    for (int y = 0; y <= image.height() - needle.height(); ++y) {
        for (int x = 0; x <= image.width() - needle.width(); ++x) {
            const QRect rect(QPoint(x, y), needle.size());
            if (region.contains(rect) && matchesAt(rect.topLeft()))
                list.append(rect);
        }
    }
    return list;
}

/// Pictures in which needles are found often, nearly found, or everywhere: few colours, stripes.
class RandomPictures {
public:
    QImage haystack() {
        const QSize size(1 + number(90), 1 + number(40));
        QImage image = filled(size, colour(0));
        const int period = 1 + number(5);
        const int noise = number(4) == 0 ? 50 : number(300);
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x)
                image.setPixel(x, y, colour((x / period + y) % 2 * number(2)));
        }
        if (number(2) == 0) {
            const QRgb stripes[] = {colour(0), colour(1)};
            for (int y = 0; y < size.height(); ++y) {
                for (int x = 0; x < size.width(); ++x)
                    image.setPixel(x, y, stripes[x / period % 2]);
            }
        }
        for (int i = 0; i < size.width() * size.height() * noise / 1000 / 4; ++i)
            image.setPixel(number(size.width()), number(size.height()), colour(number(3)));
        return image;
    }

    /// Cut out of the haystack, and sometimes a little different.
    QImage needle(const QImage& haystack) {
        const int width = 1 + number(std::min(haystack.width(), 20));
        const int height = 1 + number(std::min(haystack.height(), 12));
        QImage image = haystack.copy(number(haystack.width() - width + 1),
                                     number(haystack.height() - height + 1), width, height);
        const int changes = number(3) == 0 ? 1 + number(3) : 0;
        for (int i = 0; i < changes; ++i) {
            const QPoint where(number(width), number(height));
            const int alphas[] = {0, 128, 255};
            const QRgb pixel = colour(number(3));
            image.setPixel(where.x(), where.y(),
                           qRgba(qRed(pixel), qGreen(pixel), qBlue(pixel), alphas[number(3)]));
        }
        return image;
    }

    SearchRegion region(const QImage& haystack) {
        QList<QRect> rectangles;
        for (int i = number(3); i >= 0; --i)
            rectangles.append(QRect(number(20) - 10, number(20) - 10,
                                    1 + number(haystack.width() + 30),
                                    1 + number(haystack.height() + 30)));
        return SearchRegion(number(3) == 0 ? QList<QRect>{haystack.rect()} : rectangles);
    }

    int number(int end) { return static_cast<int>(m_random.bounded(end)); }

private:
    static QRgb colour(int index) {
        const QRgb colours[] = {0xffefefef, 0xff102030, 0xff3080ff};
        return colours[index];
    }

    QRandomGenerator m_random = QRandomGenerator(4);
};

TEST(ExactLookup, FindsWhatComparingEveryPixelFinds) {
    RandomPictures pictures;
    for (int round = 0; round < 1500; ++round) {
        const QImage haystack = pictures.haystack();
        const QImage image = pictures.needle(haystack);
        const SearchRegion region = pictures.region(haystack);
        Needle needle(image);
        if (!needle.hasVisiblePixels)
            continue;
        const QList<QRect> expected = everyOccurrence(haystack, region, image);
        ASSERT_EQ(strictAllOccurrences(haystack, region, needle, noLimit), expected) << round;
        const int limit = 1 + pictures.number(4);
        const QPoint position(pictures.number(haystack.width() + 10) - 5,
                              pictures.number(haystack.height() + 10) - 5);
        const QList<QRect> limited = strictAllOccurrences(haystack, region, needle, limit);
        const auto found = strictOccurrenceAt(haystack, region, needle, position);
        const PlainMethod plain;
        ASSERT_EQ(strictAllOccurrences(haystack, region, needle, noLimit), expected) << round;
        ASSERT_EQ(strictAllOccurrences(haystack, region, needle, limit), limited) << round;
        ASSERT_EQ(strictOccurrenceAt(haystack, region, needle, position), found) << round;
        ASSERT_EQ(limited.mid(0, limit), expected.mid(0, limit)) << round;
        const auto isBefore = [&](const QRect& rect) {
            return rect.topLeft() != position && isLowerOccurrence(rect, QRect(position, QSize()));
        };
        ASSERT_EQ(found.first, std::count_if(expected.begin(), expected.end(), isBefore)) << round;
    }
}

// Large enough for the vectors and for the change to the linear way.
TEST(ExactLookup, NeedlesThatAreNearlyEverywhere) {
    QImage haystack = filled({700, 90}, 0xffefefef);
    for (int y = 0; y < haystack.height(); ++y) {
        for (int x = y / 60; x < haystack.width(); x += 7)
            haystack.setPixel(x, y, 0xff102030);
    }
    const QImage needles[] = {haystack.copy(140, 50, 64, 20), haystack.copy(0, 55, 35, 12),
                              haystack.copy(8, 50, 1, 30), haystack.copy(6, 0, 63, 20), haystack};
    for (const QImage& image : needles) {
        Needle needle(image);
        const SearchRegion region(haystack.rect());
        const QList<QRect> found = strictAllOccurrences(haystack, region, needle, noLimit);
        const PlainMethod plain;
        EXPECT_EQ(found, strictAllOccurrences(haystack, region, needle, noLimit));
        EXPECT_FALSE(found.isEmpty());
    }
}

TEST(ExactLookup, TranslucentPixelsMatchWhatTheyCanBeBlendedInto) {
    const QRgb half = qRgba(255, 100, 0, 128);
    const struct {
        QRgb needle;
        QRgb haystack;
        bool matches;
    } rows[] = {
        {half, qRgba(128, 50, 0, 0), true},       {half, qRgba(255, 177, 127, 9), true},
        {half, qRgba(127, 50, 0, 255), false},    {half, qRgba(128, 178, 0, 255), false},
        {half, qRgba(128, 50, 128, 255), false},  {qRgba(1, 2, 3, 0), qRgb(9, 255, 0), true},
        {qRgb(1, 2, 3), qRgba(1, 2, 3, 7), true}, {qRgb(1, 2, 3), qRgb(1, 2, 4), false},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(strictCompare<true>(row.needle, row.haystack), row.matches);
        const PixelBounds bounds = boundsOf(row.needle, true);
        for (const PixelKernels* kernels : {&pixelKernels(), &basicPixelKernels()})
            EXPECT_EQ(kernels->allWithin(&row.haystack, &bounds.low, &bounds.high, 1), row.matches);
    }
}

TEST(ExactLookup, OddSizesAndPlaces) {
    QImage haystack = filled({30, 1}, 0xffefefef);
    haystack.setPixel(12, 0, 0xff102030);
    const SearchRegion all(haystack.rect());
    Needle whole(haystack);
    EXPECT_EQ(strictAllOccurrences(haystack, all, whole, 5), QList<QRect>{haystack.rect()});
    Needle dot(filled({1, 1}, 0xff102030));
    EXPECT_EQ(strictAllOccurrences(haystack, all, dot, 5), QList<QRect>{QRect(12, 0, 1, 1)});
    Needle wide(filled({31, 1}, 0));
    EXPECT_TRUE(strictAllOccurrences(haystack, all, wide, 5).isEmpty());
    EXPECT_TRUE(strictAllOccurrences(haystack, SearchRegion(), dot, 5).isEmpty());
    EXPECT_TRUE(
        strictAllOccurrences(haystack, SearchRegion(QRect(100, 50, 9, 9)), dot, 5).isEmpty());
    // Outside the image nothing can be compared.
    EXPECT_EQ(strictOccurrenceAt(haystack, SearchRegion(QRect(-5, -5, 90, 90)), dot, {40, 40}),
              qMakePair(1, false));
    Needle nothing{QImage()};
    EXPECT_FALSE(nothing.hasVisiblePixels);
    EXPECT_THROW(strictAllOccurrences(haystack, all, nothing, 5), TooMuchTransparency);

    Needle invisible(filled({2, 1}, 0));
    EXPECT_THROW(strictAllOccurrences(haystack, all, invisible, 5), TooMuchTransparency);
    EXPECT_TRUE(
        strictAllOccurrences(haystack, SearchRegion(QRect(0, 0, 1, 1)), invisible, 5).isEmpty());
}

TEST(ExactLookup, AFullListTakesOneMoreOfEachRow) {
    const QImage haystack = filled({6, 4}, 0xffefefef);
    Needle needle(filled({2, 2}, 0xffefefef));
    const QList<QRect> expected = {{0, 0, 2, 2}, {1, 0, 2, 2}, {0, 1, 2, 2}, {0, 2, 2, 2}};
    EXPECT_EQ(strictAllOccurrences(haystack, SearchRegion(haystack.rect()), needle, 2), expected);
}

TEST(ExactLookup, NeedlesKnowTheirPixels) {
    QImage image = filled({2, 2}, qRgba(3, 4, 5, 255));
    const Resize opaque(image.convertToFormat(QImage::Format_RGB888));
    EXPECT_EQ(opaque.image.format(), QImage::Format_RGB32);
    EXPECT_FALSE(opaque.hasTranslucentPixels || opaque.hasHoles);
    EXPECT_FLOAT_EQ(opaque.channelNorms[1], 12);
    EXPECT_FLOAT_EQ(opaque.channelNorms[2], 10);
    EXPECT_FLOAT_EQ(opaque.channelNorms[3], 8);
    image.setPixel(0, 0, qRgba(9, 9, 9, 127));
    const Resize holed(image);
    EXPECT_TRUE(holed.hasTranslucentPixels && holed.hasHoles && holed.hasVisiblePixels);
    EXPECT_FLOAT_EQ(holed.channelNorms[3], std::sqrt(48.F));
    image.setPixel(0, 0, qRgba(9, 9, 9, 128));
    EXPECT_FALSE(Resize(image).hasHoles);
}

TEST(Occurrences, NearOnesAreOne) {
    const QList<QRect> list = {{10, 10, 5, 5}};
    EXPECT_TRUE(hasOccurrence(list, {12, 12, 9, 9}));
    EXPECT_FALSE(hasOccurrence(list, {13, 12, 5, 5}));
    EXPECT_TRUE(hasOccurrence(QList<QPair<double, QRect>>{{0.5, list.at(0)}}, {8, 8, 1, 1}));
    EXPECT_TRUE(isLowerOccurrence(list.at(0), list.at(0)));

    QRandomGenerator random(7);
    const QRect corners(-20, 5, 150, 40);
    const auto anyCorner = [&] {
        return QPoint(corners.left() + random.bounded(150), corners.top() + random.bounded(40));
    };
    OccurrenceMap map(corners);
    QList<QRect> inserted;
    for (int i = 0; i < 60; ++i) {
        inserted.append(QRect(anyCorner(), QSize(2, 2)));
        map.insert(inserted.last().topLeft());
        for (int k = 0; k < 100; ++k) {
            const QPoint corner = anyCorner();
            ASSERT_EQ(map.hasNear(corner), hasOccurrence(inserted, QRect(corner, QSize(9, 9))));
        }
    }
}

TEST(Occurrences, ListsAreMergedWithoutLoss) {
    const QRect a(0, 0, 1, 1);
    const QRect b(4, 0, 2, 2);
    const QRect sameAsB(4, 0, 3, 3);
    const QRect c(0, 3, 1, 1);
    EXPECT_EQ(mergeOccurrenceLists({b, c}, {a, sameAsB, c}), (QList<QRect>{a, b, sameAsB, c, c}));
    EXPECT_EQ(mergeOccurrenceLists({}, {a}), QList<QRect>{a});
}

}  // namespace
}  // namespace Tamrix::Vision::BasicImageLookup
