#pragma once

#include "base/outcome.h"
#include "platform/verification/verificationpoint.h"

namespace Tamrix {

class TestDataRecord;

/// The point with the values of its columns taken from a record, which may be null. Fails when a
/// column is expected that the record does not have.
Outcome<VerificationPoint> withRecord(VerificationPoint point, const TestDataRecord* record);

}  // namespace Tamrix
