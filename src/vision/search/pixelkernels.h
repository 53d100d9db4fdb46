#pragma once

#include <QtGlobal>

namespace Tamrix::Vision {

/// Bounds of a pixel: each of its bytes lies between those of `low` and `high`, both included. With
/// equal bounds this is one value.
struct PixelBounds {
    quint32 low = 0;
    quint32 high = 0xffffffff;
};

/// Inner loops over rows of pixels, in the form that suits the processor. All forms give the same.
struct PixelKernels {
    /// Stores the indices below `count` at which first[i] equals firstValue and second[i] equals
    /// secondValue, and returns how many. `indices` has room for `count`.
    int (*findEqual)(const quint32* first, quint32 firstValue, const quint32* second,
                     quint32 secondValue, int count, int* indices);
    /// The same for pixels within bounds.
    int (*findWithin)(const quint32* first, PixelBounds firstBounds, const quint32* second,
                      PixelBounds secondBounds, int count, int* indices);
    /// Whether pixels[i] lies within low[i] and high[i] for all i below `count`.
    bool (*allWithin)(const quint32* pixels, const quint32* low, const quint32* high, int count);
};

/// The form for this processor.
const PixelKernels& pixelKernels();
/// The form for any processor of this kind, for tests.
const PixelKernels& basicPixelKernels();

}  // namespace Tamrix::Vision
