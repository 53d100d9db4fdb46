#pragma once

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

namespace Swinder::Test {

using namespace std::string_literals;

template <typename Number>
std::string bytesOf(Number number) {
    std::string bytes;
    for (unsigned i = 0; i < sizeof(Number); ++i)
        bytes += static_cast<char>(number >> (8 * i));
    return bytes;
}
inline std::string u16(unsigned number) {
    return bytesOf(static_cast<std::uint16_t>(number));
}
inline std::string u32(std::uint32_t number) {
    return bytesOf(number);
}
inline std::string f64(double number) {
    return bytesOf(std::bit_cast<std::uint64_t>(number));
}

inline std::string record(unsigned type, const std::string& data) {
    return u16(type) + u16(static_cast<unsigned>(data.size())) + data;
}
/// A record of a cell of format 0.
inline std::string cell(unsigned type, unsigned row, unsigned column, const std::string& data) {
    return record(type, u16(row) + u16(column) + u16(0) + data);
}
inline std::string beginning(unsigned kind, unsigned version = 0x0600) {
    return record(0x0809, u16(version) + u16(kind) + std::string(12, '\0'));
}
inline std::string ending() {
    return record(0x000a, "");
}
inline std::string boundSheet(std::uint32_t offset, const std::string& name, char type = 0) {
    return record(0x0085, u32(offset) + '\0' + type + static_cast<char>(name.size()) + '\0' + name);
}

/// A workbook stream with one sheet "S" of the cells, and further records in the global part.
inline std::string workbookStream(const std::string& cells, const std::string& globals = "") {
    const std::size_t offset = beginning(5).size() + globals.size() + boundSheet(0, "S").size() + 4;
    return beginning(5) + globals + boundSheet(static_cast<std::uint32_t>(offset), "S") + ending() +
           beginning(0x10) + cells + ending();
}

/// Where a compound file says what.
enum class Layout { Plain, Small, TableInList };

/// A compound file with one stream. Sectors: 0 allocation table, 1 directory, 2 table of small
/// sectors or list of allocation tables, 3 and on the stream, up to 125 sectors of 512 bytes.
inline std::string compoundFile(std::string stream, Layout layout = Layout::Plain,
                                const std::string& streamName = "Workbook") {
    constexpr std::size_t sectorSize = 512;
    constexpr std::uint32_t end = 0xfffffffe;
    constexpr std::uint32_t none = 0xffffffff;
    constexpr std::uint32_t special = 0xfffffffd;
    const auto padded = [](std::string text, char with) {
        text.resize((text.size() + sectorSize - 1) / sectorSize * sectorSize, with);
        return text;
    };
    const bool isSmall = layout == Layout::Small;
    // A stream that isn't to be a small one is filled up with records without meaning.
    if (!isSmall && stream.size() < 4096)
        stream.resize(4096);
    const std::size_t size = stream.size();
    stream = padded(stream, '\0');

    const bool isListed = layout == Layout::TableInList;
    std::string header = "\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"s + std::string(16, '\0') + u16(0x3e) +
                         u16(3) + u16(0xfffe) + u16(9) + u16(6) + std::string(10, '\0') + u32(1) +
                         u32(1) + u32(0) + u32(4096) + u32(isSmall ? 2 : end) + u32(isSmall) +
                         u32(isListed ? 2 : end) + u32(isListed) + u32(isListed ? none : 0);
    header.resize(sectorSize, '\xff');

    std::string table = u32(special) + u32(end) + u32(end);
    for (std::size_t number = 1; number <= stream.size() / sectorSize; ++number)
        table += u32(number * sectorSize == stream.size() ? end
                                                          : static_cast<std::uint32_t>(3 + number));

    const auto entry = [](const std::string& name, char type, std::uint32_t child,
                          std::uint32_t start, std::size_t length) {
        std::string bytes;
        for (const char c : name)
            bytes += u16(static_cast<unsigned char>(c));
        bytes.resize(64);
        bytes += u16(static_cast<unsigned>(2 * name.size() + 2)) + type + '\1' + u32(none) +
                 u32(none) + u32(child) + std::string(36, '\0') + u32(start) +
                 u32(static_cast<std::uint32_t>(length)) + u32(0);
        return bytes;
    };
    const std::string directory = entry("Root Entry", 5, 1, isSmall ? 3 : end, isSmall ? size : 0) +
                                  entry(streamName, 2, none, isSmall ? 0 : 3, size);

    std::string smallTable;
    for (std::uint32_t number = 1; isSmall && number <= (size + 63) / 64; ++number)
        smallTable += u32(number * 64 >= size ? end : number);
    // Lists of tables end with the number of the next one.
    std::string list = isListed ? u32(0) + std::string(sectorSize - 8, '\xff') + u32(end) : "";
    const std::string third = padded(smallTable + list, '\xff');
    return header + padded(table, '\xff') + padded(directory, '\0') +
           (third.empty() ? std::string(sectorSize, '\0') : third) + stream;
}

}  // namespace Swinder::Test
