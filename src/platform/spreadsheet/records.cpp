#include "platform/spreadsheet/records.h"

#include <algorithm>

namespace Swinder {

namespace {

constexpr std::size_t headerSize = 4;
constexpr std::uint8_t isWideOption = 1;

}  // namespace

Record RecordReader::next() {
    const std::size_t begin = m_offset;
    const std::uint16_t size = u16At(m_stream, begin + 2);
    const Record record = {RecordType(u16At(m_stream, begin)),
                           part(m_stream, begin + headerSize, size), begin};
    m_offset = begin + headerSize + size;
    return record;
}

std::vector<Bytes> RecordReader::withContinuations(const Record& record) {
    std::vector<Bytes> parts = {record.data};
    while (m_stream.size() - m_offset >= headerSize &&
           RecordType(u16At(m_stream, m_offset)) == RecordType::Continue)
        parts.push_back(next().data);
    return parts;
}

/// Moves on to the part that holds the next byte, if there is one.
bool ContinuedData::atEnd() {
    while (m_part < m_parts.size() && m_at == m_parts[m_part].size()) {
        ++m_part;
        m_at = 0;
    }
    return m_part == m_parts.size();
}

std::uint8_t ContinuedData::u8() {
    if (atEnd())
        throw FormatError("a record ends too early");
    return m_parts[m_part][m_at++];
}

std::uint16_t ContinuedData::u16() {
    const unsigned low = u8();
    return static_cast<std::uint16_t>(low | unsigned(u8()) << 8U);
}

std::uint32_t ContinuedData::u32() {
    const std::uint32_t low = u16();
    return low | std::uint32_t(u16()) << 16U;
}

void ContinuedData::skip(std::size_t size) {
    while (size > 0) {
        if (atEnd())
            throw FormatError("a record ends too early");
        const std::size_t step = std::min(size, rest().size());
        m_at += step;
        size -= step;
    }
}

UString ContinuedData::characters(std::size_t length, std::uint8_t options, StringPool& pool) {
    // Room is taken for what is there only, whatever the length says.
    std::size_t available = 0;
    for (std::size_t at = m_part; at < m_parts.size() && available < length; ++at)
        available += m_parts[at].size();
    if (available < length)
        throw FormatError("a text is longer than its record");

    std::uint16_t* const text = pool.allocate(length);
    bool isWide = (options & isWideOption) != 0;
    std::size_t done = 0;
    while (done < length) {
        const bool isPartDone = m_part < m_parts.size() && m_at == m_parts[m_part].size();
        if (atEnd())
            throw FormatError("a text is longer than its record");
        if (isPartDone) {
            // Each continuation begins with options of its own: the width may change.
            isWide = (u8() & isWideOption) != 0;
            continue;
        }
        const std::size_t width = isWide ? 2 : 1;
        const Bytes bytes = rest();
        const std::size_t count = std::min(length - done, bytes.size() / width);
        if (count == 0)
            throw FormatError("a character is cut in two");
        for (std::size_t i = 0; i < count; ++i)
            text[done + i] = isWide
                                 ? static_cast<std::uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8)
                                 : bytes[i];
        m_at += count * width;
        done += count;
    }
    return UString(text, static_cast<int>(length));
}

}  // namespace Swinder
