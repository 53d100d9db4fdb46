#include "interpreter/generic/screenshotfunctions.h"

#include <QStringList>

#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/imagefiles.h"
#include "interpreter/generic/imageobjects.h"
#include "interpreter/generic/objectarguments.h"
#include "interpreter/generic/runneraccess.h"
#include "platform/objectmodel/inspector.h"
#include "platform/objectmodel/valueobject.h"

namespace Tamrix {

namespace {

struct GrabOptions {
    int flags = 0;
    /// How long the application may take to come to rest, in milliseconds.
    int delay = 1000;
};

Outcome<GrabOptions> readGrabOptions(const ScriptArgument::Map& map) {
    GrabOptions options;
    QStringList unknown;
    for (const auto& [key, value] : map) {
        if (key == QLatin1String("flags"))
            options.flags = intOf(value);
        else if (key == QLatin1String("delay"))
            options.delay = intOf(value);
        else
            unknown.append(key);
    }
    if (!unknown.isEmpty())
        return fail(FailureKind::BadArgument,
                    QStringLiteral("Unknown options keys: %1").arg(unknown.join(',')));
    return options;
}

/// What is wrong with the answer to "grabObjectScreenshot", and its picture.
Outcome<QImage> grabObjectScreenshot(const SharedPtr<Object>& object, const GrabOptions& options) {
    const QString name = QStringLiteral("grabObjectScreenshot");
    const auto failure = [&name](const QString& what) {
        return fail(FailureKind::Failed,
                    QStringLiteral("%1: calling %1 returned %2").arg(name, what));
    };
    const QVariant answer = Inspector::self()->nativeRequest(
        name, {argumentValue(object), options.flags, options.delay});
    const QString lastError = Inspector::self()->lastError();
    if (answer.isValid() && answer.isNull())
        return failure(QStringLiteral("null variant! ") + lastError);
    if (!answer.isValid())
        return failure(QStringLiteral("invalid variant! ") + lastError);
    if (answer.userType() != QMetaType::QVariantMap)
        return failure(QStringLiteral("non-screenshot variant!"));
    const QImage image = Screenshot::fromVariant(answer).image();
    if (image.isNull())
        return failure(QStringLiteral("an invalid image!"));
    return image;
}

/// The picture with the object's place, as far as that is known.
SharedPtr<NativeScriptObject> placedPicture(const QImage& image, RunnerInterface* runner,
                                            const SharedPtr<Object>& object) {
    const SharedPtr<Object> place = runner->objectGlobalBounds(object);
    const QRect bounds = unwrapRemoteScreenRectangleAsQRect(place);
    if (!place || bounds.isEmpty())
        return {new ImageScriptObject(image)};
    const double scale = static_cast<double>(image.width()) / bounds.width();
    const QPoint origin(qRound(bounds.left() * scale), qRound(bounds.top() * scale));
    return {new ScreenshotScriptObject(image, origin, scale)};
}

/// The arguments of objectGrabScreenshot() in order, or what is wrong with them.
Outcome<GrabOptions> grabArguments(const ScriptContext& context) {
    const auto bad = [](const char* text) {
        return fail(FailureKind::BadArgument, QString::fromLatin1(text));
    };
    if (!context.argument(0) || !context.argument(0)->isObject() ||
        !context.argument(0)->toObject())
        return bad("Expected object reference argument");
    if (context.argumentCount() > 2)
        return bad("Expected at most two arguments");
    if (!context.argument(1))
        return GrabOptions();
    if (!context.argument(1)->isMap())
        return bad("The options parameter must be a map");
    return readGrabOptions(context.argument(1)->toMap());
}

}  // namespace

bool grabDesktopScreenshot(ScriptContext* context) {
    const QVariant picture =
        Inspector::self()->nativeRequest(QStringLiteral("desktopScreenshot"), {});
    const Screenshot screenshot = Screenshot::fromVariant(picture);
    // The spelling of both texts is meant.
    if (!picture.isValid())
        context->setError("The desktopScreensot call returned an invalid screenshot");
    else if (screenshot.image().isNull())
        context->setError("The desktopScreensot call returned an invalid image");
    else
        context->setResult(context->createNative({new ScreenshotScriptObject(screenshot)}));
    return !context->hasError();
}

void objectGrabScreenshot(ScriptContext* context) {
    // 1. The object, and 2. the options.
    const Outcome<GrabOptions> options = grabArguments(*context);
    if (!options) {
        context->setError(options.error().text);
        return;
    }
    const SharedPtr<Object> object = context->argument(0)->toObject();
    // 3. The picture.
    const Outcome<QImage> image = grabObjectScreenshot(object, *options);
    if (!image) {
        context->setError(image.error().text);
        return;
    }
    // 4. and 5. Its place, if it has one.
    if (RunnerInterface* const runner = runnerFor("grabScreenshot"))
        context->setResult(context->createNative(placedPicture(*image, runner, object)));
}

bool saveDesktopScreenshot(ScriptContext* context) {
    // 1. A file name.
    if (context->argumentCount() != 1 || !context->argument(0)->isString()) {
        context->setError("saveDesktopScreenshot() requires a file name argument");
        return false;
    }
    const QString name = context->argument(0)->toString();
    // 2. Its suffix is the format.
    const int point = name.lastIndexOf('.');
    if (point < 0) {
        context->setError(
            "Cannot deduce image format for screenshot to be saved. Specify a suffix like .png");
        return false;
    }
    // 3. The file.
    const QString error =
        saveScreenshotFromCurrentAutContext(QFileInfo(name), name.mid(point + 1).toUpper());
    if (!error.isEmpty())
        context->setError(error);
    return error.isEmpty();
}

}  // namespace Tamrix
