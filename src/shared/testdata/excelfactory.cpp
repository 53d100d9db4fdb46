#include <QFileInfo>

#include "shared/testdata/exceltestdataset.h"
#include "shared/testdata/excelxmltestdataset.h"

namespace Tamrix {

TestDataSet* TestDataSet::createTestDataSetExcel(const QString& path, const QString& sheet) {
    const QString suffix = QFileInfo(path).suffix();
    if (suffix == QLatin1String("xls"))
        return new ExcelTestDataSet(path, sheet);
    if (suffix == QLatin1String("xlsx"))
        return new ExcelXmlTestDataSet(path, sheet);
    return nullptr;
}

}  // namespace Tamrix
