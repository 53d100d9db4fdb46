#include "shared/testdata/testdataset.h"

namespace Tamrix {

TestDataSet* TestDataSet::createTestDataSetExcel(const QString& /*path*/,
                                                 const QString& /*sheet*/) {
    return nullptr;  // no reader yet
}

}  // namespace Tamrix
