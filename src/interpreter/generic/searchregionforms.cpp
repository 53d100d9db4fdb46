// The forms in which regions are given: arguments of scripts, JSON.

#include <json/json.h>

#include <array>
#include <stdexcept>

#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/searchregionsource.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix::Vision {

namespace {

using Source = QSharedPointer<SearchRegionSource>;

const char* const allName = "all";
const char* const typeKey = "type";
const char* const rectangleType = "rectangle";
const char* const screenshotType = "screenshot";

[[noreturn]] void failForKind() {
    throw std::runtime_error("Search region must be an object, object list or 'all'");
}

/// Null for what can't stand in a list.
Source memberFromArgument(const SharedPtr<ScriptArgument>& argument) {
    if (argument && argument->isObject())
        return Source(new ObjectReferenceSource(argument->toObject()));
    if (isStringOrObjectName(argument))
        return Source(new ObjectNameSource(serializeObjectName(argument)));
    return {};
}

Source fromList(const ScriptArgument::List& list) {
    QList<Source> members;
    for (const SharedPtr<ScriptArgument>& element : list) {
        // Meant: what is neither an object nor a name is dropped.
        if (const Source member = memberFromArgument(element))
            members.append(member);
    }
    return Source(new MultiReferenceSource(members));
}

Source fromJsonObject(const Json::Value& value) {
    const Json::Value type = value.get(typeKey, rectangleType);
    if (!type.isString())
        throw std::runtime_error("Search region object has a non-string type entry");
    if (type.asString() == rectangleType)
        return Source(new ScreenRectangleSource(ScreenRectangleSource::rectFromJson(value)));
    if (type.asString() == screenshotType)
        throw std::runtime_error("Storing screenshot objects in JSON is not currently supported");
    failForKind();
}

Source fromJsonArray(const Json::Value& value) {
    QList<Source> members;
    for (const Json::Value& element : value) {
        if (!element.isString())
            throw std::runtime_error("Search region must be an array of strings");
        members.append(Source(new ObjectNameSource(QString::fromStdString(element.asString()))));
    }
    return Source(new MultiReferenceSource(members));
}

Json::Value typedRectangle(const char* type, const QRect& rectangle) {
    Json::Value value = rectToJson(rectangle);
    value[typeKey] = type;
    return value;
}

}  // namespace

QSharedPointer<SearchRegionSource> SearchRegionSource::fromScriptArgument(
    const SharedPtr<ScriptArgument>& argument) {
    // 1. Nothing: the whole desktop.
    if (!argument)
        return Source(new EntireDesktopSource);
    // 2. A screenshot.
    if (const auto screenshot = argument->toNative<ScreenshotScriptObject>())
        return Source(new ScreenshotRegionSource(screenshot->screenshot()));
    // 3. A picture, which has no place.
    if (const auto image = argument->toNative<ImageScriptObject>())
        return Source(new ScreenshotRegionSource(Screenshot(image->image)));
    // 4. An object; a screen rectangle is one whose place doesn't change.
    if (argument->isObject()) {
        const SharedPtr<Object> object = argument->toObject();
        if (!object)
            failForKind();
        if (isScreenRectangle(object))
            return Source(new ScreenRectangleSource(unwrapRemoteScreenRectangleAsQRect(object)));
        return Source(new ObjectReferenceSource(object));
    }
    // 5. All top-level objects.
    if (argument->isString() && argument->toString() == QLatin1String(allName))
        return Source(new TopLevelObjectsSource);
    // 6. An object's name.
    if (isStringOrObjectName(argument))
        return Source(new ObjectNameSource(serializeObjectName(argument)));
    // 7. A list of objects and names.
    if (argument->isList())
        return fromList(argument->toList());
    // 8. Nothing else.
    failForKind();
}

QSharedPointer<SearchRegionSource> SearchRegionSource::fromJSON(const Json::Value& value) {
    // 1. Null: the whole desktop.
    if (value.isNull())
        return Source(new EntireDesktopSource);
    // 2. "all" or an object's name.
    if (value.isString() && value.asString() == allName)
        return Source(new TopLevelObjectsSource);
    if (value.isString())
        return Source(new ObjectNameSource(QString::fromStdString(value.asString())));
    // 3. A rectangle.
    if (value.isObject())
        return fromJsonObject(value);
    // 4. Names.
    if (value.isArray())
        return fromJsonArray(value);
    // 5. Nothing else.
    failForKind();
}

QRect ScreenRectangleSource::rectFromJson(const Json::Value& value) {
    constexpr std::array<const char*, 4> keys = {"x", "y", "width", "height"};
    for (const char* const key : keys) {
        if (!value.isMember(key))
            throw std::runtime_error(std::string("Missing rectangle field: ") + key);
    }
    for (const char* const key : keys) {
        if (!value[key].isInt())
            throw std::runtime_error(std::string("Rectangle field '") + key +
                                     "' is not an integer");
    }
    // With the limits that rectangles have in all JSON forms.
    return Vision::rectFromJson(value);
}

Json::Value ScreenshotRegionSource::toJson() {
    return typedRectangle(screenshotType, m_screenshot.image().rect());
}

Json::Value EntireDesktopSource::toJson() {
    return {};
}

Json::Value TopLevelObjectsSource::toJson() {
    return allName;
}

Json::Value ScreenRectangleSource::toJson() {
    return typedRectangle(rectangleType, m_rectangle);
}

Json::Value ObjectNameSource::toJson() {
    return m_name.toStdString();
}

Json::Value ObjectReferenceSource::toJson() {
    return composeObjectName(m_object).toStdString();
}

Json::Value MultiReferenceSource::toJson() {
    Json::Value array(Json::arrayValue);
    for (const Source& member : m_members)
        array.append(member->toJson());
    return array;
}

}  // namespace Tamrix::Vision
