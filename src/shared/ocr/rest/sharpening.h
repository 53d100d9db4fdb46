#pragma once

#include <QByteArray>
#include <QImage>

#include "base/export.h"

namespace Tamrix::OCR {

/// The image in gray, magnified and sharpened. Five columns at each side are black, and so is all
/// of an image that is not larger than that.
TAMRIX_EXPORT QImage sharpened(const QImage& image, double scale);

/// The same as PNG. Throws std::runtime_error when it can't be written.
TAMRIX_EXPORT QByteArray sharpenedPng(const QImage& image, double scale);

}  // namespace Tamrix::OCR
