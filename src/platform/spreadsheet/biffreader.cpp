#include "platform/spreadsheet/biffreader.h"

#include <algorithm>
#include <bit>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/spreadsheet/records.h"

namespace Swinder {

namespace {

constexpr std::uint16_t biff5 = 0x0500;
constexpr std::uint16_t biff8 = 0x0600;
constexpr std::uint16_t globalsSubstream = 0x0005;
constexpr std::uint16_t worksheetSubstream = 0x0010;
constexpr std::uint8_t worksheetType = 0;

/// Other records number the sheets with 16 bits.
constexpr std::size_t maxSheets = 65535;

/// Options of a text, besides the width.
constexpr std::uint8_t hasPhonetic = 0x04;
constexpr std::uint8_t hasRuns = 0x08;

/// Row, column and format come first in every record of a cell.
constexpr std::size_t cellHeaderSize = 6;

std::string atOffset(const char* what, std::size_t offset) {
    return std::string(what) + " (offset " + std::to_string(offset) + " of the workbook stream)";
}

/// A number of 30 bits, with one bit for its kind and one for "in hundredths".
Value valueOfRk(std::uint32_t rk) {
    constexpr std::uint32_t isHundredths = 1;
    constexpr std::uint32_t isWhole = 2;
    const double number =
        rk & isWhole ? static_cast<std::int32_t>(rk) >> 2
                     : std::bit_cast<double>(std::uint64_t(rk & ~(isHundredths | isWhole)) << 32U);
    return Value::fromNumber(rk & isHundredths ? number / 100 : number);
}

class BiffReader {
public:
    BiffReader(Bytes stream, BiffContents& contents) : m_stream(stream), m_contents(contents) {}

    void read() {
        readGlobals();
        if (m_contents.isPasswordProtected)
            return;
        // In the order of their places, so that sheets that overlap are found out: such a file
        // could make the same records be read any number of times.
        std::vector<SheetPlace> places = m_places;
        std::sort(places.begin(), places.end(),
                  [](const SheetPlace& left, const SheetPlace& right) {
                      return left.offset < right.offset;
                  });
        std::size_t end = 0;
        for (const SheetPlace& place : places) {
            if (place.offset < end)
                throw FormatError(atOffset("two sheets overlap", place.offset));
            end = readSheet(place);
        }
    }

private:
    struct SheetPlace {
        std::size_t offset;
        std::size_t sheet;
    };
    struct SharedString {
        UString text;
        Value::Type type;
    };

    static void requireBegin(const Record& record, std::uint16_t kind) {
        if (record.type != RecordType::BeginOfFile)
            throw FormatError(atOffset("a part of the workbook has no beginning", record.offset));
        const std::uint16_t version = u16At(record.data, 0);
        if (version == biff5)
            throw FormatError(
                "it is a workbook of Excel 5 or 95; only Excel 97 and later are read");
        if (version != biff8)
            throw FormatError(
                atOffset("a part of the workbook is of another version", record.offset));
        if (u16At(record.data, 2) != kind)
            throw FormatError(atOffset("a part of the workbook is of another kind", record.offset));
    }

    void readGlobals() {
        RecordReader records(m_stream);
        requireBegin(records.next(), globalsSubstream);
        for (Record record = records.next(); record.type != RecordType::EndOfFile;
             record = records.next()) {
            switch (record.type) {
                case RecordType::FilePass:
                    // What follows can't be read.
                    m_contents.isPasswordProtected = true;
                    m_contents.sheets.clear();
                    return;
                case RecordType::BoundSheet:
                    readBoundSheet(record);
                    break;
                case RecordType::SharedStrings:
                    readSharedStrings(ContinuedData(records.withContinuations(record)));
                    break;
                default:
                    break;
            }
        }
    }

    void readBoundSheet(const Record& record) {
        ContinuedData data({record.data});
        const std::size_t offset = data.u32();
        data.skip(1);  // whether it is hidden
        if (data.u8() != worksheetType)
            return;
        const std::size_t length = data.u8();
        const std::uint8_t options = data.u8();
        if (m_places.size() == maxSheets)
            throw FormatError("it has too many sheets");
        m_places.push_back({offset, m_contents.sheets.size()});
        m_contents.sheets.emplace_back(data.characters(length, options, m_contents.pool));
    }

    void readSharedStrings(ContinuedData data) {
        data.skip(4);  // how often they are used
        const std::uint32_t count = data.u32();
        // Not every writer counts right; an index beyond the end is found out where it is used.
        m_strings.clear();
        while (m_strings.size() < count && !data.atEnd())
            m_strings.push_back(readString(data, data.u16()));
    }

    /// A text with its options and what they announce.
    SharedString readString(ContinuedData& data, std::size_t length) {
        const std::uint8_t options = data.u8();
        const std::size_t runs = options & hasRuns ? data.u16() : 0;
        const std::size_t phoneticSize = options & hasPhonetic ? data.u32() : 0;
        const UString text = data.characters(length, options, m_contents.pool);
        data.skip(runs * 4);
        data.skip(phoneticSize);
        return {text, runs > 0 ? Value::RichText : Value::String};
    }

    /// Returns where the sheet ends.
    std::size_t readSheet(const SheetPlace& place) {
        m_sheet = &m_contents.sheets[place.sheet];
        m_formula.reset();
        RecordReader records(m_stream, place.offset);
        requireBegin(records.next(), worksheetSubstream);
        // Charts lie in a sheet as parts of their own.
        std::size_t depth = 1;
        while (depth > 0) {
            const Record record = records.next();
            if (record.type == RecordType::BeginOfFile)
                ++depth;
            else if (record.type == RecordType::EndOfFile)
                --depth;
            else if (depth == 1)
                readCell(records, record);
        }
        return records.offset();
    }

    void readCell(RecordReader& records, const Record& record) {
        switch (record.type) {
            case RecordType::Number:
                store(record, Value::fromNumber(std::bit_cast<double>(u64At(record.data, 6))));
                break;
            case RecordType::Rk:
                store(record, valueOfRk(u32At(record.data, 6)));
                break;
            case RecordType::MulRk:
                readMulRk(record);
                break;
            case RecordType::LabelSst:
                readLabelSst(record);
                break;
            case RecordType::Label:
            case RecordType::RString:
                readLabel(records, record);
                break;
            case RecordType::BoolErr:
                store(record, record.data.size() > 7 && record.data[7] != 0
                                  ? Value::fromError(record.data[6])
                                  : Value::fromBoolean(part(record.data, 6, 2)[0] != 0));
                break;
            case RecordType::Formula:
            case RecordType::FormulaOfExcel3:
            case RecordType::FormulaOfExcel4:
                readFormula(record);
                break;
            case RecordType::String:
                readFormulaText(records, record);
                break;
            default:
                // Among the others are BLANK and MULBLANK: formats without a value.
                break;
        }
    }

    void store(const Record& record, const Value& value) {
        store(u16At(record.data, 2), u16At(record.data, 0), value, record.offset);
    }

    void store(unsigned column, unsigned row, const Value& value, std::size_t offset) {
        if (!m_sheet->setValue(column, row, value))
            throw FormatError(atOffset("a cell lies beyond the last column", offset));
    }

    /// Numbers side by side in a row: each with its format, and the last column behind them.
    void readMulRk(const Record& record) {
        constexpr std::size_t numberSize = 6;
        const unsigned row = u16At(record.data, 0);
        const unsigned firstColumn = u16At(record.data, 2);
        const std::size_t count = (record.data.size() - 4) / numberSize;
        if (record.data.size() != 4 + count * numberSize + 2 ||
            u16At(record.data, record.data.size() - 2) + 1U != firstColumn + count)
            throw FormatError(atOffset("a row of numbers has a wrong size", record.offset));
        for (unsigned i = 0; i < count; ++i) {
            const std::uint32_t rk = u32At(record.data, 4 + std::size_t(i) * numberSize + 2);
            store(firstColumn + i, row, valueOfRk(rk), record.offset);
        }
    }

    void readLabelSst(const Record& record) {
        const std::uint32_t index = u32At(record.data, cellHeaderSize);
        if (index >= m_strings.size())
            throw FormatError(atOffset("a cell's shared text doesn't exist", record.offset));
        store(record, Value::fromText(m_strings[index].text, m_strings[index].type));
    }

    void readLabel(RecordReader& records, const Record& record) {
        ContinuedData data(records.withContinuations(record));
        data.skip(cellHeaderSize);
        const std::size_t length = data.u16();
        const std::uint8_t options = data.u8();
        const UString text = data.characters(length, options, m_contents.pool);
        const bool isRich = record.type == RecordType::RString;
        store(record, Value::fromText(text, isRich ? Value::RichText : Value::String));
    }

    /// The result is a number, unless its last two bytes are set: no number has these bits.
    void readFormula(const Record& record) {
        const Bytes result = part(record.data, cellHeaderSize, 8);
        m_formula.reset();
        if (u16At(result, 6) != 0xffff) {
            store(record, Value::fromNumber(std::bit_cast<double>(u64At(result, 0))));
            return;
        }
        switch (result[0]) {
            case 0:
                // The text comes in a record of its own, maybe behind others.
                m_formula = record;
                break;
            case 1:
                store(record, Value::fromBoolean(result[2] != 0));
                break;
            case 2:
                store(record, Value::fromError(result[2]));
                break;
            case 3:
                store(record, Value::fromText(UString(), Value::String));
                break;
            default:
                throw FormatError(atOffset("a formula has an unknown result", record.offset));
        }
    }

    void readFormulaText(RecordReader& records, const Record& record) {
        ContinuedData data(records.withContinuations(record));
        if (!m_formula)
            return;
        const std::size_t length = data.u16();
        const std::uint8_t options = length > 0 ? data.u8() : 0;
        const UString text = data.characters(length, options, m_contents.pool);
        store(*std::exchange(m_formula, std::nullopt), Value::fromText(text, Value::String));
    }

    Bytes m_stream;
    BiffContents& m_contents;
    std::vector<SheetPlace> m_places;
    std::vector<SharedString> m_strings;
    Sheet* m_sheet = nullptr;
    std::optional<Record> m_formula;
};

}  // namespace

void readBiff(Bytes stream, BiffContents& contents) {
    BiffReader(stream, contents).read();
}

}  // namespace Swinder
