#pragma once

#include <vector>

#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"

namespace Tamrix::Test {

/// The recording result sink: keeps every entry of a run for a test to look at.
class RecordingReport : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override { entries.push_back(entry); }

    /// The entries of kind Result, in order.
    std::vector<ReportEntry> results() const {
        std::vector<ReportEntry> found;
        for (const ReportEntry& entry : entries) {
            if (entry.kind == ReportEntry::Kind::Result)
                found.push_back(entry);
        }
        return found;
    }

    std::vector<ReportEntry> entries;
};

}  // namespace Tamrix::Test
