#pragma once

#include <utility>

#include "base/shared.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

/// A row of a data set as an object of a script holds it: it keeps the set alive.
struct HeldRecord : Shared {
    HeldRecord(SharedPtr<TestDataSet> owner, const TestDataRecord* row)
        : set(std::move(owner)), record(row) {}

    SharedPtr<TestDataSet> set;
    const TestDataRecord* record;
};

}  // namespace Tamrix
