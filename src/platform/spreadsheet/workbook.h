#pragma once

#include <memory>
#include <string>

#include "base/export.h"
#include "platform/spreadsheet/sheet.h"

namespace Swinder {

/// Reserved for workbooks that are not a file of their own; none exist.
class Store;

/// Reads the workbook of an .xls file as spreadsheet programs have written it since 1997: an OLE2
/// compound file with a BIFF8 stream.
class TAMRIX_EXPORT Workbook {
public:
    /// Files above this size, in bytes, are not loaded.
    static constexpr std::size_t maxFileSize = std::size_t(512) << 20;

    /// An empty workbook; `store` is not used and may be null.
    explicit Workbook(Store* store);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    /// Loads a file, whose path is in the local 8-bit encoding, in place of what was there. False
    /// if the file can't be read or isn't such a workbook, or is damaged anywhere that matters:
    /// then the workbook is empty and errorText() tells why. A workbook that is protected by a
    /// password loads, without sheets.
    bool load(const char* path);
    /// Why load() gave false, in UTF-8; empty otherwise.
    const std::string& errorText() const { return m_errorText; }

    /// The file can be opened with a password only.
    bool isPasswordProtected() const;
    /// The sheets that have cells, hidden ones too; charts that fill a sheet don't count.
    unsigned sheetCount() const;
    /// Null when out of range. Owned by the workbook.
    Sheet* sheet(unsigned index);

private:
    struct Contents;

    std::unique_ptr<Contents> m_contents;
    std::string m_errorText;
};

}  // namespace Swinder
