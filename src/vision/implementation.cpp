#include <stdexcept>

#include "vision/basicimagelookup.h"

namespace Tamrix::Vision::BasicImageLookup {

ImageLookupImplementation::Cache* Implementation::newCache(const QList<QImage>& needles,
                                                           bool oneShot) {
    return new BasicCache(needles, oneShot);
}

QRect Implementation::findMatch(const QImage& image, const SearchRegion& region, Cache* cache,
                                const ImageLookupOptions& options, int occurrence) {
    const QList<QRect> occurrences = allOccurrences(image, region, cache, options, occurrence);
    return occurrences.value(occurrence - 1);
}

int Implementation::occurrenceAt(const QImage& /*image*/, const SearchRegion& /*region*/,
                                 Cache* /*cache*/, const ImageLookupOptions& /*options*/,
                                 const QPoint& /*position*/) {
    throw std::runtime_error("The search of several needles is not there yet");
}

QList<QRect> Implementation::allOccurrences(const QImage& /*image*/, const SearchRegion& /*region*/,
                                            Cache* /*cache*/, const ImageLookupOptions& /*options*/,
                                            int /*limit*/) {
    throw std::runtime_error("The search of several needles is not there yet");
}

QPair<ImageLookupOptions, QList<QRect>> Implementation::bestOccurrences(
    const QImage& /*image*/, const SearchRegion& /*region*/, Cache* /*cache*/,
    const ImageLookupOptions& /*defaults*/, const ImageLookupOptions& /*options*/, int /*limit*/,
    BestOccurrenceFlags /*flags*/) {
    throw std::runtime_error("The search of several needles is not there yet");
}

}  // namespace Tamrix::Vision::BasicImageLookup
