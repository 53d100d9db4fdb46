#pragma once

#include <QStringList>
#include <vector>

#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"

namespace Tamrix::Test {

/// The recording result sink: keeps every entry of a run for a test to look at.
class RecordingReport : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override { entries.push_back(entry); }

    /// The events of a type, in order.
    template <typename Event>
    std::vector<Event> all() const {
        std::vector<Event> found;
        for (const ReportEntry& entry : entries) {
            if (const auto* event = eventOf<Event>(entry))
                found.push_back(*event);
        }
        return found;
    }

    std::vector<ResultAdded> results() const { return all<ResultAdded>(); }

    /// What kinds of events there were, from one on.
    QStringList kinds(std::size_t from = 0) const {
        static const char* const s_names[std::variant_size_v<ReportEvent>] = {
            "suiteStart", "suiteEnd", "caseStart",   "caseEnd",    "sectionStart",
            "sectionEnd", "result",   "attachment",  "videoStart", "videoEnd",
            "output",     "action",   "environment", "item",       "match"};
        QStringList kinds;
        for (std::size_t index = from; index < entries.size(); ++index)
            kinds += s_names[entries[index].event.index()];
        return kinds;
    }

    std::vector<ReportEntry> entries;
};

}  // namespace Tamrix::Test
