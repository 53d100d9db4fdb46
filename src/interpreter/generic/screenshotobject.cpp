// The script class Screenshot.

#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/imagearguments.h"
#include "interpreter/generic/imageobjects.h"

namespace Tamrix {

namespace {

using Self = SharedPtr<NativeScriptObject>;

SharedPtr<ScreenshotScriptObject> screenshotOf(const Self& self) {
    return staticPointerCast<ScreenshotScriptObject>(self);
}

// Members take their object as NativeScriptType says.
// NOLINTBEGIN(performance-unnecessary-value-param)

bool copy(Self self, ScriptContext* context) {
    const Outcome<QRect> rect = rectArg(*context, screenshotOf(self)->image);
    if (!rect) {
        context->setError(rect.error().text);
        return false;
    }
    // The part forgets its place, as each object that is made of a screenshot.
    const Screenshot part = screenshotOf(self)->screenshot().copy(*rect);
    context->setResult(context->createNative({new ScreenshotScriptObject(part)}));
    return true;
}

/// Maps the point that the arguments give.
bool mapPoint(const Self& self, ScriptContext* context, const char* method,
              QPoint (Screenshot::*map)(QPoint) const) {
    const Outcome<QPoint> point = getPointArg(*context, QString::fromLatin1(method));
    if (!point) {
        context->setError(point.error().text);
        return false;
    }
    const QPoint mapped = (screenshotOf(self)->screenshot().*map)(*point);
    context->setResult(
        context->createMap({{QStringLiteral("x"), context->createInteger(mapped.x())},
                            {QStringLiteral("y"), context->createInteger(mapped.y())}}));
    return true;
}

bool nativeToImage(Self self, ScriptContext* context) {
    return mapPoint(self, context, "nativeToImage", &Screenshot::nativeToImage);
}

bool imageToNative(Self self, ScriptContext* context) {
    return mapPoint(self, context, "imageToNative", &Screenshot::imageToNative);
}

// NOLINTEND(performance-unnecessary-value-param)

QTransform placedAt(QPoint origin, double scale) {
    QTransform transform;
    transform.scale(1 / scale, 1 / scale);
    transform.translate(origin.x(), origin.y());
    return transform;
}

}  // namespace

char ScreenshotScriptObject::s_marker = 0;

ScreenshotScriptObject::ScreenshotScriptObject(const QImage& pixels, QPoint origin, double scale)
    : ImageScriptObject(pixels), transform(placedAt(origin, scale)) {}

ScreenshotScriptObject::ScreenshotScriptObject(const Screenshot& screenshot)
    : ImageScriptObject(screenshot.image()) {}

void* ScreenshotScriptObject::staticTypeId() {
    return &s_marker;
}

NativeScriptType ScreenshotScriptObject::type() {
    NativeScriptType type(ImageScriptObject::staticTypeId(), nullptr);
    type.setMethod("copy", copy, {}, {"x", "y", "width", "height"},
                   "Copies a section of a screenshot");
    type.setMethod("nativeToImage", nativeToImage, {"x", "y"}, {},
                   "Converts a position in native coordinate system to a position relative to the "
                   "screenshot image");
    type.setMethod("imageToNative", imageToNative, {"x", "y"}, {},
                   "Converts a position in the screenshot image to a position in the native "
                   "coordinate system");
    return type;
}

}  // namespace Tamrix
