#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "platform/spreadsheet/formaterror.h"

namespace Swinder {

using Bytes = std::span<const std::uint8_t>;

/// The part of `bytes` from `offset` on; throws FormatError unless it is there as a whole.
inline Bytes part(Bytes bytes, std::size_t offset, std::size_t size) {
    if (offset > bytes.size() || size > bytes.size() - offset)
        throw FormatError("it ends too early");
    return bytes.subspan(offset, size);
}

/// The little-endian unsigned number at `offset`; throws FormatError beyond the end.
template <typename Number>
Number numberAt(Bytes bytes, std::size_t offset) {
    std::uint64_t number = 0;
    unsigned shift = 0;
    for (const std::uint8_t byte : part(bytes, offset, sizeof(Number))) {
        number |= std::uint64_t(byte) << shift;
        shift += 8;
    }
    return static_cast<Number>(number);
}

inline std::uint16_t u16At(Bytes bytes, std::size_t offset) {
    return numberAt<std::uint16_t>(bytes, offset);
}

inline std::uint32_t u32At(Bytes bytes, std::size_t offset) {
    return numberAt<std::uint32_t>(bytes, offset);
}

inline std::uint64_t u64At(Bytes bytes, std::size_t offset) {
    return numberAt<std::uint64_t>(bytes, offset);
}

}  // namespace Swinder
