#include "vision/search/haystack.h"

#include <kiss_fft.h>

#include <QMutexLocker>
#include <algorithm>

#include "vision/search/imagelookup.h"
#include "vision/search/referencetransform.h"

namespace Tamrix::Vision::BasicImageLookup {
namespace {

// Even and no less than the length.
int transformLength(int length) {
    return 2 * kiss_fft_next_fast_size(std::max(1, (length + 1) / 2));
}

}  // namespace

Haystack::Haystack(const QImage& image, const SearchRegion& region)
    : m_image(searchable(image)),
      m_region(region),
      m_boundingBox(region.boundingBox() & image.rect()),
      m_fftSize(transformLength(m_boundingBox.width()), transformLength(m_boundingBox.height())) {}

Haystack::~Haystack() {
    const auto finish = [](bool isStarted, const auto& future) {
        if (isStarted)
            future.waitForFinished();
    };
    finish(m_imageFFTStarted, m_imageFFTFuture);
    finish(m_imageSquaredFFTStarted, m_imageSquaredFFTFuture);
    finish(m_cumulativeSumsStarted, m_cumulativeSumsFuture);
}

QRect Haystack::positionsOf(QSize needle) const {
    if (needle.isEmpty() || m_boundingBox.isEmpty())
        return {};
    return {m_boundingBox.topLeft(), m_boundingBox.size() - needle + QSize(1, 1)};
}

Future<KissFFTBuffer<FourLaneComplex>> Haystack::imageFFT() {
    const QMutexLocker lock(&m_mutex);
    if (!m_imageFFTStarted) {
        m_imageFFTFuture = run(getImageFFT, m_image.copy(m_boundingBox), m_fftSize);
        m_imageFFTStarted = true;
    }
    return m_imageFFTFuture;
}

Future<KissFFTBuffer<FourLaneComplex>> Haystack::imageSquaredFFT() {
    const QMutexLocker lock(&m_mutex);
    if (!m_imageSquaredFFTStarted) {
        m_imageSquaredFFTFuture = run(getImageSquaredFFT, m_image.copy(m_boundingBox), m_fftSize);
        m_imageSquaredFFTStarted = true;
    }
    return m_imageSquaredFFTFuture;
}

Future<QVector<PerChannel<double>>> Haystack::cumulativeSums() {
    const QMutexLocker lock(&m_mutex);
    if (!m_cumulativeSumsStarted) {
        m_cumulativeSumsFuture = run(getCumulativeSums, m_image.copy(m_boundingBox));
        m_cumulativeSumsStarted = true;
    }
    return m_cumulativeSumsFuture;
}

const SearchPicture& Haystack::picture() {
    const QMutexLocker lock(&m_mutex);
    if (!m_picture)
        m_picture = std::make_unique<SearchPicture>(m_image, m_boundingBox);
    return *m_picture;
}

KissFFTBuffer<FourLaneComplex> Haystack::getImageFFT(const QImage& image, QSize size) {
    return compute_image_fft(image, size);
}

KissFFTBuffer<FourLaneComplex> Haystack::getImageSquaredFFT(const QImage& image, QSize size) {
    return compute_image_fft_squared(image, size);
}

QVector<PerChannel<double>> Haystack::getCumulativeSums(const QImage& image) {
    const int stride = image.width() + 1;
    QVector<PerChannel<double>> sums(stride * (image.height() + 1));
    for (int y = 1; y <= image.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y - 1));
        PerChannel<double>* const row = sums.data() + std::ptrdiff_t(y) * stride;
        const PerChannel<double>* const above = row - stride;
        const auto sum = [](double left, double up, double corner, int channel) {
            return left + up - corner + double(channel + 1) * (channel + 1);
        };
        for (int x = 1; x <= image.width(); ++x) {
            const QRgb pixel = line[x - 1];
            row[x].r = sum(row[x - 1].r, above[x].r, above[x - 1].r, qRed(pixel));
            row[x].g = sum(row[x - 1].g, above[x].g, above[x - 1].g, qGreen(pixel));
            row[x].b = sum(row[x - 1].b, above[x].b, above[x - 1].b, qBlue(pixel));
        }
    }
    return sums;
}

}  // namespace Tamrix::Vision::BasicImageLookup
