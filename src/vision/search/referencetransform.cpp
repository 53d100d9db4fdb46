#include "vision/search/referencetransform.h"

#include <kiss_fftr.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Tamrix::Vision {
namespace {

constexpr int lanes = 4;
using Spectrum = KissFFTBuffer<FourLaneComplex>;

struct Free {
    void operator()(void* plan) const { kiss_fft_free(plan); }
};
using Plan = std::unique_ptr<kiss_fft_state, Free>;
using RealPlan = std::unique_ptr<kiss_fftr_state, Free>;

Plan plan(int length, bool inverse) {
    Plan made(kiss_fft_alloc(length, inverse ? 1 : 0, nullptr, nullptr));
    if (!made)
        throw std::runtime_error(inverse ? "Failed to initialize kiss iFFT library"
                                         : "Failed to initialize kiss FFT library");
    return made;
}

RealPlan realPlan(int length, bool inverse) {
    RealPlan made(kiss_fftr_alloc(length, inverse ? 1 : 0, nullptr, nullptr));
    if (!made)
        throw std::runtime_error(inverse ? "Failed to initialize kiss iFFT library"
                                         : "Failed to initialize kiss FFT library");
    return made;
}

enum class PixelValue { Opaque, Masked, Squared };

FourLanes lanesOf(QRgb pixel, PixelValue kind) {
    if (kind == PixelValue::Masked && qAlpha(pixel) < 128)
        return {};
    FourLanes value = {{1, static_cast<float>(qBlue(pixel) + 1),
                        static_cast<float>(qGreen(pixel) + 1),
                        static_cast<float>(qRed(pixel) + 1)}};
    if (kind == PixelValue::Squared) {
        for (float& lane : value.values)
            lane *= lane;
    }
    return value;
}

// The library of Debian knows one float at a time: each lane goes through it on its own.
void transformColumns(Spectrum& buffer, QSize size, bool inverse) {
    const int stride = size.width() / 2 + 1;
    const Plan column = plan(size.height(), inverse);
    std::vector<kiss_fft_cpx> from(size.height());
    std::vector<kiss_fft_cpx> to(size.height());
    for (int x = 0; x < stride; ++x) {
        for (int lane = 0; lane < lanes; ++lane) {
            FourLaneComplex* const top = buffer.data() + x;
            for (int y = 0; y < size.height(); ++y) {
                const FourLaneComplex& value = top[std::ptrdiff_t(y) * stride];
                from[y] = {value.real[lane], value.imaginary[lane]};
            }
            kiss_fft(column.get(), from.data(), to.data());
            for (int y = 0; y < size.height(); ++y) {
                FourLaneComplex& value = top[std::ptrdiff_t(y) * stride];
                value.real[lane] = to[y].r;
                value.imaginary[lane] = to[y].i;
            }
        }
    }
}

Spectrum imageSpectrum(const QImage& image, QSize size, PixelValue kind) {
    const int stride = size.width() / 2 + 1;
    Spectrum buffer(std::size_t(stride) * size.height());
    // 1. The rows, filled up with zeros.
    const RealPlan rowPlan = realPlan(size.width(), false);
    std::vector<float> row(size.width());
    std::vector<kiss_fft_cpx> spectrum(stride);
    for (int y = 0; y < std::min(image.height(), size.height()); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
        FourLaneComplex* const to = buffer.data() + std::ptrdiff_t(y) * stride;
        for (int lane = 0; lane < lanes; ++lane) {
            std::fill(row.begin(), row.end(), 0.0F);
            for (int x = 0; x < std::min(image.width(), size.width()); ++x)
                row[x] = lanesOf(line[x], kind).values[lane];
            kiss_fftr(rowPlan.get(), row.data(), spectrum.data());
            for (int x = 0; x < stride; ++x) {
                to[x].real[lane] = spectrum[x].r;
                to[x].imaginary[lane] = spectrum[x].i;
            }
        }
    }
    // 2. No transform for the rows below the image.
    if (image.height() < size.height()) {
        FourLaneComplex* const below = buffer.data() + std::ptrdiff_t(image.height()) * stride;
        std::fill(below, buffer.data() + buffer.size(), FourLaneComplex{});
    }
    // 3. The columns.
    transformColumns(buffer, size, false);
    return buffer;
}

void multiplyByConjugate(const Spectrum& image, const Spectrum& needle, Spectrum& product,
                         bool isMask) {
    for (std::size_t i = 0; i < product.size(); ++i) {
        const FourLaneComplex a = image.data()[i];
        const FourLaneComplex b = needle.data()[i];
        FourLaneComplex& result = product.data()[i];
        for (int lane = 0; lane < lanes; ++lane) {
            const int other = isMask ? 0 : lane;
            result.real[lane] =
                a.real[lane] * b.real[other] + a.imaginary[lane] * b.imaginary[other];
            result.imaginary[lane] =
                a.imaginary[lane] * b.real[other] - a.real[lane] * b.imaginary[other];
        }
    }
}

}  // namespace

Spectrum compute_image_fft(const QImage& image, QSize size) {
    return imageSpectrum(image, size, PixelValue::Opaque);
}

Spectrum compute_image_fft_alpha(const QImage& image, QSize size) {
    return imageSpectrum(image, size, PixelValue::Masked);
}

Spectrum compute_image_fft_squared(const QImage& image, QSize size) {
    return imageSpectrum(image, size, PixelValue::Squared);
}

Spectrum compute_ifft(Spectrum& buffer, QSize size) {
    // 1. The columns.
    transformColumns(buffer, size, true);
    // 2. The rows, packed together downwards: a row of values is no longer than one of the
    // spectrum.
    const int stride = size.width() / 2 + 1;
    const RealPlan rowPlan = realPlan(size.width(), true);
    std::vector<kiss_fft_cpx> spectrum(stride);
    std::vector<float> row(size.width());
    std::vector<FourLanes> packed(size.width());
    for (int y = 0; y < size.height(); ++y) {
        const FourLaneComplex* const from = buffer.data() + std::ptrdiff_t(y) * stride;
        for (int lane = 0; lane < lanes; ++lane) {
            for (int x = 0; x < stride; ++x)
                spectrum[x] = {from[x].real[lane], from[x].imaginary[lane]};
            kiss_fftri(rowPlan.get(), spectrum.data(), row.data());
            for (int x = 0; x < size.width(); ++x)
                packed[x].values[lane] = row[x];
        }
        auto* const to = reinterpret_cast<FourLanes*>(buffer.data());
        std::copy(packed.begin(), packed.end(), to + std::ptrdiff_t(y) * size.width());
    }
    return buffer;
}

Spectrum crossCorrelation(const Spectrum& image, const Spectrum& needle, QSize size) {
    Spectrum product(needle.size());
    multiplyByConjugate(image, needle, product, false);
    return compute_ifft(product, size);
}

Spectrum crossCorrelationReuse(const Spectrum& image, Spectrum& needle, QSize size) {
    multiplyByConjugate(image, needle, needle, false);
    return compute_ifft(needle, size);
}

Spectrum maskCorrelation(const Spectrum& image, const Spectrum& needle, QSize size) {
    Spectrum product(needle.size());
    multiplyByConjugate(image, needle, product, true);
    return compute_ifft(product, size);
}

FourLanes sqrt(const FourLanes& lanesToRoot) {
    FourLanes roots;
    for (int lane = 0; lane < lanes; ++lane)
        roots.values[lane] = std::sqrt(lanesToRoot.values[lane]);
    return roots;
}

}  // namespace Tamrix::Vision
