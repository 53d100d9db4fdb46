// The script class Image.

#include <QBuffer>
#include <QColor>
#include <QFileInfo>
#include <QImageReader>
#include <optional>

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/imagearguments.h"
#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/objectarguments.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/valueobject.h"
#include "vision/search/picturefile.h"

namespace Tamrix {

namespace {

/// Opaque black.
constexpr QRgb defaultColor = 0xff000000;

using Self = SharedPtr<NativeScriptObject>;

QImage& imageOf(const Self& self) {
    return staticPointerCast<ImageScriptObject>(self)->image;
}

bool refuse(ScriptContext* context, const QString& error) {
    context->setError(error);
    return false;
}

/// Refuses arguments where a member takes none; `name` is the member's.
bool takesNothing(ScriptContext* context, const char* name) {
    return context->argumentCount() == 0 ||
           refuse(context, QStringLiteral("%1() takes no arguments").arg(QLatin1String(name)));
}

void setImageResult(ScriptContext* context, const QImage& image) {
    context->setResult(context->createNative({new ImageScriptObject(image)}));
}

// --- Constructor ---

bool isPictureClass(const SharedPtr<Object>& object) {
    for (const char* const name : {"QImage", "QPixmap"}) {
        const Class* const wanted = Inspector::self()->classByName(QString::fromLatin1(name));
        if (wanted && object->isA(wanted))
            return true;
    }
    return false;
}

/// The picture in the answer to "getPixmapAsImage".
Outcome<QImage> imageFromAnswer(const QVariant& answer) {
    if (answer.userType() == QMetaType::QByteArray) {
        QByteArray bytes = answer.toByteArray();
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        QImageReader reader(&buffer, "PNG");
        const QImage image = reader.read();
        if (image.isNull())
            return fail(FailureKind::Failed,
                        QStringLiteral("Error loading image: ") + reader.errorString());
        return image;
    }
    if (answer.canConvert<QImage>())
        return answer.value<QImage>();
    return fail(FailureKind::Failed,
                QStringLiteral("Error retrieving the image: unknown response format"));
}

Outcome<QImage> imageOfOneArgument(const ScriptArgument& argument) {
    if (const SharedPtr<ImageScriptObject> other = argument.toNative<ImageScriptObject>())
        return other->image;
    const SharedPtr<Object> object = argument.isObject() ? argument.toObject() : nullptr;
    if (!object || !isPictureClass(object))
        return fail(FailureKind::BadArgument,
                    QStringLiteral("The Image() constructor argument needs to be an image object"));
    return imageFromAnswer(Inspector::self()->nativeRequest(QStringLiteral("getPixmapAsImage"),
                                                            {argumentValue(object)}));
}

Outcome<QImage> imageOfSize(const ScriptContext& context) {
    const Outcome<int> width = sideArg(context.argument(0), QStringLiteral("width"));
    if (!width)
        return fail(width.error());
    const Outcome<int> height = sideArg(context.argument(1), QStringLiteral("height"));
    if (!height)
        return fail(height.error());
    const QSize size(*width, *height);
    QRgb color = defaultColor;
    if (context.argument(2)) {
        const Outcome<QRgb> wanted = parseColorArg(*context.argument(2));
        if (!wanted)
            return fail(wanted.error());
        color = *wanted;
    }
    // Null for a size that no memory holds.
    QImage image(size, QImage::Format_ARGB32);
    if (image.isNull())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("There is no image of %1 x %2 pixels")
                        .arg(QString::number(size.width()), QString::number(size.height())));
    image.fill(color);
    return image;
}

Outcome<QImage> constructedImage(const ScriptContext& context) {
    switch (context.argumentCount()) {
        case 0:
            return fail(FailureKind::BadArgument,
                        QStringLiteral("The Image() constructor takes at least two arguments"));
        case 1:
            return imageOfOneArgument(*context.argument(0));
        case 2:
        case 3:
            return imageOfSize(context);
        default:
            return fail(FailureKind::BadArgument,
                        QStringLiteral("The Image() constructor takes at most three arguments"));
    }
}

SharedPtr<NativeScriptObject> construct(ScriptContext* context) {
    const Outcome<QImage> image = constructedImage(*context);
    if (image)
        return {new ImageScriptObject(*image)};
    context->setError(image.error().text);
    return {};
}

// --- Members ---

bool load(ScriptContext* context) {
    if (context->argumentCount() != 1 || !context->argument(0)->isString())
        return refuse(context, QStringLiteral("load() takes exactly one string argument"));
    const QString path = context->argument(0)->toString();
    if (path.isEmpty())
        return refuse(context, QStringLiteral("Cannot load image file: No file name specified"));
    QImageReader reader(path);
    // Whatever its suffix says.
    reader.setDecideFormatFromContent(true);
    const QImage image = reader.read();
    if (image.isNull())
        return refuse(context, QStringLiteral("Error loading image file: ") + reader.errorString());
    setImageResult(context, image);
    return true;
}

// Members take their object as NativeScriptType says.
// NOLINTBEGIN(performance-unnecessary-value-param)

bool width(Self self, ScriptContext* context) {
    if (!takesNothing(context, "width"))
        return false;
    context->setIntegerResult(imageOf(self).width());
    return true;
}

bool height(Self self, ScriptContext* context) {
    if (!takesNothing(context, "height"))
        return false;
    context->setIntegerResult(imageOf(self).height());
    return true;
}

bool stride(Self self, ScriptContext* context) {
    if (!takesNothing(context, "stride"))
        return false;
    context->setIntegerResult(imageOf(self).bytesPerLine());
    return true;
}

/// The pixel at the coordinates that are the arguments; nothing with the error set. `method` stands
/// in the error about a wrong number of them.
std::optional<QRgb> pixelAtArguments(const Self& self, ScriptContext* context, const char* method) {
    Outcome<QPoint> point =
        fail(FailureKind::BadArgument,
             QStringLiteral("%1() requires coordinates as arguments").arg(QLatin1String(method)));
    if (context->argumentCount() == 2)
        point = pixelArg(*context, imageOf(self));
    if (point)
        return imageOf(self).pixel(*point);
    context->setError(point.error().text);
    return std::nullopt;
}

bool getPixel(Self self, ScriptContext* context) {
    const std::optional<QRgb> pixel = pixelAtArguments(self, context, "getPixel");
    if (pixel)
        context->setInt64Result(*pixel);
    return pixel.has_value();
}

bool getPixelRGBA(Self self, ScriptContext* context) {
    // That the text names another method is meant.
    const std::optional<QRgb> pixel = pixelAtArguments(self, context, "getPixelARGB");
    if (!pixel)
        return false;
    std::vector<SharedPtr<ScriptArgument>> parts;
    for (const int part : {qRed(*pixel), qGreen(*pixel), qBlue(*pixel), qAlpha(*pixel)})
        parts.push_back(context->createInteger(part));
    context->setResult(context->createList(parts));
    return true;
}

/// The colour behind the coordinates: one argument, or three or four for its parts.
Outcome<QRgb> colorBehindPoint(const ScriptContext& context) {
    if (context.argumentCount() == 3)
        return parseColorArg(*context.argument(2));
    ScriptArgument::List parts;
    for (int index = 2; index < context.argumentCount(); ++index)
        parts.push_back(context.argument(index));
    return colorOfParts(parts);
}

bool setPixel(Self self, ScriptContext* context) {
    const int count = context->argumentCount();
    // That the text names another method is meant.
    if (count != 3 && count != 5 && count != 6)
        return refuse(context, QStringLiteral("putPixel() takes either 3, 5 or 6 arguments"));
    const Outcome<QPoint> point = pixelArg(*context, imageOf(self));
    if (!point)
        return refuse(context, point.error().text);
    const Outcome<QRgb> color = colorBehindPoint(*context);
    if (!color)
        return refuse(context, color.error().text);
    imageOf(self).setPixelColor(*point, QColor::fromRgba(*color));
    context->setNullResult();
    return true;
}

bool equals(Self self, ScriptContext* context) {
    if (context->argumentCount() != 1)
        return refuse(context, QStringLiteral("equals() requires exactly one argument"));
    const auto other = context->argument(0)->toNative<ImageScriptObject>();
    if (!other)
        return refuse(context, QStringLiteral("equals() requires an Image object as argument"));
    context->setBoolResult(arePixelsEqual(imageOf(self), other->image));
    return true;
}

bool copy(Self self, ScriptContext* context) {
    const Outcome<QRect> rect = rectArg(*context, imageOf(self));
    if (!rect)
        return refuse(context, rect.error().text);
    setImageResult(context, imageOf(self).copy(*rect));
    return true;
}

/// Only the path: the options that the description names are not taken; meant.
bool save(Self self, ScriptContext* context) {
    if (context->argumentCount() != 1)
        return refuse(context, QStringLiteral("save() takes only a single argument"));
    if (!context->argument(0)->isString())
        return refuse(context, QStringLiteral("save() requires a path as the first argument"));
    const QString path = context->argument(0)->toString();
    if (path.isEmpty())
        return refuse(context, QStringLiteral("Cannot save image file: No file name specified"));
    const Outcome<> written =
        Vision::writePicture(imageOf(self), path, QFileInfo(path).suffix().toLatin1());
    if (!written)
        return refuse(context, written.error().text);
    context->setNullResult();
    return true;
}

// NOLINTEND(performance-unnecessary-value-param)

}  // namespace

bool arePixelsEqual(QImage left, QImage right) {
    if (left.format() != right.format()) {
        left = std::move(left).convertToFormat(QImage::Format_ARGB32);
        right = std::move(right).convertToFormat(QImage::Format_ARGB32);
    }
    return left == right;
}

char ImageScriptObject::s_marker = 0;

void* ImageScriptObject::staticTypeId() {
    return &s_marker;
}

NativeScriptType ImageScriptObject::type() {
    NativeScriptType type(nullptr, construct);
    type.setStaticMethod("load", load, {"filepath"}, {}, "Loads an image from a file");
    type.setProperty("width", width, nullptr);
    type.setProperty("height", height, nullptr);
    type.setProperty("stride", stride, nullptr);
    type.setMethod("getPixel", getPixel, {"x", "y"}, {}, {});
    type.setMethod("getPixelRGBA", getPixelRGBA, {"x", "y"}, {}, {});
    type.setMethod("setPixel", setPixel, {"x", "y", "color|[r,g,b[,a]]"}, {}, {});
    type.setMethod("equals", equals, {"image"}, {}, "Compares two images");
    type.setMethod("copy", copy, {}, {"x", "y", "width", "height"}, "Copies a section of an image");
    type.setMethod("save", save, {"filepath"}, {"options"}, "Saves the image to a file");
    return type;
}

}  // namespace Tamrix
