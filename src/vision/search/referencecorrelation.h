#pragma once

#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <QVector>

#include "vision/search/basicimagelookup.h"
#include "vision/search/haystack.h"
#include "vision/search/kissfftbuffer.h"

/// The reference of the fast correlation search: definitions step by step. It is there
/// for diagnosis, see SearchMethod.
namespace Tamrix::Vision::BasicImageLookup {

/// The correlation of one needle at one size with a haystack, for needles with holes (Transparency)
/// or without. With `oneShot` the needle's transform is not kept in it. The needle must fit in the
/// haystack's bounding box. The constructor throws what the haystack's tasks throw, and
/// TooMuchTransparency for a needle without visible pixels.
template <bool Transparency>
class ReferenceCorrelation;

template <>
class ReferenceCorrelation<false> {
public:
    ReferenceCorrelation(Haystack& haystack, Resize& resize, bool oneShot);
    /// The score of the position, which is one of Haystack::positionsOf(), from 0 to 1.
    double matchQuality(int x, int y) const;

private:
    std::array<float, 4> m_scale;
    KissFFTBuffer<FourLaneComplex> m_correlation;
    QVector<PerChannel<double>> m_sums;
    int m_sumsStride;
    int m_fftWidth;
    QPoint m_origin;
    QSize m_needleSize;
};

template <>
class ReferenceCorrelation<true> {
public:
    ReferenceCorrelation(Haystack& haystack, Resize& resize, bool oneShot);
    double matchQuality(int x, int y) const;

private:
    std::array<float, 4> m_scale;
    KissFFTBuffer<FourLaneComplex> m_correlation;
    KissFFTBuffer<FourLaneComplex> m_energy;
    int m_fftWidth;
    QPoint m_origin;
};

/// How many occurrences lie before the position, and whether there is one at it. Neighbours of an
/// occurrence at the position don't count.
template <bool Transparency>
QPair<int, bool> normCorrOccurrenceAtImpl(Haystack& haystack, Resize& resize, double threshold,
                                          QPoint position, bool oneShot);

/// The occurrences in the order of text, at most limit + 1.
template <bool Transparency>
QList<QRect> normCorrAllOccurrencesImpl(Haystack& haystack, Resize& resize, double threshold,
                                        int limit, bool oneShot);

/// At most `limit` occurrences with the highest score above `start`, where all scores from `cap` on
/// count as equal.
template <bool Transparency>
QList<QPair<double, QRect>> normCorrBestOccurrencesImpl(Haystack& haystack, Resize& resize,
                                                        double start, double cap, int limit,
                                                        bool oneShot);

/// Scores of best searches are truncated to such steps, so that equal pictures tie.
inline constexpr double scoreStep = 0.00001;
/// A score of exactly 1 becomes 0.99999, as the step is no binary fraction: this is meant.
double truncatedScore(double score);

}  // namespace Tamrix::Vision::BasicImageLookup
