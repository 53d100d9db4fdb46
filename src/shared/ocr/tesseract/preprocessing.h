#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <QStringList>

#include "base/export.h"
#include "shared/ocr/progressreporter.h"
#include "shared/ocr/tesseract/handles.h"

// What happens to a picture before Tesseract sees it.

namespace Tamrix::Tesseract {

/// The names that the option "preprocessing" takes.
TAMRIX_EXPORT QStringList preprocessingProfiles();

/// The part of the image in the rectangle, which lies inside. Other pixels are not looked at.
PixHandle toPix(const QImage& image, const QRect& rectangle);

/// What the profile makes of a picture, magnified by the scale. Throws InvalidInputs for an unknown
/// profile, OperationCancelled when the reporter says so.
PixHandle preprocess(PixHandle picture, const QString& profile, double scale,
                     OCR::ProgressReporter* progress);

}  // namespace Tamrix::Tesseract
