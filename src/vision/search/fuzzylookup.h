#pragma once

#include <QList>
#include <QPair>
#include <QPoint>
#include <QRect>

#include "vision/search/basicimagelookup.h"
#include "vision/search/haystack.h"
#include "vision/search/imagelookupoptions.h"

/// The search by correlation for one needle at all sizes that the options ask for. Throws
/// TooMuchTransparency when the needle itself has no visible pixel; a resized copy without one is
/// left out.
namespace Tamrix::Vision::BasicImageLookup {

/// No score needs to be more perfect than this.
inline constexpr double highestThreshold = 0.99999;

/// How many occurrences lie before the position, and whether there is one at it.
QPair<int, bool> fuzzyOccurrenceAt(Haystack& haystack, Needle& needle,
                                   const ImageLookupOptions& options, QPoint position,
                                   bool oneShot);

/// The occurrences in the order of text; all of the first `limit`, and maybe some more.
QList<QRect> fuzzyAllOccurrences(Haystack& haystack, Needle& needle,
                                 const ImageLookupOptions& options, int limit, bool oneShot);

/// At most `limit` occurrences with the highest score, and the options that find them; a null
/// record when there is none.
QPair<ImageLookupOptions, QList<QRect>> fuzzyBestOccurrences(Haystack& haystack, Needle& needle,
                                                             const ImageLookupOptions& defaults,
                                                             const ImageLookupOptions& options,
                                                             int limit, bool oneShot,
                                                             BestOccurrenceFlags flags);

}  // namespace Tamrix::Vision::BasicImageLookup
