#pragma once

#include <QSharedPointer>
#include <cstddef>
#include <new>

namespace Tamrix::Vision {

/// One complex number for each of the four lanes of a pixel.
struct alignas(16) FourLaneComplex {
    float real[4];
    float imaginary[4];
};

/// A shared handle on memory for a number of elements, on a boundary of 16 bytes at least. Throws
/// std::bad_alloc when there is no memory. The elements have no value at first.
template <typename Element>
class KissFFTBuffer {
public:
    /// No memory.
    KissFFTBuffer() = default;
    explicit KissFFTBuffer(std::size_t size)
        : m_data(static_cast<Element*>(
                     ::operator new(size * sizeof(Element), std::align_val_t(alignment))),
                 [](Element* data) { ::operator delete(data, std::align_val_t(alignment)); }),
          m_size(size) {}

    Element* data() const { return m_data.data(); }
    std::size_t size() const { return m_size; }

private:
    static constexpr std::size_t alignment = 64;

    QSharedPointer<Element> m_data;
    std::size_t m_size = 0;
};

}  // namespace Tamrix::Vision
