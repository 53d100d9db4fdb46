#include "shared/ocr/rest/sharpening.h"

#include <QBuffer>
#include <QImageWriter>
#include <QVector>
#include <cmath>
#include <stdexcept>
#include <vector>

#include "shared/ocr/typedexception.h"

namespace Tamrix::OCR {

namespace {

constexpr int taps = 11;
constexpr int border = 5;
constexpr double unsharp5[taps] = {-0.02325,  -0.070005, -0.16496, -0.304258, -0.439283, 3.00351,
                                   -0.439283, -0.304258, -0.16496, -0.070005, -0.02325};

/// Beyond that much memory the picture would be nothing that a service takes.
constexpr double mostPixels = 1e8;

/// A plane of numbers.
struct Plane {
    Plane(int planeWidth, int planeHeight)
        : width(planeWidth), values(std::size_t(planeWidth) * std::size_t(planeHeight)) {}
    double* row(int y) { return values.data() + std::size_t(y) * std::size_t(width); }

    int width;
    std::vector<double> values;
};

void fillGray(const QImage& image, int y, double* gray) {
    const auto* const pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    for (int x = 0; x < image.width(); ++x)
        gray[x] = (qRed(pixels[x]) + qGreen(pixels[x]) + qBlue(pixels[x])) / 3.0;
}

/// The rows of the result, by one sweep that filters along rows and columns.
Plane filtered(const QImage& image) {
    const int width = image.width();
    const int height = image.height();
    Plane output(width, height);
    std::vector<double> gray(static_cast<std::size_t>(width));
    for (int y = 0; y + border < height - border; ++y) {
        fillGray(image, y + border, gray.data());
        for (int x = border; x < width - border; ++x) {
            double value = 0;
            for (int k = 0; k < taps; ++k)
                value += gray[static_cast<std::size_t>(x + k - border)] * unsharp5[k];
            for (int k = 0; k < taps; ++k)
                output.row(y + k)[x] += value * unsharp5[k];
        }
    }
    return output;
}

uchar grayLevel(double value) {
    if (value < 0.01)
        return 0;
    return static_cast<uchar>(std::lround(std::min(value, 254.99)));
}

}  // namespace

QImage sharpened(const QImage& image, double scale) {
    const double width = std::round(image.width() * scale);
    const double height = std::round(image.height() * scale);
    if (width * height > mostPixels)
        throw InvalidInputs(QStringLiteral("The image is too large for a scaleFactor of %1")
                                .arg(QString::number(scale)));
    const QImage magnified =
        image.scaled(int(width), int(height), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
            .convertToFormat(QImage::Format_RGB32);
    if (magnified.isNull())
        return {};
    Plane plane = filtered(magnified);
    QImage result(magnified.size(), QImage::Format_Indexed8);
    QVector<QRgb> grays;
    for (int level = 0; level < 256; ++level)
        grays.append(qRgb(level, level, level));
    result.setColorTable(grays);
    for (int y = 0; y < result.height(); ++y) {
        const double* const values = plane.row(y);
        uchar* const line = result.scanLine(y);
        for (int x = 0; x < result.width(); ++x)
            line[x] = grayLevel(values[x]);
    }
    return result;
}

QByteArray sharpenedPng(const QImage& image, double scale) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "PNG");
    if (!writer.write(sharpened(image, scale)))
        throw std::runtime_error("Failed serializing the image: " +
                                 writer.errorString().toStdString());
    return bytes;
}

}  // namespace Tamrix::OCR
