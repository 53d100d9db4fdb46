#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include "interpreter/generic/searchregionsource.h"
#include "platform/testresult/resultdetails.h"

namespace Tamrix {

// What reports show of any search on the screen that failed.

/// A place in the screenshot, as people read it.
QString searchedPlaceText(const QRect& place);
/// "Region: ... of a screenshot of ... pixels".
QString searchedRegionText(const Vision::SearchArea& area);
/// Adds the screenshot with the region and the places, as far as there are some, in frames.
void addSearchedScreenshot(ResultDetails& details, const Vision::SearchArea& area,
                           const QList<QRect>& places);

}  // namespace Tamrix
