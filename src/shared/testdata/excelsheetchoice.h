#pragma once

#include <QString>

namespace Tamrix {

class ExcelXmlPart;

/// A sheet of an .xlsx file and where it lies in the archive. Plain data.
struct ExcelSheetChoice {
    QString name;
    /// The part that its number gives, from which it is read.
    QString part;
    /// What the workbook's relationships are asked for; empty for a sheet without it.
    QString relationship;
};

/// The sheet of that name, the first one if it is empty. A choice without a part when there is no
/// such sheet. Throws std::runtime_error when the workbook has no sheets or the sheet no number.
ExcelSheetChoice chooseExcelSheet(const ExcelXmlPart& workbook, const QString& name);

/// The part of the archive that the workbook's relationships name; empty for an unknown one. Throws
/// std::runtime_error as ExcelXmlPart::forEach() does.
QString relatedExcelPart(const ExcelXmlPart& relationships, const QString& relationship);

}  // namespace Tamrix
