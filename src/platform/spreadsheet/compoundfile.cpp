#include "platform/spreadsheet/compoundfile.h"

#include <algorithm>
#include <array>
#include <string>

namespace Swinder {

namespace {

constexpr std::array<std::uint8_t, 8> signature = {0xd0, 0xcf, 0x11, 0xe0, 0xa1, 0xb1, 0x1a, 0xe1};

/// Where the numbers of the header stand. The header takes the place of a sector, and at least this
/// many bytes.
constexpr std::size_t headerSize = 512;
namespace Header {
constexpr std::size_t byteOrder = 28;
constexpr std::size_t sectorShift = 30;
constexpr std::size_t miniSectorShift = 32;
constexpr std::size_t directoryStart = 48;
constexpr std::size_t miniStreamCutoff = 56;
constexpr std::size_t miniTableStart = 60;
constexpr std::size_t tableListStart = 68;
constexpr std::size_t tableList = 76;
}  // namespace Header

constexpr std::uint16_t littleEndian = 0xfffe;
constexpr std::uint32_t lastRegularSector = 0xfffffffa;
constexpr std::uint32_t endOfChain = 0xfffffffe;
constexpr std::uint32_t noEntry = 0xffffffff;

constexpr std::size_t entrySize = 128;
constexpr std::size_t maxNameSize = 64;
enum EntryType : std::uint8_t { StreamEntry = 2, RootEntry = 5 };

char16_t lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit - u'A' + u'a') : unit;
}

bool isSameName(std::u16string_view left, std::u16string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char16_t one, char16_t other) { return lower(one) == lower(other); });
}

std::string inSector(const char* what, std::uint32_t sector) {
    return std::string(what) + " (sector " + std::to_string(sector) + ")";
}

}  // namespace

struct CompoundFile::Entry {
    std::u16string name;
    std::uint8_t type = 0;
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t child = 0;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
};

bool CompoundFile::hasSignature(Bytes file) {
    return file.size() >= signature.size() &&
           std::equal(signature.begin(), signature.end(), file.begin());
}

CompoundFile::CompoundFile(Bytes file) : m_file(file) {
    if (!hasSignature(file))
        throw FormatError("it is no OLE2 compound file");
    if (file.size() < headerSize || u16At(file, Header::byteOrder) != littleEndian)
        throw FormatError("the header of the compound file is damaged");
    const unsigned shift = u16At(file, Header::sectorShift);
    if (shift != 9 && shift != 12)
        throw FormatError("the compound file has sectors of an unknown size");
    m_sectorSize = std::size_t(1) << shift;
    // The header counts as one, and the last sector may be cut short.
    m_sectorCount = (file.size() + m_sectorSize - 1) / m_sectorSize - 1;
    readAllocationTable();
    m_directory = readWholeChain(u32At(file, Header::directoryStart));
}

/// The sectors of the allocation table are listed in the header, and from there on in sectors that
/// end with the number of the next one.
void CompoundFile::readAllocationTable() {
    Bytes list = m_file.subspan(Header::tableList, headerSize - Header::tableList);
    std::uint32_t nextList = u32At(m_file, Header::tableListStart);
    std::size_t listsRead = 0;
    while (true) {
        for (std::size_t at = 0; at < list.size(); at += 4) {
            // What the table says of sectors that the file doesn't have is of no use.
            if (m_next.size() >= m_sectorCount)
                return;
            const std::uint32_t number = u32At(list, at);
            if (number > lastRegularSector)
                continue;
            const Bytes table = part(sector(number), 0, m_sectorSize);
            for (std::size_t entry = 0; entry < table.size(); entry += 4)
                m_next.push_back(u32At(table, entry));
        }
        if (nextList > lastRegularSector)
            return;
        if (++listsRead > m_sectorCount)
            throw FormatError(inSector("the list of allocation tables has no end", nextList));
        const Bytes block = part(sector(nextList), 0, m_sectorSize);
        list = block.first(m_sectorSize - 4);
        nextList = u32At(block, m_sectorSize - 4);
    }
}

/// The last sector of a file may be shorter than the others.
Bytes CompoundFile::sector(std::uint32_t number) const {
    if (number >= m_sectorCount)
        throw FormatError(inSector("the compound file lacks a sector", number));
    const std::size_t begin = (std::size_t(number) + 1) * m_sectorSize;
    return m_file.subspan(begin, std::min(m_sectorSize, m_file.size() - begin));
}

/// The sectors from `first` to the end of the chain.
std::vector<std::uint32_t> CompoundFile::wholeChain(std::uint32_t first) const {
    std::vector<std::uint32_t> chain;
    for (std::uint32_t at = first; at != endOfChain; at = m_next[at]) {
        if (at >= m_next.size())
            throw FormatError(inSector("a chain leads out of the compound file", at));
        if (chain.size() == m_sectorCount)
            throw FormatError(inSector("a chain of sectors has no end", at));
        chain.push_back(at);
    }
    return chain;
}

std::vector<std::uint8_t> CompoundFile::readWholeChain(std::uint32_t first) const {
    std::vector<std::uint8_t> bytes;
    for (const std::uint32_t number : wholeChain(first)) {
        const Bytes block = sector(number);
        bytes.insert(bytes.end(), block.begin(), block.end());
    }
    return bytes;
}

/// The first `size` bytes of a chain; a longer chain does no harm.
std::vector<std::uint8_t> CompoundFile::readChain(std::uint32_t first, std::uint64_t size) const {
    if (size > m_file.size())
        throw FormatError("a stream is larger than the compound file");
    std::vector<std::uint8_t> bytes;
    bytes.reserve(size);
    for (std::uint32_t at = first; bytes.size() < size; at = m_next[at]) {
        if (at >= m_next.size())
            throw FormatError(inSector("a chain of sectors ends before its stream", at));
        const std::size_t wanted = std::min<std::size_t>(m_sectorSize, size - bytes.size());
        const Bytes block = part(sector(at), 0, wanted);
        bytes.insert(bytes.end(), block.begin(), block.end());
    }
    return bytes;
}

/// Small streams share the stream of the root entry, in sectors and with a table of their own.
std::vector<std::uint8_t> CompoundFile::readMiniChain(std::uint32_t first,
                                                      std::uint64_t size) const {
    const unsigned shift = u16At(m_file, Header::miniSectorShift);
    if (shift >= 16 || (std::size_t(1) << shift) > m_sectorSize)
        throw FormatError("the compound file has small sectors of an unknown size");
    const std::size_t miniSize = std::size_t(1) << shift;
    const Entry root = entry(0);
    const std::vector<std::uint8_t> mini = readChain(root.start, root.size);
    const std::vector<std::uint8_t> table = readWholeChain(u32At(m_file, Header::miniTableStart));

    if (size > mini.size())
        throw FormatError("a stream is larger than what holds it");
    std::vector<std::uint8_t> bytes;
    bytes.reserve(size);
    std::uint32_t at = first;
    while (bytes.size() < size) {
        const std::size_t wanted = std::min<std::size_t>(miniSize, size - bytes.size());
        const Bytes block = part(mini, std::size_t(at) * miniSize, wanted);
        bytes.insert(bytes.end(), block.begin(), block.end());
        at = u32At(table, std::size_t(at) * 4);
    }
    return bytes;
}

CompoundFile::Entry CompoundFile::entry(std::uint32_t number) const {
    const Bytes bytes = part(m_directory, std::size_t(number) * entrySize, entrySize);
    Entry entry;
    const std::size_t nameSize = std::min<std::size_t>(u16At(bytes, maxNameSize), maxNameSize);
    // The name's size includes its zero.
    for (std::size_t at = 0; at + 2 < nameSize; at += 2)
        entry.name += static_cast<char16_t>(u16At(bytes, at));
    entry.type = bytes[66];
    entry.left = u32At(bytes, 68);
    entry.right = u32At(bytes, 72);
    entry.child = u32At(bytes, 76);
    entry.start = u32At(bytes, 116);
    // With small sectors the upper half is not in use and may hold anything.
    entry.size = m_sectorSize == 512 ? u32At(bytes, 120) : u64At(bytes, 120);
    return entry;
}

std::optional<std::vector<std::uint8_t>> CompoundFile::stream(std::u16string_view name) const {
    // A folder's entries are a tree. Its order isn't relied on, so that a file whose writer sorted
    // in another way can be read too.
    const Entry root = entry(0);
    if (root.type != RootEntry)
        throw FormatError("the compound file has no root folder");
    std::vector<bool> isSeen(m_directory.size() / entrySize);
    std::vector<std::uint32_t> toSee = {root.child};
    while (!toSee.empty()) {
        const std::uint32_t number = toSee.back();
        toSee.pop_back();
        if (number == noEntry)
            continue;
        const Entry found = entry(number);
        if (isSeen[number])
            throw FormatError("the folder of the compound file leads in a circle");
        isSeen[number] = true;
        if (found.type == StreamEntry && isSameName(found.name, name)) {
            const bool isSmall = found.size < u32At(m_file, Header::miniStreamCutoff);
            return isSmall ? readMiniChain(found.start, found.size)
                           : readChain(found.start, found.size);
        }
        toSee.push_back(found.right);
        toSee.push_back(found.left);
    }
    return std::nullopt;
}

}  // namespace Swinder
