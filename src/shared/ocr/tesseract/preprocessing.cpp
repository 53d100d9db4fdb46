#include "shared/ocr/tesseract/preprocessing.h"

#include <cstddef>

#include "shared/ocr/typedexception.h"

namespace Tamrix::Tesseract {

namespace {

// How a picture is sharpened.
constexpr int unsharpHalfWidth = 5;
constexpr float unsharpFraction = 2.5F;

/// Looks whether the recognition is to end, then tells how far it is.
void reportStage(OCR::ProgressReporter* progress, int percent) {
    OCR::throwIfCancelled(progress);
    if (progress)
        progress->report(percent);
}

}  // namespace

QStringList preprocessingProfiles() {
    return {QStringLiteral("default"), QStringLiteral("invert_color"), QStringLiteral("none")};
}

PixHandle toPix(const QImage& image, const QRect& rectangle) {
    const QImage source = image.depth() < 24 ? image.convertToFormat(QImage::Format_ARGB32) : image;
    PixHandle pix = owned(leptonica->pixCreateNoInit(rectangle.width(), rectangle.height(), 32));
    std::uint32_t* line = leptonica->pixGetData(pix.get());
    const int wordsPerLine = leptonica->pixGetWpl(pix.get());
    // What stores its pixels as QRgb is read by lines.
    const bool isPlain =
        source.format() == QImage::Format_RGB32 || source.format() == QImage::Format_ARGB32;
    for (int y = rectangle.top(); y <= rectangle.bottom(); ++y, line += wordsPerLine) {
        const auto* const pixels = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        for (int x = 0; x < rectangle.width(); ++x) {
            const int column = rectangle.left() + x;
            const QRgb color = isPlain ? pixels[column] : source.pixel(column, y);
            const int alpha = source.format() == QImage::Format_RGB32 ? 255 : qAlpha(color);
            leptonica->composeRGBAPixel(qRed(color), qGreen(color), qBlue(color), alpha, line + x);
        }
    }
    return pix;
}

PixHandle preprocess(PixHandle picture, const QString& profile, double scale,
                     OCR::ProgressReporter* progress) {
    if (profile == QLatin1String("none"))
        return picture;
    if (!preprocessingProfiles().contains(profile))
        throw InvalidInputs(QStringLiteral("Unknown preprocessing profile '%1'").arg(profile));
    // 1.
    reportStage(progress, 3);
    // 2. Gray, with the weights that the library thinks best.
    picture = owned(leptonica->pixConvertRGBToGray(picture.get(), 0, 0, 0));
    reportStage(progress, 4);
    // 3. Magnified, and not sharpened yet.
    const auto factor = static_cast<float>(scale);
    picture = owned(leptonica->pixScaleGeneral(picture.get(), factor, factor, 0, 0));
    reportStage(progress, 10);
    // 4. Sharpened.
    picture = owned(leptonica->pixUnsharpMasking(picture.get(), unsharpHalfWidth, unsharpFraction));
    reportStage(progress, 20);
    // 5. Light writing on dark ground becomes dark writing on light ground.
    if (profile == QLatin1String("invert_color")) {
        leptonica->pixInvert(picture.get(), picture.get());
        reportStage(progress, 25);
    }
    return picture;
}

}  // namespace Tamrix::Tesseract
