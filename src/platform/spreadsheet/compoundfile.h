#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/spreadsheet/bytes.h"

namespace Swinder {

/// An OLE2 compound file: a small file system of sectors inside one file, chained by an allocation
/// table. Every number in it is checked, so that a damaged file costs no more time and memory than
/// its size is worth.
class CompoundFile {
public:
    /// Reads the tables and the directory. The bytes are not copied and must stay.
    /// Throws FormatError.
    explicit CompoundFile(Bytes file);

    static bool hasSignature(Bytes file);

    /// The contents of a stream of the root folder, nothing when there is no such stream; letter
    /// case doesn't count. Throws FormatError when the folder or the stream's chain is damaged.
    std::optional<std::vector<std::uint8_t>> stream(std::u16string_view name) const;

private:
    using Table = std::vector<std::uint32_t>;
    struct Entry;

    void readAllocationTable();
    Bytes sector(std::uint32_t number) const;
    std::vector<std::uint32_t> wholeChain(std::uint32_t first) const;
    std::vector<std::uint8_t> readWholeChain(std::uint32_t first) const;
    std::vector<std::uint8_t> readChain(std::uint32_t first, std::uint64_t size) const;
    std::vector<std::uint8_t> readMiniChain(std::uint32_t first, std::uint64_t size) const;
    Entry entry(std::uint32_t number) const;

    Bytes m_file;
    std::size_t m_sectorSize = 0;
    std::size_t m_sectorCount = 0;
    Table m_next;
    std::vector<std::uint8_t> m_directory;
};

}  // namespace Swinder
