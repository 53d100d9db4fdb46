#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/spreadsheet/value.h"

namespace Swinder {

/// Keeps texts in a few large blocks that stay where they are. Never gives a text back.
class StringPool {
public:
    /// Room for `length` UTF-16 units, to be filled by the caller.
    std::uint16_t* allocate(std::size_t length) {
        if (length > m_left) {
            m_left = length > blockLength ? length : blockLength;
            m_blocks.push_back(std::make_unique_for_overwrite<std::uint16_t[]>(m_left));
            m_next = m_blocks.back().get();
        }
        std::uint16_t* const text = m_next;
        m_next += length;
        m_left -= length;
        return text;
    }

private:
    static constexpr std::size_t blockLength = std::size_t(1) << 15;

    std::vector<std::unique_ptr<std::uint16_t[]>> m_blocks;
    std::uint16_t* m_next = nullptr;
    std::size_t m_left = 0;
};

}  // namespace Swinder
