#include "interpreter/generic/imageobjects.h"

#include <QBuffer>
#include <QTemporaryDir>

#include "interpreter/generic/apitest.h"
#include "interpreter/generic/screenshotfunctions.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {
namespace {

using namespace Test;

using Arguments = ScriptArgument::List;

/// A picture whose pixels all differ: red is x, green is y.
QImage gradient(int width, int height) {
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixelColor(x, y, QColor(x, y, 7));
    }
    return image;
}

SharedPtr<ScriptArgument> native(const SharedPtr<NativeScriptObject>& object) {
    return {new FakeArgument(object)};
}

SharedPtr<ScriptArgument> picture(const QImage& image) {
    return native({new ImageScriptObject(image)});
}

class Images : public ApiTest {
protected:
    Images() { interpreter.initNativeAPI(); }

    /// The error of a call, or its result as text.
    QString outcome() {
        if (context.hasError())
            return context.errorMessage();
        return context.result ? shown(*context.result) : QString("no result");
    }

    /// A member of Image, or of the class of `type` where that has one of its own.
    QString member(const SharedPtr<ScriptArgument>& self, const QString& name,
                   const Arguments& arguments = {}) {
        const SharedPtr<NativeScriptObject> object =
            self->toNative(ImageScriptObject::staticTypeId());
        auto methods = ImageScriptObject::type().methods();
        if (self->toNative(ScreenshotScriptObject::staticTypeId())) {
            const auto own = ScreenshotScriptObject::type().methods();
            for (auto method = own.begin(); method != own.end(); ++method)
                methods.insert(method.key(), method.value());
        }
        const auto getter = ImageScriptObject::type().properties().value(name).getter;
        context.result = nullptr;
        context.setArguments(arguments);
        const bool succeeded =
            context.execute(getter ? getter : methods.value(name).function, object);
        EXPECT_EQ(succeeded, !context.hasError());
        return outcome();
    }

    QString construct(const Arguments& arguments) {
        context.setArguments(arguments);
        const auto made = context.execute(ImageScriptObject::type().constructor());
        EXPECT_EQ(bool(made), !context.hasError());
        context.result = made ? native(made) : nullptr;
        return outcome();
    }

    QImage resultImage() {
        const auto made = context.result->toNative<ImageScriptObject>();
        return made ? made->image : QImage();
    }

    /// The application answers native requests by this value.
    void answerWith(const QVariant& value) {
        model.onNativeRequest = [this, value](const QString& name, const QVariantList& arguments) {
            requests.append(QString("%1/%2").arg(name, QString::number(arguments.size())));
            return Outcome<QVariant>(value);
        };
    }

    QStringList requests;

private:
    static QString shown(const ScriptArgument& value) {
        QStringList parts;
        if (value.isList()) {
            for (const auto& part : value.toList())
                parts.append(shown(*part));
        } else if (value.isMap()) {
            for (const auto& [name, part] : value.toMap())
                parts.append(name + "=" + shown(*part));
        } else if (const auto image = value.toNative<ImageScriptObject>()) {
            return QString("%1x%2").arg(QString::number(image->image.width()),
                                        QString::number(image->image.height()));
        } else {
            return value.toString();
        }
        return parts.join(",");
    }
};

TEST_F(Images, AreMadeOfSizeColourOrPicture) {
    const auto two = integer(2);
    const struct {
        Arguments arguments;
        const char* outcome;
        QRgb color;
    } rows[] = {
        {{}, "The Image() constructor takes at least two arguments", 0},
        {{two}, "The Image() constructor argument needs to be an image object", 0},
        {{two, integer(3)}, "2x3", 0xff000000},
        {{two, two, integer(0xff123456)}, "2x2", 0xff123456},
        {{two, two, text("red")}, "2x2", 0xffff0000},
        {{two, two, text("#80ff0000")}, "2x2", 0x80ff0000},
        {{two, two, list({integer(255), integer(0), integer(1)})}, "2x2", 0xffff0001},
        {{two, two, integer(-1)}, "2x2", 0xffffffff},
        {{number(2.0), two}, "2x2", 0xff000000},
        {{two, two, list({two, two, two, integer(5)})}, "2x2", 0x05020202},
        {{two, two, text("nosuchcolour")}, "'nosuchcolour' is not a valid color name", 0},
        {{two, two, list({two, two})}, "The pixel array value must contain 3 or 4 elements", 0},
        {{two, two, number(1.5)}, "The pixel value must be an array or an integer", 0},
        {{two, two, two, two}, "The Image() constructor takes at most three arguments", 0},
        {{two, integer(0)}, "The height of an image must be a whole number of pixels, not '0'", 0},
        {{integer(1LL << 40), two},
         "The width of an image must be a whole number of pixels, not '1099511627776'",
         0},
        {{number(1.5), two},
         "The width of an image must be a whole number of pixels, not '1.5'",
         0},
        {{integer(1 << 30), integer(1 << 30)},
         "There is no image of 1073741824 x 1073741824 pixels",
         0},
        {{two, two, integer(1LL << 40)}, "The pixel value 1099511627776 has more than 32 bits", 0},
        {{two, two, list({integer(300), two, two})},
         "The part red of a color must be a whole number from 0 to 255, not '300'",
         0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(construct(row.arguments), row.outcome);
        if (row.color != 0) {
            EXPECT_EQ(resultImage().pixel(1, 1), row.color) << row.outcome;
        }
    }
}

TEST_F(Images, AreMadeOfPicturesOfTheApplication) {
    model.objectClass("QPixmap");
    const auto pixmap = object(model.addObject("QPixmap", "icon"));
    const auto button = object(model.addObject("Button", "ok"));
    const char* const noImage = "The Image() constructor argument needs to be an image object";
    EXPECT_EQ(construct({button}), noImage);

    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    gradient(3, 2).save(&buffer, "PNG");
    answerWith(png);
    EXPECT_EQ(construct({pixmap}), "3x2");
    EXPECT_EQ(resultImage().pixel(2, 1), gradient(3, 2).pixel(2, 1));
    EXPECT_EQ(requests, QStringList("getPixmapAsImage/1"));
    answerWith(gradient(4, 2));
    EXPECT_EQ(construct({pixmap}), "4x2");
    answerWith(png.left(20));
    EXPECT_TRUE(construct({pixmap}).startsWith("Error loading image: "));
    answerWith(5);
    EXPECT_EQ(construct({pixmap}), "Error retrieving the image: unknown response format");
    EXPECT_EQ(construct({picture(gradient(5, 5))}), "5x5");
}

TEST_F(Images, MembersCheckTheirArguments) {
    const auto image = picture(gradient(10, 5));
    const auto zero = integer(0);
    const auto one = integer(1);
    const char* const xOutside = "The x coordinate falls outside the image";
    const char* const yOutside = "The y coordinate falls outside the image";
    const char* const extent = "The copied area extends outside source image";
    const struct {
        const char* member;
        Arguments arguments;
        const char* outcome;
    } rows[] = {
        {"width", {}, "10"},
        {"height", {}, "5"},
        {"stride", {}, "40"},
        {"stride", {one}, "stride() takes no arguments"},
        {"getPixel", {integer(9), integer(4)}, "4278780935"},
        {"getPixel", {one}, "getPixel() requires coordinates as arguments"},
        {"getPixel", {integer(10), integer(5)}, xOutside},
        {"getPixel", {zero, integer(5)}, yOutside},
        {"getPixelRGBA", {integer(9), integer(4)}, "9,4,7,255"},
        {"getPixelRGBA", {one}, "getPixelARGB() requires coordinates as arguments"},
        {"getPixelRGBA", {integer(-1), zero}, xOutside},
        {"setPixel", {one, one}, "putPixel() takes either 3, 5 or 6 arguments"},
        {"setPixel", {one, one, one, one}, "putPixel() takes either 3, 5 or 6 arguments"},
        {"setPixel", {integer(10), one, one}, xOutside},
        {"setPixel", {one, one, text("none")}, "'none' is not a valid color name"},
        {"setPixel",
         {one, one, one, one, one, number(0.5)},
         "The part alpha of a color must be a whole number from 0 to 255, not '0.5'"},
        {"getPixel", {number(0.5), one}, "The x coordinate must be a whole number, not '0.5'"},
        {"getPixel", {one, text("1")}, "The y coordinate must be a whole number, not '1'"},
        {"equals", {}, "equals() requires exactly one argument"},
        {"equals", {one}, "equals() requires an Image object as argument"},
        {"copy", {}, "10x5"},
        {"copy", {one, one, integer(9), integer(4)}, "9x4"},
        {"copy", {one}, "copy() takes either 4 or no arguments"},
        {"copy", {integer(10), zero, one, one}, xOutside},
        {"copy", {zero, integer(-1), zero, one}, yOutside},
        {"copy", {zero, zero, zero, one}, "Size of the copy must be positive"},
        {"copy", {one, zero, integer(10), one}, extent},
        {"copy", {one, zero, one, integer(1LL << 40)}, extent},
        {"save", {}, "save() takes only a single argument"},
        {"save", {one}, "save() requires a path as the first argument"},
        {"save", {text("")}, "Cannot save image file: No file name specified"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(member(image, row.member, row.arguments), row.outcome) << row.member;
}

TEST_F(Images, PixelsAreSetInOneObjectAlone) {
    const QImage original = gradient(4, 4);
    const auto image = picture(original);
    EXPECT_EQ(construct({image}), "4x4");
    const auto copy = context.result;
    member(image, "setPixel", {integer(1), integer(2), integer(0x80102030)});
    EXPECT_EQ(member(image, "getPixelRGBA", {integer(1), integer(2)}), "16,32,48,128");
    EXPECT_EQ(member(copy, "getPixelRGBA", {integer(1), integer(2)}), "1,2,7,255");
    const auto part = integer(44);
    member(image, "setPixel", {integer(0), integer(0), part, part, part});
    EXPECT_EQ(member(image, "getPixelRGBA", {integer(0), integer(0)}), "44,44,44,255");
    member(image, "setPixel", {integer(0), integer(0), part, part, part, integer(9)});
    EXPECT_EQ(member(image, "getPixelRGBA", {integer(0), integer(0)}), "44,44,44,9");
    EXPECT_EQ(member(image, "equals", {copy}), "false");
    EXPECT_EQ(member(copy, "equals", {picture(original.convertToFormat(QImage::Format_RGB888))}),
              "true");
    EXPECT_EQ(member(picture(original.convertToFormat(QImage::Format_Indexed8)), "equals",
                     {picture(original.convertToFormat(QImage::Format_Indexed8)
                                  .convertToFormat(QImage::Format_ARGB32))}),
              "true");
}

TEST_F(Images, GoToFilesAndComeBack) {
    const QTemporaryDir folder;
    const auto load = ImageScriptObject::type().staticMethods().value("load").function;
    const auto loaded = [&](const Arguments& arguments) {
        context.call(load, arguments);
        return outcome();
    };
    const auto image = picture(gradient(6, 3));
    const QString path = folder.filePath("täst.png");
    member(image, "save", {text(path)});
    EXPECT_FALSE(context.hasError());
    EXPECT_EQ(loaded({text(path)}), "6x3");
    EXPECT_EQ(resultImage().pixel(5, 2), gradient(6, 3).pixel(5, 2));
    // What can't be written leaves an earlier file alone.
    EXPECT_EQ(member(image, "save", {text(folder.filePath("x.none"))}), "Unsupported image format");
    EXPECT_FALSE(QFile::exists(folder.filePath("x.none")));
    EXPECT_EQ(member(image, "save", {text(folder.filePath("none/x.png"))}),
              "No such file or directory");

    const char* const usage = "load() takes exactly one string argument";
    EXPECT_EQ(loaded({}), usage);
    EXPECT_EQ(loaded({integer(1)}), usage);
    EXPECT_EQ(loaded({text("")}), "Cannot load image file: No file name specified");
    EXPECT_EQ(loaded({text(folder.filePath("none.png"))}),
              "Error loading image file: File not found");
}

TEST_F(Images, ScreenshotsKnowTheirPlace) {
    // Two pixels a unit; the first pixel is the 20th and 40th of the screen.
    const auto shot = native({new ScreenshotScriptObject(gradient(8, 6), QPoint(20, 40), 2)});
    const auto point = map({{"x", integer(2)}, {"y", integer(4)}});
    EXPECT_EQ(member(shot, "imageToNative", {integer(2), integer(4)}), "x=11,y=22");
    EXPECT_EQ(member(shot, "imageToNative", {point}), "x=11,y=22");
    EXPECT_EQ(member(shot, "nativeToImage", {integer(11), integer(22)}), "x=2,y=4");
    EXPECT_EQ(member(shot, "nativeToImage", {map({{"x", integer(2)}})}),
              "The point argument requires members called x and y");
    const char* const usage =
        "nativeToImage() requires x and y coordinates or a point object as argument(s)";
    EXPECT_EQ(member(shot, "nativeToImage", {}), usage);
    EXPECT_EQ(member(shot, "nativeToImage", {integer(1)}), usage);
    // The rest is an image's; a part has forgotten the place.
    EXPECT_EQ(member(shot, "width"), "8");
    EXPECT_EQ(member(shot, "copy", {integer(1), integer(1), integer(2), integer(3)}), "2x3");
    EXPECT_EQ(member(context.result, "imageToNative", {integer(5), integer(5)}), "x=5,y=5");
    EXPECT_EQ(member(picture(gradient(8, 6)), "equals", {shot}), "true");
}

TEST_F(Images, OfTheDesktopAreAskedOfTheApplication) {
    const QString invalid = "The desktopScreensot call returned an invalid ";
    EXPECT_EQ(call(plain<grabDesktopScreenshot>), invalid + "screenshot");
    answerWith(5);
    EXPECT_EQ(call(plain<grabDesktopScreenshot>), invalid + "image");
    answerWith(Screenshot(gradient(8, 6), QTransform(2, 0, 0, 2, 9, 9)).toVariant());
    context.call(plain<grabDesktopScreenshot>);
    EXPECT_EQ(outcome(), "8x6");
    EXPECT_EQ(member(context.result, "nativeToImage", {integer(5), integer(5)}), "x=5,y=5");
    EXPECT_EQ(requests.last(), "desktopScreenshot/0");
}

TEST_F(Images, OfObjectsAreAskedOfTheApplication) {
    const auto button = object(model.addObject("Button", "ok"));
    const auto options = map({{"delay", integer(0)}, {"flags", integer(3)}});
    expectRefusals({
        {objectGrabScreenshot, {}, "Expected object reference argument"},
        {objectGrabScreenshot, {text("ok")}, "Expected object reference argument"},
        {objectGrabScreenshot, {button, options, options}, "Expected at most two arguments"},
        {objectGrabScreenshot, {button, text("x")}, "The options parameter must be a map"},
        {objectGrabScreenshot,
         {button, map({{"b", options}, {"a", options}, {"delay", options}})},
         "Unknown options keys: a,b"},
    });
    const QString prefix = "grabObjectScreenshot: calling grabObjectScreenshot returned ";
    answerWith(QVariant(QVariant::String));
    EXPECT_TRUE(call(objectGrabScreenshot, {button}).startsWith(prefix + "null variant! "));
    answerWith(5);
    EXPECT_EQ(call(objectGrabScreenshot, {button}), prefix + "non-screenshot variant!");
    answerWith(QVariantMap{{"density", 2}});
    EXPECT_EQ(call(objectGrabScreenshot, {button}), prefix + "an invalid image!");
    model.onNativeRequest = nullptr;
    EXPECT_TRUE(call(objectGrabScreenshot, {button}).startsWith(prefix + "invalid variant! "));

    answerWith(Screenshot(gradient(20, 10)).toVariant());
    context.call(objectGrabScreenshot, {button, options});
    EXPECT_EQ(outcome(), "20x10");
    EXPECT_FALSE(context.result->toNative<ScreenshotScriptObject>());
    EXPECT_EQ(requests.last(), "grabObjectScreenshot/3");
    // With its place it is a screenshot, here of two pixels a unit.
    runner.bounds = new ValueObject(QRect(30, 40, 10, 5), objectModelScreenRectangleClass());
    context.call(objectGrabScreenshot, {button});
    EXPECT_EQ(member(context.result, "imageToNative", {integer(4), integer(2)}), "x=32,y=41");
}

TEST_F(Images, OfTheDesktopGoToFiles) {
    const QTemporaryDir folder;
    const QString path = folder.filePath("shot.PNG");
    expectRefusals({
        {plain<saveDesktopScreenshot>, {}, "saveDesktopScreenshot() requires a file name argument"},
        {plain<saveDesktopScreenshot>,
         {integer(1)},
         "saveDesktopScreenshot() requires a file name argument"},
        {plain<saveDesktopScreenshot>,
         {text("shot")},
         "Cannot deduce image format for screenshot to be saved. Specify a suffix like .png"},
        {plain<saveDesktopScreenshot>,
         {text("shot.png")},
         "Screenshot taken from the desktop is invalid"},
    });
    answerWith(Screenshot(gradient(20, 10)).toVariant());
    EXPECT_EQ(call(plain<saveDesktopScreenshot>, {text(folder.filePath("none/a.png"))}),
              QString("Failed to save \"%1\" file: No such file or directory")
                  .arg(folder.filePath("none/a.png")));
    call(plain<saveDesktopScreenshot>, {text(path)});
    EXPECT_FALSE(context.hasError()) << qPrintable(context.errorMessage());
    EXPECT_EQ(QImage(path).size(), QSize(20, 10));
}

}  // namespace
}  // namespace Tamrix
