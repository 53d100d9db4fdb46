#include "interpreter/generic/searchpictures.h"

#include <json/json.h>

#include "interpreter/bridge/internaldebugger.h"
#include "interpreter/bridge/runnerinterface.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/generic/verdictsupport.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

namespace {

QString oneLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return QString::fromStdString(Json::writeString(builder, value));
}

Json::Value matrixOf(const QTransform& transform) {
    Json::Value matrix(Json::objectValue);
    const struct {
        const char* name;
        double value;
    } members[] = {
        {"m11", transform.m11()}, {"m12", transform.m12()}, {"m21", transform.m21()},
        {"m22", transform.m22()}, {"m31", transform.m31()}, {"m32", transform.m32()},
        {"m33", transform.m33()}, {"m13", transform.m13()}, {"m23", transform.m23()},
    };
    for (const auto& [name, value] : members)
        matrix[name] = value;
    return matrix;
}

/// Opaque and half way to red.
QRgb tinted(QRgb pixel) {
    return qRgb((qRed(pixel) + 255) / 2, qGreen(pixel) / 2, qBlue(pixel) / 2);
}

/// Tints the pixels along the inner edges, each once.
void tintEdges(QImage* image, const QRect& rectangle) {
    const auto tint = [image](int x, int y) { image->setPixel(x, y, tinted(image->pixel(x, y))); };
    for (int x = rectangle.left(); x <= rectangle.right(); ++x) {
        tint(x, rectangle.top());
        if (rectangle.height() > 1)
            tint(x, rectangle.bottom());
    }
    for (int y = rectangle.top() + 1; y < rectangle.bottom(); ++y) {
        tint(rectangle.left(), y);
        if (rectangle.width() > 1)
            tint(rectangle.right(), y);
    }
}

}  // namespace

void addSearchLog(RunnerInterface* runner, ScriptContext* context, const QString& message,
                  const QString& detail) {
    if (TestResult* const result = runner->testResult())
        result->addResult(QDateTime::currentDateTime(), TestResult::Log, message, detail,
                          context->callStackForResult(wantCallStackForResult(TestResult::Log)));
}

void storeScreenshot(RunnerInterface* runner, ScriptContext* context,
                     const Vision::SearchArea& area) {
    // 1. Pixels that can be coloured.
    QImage image = area.image();
    if (image.colorCount() > 0)
        image = image.convertToFormat(QImage::Format_ARGB32);
    // 2. The edges of each rectangle.
    for (const QRect& rectangle : area.region.rectangles()) {
        const QRect part = rectangle & image.rect();
        if (!part.isEmpty())
            tintEdges(&image, part);
    }
    // 3. The result.
    addSearchLog(runner, context,
                 "Captured a screenshot" + TestVP::logScreenshot(runner, TestResult::Log, image));
}

QImage prepareErrorScreenshot(const Vision::SearchArea& area, const InternalDebugger& search) {
    QImage image = area.image();
    image.setText(QStringLiteral("com.brindlark.tamrix.searchRegion"), area.region.description());
    Json::Value data(Json::objectValue);
    data["transform"] = matrixOf(area.transform());
    image.setText(QStringLiteral("com.brindlark.tamrix.screenshot.data"), oneLine(data));
    image.setText(QStringLiteral("com.brindlark.tamrix.%1.state").arg(search.contextName()),
                  oneLine(search.getState()));
    return image;
}

}  // namespace Tamrix
