#pragma once

#include <json/forwards.h>

#include <QRect>
#include <QSharedPointer>
#include <QString>

#include "base/export.h"
#include "base/shared.h"
#include "interpreter/bridge/scriptargument.h"
#include "platform/objectmodel/object.h"
#include "vision/screenshot/screenshot.h"
#include "vision/search/searchregion.h"

namespace Tamrix {

class RunnerInterface;

namespace Vision {

/// A screenshot with the part of it that is searched, in pixels of the image.
struct TAMRIX_EXPORT SearchArea : Screenshot {
    SearchArea() = default;
    SearchArea(const Screenshot& screenshot, const SearchRegion& searched)
        : Screenshot(screenshot), region(searched) {}

    SearchRegion region;
};

/// Where to search, as a script has said it: it can be asked again and again, and each time gives
/// the place that an object has by then. Script thread only. All failures are a std::runtime_error
/// whose text is for the script.
class TAMRIX_EXPORT SearchRegionSource {
public:
    virtual ~SearchRegionSource();

    /// From the argument of a search: an object, its name, a rectangle, a list of objects and
    /// names, a picture, "all" for all top-level objects; the whole desktop for null.
    static QSharedPointer<SearchRegionSource> fromScriptArgument(
        const SharedPtr<ScriptArgument>& argument);
    /// From what toJson() made. Pictures can't be read back, and objects become names.
    static QSharedPointer<SearchRegionSource> fromJSON(const Json::Value& value);

    /// Where that is in a screenshot. What lies outside of the image is left out, so that a region
    /// may be empty.
    virtual SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) = 0;
    /// Takes a screenshot and finds the region in it.
    virtual SearchArea getSearchArea(RunnerInterface* runner) = 0;
    /// Whether each search sees a new screenshot.
    virtual bool isDynamic() = 0;
    virtual Json::Value toJson() = 0;
};

/// A picture that the script has.
class TAMRIX_EXPORT ScreenshotRegionSource : public SearchRegionSource {
public:
    explicit ScreenshotRegionSource(const Screenshot& screenshot) : m_screenshot(screenshot) {}

    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    SearchArea getSearchArea(RunnerInterface* runner) override;
    bool isDynamic() override { return false; }
    Json::Value toJson() override;

private:
    Screenshot m_screenshot;
};

/// What is searched on the desktop of the current application.
class TAMRIX_EXPORT DynamicSearchRegionSource : public SearchRegionSource {
public:
    SearchArea getSearchArea(RunnerInterface* runner) override;
    bool isDynamic() override { return true; }
};

class TAMRIX_EXPORT EntireDesktopSource : public DynamicSearchRegionSource {
public:
    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;
};

/// All top-level objects but those that the user's filters leave out.
class TAMRIX_EXPORT TopLevelObjectsSource : public DynamicSearchRegionSource {
public:
    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;
};

/// A rectangle in native coordinates.
class TAMRIX_EXPORT ScreenRectangleSource : public DynamicSearchRegionSource {
public:
    explicit ScreenRectangleSource(const QRect& rectangle) : m_rectangle(rectangle) {}

    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;

    /// An object with the integers "x", "y", "width" and "height".
    static QRect rectFromJson(const Json::Value& value);

private:
    QRect m_rectangle;
};

/// An object, found anew each time by its name.
class TAMRIX_EXPORT ObjectNameSource : public DynamicSearchRegionSource {
public:
    explicit ObjectNameSource(const QString& name) : m_name(name) {}

    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;

private:
    QString m_name;
};

class TAMRIX_EXPORT ObjectReferenceSource : public DynamicSearchRegionSource {
public:
    explicit ObjectReferenceSource(const SharedPtr<Object>& object) : m_object(object) {}

    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;

    /// The names of the object and of all objects that it is in, outermost first, separated by
    /// ".".
    static QString composeObjectName(const SharedPtr<Object>& object);

private:
    SharedPtr<Object> m_object;
};

/// Several objects.
class TAMRIX_EXPORT MultiReferenceSource : public DynamicSearchRegionSource {
public:
    explicit MultiReferenceSource(const QList<QSharedPointer<SearchRegionSource>>& members)
        : m_members(members) {}

    SearchRegion getSearchRegion(RunnerInterface* runner, Screenshot screenshot) override;
    Json::Value toJson() override;

    const QList<QSharedPointer<SearchRegionSource>>& members() const { return m_members; }

private:
    QList<QSharedPointer<SearchRegionSource>> m_members;
};

/// Whether the object is of the class of what globalBounds() and searches give.
TAMRIX_EXPORT bool isScreenRectangle(const SharedPtr<Object>& object);
/// Where the object is, in native coordinates: a screen rectangle itself, else what the runner
/// says.
TAMRIX_EXPORT QRect getSearchRect(RunnerInterface* runner, const SharedPtr<Object>& object);

}  // namespace Vision
}  // namespace Tamrix
