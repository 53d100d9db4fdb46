#pragma once

#include "shared/testdata/testdataset.h"

namespace Tamrix {

/// A sheet of an .xlsx file as a table: its first row is the header. Read-only. Values are as the
/// file stores them, so that a date is a number and a truth value 0 or 1.
class TAMRIX_EXPORT ExcelXmlTestDataSet : public TestDataSet {
public:
    static constexpr unsigned maxColumns = 16384;
    static constexpr unsigned maxRows = 1048576;
    /// A table with more values than this is not read to its end: cells that a row leaves out take
    /// memory all the same. Rows that are left out as a whole don't count.
    static constexpr qint64 maxValues = qint64(1) << 25;

    /// Reads the sheet of that name, the first one if it is empty. What goes wrong is told on
    /// stderr and leaves the table as far as it was read, incomplete. Throws nothing.
    ExcelXmlTestDataSet(const QString& path, const QString& sheet);
};

}  // namespace Tamrix
