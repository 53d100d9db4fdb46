#include "vision/search/referencecorrelation.h"

#include <algorithm>
#include <cmath>

#include "vision/search/occurrences.h"
#include "vision/search/referencetransform.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

constexpr int firstColour = 1;
constexpr int lanes = 4;

using Transform = KissFFTBuffer<FourLaneComplex> (*)(const QImage&, QSize);

// The correlation with the image's spectrum; the needle's own is kept in the needle or used up.
KissFFTBuffer<FourLaneComplex> correlationOf(const KissFFTBuffer<FourLaneComplex>& image,
                                             KissFFTBuffer<FourLaneComplex>& needle, QSize size,
                                             bool oneShot) {
    return oneShot ? crossCorrelationReuse(image, needle, size)
                   : crossCorrelation(image, needle, size);
}

KissFFTBuffer<FourLaneComplex> needleFFT(Resize& resize, QSize size, bool oneShot,
                                         Transform transform) {
    if (oneShot)
        return transform(resize.image, size);
    if (resize.fftSize != size) {
        resize.fft = transform(resize.image, size);
        resize.fftSize = size;
    }
    return resize.fft;
}

double lowestColour(const std::array<float, lanes>& scores) {
    return static_cast<double>(*std::min_element(scores.begin() + firstColour, scores.end()));
}

}  // namespace

ReferenceCorrelation<false>::ReferenceCorrelation(Haystack& haystack, Resize& resize, bool oneShot)
    : m_sumsStride(haystack.boundingBox().width() + 1),
      m_fftWidth(haystack.fftSize().width()),
      m_origin(haystack.boundingBox().topLeft()),
      m_needleSize(resize.image.size()) {
    // 1. The correlation is too large by the number of its elements.
    const QSize size = haystack.fftSize();
    const auto elements = static_cast<float>(std::size_t(size.width()) * size.height());
    for (int lane = 0; lane < lanes; ++lane)
        m_scale[lane] = resize.channelNorms[lane] * elements;
    // 2. Start what is needed of the haystack.
    const auto image = haystack.imageFFT();
    const auto sums = haystack.cumulativeSums();
    // 3. The needle's transform.
    auto needle = needleFFT(resize, size, oneShot, compute_image_fft);
    // 4. Wait for the haystack.
    m_correlation = correlationOf(image.result(), needle, size, oneShot);
    m_sums = sums.result();
}

double ReferenceCorrelation<false>::matchQuality(int x, int y) const {
    const int dx = x - m_origin.x();
    const int dy = y - m_origin.y();
    const FourLanes& correlation = valuesOf(m_correlation)[std::ptrdiff_t(m_fftWidth) * dy + dx];
    const PerChannel<double>* const a = m_sums.constData() + std::ptrdiff_t(m_sumsStride) * dy + dx;
    const PerChannel<double>* const b = a + m_needleSize.width();
    const PerChannel<double>* const c = a + std::ptrdiff_t(m_sumsStride) * m_needleSize.height();
    const PerChannel<double>* const d = c + m_needleSize.width();
    const std::array<double, lanes> energy = {0, a->b + d->b - c->b - b->b,
                                              a->g + d->g - c->g - b->g, a->r + d->r - c->r - b->r};
    std::array<float, lanes> scores = {};
    for (int lane = firstColour; lane < lanes; ++lane) {
        const float norm = static_cast<float>(std::sqrt(energy[lane])) * m_scale[lane];
        scores[lane] = correlation.values[lane] / norm;
    }
    return lowestColour(scores);
}

ReferenceCorrelation<true>::ReferenceCorrelation(Haystack& haystack, Resize& resize, bool oneShot)
    : m_fftWidth(haystack.fftSize().width()), m_origin(haystack.boundingBox().topLeft()) {
    // 1. Both maps are too large by the number of elements, one of them under a root.
    const QSize size = haystack.fftSize();
    const auto elements =
        static_cast<float>(std::sqrt(static_cast<double>(size.width()) * size.height()));
    for (int lane = 0; lane < lanes; ++lane)
        m_scale[lane] = resize.channelNorms[lane] * elements;
    // 2. Something must be visible.
    for (int lane = firstColour; lane < lanes; ++lane) {
        if (resize.channelNorms[lane] == 0)
            throw TooMuchTransparency(resize.image);
    }
    // 3. Start what is needed of the haystack; the needle's transform.
    const auto squares = haystack.imageSquaredFFT();
    const auto image = haystack.imageFFT();
    auto needle = needleFFT(resize, size, oneShot, compute_image_fft_alpha);
    // 4. The sums of squares under the mask.
    m_energy = maskCorrelation(squares.result(), needle, size);
    // 5. The correlation, which may use the needle's transform up.
    m_correlation = correlationOf(image.result(), needle, size, oneShot);
}

double ReferenceCorrelation<true>::matchQuality(int x, int y) const {
    const std::ptrdiff_t at = std::ptrdiff_t(m_fftWidth) * (y - m_origin.y()) + (x - m_origin.x());
    const FourLanes& correlation = valuesOf(m_correlation)[at];
    const FourLanes norms = Vision::sqrt(valuesOf(m_energy)[at]);
    std::array<float, lanes> scores = {};
    for (int lane = firstColour; lane < lanes; ++lane)
        scores[lane] = correlation.values[lane] / (norms.values[lane] * m_scale[lane]);
    return lowestColour(scores);
}

namespace {

// Calls visit(x, y, rect) with each position from the top to row `lastRow`, in this one up to but
// not including `endColumn`, until it returns false.
template <typename Visit>
void forEachPosition(const Haystack& haystack, const QRect& positions, QSize needle, int lastRow,
                     int endColumn, Visit visit) {
    for (int y = positions.top(); y <= lastRow; ++y) {
        const int end = y < lastRow ? positions.right() + 1 : endColumn;
        for (int x = positions.left(); x < end; ++x) {
            const QRect rect(QPoint(x, y), needle);
            if (haystack.allows(rect) && !visit(x, y, rect))
                return;
        }
    }
}

}  // namespace

template <bool Transparency>
QPair<int, bool> normCorrOccurrenceAtImpl(Haystack& haystack, Resize& resize, double threshold,
                                          QPoint position, bool oneShot) {
    const QSize size = resize.image.size();
    const QRect positions = haystack.positionsOf(size);
    if (!positions.contains(position))
        return {0, false};
    const ReferenceCorrelation<Transparency> matcher(haystack, resize, oneShot);
    const bool isFound = matcher.matchQuality(position.x(), position.y()) >= threshold;
    QList<QRect> occurrences;
    // First, so that its neighbours are not taken for earlier occurrences.
    if (isFound)
        occurrences.append({position, size});
    forEachPosition(
        haystack, positions, size, position.y(), position.x(),
        [&](int x, int y, const QRect& rect) {
            if (matcher.matchQuality(x, y) >= threshold && !hasOccurrence(occurrences, rect))
                occurrences.append(rect);
            return true;
        });
    return {occurrences.size() - (isFound ? 1 : 0), isFound};
}

template <bool Transparency>
QList<QRect> normCorrAllOccurrencesImpl(Haystack& haystack, Resize& resize, double threshold,
                                        int limit, bool oneShot) {
    const QSize size = resize.image.size();
    const QRect positions = haystack.positionsOf(size);
    if (positions.isEmpty())
        return {};
    const ReferenceCorrelation<Transparency> matcher(haystack, resize, oneShot);
    QList<QRect> occurrences;
    forEachPosition(
        haystack, positions, size, positions.bottom(), positions.right() + 1,
        [&](int x, int y, const QRect& rect) {
            if (matcher.matchQuality(x, y) >= threshold && !hasOccurrence(occurrences, rect))
                occurrences.append(rect);
            return occurrences.size() <= limit;
        });
    return occurrences;
}

template <bool Transparency>
QList<QPair<double, QRect>> normCorrBestOccurrencesImpl(Haystack& haystack, Resize& resize,
                                                        double start, double cap, int limit,
                                                        bool oneShot) {
    const QSize size = resize.image.size();
    const QRect positions = haystack.positionsOf(size);
    if (positions.isEmpty())
        return {};
    const ReferenceCorrelation<Transparency> matcher(haystack, resize, oneShot);
    QList<QPair<double, QRect>> best;
    double bar = start;
    forEachPosition(haystack, positions, size, positions.bottom(), positions.right() + 1,
                    [&](int x, int y, const QRect& rect) {
                        const double score = truncatedScore(matcher.matchQuality(x, y));
                        if (score > bar && cap > bar) {
                            best.clear();
                            bar = std::min(score, cap);
                        }
                        if (score >= bar && best.size() < limit && !hasOccurrence(best, rect))
                            best.append({score, rect});
                        return true;
                    });
    return best;
}

template QPair<int, bool> normCorrOccurrenceAtImpl<false>(Haystack&, Resize&, double, QPoint, bool);
template QPair<int, bool> normCorrOccurrenceAtImpl<true>(Haystack&, Resize&, double, QPoint, bool);
template QList<QRect> normCorrAllOccurrencesImpl<false>(Haystack&, Resize&, double, int, bool);
template QList<QRect> normCorrAllOccurrencesImpl<true>(Haystack&, Resize&, double, int, bool);
template QList<QPair<double, QRect>> normCorrBestOccurrencesImpl<false>(Haystack&, Resize&, double,
                                                                        double, int, bool);
template QList<QPair<double, QRect>> normCorrBestOccurrencesImpl<true>(Haystack&, Resize&, double,
                                                                       double, int, bool);

double truncatedScore(double score) {
    return score - std::fmod(score, scoreStep);
}

}  // namespace Tamrix::Vision::BasicImageLookup
