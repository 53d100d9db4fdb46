#include "interpreter/generic/imagesearch.h"

#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/imagesearchtest.h"

namespace Tamrix {
namespace {

using namespace Test;

using Arguments = ScriptArgument::List;
using Options = ScriptArgument::Map;

class ImageSearch : public ImageSearchTest {};

const SharedPtr<ScriptArgument> dot = text("dot");

TEST_F(ImageSearch, ChecksItsArguments) {
    const auto withOptions = [](const Options& options) { return Arguments{dot, map(options)}; };
    const auto call = [](const char* name) {
        return QStringLiteral(
                   "Incorrect number of arguments, please call as "
                   "%1(image[, options][, searchRegion])")
            .arg(QLatin1String(name));
    };
    const Arguments tooMany = {dot, map({}), text("all"), integer(1)};
    const struct {
        ScriptContext::Function function;
        const char* name;
    } functions[] = {{plain<findImage>, "findImage"},
                     {plain<waitForImage>, "waitForImage"},
                     {testImagePresent, "imagePresent"},
                     {testImageNotPresent, "imageNotPresent"}};
    for (const auto& row : functions) {
        EXPECT_EQ(ApiTest::call(row.function, {}), call(row.name));
        EXPECT_EQ(ApiTest::call(row.function, tooMany), call(row.name));
    }
    expectRefusals({
        {plain<findImage>, {integer(1)}, "The argument image needs to be specified as string"},
        {plain<findImage>,
         {integer(1), {}, integer(1)},
         "Search region must be an object, object list or 'all'"},
        {plain<findImage>, {dot, text("x")}, "The options argument must be a map"},
        {plain<findImage>, withOptions({{"timeout", integer(0)}}),
         "Timeout must be a positive integer"},
        {plain<findImage>, withOptions({{"interval", text("x")}}),
         "Interval must be a positive integer"},
        {plain<findImage>, withOptions({{"occurrence", integer(0)}}),
         "Occurrence must be a positive integer"},
        {plain<findImage>, withOptions({{"occurrence", integer(-1)}}),
         "Occurrence must be a positive integer"},
        {plain<findImage>, withOptions({{"tolerant", integer(1)}}), "tolerant must be a boolean"},
        {plain<findImage>, withOptions({{"threshold", text("97")}}), "threshold must be a number"},
        {plain<findImage>,
         withOptions({{"b", integer(1)}, {"a", integer(1)}, {"timeout", integer(1)}}),
         "Unknown keys: a, b"},
        {plain<findImage>, withOptions({{"a", integer(1)}, {"timeout", integer(0)}}),
         "Timeout must be a positive integer"},
    });
    EXPECT_EQ(grabs, 0);
    EXPECT_EQ(search(findImage, {text("none")}), "No image files found for: 'none'");
    EXPECT_TRUE(writeFile(folder.filePath("suite/tst/searchImages/broken.png"), "no picture"));
    EXPECT_EQ(search(findImage, {text("broken")}),
              "Could not load image: '" + folder.filePath("suite/tst/searchImages/broken.png") +
                  "': Unsupported image format");
    EXPECT_EQ(context.errorType(), ScriptContext::GeneralError);
    Inspector::self()->setModel(nullptr);
    EXPECT_EQ(search(findImage, {dot}),
              "Could not take desktop screenshot: " + Inspector::noApplicationText);
}

TEST_F(ImageSearch, GivesThePlaceOnTheScreen) {
    draw(QPoint(30, 20));
    draw(QPoint(70, 20));
    draw(QPoint(30, 60));
    storeImage("several/a.png", pattern(10, 90));
    storeImage("several/b.png", pattern(10));
    const auto left = object(createRemoteScreenRectangle(QRect(0, 20, 20, 20)));
    const struct {
        Arguments arguments;
        const char* place;
    } rows[] = {
        {{dot}, "10x10x5x5"},
        {{text("dot.png")}, "10x10x5x5"},
        {{text("several")}, "10x10x5x5"},
        {{dot, map({{"occurrence", integer(2)}})}, "30x10x5x5"},
        {{dot, map({{"occurrence", integer(3)}})}, "10x30x5x5"},
        {{dot, {}, left}, "10x30x5x5"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(search(findImage, row.arguments), row.place);
        EXPECT_EQ(resultObject()->className(), "ScreenRectangle");
    }
    EXPECT_TRUE(resultObject()->foundAs() == "image 'dot'");
    EXPECT_EQ(grabs, int(std::size(rows)));
    // A picture that the script has is searched as it is; its place is its own.
    const SharedPtr<ScriptArgument> picture(
        new FakeArgument(SharedPtr<NativeScriptObject>(new ImageScriptObject(desktop))));
    EXPECT_EQ(search(findImage, {dot, {}, picture}), "30x20x10x10");
    EXPECT_EQ(grabs, int(std::size(rows)));
}

TEST_F(ImageSearch, WaitsUntilTheImageIsThere) {
    const Options shortPauses = {{"interval", integer(1)}};
    onGrab = [this] {
        // What is searched for is read once.
        if (grabs == 2) {
            EXPECT_TRUE(QFile::remove(folder.filePath("suite/tst/searchImages/dot.png")));
        }
        if (grabs == 3)
            draw(QPoint(30, 20));
    };
    EXPECT_EQ(search(waitForImage, {dot, map(shortPauses)}), "10x10x5x5");
    EXPECT_EQ(grabs, 3);
    EXPECT_EQ(runner.processedEvents, 2);

    storeImage("dot.png", pattern(10, 5));
    onGrab = nullptr;
    const QString missing = "Could not find image 'dot', occurrence: 1 on the screen(s).";
    // The pause is longer than the time that is left, which a first look always has.
    for (const int timeout : {400, -5}) {
        grabs = 0;
        EXPECT_EQ(search(waitForImage,
                         {dot, map({{"timeout", integer(timeout)}, {"interval", integer(600)}})}),
                  missing);
        EXPECT_EQ(context.errorType(), ScriptContext::LookupError);
        EXPECT_EQ(grabs, timeout > 0 ? 2 : 1) << timeout;
    }
    grabs = 0;
    EXPECT_EQ(search(findImage, {dot}), missing);
    EXPECT_EQ(grabs, 1);
}

TEST_F(ImageSearch, MakesVerdicts) {
    const Options options = {
        {"interval", integer(1)}, {"timeout", integer(30)}, {"message", text("the dot")}};
    draw(QPoint(30, 20));
    EXPECT_EQ(call(testImagePresent, {dot, map(options)}), "true");
    EXPECT_EQ(taken(),
              QStringList({"10 Verified: Image 'dot', occurrence: 1 was found", "the dot"}));
    EXPECT_EQ(call(testImageNotPresent, {dot, map(options)}), "false");
    EXPECT_EQ(taken(),
              QStringList(
                  {"11 Not verified: Image 'dot', occurrence: 1 was still present after 30ms",
                   "the dot", "Image 'dot': dot.png, 10x10 pixels", "Search: pixel by pixel",
                   "Region: 0x0x120x80 of a screenshot of 120x80 pixels", "Found at 30x20x10x10"}));
    grabs = 0;
    onGrab = [this] {
        if (grabs == 2)
            desktop.fill(Qt::gray);
    };
    EXPECT_EQ(call(testImageNotPresent, {dot, map(options)}), "true");
    EXPECT_EQ(grabs, 2);
    EXPECT_EQ(taken(),
              QStringList({"10 Verified: Image 'dot', occurrence: 1 was not found", "the dot"}));
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::ThrowOnFailure, true);
    EXPECT_EQ(call(testImagePresent, {dot, map(options)}),
              "Not verified: the dot, Could not find image 'dot', occurrence: 1 on the screen(s).");
    EXPECT_EQ(context.errorType(), ScriptContext::VerificationError);
}

TEST_F(ImageSearch, FailuresShowWhatWasNear) {
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnFail, true);
    draw(QPoint(60, 40), blemished(pattern(10), qRgb(110, 110, 30)));
    const Options once = {{"timeout", integer(-1)}};
    const auto place = object(createRemoteScreenRectangle(QRect(20, 10, 30, 25)));
    EXPECT_EQ(call(testImagePresent, {dot, map(once), place}), "false");
    const QStringList texts = taken();
    ASSERT_EQ(texts.size(), 8);
    EXPECT_EQ(texts.mid(0, 1), QStringList("picture Image 'dot.png' 10x10"));
    EXPECT_TRUE(texts[1].startsWith("picture The most similar place, score 9"))
        << texts[1].toStdString();
    EXPECT_TRUE(texts[1].endsWith(" 10x10")) << texts[1].toStdString();
    const QString verdict =
        "11 Not verified (Screenshot in 'screenshot_fail_1.png'): Could not find image 'dot', "
        "occurrence: 1 on the screen(s).";
    EXPECT_EQ(texts.mid(2, 5),
              QStringList({"picture What was searched, the region in blue 120x80", verdict,
                           "Image 'dot': dot.png, 10x10 pixels", "Search: pixel by pixel",
                           "Region: 50x20x60x50 of a screenshot of 120x80 pixels"}));
    EXPECT_TRUE(texts[7].startsWith("Most similar place: 60x40x10x10, score 9"))
        << texts[7].toStdString();
    EXPECT_TRUE(texts[7].contains("; found with threshold: 9")) << texts[7].toStdString();

    // The picture itself is what programs can read more of.
    const QImage stored(pictures + "/screenshot_fail_1.png");
    EXPECT_EQ(stored.text("com.brindlark.tamrix.searchRegion"), "50x20x60x50");
    EXPECT_EQ(stored.text("com.brindlark.tamrix.screenshot.data"),
              R"({"transform":{"m11":0.5,"m12":0.0,"m13":0.0,"m21":0.0,"m22":0.5,"m23":0.0,)"
              R"("m31":-5.0,"m32":0.0,"m33":1.0}})");
    EXPECT_TRUE(stored.text("com.brindlark.tamrix.ImageLookup.state")
                    .contains(R"("imageSearchName":"dot")"));
    EXPECT_EQ(stored.pixel(50, 20), desktop.pixel(50, 20)) << "nothing is drawn into it";

    // Of an error it waits until somebody wants it.
    interpreter.clearError();
    search(findImage, {dot, map({{"occurrence", integer(2)},
                                 {"tolerant", boolean(true)},
                                 {"threshold", integer(98)}})});
    EXPECT_EQ(interpreter.errorImage().text("com.brindlark.tamrix.searchRegion"), "0x0x120x80");
    EXPECT_EQ(interpreter.errorDetails().explanation,
              "Image 'dot': dot.png, 10x10 pixels\nSearch: with tolerance, threshold 98.000\n"
              "Region: 0x0x120x80 of a screenshot of 120x80 pixels\n"
              "Found 1 instead of 2 times: 60x40x10x10");
    EXPECT_EQ(taken(), QStringList());

    const auto sliver = object(createRemoteScreenRectangle(QRect(20, 10, 3, 3)));
    search(findImage, {dot,
                       map({{"multiscale", boolean(true)},
                            {"tolerant", boolean(true)},
                            {"minScale", integer(90)},
                            {"maxScale", integer(120)}}),
                       sliver});
    EXPECT_EQ(interpreter.errorDetails().explanation.section('\n', 1),
              "Search: with tolerance, threshold 99.500, sizes from 90.000 to 120.000 percent\n"
              "Region: 50x20x6x6 of a screenshot of 120x80 pixels\n"
              "Nothing of its size fits into the region");
    interpreter.clearError();
    EXPECT_EQ(interpreter.errorDetails().explanation, "");
}

TEST_F(ImageSearch, StoresWhatItSearched) {
    draw(QPoint(30, 20));
    const auto place = object(createRemoteScreenRectangle(QRect(5, 5, 20, 20)));
    search(findImage, {dot, map({{"saveScreenshots", boolean(true)}}), place});
    EXPECT_EQ(taken(),
              QStringList("7 Captured a screenshot (Screenshot in 'screenshot_log_1.png'): "));
    const QImage stored(pictures + "/screenshot_log_1.png");
    const QRgb grey = desktop.pixel(0, 0);
    const QRgb tinted = qRgb((qRed(grey) + 255) / 2, qGreen(grey) / 2, qBlue(grey) / 2);
    for (const QPoint corner : {QPoint(20, 10), QPoint(59, 10), QPoint(20, 49), QPoint(59, 49)}) {
        EXPECT_EQ(stored.pixel(corner), tinted);
        EXPECT_EQ(stored.pixel(corner + QPoint(corner.x() > 30 ? 1 : -1, 0)), grey);
        EXPECT_EQ(stored.pixel(corner + QPoint(corner.x() > 30 ? -1 : 1, corner.y() > 30 ? -1 : 1)),
                  grey);
    }
}

TEST_F(ImageSearch, AdjustsTheSettingsWhenAskedTo) {
    draw(QPoint(60, 40), blemished(pattern(10), qRgb(90, 90, 20)));
    runner.fixTarget = 1;
    // What the call has fixed is not to be relaxed.
    EXPECT_EQ(search(findImage, {dot, map({{"tolerant", boolean(false)}})}),
              "Could not find image 'dot', occurrence: 1 on the screen(s).");
    EXPECT_TRUE(TestSettingsType::s_image.isNull());

    EXPECT_EQ(search(findImage, {dot}), "25x20x5x5");
    EXPECT_TRUE(TestSettingsType::s_image.getTolerant());
    EXPECT_EQ(taken(),
              QStringList("7 The test suite image lookup settings were adjusted  (Screenshot in "
                          "'screenshot_log_1.png'): The lookup: 'dot', the settings: {" +
                          TestSettingsType::s_image.description() + "}"));
    runner.fixTarget = 0;
    EXPECT_EQ(search(findImage, {dot}), "25x20x5x5");

    runner.fixTarget = 1;
    EXPECT_EQ(search(findImage, {dot, map({{"occurrence", integer(2)}})}),
              "Could not find image 'dot', occurrence: 2 on the screen(s).");
}

}  // namespace
}  // namespace Tamrix
