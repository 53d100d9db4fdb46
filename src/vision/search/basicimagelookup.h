#pragma once

#include <QImage>
#include <QList>
#include <QMap>
#include <QPair>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <array>

#include "base/export.h"
#include "vision/search/imagelookup.h"
#include "vision/search/kissfftbuffer.h"

/// The search engine behind ImageLookupImplementation::get().
namespace Tamrix::Vision::BasicImageLookup {

/// A needle at one size, with what searches need to know of its pixels. To the correlation a pixel
/// is visible when its alpha is above 127.
struct TAMRIX_EXPORT Resize {
    /// Takes any image, see searchable().
    explicit Resize(const QImage& image);
    Resize(const Resize&) = delete;
    Resize& operator=(const Resize&) = delete;

    /// For the lanes none, blue, green, red: the root of the sum of (channel + 1) squared over the
    /// pixels that are visible to the correlation.
    alignas(16) std::array<float, 4> channelNorms = {};
    /// Some alpha is above 0.
    bool hasVisiblePixels = false;
    /// Some alpha is below 255.
    bool hasTranslucentPixels = false;
    /// Some alpha is 127 or less.
    bool hasHoles = false;
    QImage image;
    /// Size of `fft`, (-1, -1) while there is none.
    QSize fftSize{-1, -1};
    /// The image's transform, kept for further searches.
    KissFFTBuffer<FourLaneComplex> fft;
};

/// A needle as the caller gave it.
struct TAMRIX_EXPORT Needle : Resize {
    explicit Needle(const QImage& needleImage) : Resize(needleImage) {}
    ~Needle();
    Needle(const Needle&) = delete;
    Needle& operator=(const Needle&) = delete;

    /// This needle itself and its resized copies for all widths from minFactor to maxFactor times
    /// its own in steps of 4, from the widest to the narrowest. The copies stay with the needle.
    /// Throws a std::runtime_error when minFactor is above maxFactor.
    QList<Resize*> getResizes(double minFactor, double maxFactor);

    /// Resized copies by width, owned.
    QMap<int, Resize*> resizes;
    /// Where the latest comparison pixel by pixel failed.
    QPoint lastMismatch;
};

/// One needle for each image, in the order of the images.
class TAMRIX_EXPORT BasicCache : public ImageLookupImplementation::Cache {
public:
    BasicCache(const QList<QImage>& images, bool oneShot);
    ~BasicCache() override;
    BasicCache(const BasicCache&) = delete;
    BasicCache& operator=(const BasicCache&) = delete;

    /// Owned.
    QList<Needle*> needles;
    /// Whether no transform is to be kept.
    bool oneShot;
};

class TAMRIX_EXPORT Implementation : public ImageLookupImplementation {
public:
    Cache* newCache(const QList<QImage>& needles, bool oneShot) override;
    QRect findMatch(const QImage& image, const SearchRegion& region, Cache* cache,
                    const ImageLookupOptions& options, int occurrence) override;
    int occurrenceAt(const QImage& image, const SearchRegion& region, Cache* cache,
                     const ImageLookupOptions& options, const QPoint& position) override;
    QList<QRect> allOccurrences(const QImage& image, const SearchRegion& region, Cache* cache,
                                const ImageLookupOptions& options, int limit) override;
    QPair<ImageLookupOptions, QList<QRect>> bestOccurrences(
        const QImage& image, const SearchRegion& region, Cache* cache,
        const ImageLookupOptions& defaults, const ImageLookupOptions& options, int limit,
        BestOccurrenceFlags flags) override;
};

// The search pixel by pixel. The haystack must be searchable(); a place where the needle would
// leave the haystack is no occurrence, whatever the region says.

/// Whether a haystack pixel can be the needle pixel blended onto some background. The haystack's
/// alpha is not looked at.
template <bool Transparency>
bool strictCompare(unsigned needlePixel, unsigned haystackPixel);
template <>
TAMRIX_EXPORT bool strictCompare<true>(unsigned needlePixel, unsigned haystackPixel);

/// Whether the needle is at the position, at which it must lie within the image. The template's
/// argument is the needle's hasTranslucentPixels; without such pixels whole words are compared,
/// alpha included. Remembers where the comparison failed, and looks there first.
template <bool Transparency>
bool strictMatches(const QImage& image, Needle& needle, const QPoint& position);
extern template bool strictMatches<false>(const QImage&, Needle&, const QPoint&);
extern template bool strictMatches<true>(const QImage&, Needle&, const QPoint&);

/// How many occurrences lie in front of the position, and whether the needle is at the position.
TAMRIX_EXPORT QPair<int, bool> strictOccurrenceAt(const QImage& image, const SearchRegion& region,
                                                  Needle& needle, const QPoint& position);

/// The occurrences in the order of text. The first `limit` are what counts: once there are so many,
/// each later row can still add one. Throws TooMuchTransparency for a needle without a visible
/// pixel, unless it is larger than the region anyway.
TAMRIX_EXPORT QList<QRect> strictAllOccurrences(const QImage& image, const SearchRegion& region,
                                                Needle& needle, int limit);

}  // namespace Tamrix::Vision::BasicImageLookup
