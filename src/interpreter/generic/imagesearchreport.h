#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "interpreter/generic/searchregionsource.h"
#include "platform/testresult/resultdetails.h"
#include "vision/search/imagelookupoptions.h"

namespace Tamrix {

/// A search for an image, with what it saw last.
struct TAMRIX_EXPORT ImageSearchRecord {
    QString imageName;
    /// What may be the image, and the names of the files in the same order.
    QList<QImage> needles;
    QStringList files;
    Vision::ImageLookupOptions options;
    int occurrence = 1;
    Vision::SearchArea area;
};

// What a report shows of a failed search. Searches once more, so that it is asked for only when a
// report wants it. Throws nothing.

/// The image was not there: where it nearly was, and how much so.
TAMRIX_EXPORT ResultDetails describeMissingImage(const ImageSearchRecord& search);
/// The image was there, though it should not have been.
TAMRIX_EXPORT ResultDetails describePresentImage(const ImageSearchRecord& search,
                                                 const QRect& place);

}  // namespace Tamrix
