#include "vision/search/fastcorrelation/correlationsearch.h"

#include <gtest/gtest.h>

#include <QThreadPool>
#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>
#include <vector>

#include "vision/search/fastcorrelation/pictures.h"

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
    void TearDown() override { setBestInstructionSet(); }
};

INSTANTIATE_TEST_SUITE_P(InstructionSets, Kernels,
                         testing::Values(InstructionSet::Baseline, InstructionSet::Avx2,
                                         InstructionSet::Avx512));

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

// A tile of a picture and a needle, and how far the correlation by transforms is from the exact
// one.
class TransformErrors {
public:
    TransformErrors(const QImage& image, QSize needleSize)
        : m_picture(image, image.rect()),
          m_needle(image.copy(QRect(QPoint(3, 5), needleSize))),
          m_shape(image.width(), image.height()),
          m_work(m_shape.floats()),
          m_line(m_shape.lineFloats()),
          m_spectrum(m_shape.floats()) {
        const auto values = static_cast<float>(image.width() * image.height());
        m_kernels.transformValues(m_shape, m_needle.values(Green, 1 / values).data(),
                                  needleSize.width(), needleSize.height(), m_work.data(),
                                  m_spectrum.data());
    }

    // In rounding units of the norms.
    double ofSinglePrecision() {
        const double energy = transformColumns();
        m_kernels.correlateRows(m_shape, m_spectrum.data(), m_shape.width, m_line.data(),
                                m_work.data());
        return worst() / (std::sqrt(energy * m_needle.energy(Green)) / (1 << 24));
    }

    // As a part of what is allowed for.
    double ofKeptRows() {
        const double energy = transformColumns();
        const double values = double(m_shape.width) * m_shape.height;
        const auto unit = static_cast<float>(256 * values / 65504);
        std::vector<std::uint16_t> halves(m_shape.floats());
        const double lost =
            m_kernels.keepRows(m_shape, m_work.data(), unit, m_line.data(), halves.data()) / values;
        m_kernels.correlateKeptRows(m_shape, halves.data(), unit, m_spectrum.data(), m_shape.width,
                                    m_line.data(), m_work.data());
        return worst() / (std::sqrt(m_needle.energy(Green)) *
                          (std::sqrt(lost) + 8 * std::sqrt(energy) / (1 << 24)));
    }

private:
    double transformColumns() {
        const TilePixels tile = m_picture.tileAt(Green, {0, 0}, m_shape);
        return m_kernels.transformColumns(m_shape, tile, tile, TileContent::Value, m_work.data());
    }

    // Does the backward column passes and compares a sample of the positions.
    double worst() {
        const int columns = m_shape.width - m_needle.size().width() + 1;
        const int rows = m_shape.height - m_needle.size().height() + 1;
        PositionBitmap bits({columns, rows});
        TileJudgement job;
        job.shape = &m_shape;
        job.correlation = m_work.data();
        job.candidateFactor = 1e30F;
        job.sumsStride = m_picture.sumsStride();
        job.needleWidth = m_needle.size().width();
        job.needleHeight = m_needle.size().height();
        job.bandHeight = 65535 / job.needleWidth;
        job.candidatesStride = bits.stride();
        job.tiles[0] = {columns, rows, m_picture.sums(), bits.row(0), bits.row(0), nullptr};
        m_kernels.judge(job);
        double worst = 0;
        for (int y = 0; y < rows; y += 3) {
            for (int x = 0; x < columns; x += 5) {
                const ExactSums sums = m_kernels.exactSums(
                    m_picture.pixels(Green, x, y), m_picture.stride(), m_needle.exact(Green));
                const long block = x / m_kernels.lanes * static_cast<long>(m_shape.height) + y;
                const float found =
                    m_work.data()[block * 2 * m_kernels.lanes + x % m_kernels.lanes];
                const double exact =
                    static_cast<double>(sums.product) - double(valueMiddle) * m_needle.sum(Green);
                worst = std::max(worst, std::abs(found - exact));
            }
        }
        return worst;
    }

    const TileKernels& m_kernels = tileKernels();
    const SearchPicture m_picture;
    const SearchNeedle m_needle;
    const TileShape m_shape;
    Scratch<float> m_work;
    Scratch<float> m_line;
    Scratch<float> m_spectrum;
};

// The search trusts bounds of the transforms' errors; here is how far they stay below them.
TEST_P(Kernels, ErrorsOfTransformsStayFarBelowTheBound) {
    Random random(7);
    double worst = 0;
    double worstKept = 0;
    for (const auto& [width, height] :
         {std::pair(32, 64), std::pair(160, 96), std::pair(256, 320), std::pair(1280, 768)}) {
        for (const Look look : {Look::Noise, Look::Widgets, Look::Dark, Look::Contrast}) {
            const QImage image = Pictures::picture(QSize(width, height), look, random);
            TransformErrors errors(image, QSize(width / 3, height / 3));
            worst = std::max(worst, errors.ofSinglePrecision());
            worstKept = std::max(worstKept, errors.ofKeptRows());
        }
    }
    EXPECT_LT(worst, 4);  // of the 8 that the search allows for
    EXPECT_LT(worstKept, 0.5);
    EXPECT_GT(worstKept, 0.001);  // or else nothing was rounded
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
    const QSize size(400, 300);
    // The largest numbers that a transform gives come of plain pictures.
    QImage white(size, QImage::Format_RGB32);
    white.fill(Qt::white);
    QImage black(size, QImage::Format_RGB32);
    black.fill(Qt::black);
    for (const QImage& image : {Pictures::picture(size, Look::Contrast, random),
                                Pictures::picture(size, Look::Widgets, random), white, black}) {
        const SearchPicture picture(image, image.rect());
        const QSize smallest(20, 20);
        const QSize largest(30, 24);
        // Tiles small enough to be several pairs.
        const TileGrid grid(picture.size(), smallest, largest, 64 * 64);
        ASSERT_GT(grid.pairs(), 1);
        const auto kept = std::make_shared<SharedTiles>(picture, grid, true);
        for (const QSize needleSize : {largest, smallest}) {
            const QImage part = image.copy(QRect(QPoint(123, 77), needleSize));
            const SearchNeedle needle(part);
            CorrelationSearch search(picture, needle, kept, 1);
            PositionBitmap shared(search.positions());
            search.markAccepted(ScoreTest::atLeast(0.9), shared.size().height(), shared,
                                [](int) { return true; });
            const PositionBitmap own = accepted({image, part}, 0.9);
            EXPECT_TRUE(shared.test(123, 77));
            for (int y = 0; y < own.size().height(); ++y)
                ASSERT_TRUE(
                    std::equal(own.words(y), own.words(y) + own.wordsPerRow(), shared.words(y)))
                    << y;
        }
    }
}

// Kept spectra are rounded, and no position may be lost by that: each is found with its own score
// as the threshold.
TEST(CorrelationSearch, KeptSpectraLoseNothing) {
    Random random(9);
    for (const Look look : {Look::Contrast, Look::Widgets, Look::Dark, Look::Noise}) {
        // In grey the first channel alone could reject what all channels accept.
        const QImage image = Pictures::picture(QSize(300, 200), look, random)
                                 .convertToFormat(QImage::Format_Grayscale8)
                                 .convertToFormat(QImage::Format_RGB32);
        const SearchPicture picture(image, image.rect());
        const SearchNeedle needle(image.copy(40, 30, 30, 24));
        const TileGrid grid(picture.size(), needle.size(), needle.size(), 64 * 64);
        const auto kept = std::make_shared<SharedTiles>(picture, grid, true);
        CorrelationSearch search(picture, needle, kept, 1);
        for (int y = 5; y < search.positions().height(); y += 31) {
            for (int x = 3; x < search.positions().width(); x += 29) {
                const double score = exactScore(picture, needle, x, y);
                PositionBitmap found(search.positions());
                search.markAccepted(ScoreTest::atLeast(score), found.size().height(), found,
                                    [](int) { return true; });
                EXPECT_TRUE(found.test(x, y)) << x << ", " << y << ": " << score;
            }
        }
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
