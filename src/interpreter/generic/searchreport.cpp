#include "interpreter/generic/searchreport.h"

#include "vision/search/frame.h"

namespace Tamrix {

QString searchedPlaceText(const QRect& place) {
    return Vision::SearchRegion(place).description();
}

QString searchedRegionText(const Vision::SearchArea& area) {
    const QSize size = area.image().size();
    const QString region =
        area.region.isEmpty() ? QStringLiteral("nothing") : area.region.description();
    return QStringLiteral("Region: %1 of a screenshot of %2x%3 pixels")
        .arg(region, QString::number(size.width()), QString::number(size.height()));
}

void addSearchedScreenshot(ResultDetails& details, const Vision::SearchArea& area,
                           const QList<QRect>& places) {
    QImage image = area.image().convertToFormat(QImage::Format_RGB32);
    const QList<QRect>& region = area.region.rectangles();
    for (const QRect& rectangle : region) {
        // A little inside, where it can be seen at the edges of the picture, too.
        if (rectangle != image.rect())
            Vision::drawFrame(&image, rectangle.adjusted(3, 3, -3, -3), Qt::blue);
    }
    for (const QRect& place : places)
        Vision::drawFrame(&image, place);
    QString title = QStringLiteral("What was searched");
    if (region.size() != 1 || region.first() != image.rect())
        title += QStringLiteral(", the region in blue");
    details.pictures.push_back({title, QStringLiteral("searched"), image});
}

}  // namespace Tamrix
