#pragma once

#include <cstddef>

namespace Tamrix {

/// Whether the bytes are UTF-8 without a mistake and hold no byte-order mark: then any part of them
/// that ends at ASCII characters can be decoded by itself, with the same result.
bool isPlainUtf8(const char* bytes, std::size_t size);

}  // namespace Tamrix
