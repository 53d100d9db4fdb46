#include "interpreter/generic/searchregionsource.h"

#include <QStringList>
#include <stdexcept>

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/generic/desktopscreenshot.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/objectclass.h"
#include "platform/objectmodel/valueobject.h"
#include "shared/settings/filters.h"

namespace Tamrix::Vision {

namespace {

[[noreturn]] void failSearch(const QString& text) {
    throw std::runtime_error(text.toStdString());
}

/// The rectangle, in native coordinates, as far as it is in the image.
QList<QRect> visiblePart(const QRect& rectangle, const Screenshot& screenshot) {
    if (!rectangle.isValid())
        return {};
    const QRect part = screenshot.nativeToImage(rectangle) & screenshot.image().rect();
    return part.isEmpty() ? QList<QRect>() : QList<QRect>{part};
}

SearchRegion regionOf(RunnerInterface* runner, const SharedPtr<Object>& object,
                      const Screenshot& screenshot) {
    return SearchRegion(visiblePart(getSearchRect(runner, object), screenshot));
}

const FilterList& visionFilters() {
    static const FilterList s_filters = [] {
        FilterList filters;
        loadVisionFilters(filters);
        return filters;
    }();
    return s_filters;
}

/// The kind for which the user's filters of searches are switched on.
constexpr int visionKind = 0;

bool isFilteredOut(const Object& object) {
    return filterListMatch(visionFilters(), object.objectName() + ':' + object.className(),
                           visionKind);
}

}  // namespace

bool isScreenRectangle(const SharedPtr<Object>& object) {
    const Class* const rectangleClass = objectModelScreenRectangleClass();
    return object && rectangleClass && object->isA(rectangleClass);
}

QRect getSearchRect(RunnerInterface* runner, const SharedPtr<Object>& object) {
    if (isScreenRectangle(object))
        return unwrapRemoteScreenRectangleAsQRect(object);
    const SharedPtr<Object> place = runner->objectGlobalBounds(object);
    if (!place)
        failSearch(Inspector::self()->lastError());
    return unwrapRemoteScreenRectangleAsQRect(place);
}

SearchRegionSource::~SearchRegionSource() = default;

// A picture

SearchRegion ScreenshotRegionSource::getSearchRegion(RunnerInterface*, Screenshot) {
    return SearchRegion(m_screenshot.image().rect());
}

SearchArea ScreenshotRegionSource::getSearchArea(RunnerInterface* runner) {
    return {m_screenshot, getSearchRegion(runner, m_screenshot)};
}

// The desktop

SearchArea DynamicSearchRegionSource::getSearchArea(RunnerInterface* runner) {
    // 1. The application is asked for a picture of its desktop.
    const Screenshot screenshot = takeDesktopScreenshot();
    // 2. Without one, the search fails.
    if (screenshot.image().isNull()) {
        const QString reason = Inspector::self()->lastError();
        failSearch(QStringLiteral("Could not take desktop screenshot") +
                   (reason.isEmpty() ? QStringLiteral(" (Perhaps AUT is not started or has "
                                                      "quit/crashed unexpectedly?)")
                                     : ": " + reason));
    }
    // 3. The region in it.
    return {screenshot, getSearchRegion(runner, screenshot)};
}

SearchRegion EntireDesktopSource::getSearchRegion(RunnerInterface*, Screenshot screenshot) {
    return SearchRegion(screenshot.image().rect());
}

SearchRegion TopLevelObjectsSource::getSearchRegion(RunnerInterface* runner,
                                                    Screenshot screenshot) {
    QList<QRect> rectangles;
    for (const SharedPtr<Object>& object : Inspector::self()->topLevelObjects()) {
        if (!object || isFilteredOut(*object))
            continue;
        // What has no place is not on the screen.
        if (const SharedPtr<Object> place = runner->objectGlobalBounds(object))
            rectangles += visiblePart(unwrapRemoteScreenRectangleAsQRect(place), screenshot);
    }
    return SearchRegion(rectangles);
}

SearchRegion ScreenRectangleSource::getSearchRegion(RunnerInterface*, Screenshot screenshot) {
    return SearchRegion(visiblePart(m_rectangle, screenshot));
}

SearchRegion ObjectNameSource::getSearchRegion(RunnerInterface* runner, Screenshot screenshot) {
    const SharedPtr<Object> object = Inspector::self()->findObject(m_name);
    if (!object)
        failSearch(Inspector::self()->lastError());
    return regionOf(runner, object, screenshot);
}

SearchRegion ObjectReferenceSource::getSearchRegion(RunnerInterface* runner,
                                                    Screenshot screenshot) {
    return regionOf(runner, m_object, screenshot);
}

QString ObjectReferenceSource::composeObjectName(const SharedPtr<Object>& object) {
    QStringList names;
    for (SharedPtr<Object> each = object; each; each = each->parent())
        names.prepend(each->objectName());
    return names.join('.');
}

SearchRegion MultiReferenceSource::getSearchRegion(RunnerInterface* runner, Screenshot screenshot) {
    QList<QRect> rectangles;
    for (const QSharedPointer<SearchRegionSource>& member : m_members)
        rectangles += member->getSearchRegion(runner, screenshot).rectangles();
    return SearchRegion(rectangles);
}

}  // namespace Tamrix::Vision
