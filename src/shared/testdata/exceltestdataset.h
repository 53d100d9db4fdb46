#pragma once

#include "shared/testdata/testdataset.h"

namespace Swinder {
class Cell;
}

namespace Tamrix {

/// "true" or "false", a number, or a text; "?" for what has no value, which is null too.
TAMRIX_EXPORT QString cellToString(const Swinder::Cell* cell);

/// The table on a sheet of an .xls file. Read-only. It may begin anywhere near the sheet's top left
/// corner, and ends above the first row that is empty; formulas have the results that the file has
/// stored, dates are numbers.
class TAMRIX_EXPORT ExcelTestDataSet : public TestDataSet {
public:
    /// Reads the sheet of that name, the first one if it is empty. What goes wrong is told by a
    /// warning, or on stderr for a sheet that doesn't exist, and leaves the table empty.
    ExcelTestDataSet(const QString& path, const QString& sheet);
};

}  // namespace Tamrix
