#include "interpreter/generic/searchregionsource.h"

#include <json/json.h>

#include <sstream>

#include "interpreter/generic/apitest.h"
#include "interpreter/generic/imageobjects.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix::Vision {
namespace {

using namespace Tamrix::Test;

std::string written(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value parsed(const std::string& text) {
    Json::Value value;
    std::istringstream stream(text);
    stream >> value;
    return value;
}

/// What the text of the failure is.
template <typename Act>
std::string failureOf(Act act) {
    try {
        act();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no failure";
}

class SearchRegions : public ApiTest {
protected:
    SearchRegions() {
        model.onNativeRequest = [this](const QString&, const QVariantList&) -> Outcome<QVariant> {
            ++grabs;
            if (pictureError.isEmpty())
                return screenshot.toVariant();
            return fail(FailureKind::Failed, pictureError);
        };
        runner.bounds = createRemoteScreenRectangle(QRect(10, 20, 30, 40));
    }

    QString regionOf(const QSharedPointer<SearchRegionSource>& source) {
        return source->getSearchRegion(&runner, screenshot).description();
    }
    QString regionOf(const SharedPtr<ScriptArgument>& argument) {
        return regionOf(SearchRegionSource::fromScriptArgument(argument));
    }
    static std::string formOf(const SharedPtr<ScriptArgument>& argument) {
        return written(SearchRegionSource::fromScriptArgument(argument)->toJson());
    }
    static SharedPtr<ScriptArgument> native(NativeScriptObject* object) {
        return {new FakeArgument(SharedPtr<NativeScriptObject>(object))};
    }

    /// Two pixels for each unit; its first pixel is at (-5, 0).
    Screenshot screenshot{QImage(100, 80, QImage::Format_RGB32), QTransform(0.5, 0, 0, 0.5, -5, 0)};
    QString pictureError;
    int grabs = 0;
    SharedPtr<InMemoryObject> window = model.addObject("Window", "main");
    SharedPtr<InMemoryObject> button = model.addObject("Button", "ok", window);
};

TEST_F(SearchRegions, AreMadeOfArguments) {
    const auto place = object(createRemoteScreenRectangle(QRect(1, 2, 3, 4)));
    const struct {
        const char* what;
        SharedPtr<ScriptArgument> argument;
        const char* form;
        const char* region;
    } rows[] = {
        {"nothing", {}, "null", "0x0x100x80"},
        {"all", text("all"), "\"all\"", "30x40x60x40"},
        {"name", text("{name='ok'}"), "\"{name='ok'}\"", "30x40x60x40"},
        {"map", map({{"name", text("ok")}}), "\"{name='ok'}\"", "30x40x60x40"},
        {"object", object(button), "\"main.ok\"", "30x40x60x40"},
        {"rectangle", place, R"({"height":4,"type":"rectangle","width":3,"x":1,"y":2})",
         "12x4x6x8"},
        {"list", list({object(button), integer(5), text("{name='main'}")}),
         R"(["main.ok","{name='main'}"])", "30x40x60x40,30x40x60x40"},
        {"rectangle in a list", list({place}), R"([""])", "12x4x6x8"},
        {"empty list", list({}), "[]", ""},
        {"image", native(new ImageScriptObject(QImage(7, 5, QImage::Format_RGB32))),
         R"({"height":5,"type":"screenshot","width":7,"x":0,"y":0})", "0x0x7x5"},
        {"screenshot", native(new ScreenshotScriptObject(screenshot)),
         R"({"height":80,"type":"screenshot","width":100,"x":0,"y":0})", "0x0x100x80"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(formOf(row.argument), row.form) << row.what;
        EXPECT_EQ(regionOf(row.argument), row.region) << row.what;
    }
    for (const auto& argument : {integer(5), boolean(true), object({})}) {
        EXPECT_EQ(failureOf([&] { SearchRegionSource::fromScriptArgument(argument); }),
                  "Search region must be an object, object list or 'all'");
    }
}

TEST_F(SearchRegions, AreReadFromJson) {
    for (const char* const form : {"null", "\"all\"", "\"{name='ok'}\"", R"(["a","b"])", "[]",
                                   R"({"height":4,"type":"rectangle","width":3,"x":1,"y":-2})"})
        EXPECT_EQ(written(SearchRegionSource::fromJSON(parsed(form))->toJson()), form);
    EXPECT_EQ(written(SearchRegionSource::fromJSON(parsed(R"({"x":1,"y":2,"width":3,"height":4})"))
                          ->toJson()),
              R"({"height":4,"type":"rectangle","width":3,"x":1,"y":2})");

    const char* const kinds = "Search region must be an object, object list or 'all'";
    const struct {
        const char* form;
        const char* failure;
    } rows[] = {
        {"5", kinds},
        {"true", kinds},
        {R"({"type":"circle"})", kinds},
        {R"({"type":5})", "Search region object has a non-string type entry"},
        {R"({"type":"screenshot","x":0,"y":0,"width":1,"height":1})",
         "Storing screenshot objects in JSON is not currently supported"},
        {R"(["a",5])", "Search region must be an array of strings"},
        {R"({})", "Missing rectangle field: x"},
        {R"({"x":"a","y":1,"width":2})", "Missing rectangle field: height"},
        {R"({"x":1,"y":1.5,"width":2,"height":"b"})", "Rectangle field 'y' is not an integer"},
        {R"({"x":2147483647,"y":0,"width":2,"height":1})", "Invalid rectangle: 2147483647x0x2x1"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failureOf([&] { SearchRegionSource::fromJSON(parsed(row.form)); }), row.failure)
            << row.form;
}

TEST_F(SearchRegions, AreWhatIsInThePicture) {
    const struct {
        QRect rectangle;
        const char* region;
    } rows[] = {
        {QRect(-5, 0, 50, 40), "0x0x100x80"},
        {QRect(-100, -100, 1000, 1000), "0x0x100x80"},
        {QRect(40, 35, 50, 50), "90x70x10x10"},
        {QRect(45, 0, 10, 10), ""},
        {QRect(0, 0, 0, 5), ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(
            regionOf(QSharedPointer<SearchRegionSource>(new ScreenRectangleSource(row.rectangle))),
            row.region);
}

TEST_F(SearchRegions, ObjectsThatAreGoneAreToldOf) {
    EXPECT_EQ(failureOf([&] { regionOf(text("{name='no'}")); }), "No object matches {name='no'}");
    runner.bounds = {};
    runner.lookupError = "it is gone";
    EXPECT_EQ(failureOf([&] { regionOf(object(button)); }), "it is gone");
    EXPECT_EQ(failureOf([&] { regionOf(list({object(button)})); }), "it is gone");
    // What is on the desktop without a place is none of it.
    EXPECT_EQ(regionOf(text("all")), "");
}

TEST_F(SearchRegions, TheDesktopIsGrabbedEachTime) {
    const auto desktop = SearchRegionSource::fromScriptArgument(text("{name='ok'}"));
    Inspector::self()->setLastError("of something else");
    for (const int left : {10, 12}) {
        runner.bounds = createRemoteScreenRectangle(QRect(left, 20, 30, 40));
        const SearchArea area = desktop->getSearchArea(&runner);
        EXPECT_EQ(area.image().size(), QSize(100, 80));
        EXPECT_EQ(area.imageToNative(QRect(0, 0, 10, 20)), QRect(-5, 0, 5, 10));
        EXPECT_EQ(area.region.boundingBox().left(), 2 * (left + 5));
    }
    EXPECT_EQ(grabs, 2);
    EXPECT_EQ(Inspector::self()->lastError(), "of something else");

    const auto picture =
        SearchRegionSource::fromScriptArgument(native(new ScreenshotScriptObject(screenshot)));
    EXPECT_FALSE(picture->isDynamic());
    EXPECT_EQ(picture->getSearchArea(&runner).region.description(), "0x0x100x80");
    EXPECT_EQ(grabs, 2);
}

TEST_F(SearchRegions, TellWhyThereIsNoPicture) {
    const auto desktop = SearchRegionSource::fromScriptArgument({});
    EXPECT_TRUE(desktop->isDynamic());
    Inspector::self()->setLastError("of something else");
    pictureError = "the screen is locked";
    EXPECT_EQ(failureOf([&] { desktop->getSearchArea(&runner); }),
              "Could not take desktop screenshot: the screen is locked");
    pictureError.clear();
    screenshot = Screenshot();
    EXPECT_EQ(failureOf([&] { desktop->getSearchArea(&runner); }),
              "Could not take desktop screenshot (Perhaps AUT is not started or has quit/crashed "
              "unexpectedly?)");
}

}  // namespace
}  // namespace Tamrix::Vision
