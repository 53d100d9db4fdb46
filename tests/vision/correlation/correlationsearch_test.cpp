#include "vision/correlation/correlationsearch.h"

#include <gtest/gtest.h>

#include <QThreadPool>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "vision/correlation/pictures.h"

namespace Tamrix::Vision {
namespace {

using Pictures::evaluatedScore;
using Pictures::Look;
using Pictures::needleFrom;
using Pictures::pick;
using Pictures::Random;

struct Case {
    QImage haystack;
    QImage needle;
};

Case randomCase(unsigned seed) {
    Random random(seed);
    const bool isLarge = seed % 10 == 0;
    const QSize size(pick(random, 1, isLarge ? 400 : 120), pick(random, 1, isLarge ? 200 : 90));
    const QImage haystack = Pictures::picture(size, Look(seed % 4), random);
    const QSize needle(pick(random, 1, std::min(size.width(), isLarge ? 12 : 30)),
                       pick(random, 1, std::min(size.height(), isLarge ? 12 : 30)));
    const QRect rect(QPoint(pick(random, 0, size.width() - needle.width()),
                            pick(random, 0, size.height() - needle.height())),
                     needle);
    const int holes = seed % 3 == 1 && rect.width() > 2 && rect.height() > 2 ? 1 : 0;
    return {haystack, needleFrom(haystack, rect, holes, random)};
}

std::vector<double> evaluatedScores(const Case& sample) {
    std::vector<double> scores;
    for (int y = 0; y <= sample.haystack.height() - sample.needle.height(); ++y) {
        for (int x = 0; x <= sample.haystack.width() - sample.needle.width(); ++x)
            scores.push_back(evaluatedScore(sample.haystack, sample.needle, {x, y}));
    }
    return scores;
}

PositionBitmap accepted(const Case& sample, double threshold, int workers = 1) {
    const SearchPicture picture(sample.haystack, sample.haystack.rect());
    const SearchNeedle needle(sample.needle);
    const QSize size = needle.size();
    CorrelationSearch search(
        picture, needle,
        std::make_shared<SharedTiles>(picture, TileGrid(picture.size(), size, size), false),
        workers);
    PositionBitmap bitmap(search.positions());
    int complete = 0;
    search.markAccepted(ScoreTest::atLeast(threshold), bitmap.size().height(), bitmap,
                        [&](int rows) {
                            EXPECT_GT(rows, complete);
                            complete = rows;
                            return true;
                        });
    EXPECT_EQ(complete, bitmap.size().height());
    return bitmap;
}

double best(const Case& sample, double start) {
    const SearchPicture picture(sample.haystack, sample.haystack.rect());
    const SearchNeedle needle(sample.needle);
    const QSize size = needle.size();
    CorrelationSearch search(
        picture, needle,
        std::make_shared<SharedTiles>(picture, TileGrid(picture.size(), size, size), false), 1);
    double bar = start;
    search.offerBest({[&] { return bar; },
                      [&](double score, int, int) { bar = std::max(bar, score); },
                      [](int, int) { return true; }});
    return bar;
}

class Kernels : public testing::TestWithParam<InstructionSet> {
protected:
    void SetUp() override {
        if (!isSupported(GetParam()))
            GTEST_SKIP() << "This processor has other instructions.";
        setInstructionSet(GetParam());
    }
    void TearDown() override { setInstructionSet(InstructionSet::Avx2); }
};

INSTANTIATE_TEST_SUITE_P(InstructionSets, Kernels,
                         testing::Values(InstructionSet::Baseline, InstructionSet::Avx2));

TEST_P(Kernels, AcceptWhatThePlainEvaluationAccepts) {
    for (unsigned seed = 0; seed < 120; ++seed) {
        const Case sample = randomCase(seed);
        const std::vector<double> scores = evaluatedScores(sample);
        for (const double threshold : {0.99999, 0.995, 0.9, 0.5, 0.0}) {
            const PositionBitmap bitmap = accepted(sample, threshold);
            std::size_t i = 0;
            for (int y = 0; y < bitmap.size().height(); ++y) {
                for (int x = 0; x < bitmap.size().width(); ++x, ++i) {
                    if (std::abs(scores[i] - threshold) < 1e-12)
                        continue;
                    ASSERT_EQ(bitmap.test(x, y), scores[i] >= threshold)
                        << "case " << seed << " at " << x << ", " << y << ": " << scores[i];
                }
            }
        }
    }
}

TEST_P(Kernels, FindTheBestScore) {
    for (unsigned seed = 200; seed < 260; ++seed) {
        const Case sample = randomCase(seed);
        const std::vector<double> scores = evaluatedScores(sample);
        const double highest = *std::max_element(scores.begin(), scores.end());
        EXPECT_NEAR(best(sample, 0), highest, 1e-12) << "case " << seed;
        EXPECT_NEAR(best(sample, 0.95), std::max(highest, 0.95), 1e-12) << "case " << seed;
    }
}

// The search trusts a bound of the transforms' errors; here is how far they stay below it.
TEST_P(Kernels, ErrorsOfTransformsStayFarBelowTheBound) {
    Random random(7);
    const TileKernels& kernels = tileKernels();
    double worst = 0;
    for (const auto& [width, height] :
         {std::pair(32, 64), std::pair(160, 96), std::pair(256, 320), std::pair(1280, 768)}) {
        for (const Look look : {Look::Noise, Look::Widgets, Look::Dark, Look::Contrast}) {
            const QImage image = Pictures::picture(QSize(width, height), look, random);
            const SearchPicture picture(image, image.rect());
            const SearchNeedle needle(image.copy(3, 5, width / 3, height / 3));
            const TileShape shape(width, height);
            Scratch<float> work(shape.floats());
            Scratch<float> line(shape.lineFloats());
            Scratch<float> spectrum(shape.floats());
            Scratch<float> needleSpectrum(shape.floats());
            const TilePixels tile = picture.tileAt(Green, {0, 0}, shape);
            const double energy = kernels.transformTiles(shape, tile, tile, TileContent::Value,
                                                         work.data(), spectrum.data());
            kernels.transformValues(
                shape, needle.values(Green, 1.0F / static_cast<float>(width * height)).data(),
                needle.size().width(), needle.size().height(), work.data(), needleSpectrum.data());
            kernels.correlateRows(shape, spectrum.data(), needleSpectrum.data(), width, line.data(),
                                  work.data());
            const int columns = width - needle.size().width() + 1;
            const int rows = height - needle.size().height() + 1;
            PositionBitmap bits({columns, rows});
            TileJudgement job;
            job.shape = &shape;
            job.correlation = work.data();
            job.candidateFactor = 1e30F;
            job.sumsStride = picture.sumsStride();
            job.needleWidth = needle.size().width();
            job.needleHeight = needle.size().height();
            job.bandHeight = 65535 / job.needleWidth;
            job.candidatesStride = bits.stride();
            job.tiles[0] = {columns, rows, picture.sums(), bits.row(0), bits.row(0), nullptr};
            kernels.judge(job);
            const double unit = std::sqrt(energy * needle.energy(Green)) / (1 << 24);
            for (int y = 0; y < rows; y += 3) {
                for (int x = 0; x < columns; x += 5) {
                    const ExactSums sums = kernels.exactSums(picture.pixels(Green, x, y),
                                                             picture.stride(), needle.exact(Green));
                    const long block = x / kernels.lanes * static_cast<long>(height) + y;
                    const float found = work.data()[block * 2 * kernels.lanes + x % kernels.lanes];
                    const double exact =
                        static_cast<double>(sums.product) - double(valueMiddle) * needle.sum(Green);
                    worst = std::max(worst, std::abs(found - exact) / unit);
                }
            }
        }
    }
    EXPECT_LT(worst, 4);  // of the 8 that the search allows for
}

TEST(CorrelationSearch, ThreadsFindTheSame) {
    QThreadPool::globalInstance()->setMaxThreadCount(3);
    const Case sample = randomCase(15);
    const PositionBitmap alone = accepted(sample, 0.9);
    const PositionBitmap together = accepted(sample, 0.9, 3);
    for (int y = 0; y < alone.size().height(); ++y)
        ASSERT_TRUE(
            std::equal(alone.words(y), alone.words(y) + alone.wordsPerRow(), together.words(y)));
}

TEST(CorrelationSearch, SearchesShareKeptSpectra) {
    Random random(8);
    const QImage image = Pictures::picture(QSize(400, 300), Look::Contrast, random);
    const SearchPicture picture(image, image.rect());
    const QSize smallest(20, 20);
    const QSize largest(30, 24);
    // Tiles small enough to be several pairs.
    const TileGrid grid(picture.size(), smallest, largest, 64 * 64);
    ASSERT_GT(grid.pairs(), 1);
    const auto kept = std::make_shared<SharedTiles>(picture, grid, true);
    for (const QSize size : {largest, smallest}) {
        const QImage part = image.copy(QRect(QPoint(123, 77), size));
        const SearchNeedle needle(part);
        CorrelationSearch search(picture, needle, kept, 1);
        PositionBitmap shared(search.positions());
        search.markAccepted(ScoreTest::atLeast(0.9), shared.size().height(), shared,
                            [](int) { return true; });
        const PositionBitmap own = accepted({image, part}, 0.9);
        EXPECT_TRUE(shared.test(123, 77));
        for (int y = 0; y < own.size().height(); ++y)
            ASSERT_TRUE(std::equal(own.words(y), own.words(y) + own.wordsPerRow(), shared.words(y)))
                << y;
    }
}

TEST(CorrelationSearch, PicturesOfOddSizesReachThePerfectScore) {
    Random random(3);
    for (const auto& [haystack, needle] :
         {std::pair(QSize(1, 1), QSize(1, 1)), std::pair(QSize(700, 1), QSize(9, 1)),
          std::pair(QSize(1, 300), QSize(1, 40)), std::pair(QSize(600, 400), QSize(600, 400)),
          std::pair(QSize(900, 700), QSize(333, 290)), std::pair(QSize(800, 600), QSize(1, 1)),
          std::pair(QSize(640, 480), QSize(639, 3))}) {
        const QImage image = Pictures::picture(haystack, Look::Contrast, random);
        const QPoint at(haystack.width() - needle.width(), haystack.height() - needle.height());
        const PositionBitmap bitmap = accepted({image, image.copy(QRect(at, needle))}, 0.99999);
        EXPECT_TRUE(bitmap.test(at.x(), at.y())) << haystack.width() << " " << needle.width();
    }
}

}  // namespace
}  // namespace Tamrix::Vision
