#pragma once

#include <QImage>
#include <QMutex>
#include <QRect>
#include <QSize>
#include <QVector>
#include <memory>

#include "vision/search/fastcorrelation/searchpicture.h"
#include "vision/search/kissfftbuffer.h"
#include "vision/search/parallel.h"
#include "vision/search/searchregion.h"

namespace Tamrix::Vision {

/// A number for each colour.
template <typename T>
struct PerChannel {
    T r = T();
    T g = T();
    T b = T();
};

namespace BasicImageLookup {

/// An image to search and what is derived from it, each when first needed and once, for all needles
/// and scales of one search. May be used by several threads. Ends when its tasks have ended.
class Haystack {
public:
    /// The image is converted if it must be, see searchable().
    Haystack(const QImage& image, const SearchRegion& region);
    ~Haystack();
    Haystack(const Haystack&) = delete;
    Haystack& operator=(const Haystack&) = delete;

    const QImage& image() const { return m_image; }
    const SearchRegion& region() const { return m_region; }
    /// What encloses the region, as far as it lies within the image.
    const QRect& boundingBox() const { return m_boundingBox; }
    /// The positions at which a needle of this size lies within the bounding box; may be empty.
    QRect positionsOf(QSize needle) const;
    /// Whether the region allows an occurrence there.
    bool allows(const QRect& occurrence) const {
        return m_region.rectangles().size() == 1 || m_region.contains(occurrence);
    }

    // Of the reference search. The first caller starts the task.

    /// The size of all transforms. Positions at which a correlation of it would wrap around are
    /// never looked at, so there is no margin.
    QSize fftSize() const { return m_fftSize; }
    Future<KissFFTBuffer<FourLaneComplex>> imageFFT();
    Future<KissFFTBuffer<FourLaneComplex>> imageSquaredFFT();
    /// Sums of (channel + 1) squared left of and above each pixel corner, boundingBox().width() + 1
    /// in a row.
    Future<QVector<PerChannel<double>>> cumulativeSums();

    // Of the fast search.

    /// The image within the bounding box, which must not be empty.
    const SearchPicture& picture();

private:
    static KissFFTBuffer<FourLaneComplex> getImageFFT(const QImage& image, QSize size);
    static KissFFTBuffer<FourLaneComplex> getImageSquaredFFT(const QImage& image, QSize size);
    static QVector<PerChannel<double>> getCumulativeSums(const QImage& image);

    const QImage m_image;
    const SearchRegion m_region;
    const QRect m_boundingBox;
    const QSize m_fftSize;
    /// Guards the starting of tasks and the making of the picture.
    QMutex m_mutex;
    bool m_imageFFTStarted = false;
    bool m_imageSquaredFFTStarted = false;
    bool m_cumulativeSumsStarted = false;
    Future<KissFFTBuffer<FourLaneComplex>> m_imageFFTFuture;
    Future<KissFFTBuffer<FourLaneComplex>> m_imageSquaredFFTFuture;
    Future<QVector<PerChannel<double>>> m_cumulativeSumsFuture;
    std::unique_ptr<SearchPicture> m_picture;
};

}  // namespace BasicImageLookup
}  // namespace Tamrix::Vision
