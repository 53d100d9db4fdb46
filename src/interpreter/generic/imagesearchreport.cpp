#include "interpreter/generic/imagesearchreport.h"

#include <cmath>
#include <exception>
#include <memory>

#include "interpreter/generic/searchreport.h"
#include "vision/search/imagelookup.h"
#include "vision/search/placescore.h"

namespace Tamrix {

using Vision::ImageLookupImplementation;
using Vision::ImageLookupOptions;

namespace {

/// Of more files, the first ones tell enough.
constexpr int mostNeedles = 5;
/// In percent. Below, a place has nothing to do with the image, and no options help.
constexpr double leastUsefulScore = 80;

QString needleText(const ImageSearchRecord& search, int index) {
    const QSize size = search.needles.at(index).size();
    return QStringLiteral("Image '%1': %2, %3x%4 pixels")
        .arg(search.imageName, search.files.value(index), QString::number(size.width()),
             QString::number(size.height()));
}

QString searchText(const ImageLookupOptions& options) {
    if (!options.getTolerant())
        return QStringLiteral("Search: pixel by pixel");
    QString text = QStringLiteral("Search: with tolerance, threshold %1")
                       .arg(Vision::unparseDouble(options.getThreshold()));
    if (options.getMultiscale())
        text += QStringLiteral(", sizes from %1 to %2 percent")
                    .arg(Vision::unparseDouble(options.getMinScaleFactor()),
                         Vision::unparseDouble(options.getMaxScaleFactor()));
    return text;
}

/// What is told of every search, and the pictures of the image.
ResultDetails describeSearch(const ImageSearchRecord& search) {
    ResultDetails details;
    const int count = std::min<int>(search.needles.size(), mostNeedles);
    QStringList lines;
    for (int index = 0; index < count; ++index) {
        lines += needleText(search, index);
        details.pictures.push_back({QStringLiteral("Image '%1'").arg(search.files.value(index)),
                                    QStringLiteral("image"), search.needles.at(index)});
    }
    if (search.needles.size() > count)
        lines += QStringLiteral("and %1 more").arg(search.needles.size() - count);
    lines += searchText(search.options);
    lines += searchedRegionText(search.area);
    details.explanation = lines.join('\n');
    return details;
}

/// The options that would have found a place of this score, as far as it makes sense to use them.
QString remedyText(const ImageLookupOptions& options, double score) {
    // Rounded down, so that the place itself passes.
    const double threshold = std::floor(score * 10) / 10;
    if (score < leastUsefulScore || (options.getTolerant() && options.getThreshold() <= threshold))
        return {};
    ImageLookupOptions remedy;
    remedy.setTolerant(true);
    remedy.setThreshold(threshold);
    return QStringLiteral("; found with %1").arg(remedy.description());
}

struct Similar {
    QRect place;
    double score = 0;
};

/// The place that is most like the image; a null rectangle when nothing of its size fits.
Similar mostSimilar(const ImageSearchRecord& search) {
    const std::unique_ptr<ImageLookupImplementation> engine(ImageLookupImplementation::get());
    const std::unique_ptr<ImageLookupImplementation::Cache> cache(
        engine->newCache(search.needles, true));
    ImageLookupOptions options;
    options.setTolerant(true);
    options.setMultiscale(search.options.getTolerant() && search.options.getMultiscale());
    options.setMinScaleFactor(search.options.getMinScaleFactor());
    options.setMaxScaleFactor(search.options.getMaxScaleFactor());
    const QImage image = Vision::searchable(search.area.image());
    const QRect place = engine
                            ->bestOccurrences(image, search.area.region, cache.get(), {}, options,
                                              1, Vision::AcceptAnyScore)
                            .second.value(0);
    if (!place.isValid())
        return {};
    return {place, Vision::scorePlace(image, search.needles, place).score};
}

/// The occurrences that there were, when a later one was wanted.
QList<QRect> earlierOccurrences(const ImageSearchRecord& search) {
    if (search.occurrence == 1)
        return {};
    const std::unique_ptr<ImageLookupImplementation> engine(ImageLookupImplementation::get());
    const std::unique_ptr<ImageLookupImplementation::Cache> cache(
        engine->newCache(search.needles, true));
    return engine->allOccurrences(search.area.image(), search.area.region, cache.get(),
                                  search.options, search.occurrence);
}

void describePlaces(ResultDetails& details, const ImageSearchRecord& search) {
    // 1. The image itself was there, but not often enough.
    const QList<QRect> earlier = earlierOccurrences(search);
    if (!earlier.isEmpty()) {
        QStringList places;
        for (const QRect& place : earlier)
            places += searchedPlaceText(place);
        details.explanation += QStringLiteral("\nFound %1 instead of %2 times: %3")
                                   .arg(QString::number(earlier.size()),
                                        QString::number(search.occurrence), places.join(", "));
        addSearchedScreenshot(details, search.area, earlier);
        return;
    }
    // 2. Nothing fits.
    const Similar similar = mostSimilar(search);
    if (!similar.place.isValid()) {
        details.explanation += QStringLiteral("\nNothing of its size fits into the region");
        addSearchedScreenshot(details, search.area, {});
        return;
    }
    // 3. What is most like it.
    const QString score = Vision::unparseDouble(similar.score);
    details.explanation += QStringLiteral("\nMost similar place: %1, score %2%3")
                               .arg(searchedPlaceText(similar.place), score,
                                    remedyText(search.options, similar.score));
    details.pictures.push_back({QStringLiteral("The most similar place, score %1").arg(score),
                                QStringLiteral("similar"),
                                search.area.image().copy(similar.place)});
    addSearchedScreenshot(details, search.area, {similar.place});
}

}  // namespace

ResultDetails describeMissingImage(const ImageSearchRecord& search) {
    ResultDetails details = describeSearch(search);
    try {
        describePlaces(details, search);
    } catch (const std::exception& error) {
        details.explanation += '\n' + QString::fromUtf8(error.what());
        addSearchedScreenshot(details, search.area, {});
    }
    return details;
}

ResultDetails describePresentImage(const ImageSearchRecord& search, const QRect& place) {
    ResultDetails details = describeSearch(search);
    details.explanation += QStringLiteral("\nFound at %1").arg(searchedPlaceText(place));
    addSearchedScreenshot(details, search.area, {place});
    return details;
}

}  // namespace Tamrix
