#pragma once

#include <QFlags>
#include <QImage>
#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>

#include "base/export.h"
#include "vision/search/imagelookupoptions.h"
#include "vision/search/searchregion.h"

namespace Tamrix::Vision {

enum BestOccurrenceFlag : unsigned {
    /// Any score may raise the bar, not only those near a perfect match.
    AcceptAnyScore = 1
};
Q_DECLARE_FLAGS(BestOccurrenceFlags, BestOccurrenceFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(BestOccurrenceFlags)

/// A search engine: finds a small picture, the needle, in a screenshot, the haystack.
///
/// All coordinates are pixels of the haystack. An occurrence is the rectangle that a needle (or a
/// resized copy of it) covers. Occurrences are ordered like text and numbered from 1, see
/// occurrences.h. One cache must not serve two searches at a time.
///
/// Images are read as words of 32 bits, alpha in the top byte. Haystacks and needles in any other
/// format are converted, once for each call (newCache() or a search); a caller that searches one
/// picture several times does better to hand in the converted one, see Vision::searchable().
///
/// Searches throw TooMuchTransparency for a needle without visible pixels, a std::runtime_error for
/// arguments that can't be served, and UnhandledException for what went wrong in a task.
class TAMRIX_EXPORT ImageLookupImplementation {
public:
    /// The needles of one logical image, which may consist of several files, and what searches
    /// learned about them. The caller owns it and may use it for any number of searches.
    class TAMRIX_EXPORT Cache {
    public:
        virtual ~Cache();
    };

    virtual ~ImageLookupImplementation();

    /// A new engine, which the caller owns.
    static ImageLookupImplementation* get();

    /// A new cache of needles, which the caller owns. With `oneShot` nothing is kept that depends
    /// on the haystack's size.
    virtual Cache* newCache(const QList<QImage>& needles, bool oneShot) = 0;

    /// The occurrence of this number, from 1 on, or the null rectangle when there are less.
    virtual QRect findMatch(const QImage& image, const SearchRegion& region, Cache* cache,
                            const ImageLookupOptions& options, int occurrence) = 0;

    /// The number of the occurrence whose top-left corner is at the position, 0 for none. Throws a
    /// std::runtime_error when the region does not contain the position.
    virtual int occurrenceAt(const QImage& image, const SearchRegion& region, Cache* cache,
                             const ImageLookupOptions& options, const QPoint& position) = 0;

    /// The first `limit` occurrences.
    virtual QList<QRect> allOccurrences(const QImage& image, const SearchRegion& region,
                                        Cache* cache, const ImageLookupOptions& options,
                                        int limit) = 0;

    /// At most `limit` of the places that are most like a needle, and the settings that find them,
    /// as far as they differ from `defaults` and `options` does not fix them.
    virtual QPair<ImageLookupOptions, QList<QRect>> bestOccurrences(
        const QImage& image, const SearchRegion& region, Cache* cache,
        const ImageLookupOptions& defaults, const ImageLookupOptions& options, int limit,
        BestOccurrenceFlags flags) = 0;
};

/// The image in a format of 32 bits with alpha in the top byte: itself when it has such a format
/// already (RGB32, ARGB32 or premultiplied ARGB32), otherwise converted to ARGB32 when it has
/// transparency and to RGB32 when it has none.
TAMRIX_EXPORT QImage searchable(const QImage& image);

/// How searches work inside; results are the same.
enum class SearchMethod {
    Fast,  ///< vectors, tiles, bounds
    Plain  ///< the definitions, step by step: for diagnosis and as the reference of tests
};
/// Fast, unless the environment variable TAMRIX_IMAGE_SEARCH is "plain" when first asked or
/// setSearchMethod() said otherwise. For all threads.
TAMRIX_EXPORT SearchMethod searchMethod();
TAMRIX_EXPORT void setSearchMethod(SearchMethod method);

}  // namespace Tamrix::Vision
