#pragma once

#include <QImage>
#include <QPoint>
#include <QTransform>

#include "base/export.h"
#include "interpreter/bridge/nativescripttype.h"
#include "vision/screenshot/screenshot.h"

namespace Tamrix {

/// Whether both have the same pixels. Images of different formats are compared as ARGB32.
TAMRIX_EXPORT bool arePixelsEqual(QImage left, QImage right);

/// A picture in a script's hands, the script class Image: plain pixels, which the script may
/// change. Copies share them until then. Script thread only.
class TAMRIX_EXPORT ImageScriptObject : public NativeScriptObject {
public:
    explicit ImageScriptObject(const QImage& pixels) : image(pixels) {}

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

    QImage image;

private:
    static char s_marker;
};

/// A picture that also knows its place on the screen, the script class Screenshot.
class TAMRIX_EXPORT ScreenshotScriptObject : public ImageScriptObject {
public:
    /// `origin` is the position of the image's first pixel, in pixels of the image; `scale` counts
    /// these for each native unit.
    ScreenshotScriptObject(const QImage& pixels, QPoint origin, double scale);
    /// Takes the image alone. That the transform becomes the identity is meant: scripts count
    /// positions in a picture of the desktop by its pixels.
    explicit ScreenshotScriptObject(const Screenshot& screenshot);

    static NativeScriptType type();
    static void* staticTypeId();
    void* typeId() const override { return staticTypeId(); }

    /// Image and transform, with a density of 1.
    Screenshot screenshot() const { return Screenshot(image, transform); }

    /// From image to native coordinates.
    QTransform transform;

private:
    static char s_marker;
};

}  // namespace Tamrix
