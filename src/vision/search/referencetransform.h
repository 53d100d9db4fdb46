#pragma once

#include <QImage>
#include <QSize>

#include "vision/search/kissfftbuffer.h"

/// The transforms of the reference correlation, by the KissFFT library, for all four lanes of a
/// pixel: {1, blue + 1, green + 1, red + 1}. Spectra hold size.width() / 2 + 1 elements in a row.
/// All functions throw std::bad_alloc when there is no memory, and a std::runtime_error when the
/// library can't be set up.
namespace Tamrix::Vision {

/// One value for each lane.
struct alignas(16) FourLanes {
    float values[4];
};

/// The transform of the image in the upper left corner of an area of this size, both lengths even.
KissFFTBuffer<FourLaneComplex> compute_image_fft(const QImage& image, QSize size);
/// The same with all lanes 0 where the alpha is below 128.
KissFFTBuffer<FourLaneComplex> compute_image_fft_alpha(const QImage& image, QSize size);
/// The same with all lanes squared.
KissFFTBuffer<FourLaneComplex> compute_image_fft_squared(const QImage& image, QSize size);

/// The inverse, in place: afterwards the buffer holds values, size.width() in a row, all too large
/// by the number of elements of the area.
KissFFTBuffer<FourLaneComplex> compute_ifft(KissFFTBuffer<FourLaneComplex>& buffer, QSize size);

/// The inverse transform of the image's spectrum times the conjugate of the needle's.
KissFFTBuffer<FourLaneComplex> crossCorrelation(const KissFFTBuffer<FourLaneComplex>& image,
                                                const KissFFTBuffer<FourLaneComplex>& needle,
                                                QSize size);
/// The same in the memory of the needle's spectrum, which is lost.
KissFFTBuffer<FourLaneComplex> crossCorrelationReuse(const KissFFTBuffer<FourLaneComplex>& image,
                                                     KissFFTBuffer<FourLaneComplex>& needle,
                                                     QSize size);

/// The inverse transform of the image's spectrum times the conjugate of the needle's lane 0, which
/// is taken for all lanes.
KissFFTBuffer<FourLaneComplex> maskCorrelation(const KissFFTBuffer<FourLaneComplex>& image,
                                               const KissFFTBuffer<FourLaneComplex>& needle,
                                               QSize size);

/// The values that compute_ifft() left.
inline const FourLanes* valuesOf(const KissFFTBuffer<FourLaneComplex>& buffer) {
    return reinterpret_cast<const FourLanes*>(buffer.data());
}

/// The root of each lane.
FourLanes sqrt(const FourLanes& lanes);

}  // namespace Tamrix::Vision
