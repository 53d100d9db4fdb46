#include "platform/testresult/secrets.h"

#include <gtest/gtest.h>

#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

using Test::RecordingReport;

TEST(Secrets, AreHiddenInEachForm) {
    EXPECT_TRUE(Secrets({"", ""}).isEmpty());
    const Secrets secrets({"hunter2", "it's", "hunter2000", ""});
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"Hunter2", "Hunter2"},
        {"(hunter2hunter2)", "(************)"},
        {"hunter2000", "******"},
        {"{text='it\\'s'} it's", "{text='******'} ******"},
    };
    for (const auto& [text, hidden] : rows)
        EXPECT_EQ(secrets.hidden(text), hidden);
}

TEST(SecretsFilter, LeavesThemOutOfAllThatIsTold) {
    RecordingReport report;
    SecretsFilter filter(&report);
    ResultAdded result;
    result.message = result.detail = result.comment = result.explanation = "my pw";
    const ReportEvent events[] = {
        CaseStarted{"pw", "/suite_pw/test.py"},
        SectionStarted{"my pw", "a pw", "step", -1, {}},
        ItemDescribed{"Given ", "", "|pw|"},
        ActionEnded{"fill", "{name='f'}, \"pw\"", 5, false, {}},
        OutputWritten{OutputStream::StandardOutput, "pw\n"},
        result,
        SectionEnded{"my pw", "a pw", "step", {}},
    };
    const QDateTime time = QDateTime::currentDateTime();
    for (const ReportEvent& event : events)
        filter.add({time, event});
    for (size_t index = 0; index < std::size(events); ++index)
        EXPECT_TRUE(report.entries[index].event == events[index]) << "nothing is secret yet";

    filter.setSecrets(Secrets({"pw"}));
    report.entries.clear();
    for (const ReportEvent& event : events)
        filter.add({time, event});
    result.message = result.detail = result.comment = result.explanation = "my ******";
    const ReportEvent expected[] = {
        // Names of files and cases stay.
        events[0],
        SectionStarted{"my ******", "a ******", "step", -1, {}},
        ItemDescribed{"Given ", "", "|******|"},
        ActionEnded{"fill", "{name='f'}, \"******\"", 5, false, {}},
        OutputWritten{OutputStream::StandardOutput, "******\n"},
        result,
        SectionEnded{"my ******", "a ******", "step", {}},
    };
    ASSERT_EQ(report.entries.size(), std::size(expected));
    for (size_t index = 0; index < std::size(expected); ++index)
        EXPECT_TRUE(report.entries[index].event == expected[index]) << index;
}

}  // namespace
}  // namespace Tamrix
