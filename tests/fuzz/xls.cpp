// An .xls file: a compound file, or the workbook stream inside it when the first bytes are others.

#include <cstdint>

#include "fuzz/fuzztarget.h"
#include "platform/spreadsheet/biffreader.h"
#include "platform/spreadsheet/compoundfile.h"

using namespace Swinder;

namespace {

void visit(Sheet& sheet) {
    constexpr unsigned rows = 20;
    constexpr unsigned columns = 8;
    for (unsigned row = 0; row < rows; ++row) {
        for (unsigned column = 0; column < columns; ++column) {
            const Cell* const cell = sheet.cell(column, row, false);
            const UString text = cell ? cell->value().asString() : UString();
            // Touches both ends of the text.
            if (text.length() > 0)
                fuzzRequire(text.data()[0] + text.data()[text.length() - 1] >= 0, "it is there");
        }
    }
}

}  // namespace

int fuzzTarget(const std::uint8_t* data, std::size_t size) {
    const Bytes input(data, size);
    BiffContents contents;
    try {
        if (!CompoundFile::hasSignature(input))
            readBiff(input, contents);
        else if (const auto stream = CompoundFile(input).stream(u"Workbook"))
            readBiff(*stream, contents);
    } catch (const FormatError&) {
        return 0;
    }
    fuzzRequire(!contents.isPasswordProtected || contents.sheets.empty(), "a password hides all");
    for (std::size_t i = 0; i < contents.sheets.size() && i < 3; ++i)
        visit(contents.sheets[i]);
    return 0;
}
