#pragma once

#include <cstdint>
#include <vector>

#include "platform/spreadsheet/bytes.h"
#include "platform/spreadsheet/stringpool.h"

namespace Swinder {

/// The records that are read; see the sections of the same names in the format's documentation.
enum class RecordType : std::uint16_t {
    Formula = 0x0006,
    EndOfFile = 0x000a,
    FilePass = 0x002f,
    Continue = 0x003c,
    BoundSheet = 0x0085,
    MulRk = 0x00bd,
    RString = 0x00d6,
    SharedStrings = 0x00fc,
    LabelSst = 0x00fd,
    Number = 0x0203,
    Label = 0x0204,
    BoolErr = 0x0205,
    String = 0x0207,
    FormulaOfExcel3 = 0x0206,  ///< as far as it is read, like Formula; some writers still use it
    Rk = 0x027e,
    FormulaOfExcel4 = 0x0406,  ///< likewise
    BeginOfFile = 0x0809,
};

struct Record {
    RecordType type;
    Bytes data;
    std::size_t offset;  ///< of the record in its stream
};

/// The records of a stream, one after the other.
class RecordReader {
public:
    explicit RecordReader(Bytes stream, std::size_t offset = 0)
        : m_stream(stream), m_offset(offset) {}

    /// The next record. Throws FormatError when the stream ends before the record does.
    Record next();
    /// The data of `record`, which next() has given last, followed by that of the records that
    /// continue it; these are passed over.
    std::vector<Bytes> withContinuations(const Record& record);
    /// Where the next record begins.
    std::size_t offset() const { return m_offset; }

private:
    Bytes m_stream;
    std::size_t m_offset;
};

/// Reads data that goes on over several records. Throws FormatError beyond the end.
class ContinuedData {
public:
    explicit ContinuedData(std::vector<Bytes> parts) : m_parts(std::move(parts)) {}

    bool atEnd();
    std::uint8_t u8();
    std::uint16_t u16();
    std::uint32_t u32();
    void skip(std::size_t size);
    /// The text of `length` characters that follows its option byte, here given as `options`. What
    /// follows a text of several fonts or with a pronunciation is not passed over.
    UString characters(std::size_t length, std::uint8_t options, StringPool& pool);

private:
    Bytes rest() const { return m_parts[m_part].subspan(m_at); }

    std::vector<Bytes> m_parts;
    std::size_t m_part = 0;
    std::size_t m_at = 0;
};

}  // namespace Swinder
