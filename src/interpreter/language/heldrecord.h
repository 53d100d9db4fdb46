#pragma once

#include <algorithm>
#include <utility>

#include "base/shared.h"
#include "shared/testdata/testdataset.h"

namespace Tamrix {

/// A row of a data set as an object of a script holds it: it keeps the set alive.
struct HeldRecord : Shared {
    HeldRecord(SharedPtr<TestDataSet> owner, const TestDataRecord* row)
        : set(std::move(owner)), record(row) {}

    /// The number of its columns: of those that a short row lacks the values are empty texts.
    int width() const {
        const TestDataRecord* const header = set->header();
        return std::max(record->count(), header ? header->count() : 0);
    }

    SharedPtr<TestDataSet> set;
    const TestDataRecord* record;
};

}  // namespace Tamrix
