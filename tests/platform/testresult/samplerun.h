#pragma once

#include <QString>
#include <random>
#include <sstream>

#include "platform/testresult/journalentry.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"
#include "support/printqt.h"

namespace Tamrix {

// Qt texts and entries in the messages of failed tests.
inline void PrintTo(const LineInfo& position, std::ostream* stream) {
    *stream << position.fileName().toStdString() << ":" << position.lineNumber();
}

inline void PrintTo(const ReportEntry& entry, std::ostream* stream) {
    *stream << Journal::entryLine(entry).toStdString();
}

namespace Test {

/// Passes entries on with times of its own: half a second after noon each, so that reports can be
/// compared.
class FixedClock : public ReportGenerator {
public:
    explicit FixedClock(ReportGenerator* target) : m_target(target) {}

    void add(const ReportEntry& entry) override {
        ReportEntry timed = entry;
        timed.time = QDateTime(QDate(2024, 5, 1), QTime(12, 0), Qt::OffsetFromUTC, 7200)
                         .addMSecs(500 * m_count++);
        m_target->add(timed);
    }

private:
    ReportGenerator* m_target;
    qint64 m_count = 0;
};

/// A shard whose cases run again: one passes in its third attempt, one never does, one lost the
/// process of its first attempt. Another run of the first case has nothing to do with it.
inline void addRepeatedRun(ReportGenerator* report) {
    FixedClock clock(report);
    const auto add = [&clock](ReportEvent event) { clock.add({QDateTime(), std::move(event)}); };
    const auto addCase = [&](const QString& name, int attempt, int type) {
        const QString script = QStringLiteral("/s/%1/test.py").arg(name);
        add(CaseStarted{name, script, attempt});
        ResultAdded result;
        result.type = type;
        result.message = QStringLiteral("of attempt %1").arg(attempt);
        result.callStack = {LineInfo(script, 3)};
        add(OutputWritten{OutputStream::StandardOutput,
                          QStringLiteral("attempt %1\n").arg(attempt)});
        add(result);
        add(CaseEnded{});
    };
    add(SuiteStarted{"suite_shop", "/s"});
    add(EnvironmentFact{shardFactName, "2/4"});
    addCase("tst_flaky", 1, TestResult::Fail);
    addCase("tst_failed", 1, TestResult::Fail);
    addCase("tst_flaky", 1, TestResult::Pass);
    addCase("tst_flaky", 2, TestResult::Error);
    addCase("tst_failed", 2, TestResult::Fail);
    add(CaseStarted{"tst_lost", "/s/tst_lost/test.py"});
    addCase("tst_lost", 2, TestResult::Pass);
    addCase("tst_flaky", 3, TestResult::Pass);
    add(SuiteEnded{});
}

/// A run with something of every kind, for the reports. The last case never ends, as after a kill.
inline void addSampleRun(ReportGenerator* report) {
    FixedClock clock(report);
    TestResult result(&clock);
    const QString script = QStringLiteral("/s/tst_login/test.py");
    const CallStack calls{{QStringLiteral("/s/shared/scripts/helper.py"), 4}, {script, 9}};
    const QDateTime now = QDateTime::currentDateTime();

    result.startSuite("suite_shop", "/s");
    result.addEnvironment("Qt", "5.15.8");
    result.addResult(TestResult::Warning, "No application", "", LineInfo());
    result.startCase("tst_login", script);
    result.addOutput(OutputStream::StandardOutput, "logging in\n");
    result.addAction("startApplication", "\"shop --fast\"", 1234, false, LineInfo(script, 2));
    result.startSection("Form", "with two fields", LineInfo(script, 3));
    result.addAction("click", "{name='ok'}, \"Ctrl\"", 56, true, LineInfo(script, 4));
    result.addResult(TestResult::Pass, "Comparison", "'1' and '1' are equal", LineInfo(script, 4));
    result.addResult(TestResult::ExpectedFail, "Not verified", "False expression",
                     LineInfo(script, 5), "known since May");
    result.endSection(LineInfo(script, 6));
    result.addAttachment(TestResult::FileAttachment, "Attached File", "/r/a.txt", calls);
    result.addOutput(OutputStream::StandardError, "no line feed");
    result.endCase();

    result.startCase("tst_basket", "/s/tst_basket/test.py");
    result.addResult(now, TestResult::Fail, "Comparison", "'1' and '2' are not equal", calls,
                     "the total", -1, "@@ -1 +1 @@\n-1\n+2");
    result.addResult(TestResult::Error, "Script Error", "NameError: x\nis not defined",
                     LineInfo("/s/tst_basket/test.py", 12));
    result.endCase();

    result.startCase("tst_print", "/s/tst_print/test.py");
    result.addResult(TestResult::Skipped, "No printer", "here", LineInfo("/s/t.py", 1), "testcase");
    result.addSkipEcho(TestResult::Error, "Script Error", "FatalError: No printer: here",
                       {LineInfo("/s/t.py", 1)});
    result.endCase();

    result.startCase("tst_lost", "/s/tst_lost/test.py");
    result.addResult(TestResult::Log, "before the kill", "", LineInfo());
    result.setComplete();
}

/// A text of any code units: control characters, lone surrogates and non-characters too.
inline QString randomText(std::mt19937& random, int longest) {
    QString text;
    const int length = int(random() % unsigned(longest + 1));
    for (int i = 0; i < length; ++i) {
        const unsigned choice = random() % 8;
        const unsigned unit = choice < 2   ? random() % 0x80
                              : choice < 3 ? random() % 0x20
                              : choice < 5 ? 0xd800 + random() % 0x800
                              : choice < 6 ? 0xfff0 + random() % 0x10
                                           : random() % 0x10000;
        text += QChar(ushort(unit));
    }
    return text;
}

/// Any event with something in all its fields; `adapt` is applied to each text.
template <typename Adapt>
ReportEvent randomEvent(std::mt19937& random, Adapt adapt) {
    const auto text = [&] { return adapt(randomText(random, 12)); };
    const auto position = [&] { return LineInfo(text() + "f", int(random())); };
    const auto flag = [&] { return random() % 2 == 0; };
    ResultAdded result;
    result.type = int(random() % 16);
    result.message = text();
    result.detail = text();
    result.callStack = {position(), position()};
    if (result.type == TestResult::Skipped)
        result.skipped = flag() ? text() : QStringLiteral("testcase");
    else
        result.comment = text();
    result.value = int(random());
    result.explanation = text();
    result.isEcho = flag();
    // One after the other: the order in which arguments are evaluated is open.
    QString texts[4];
    for (QString& each : texts)
        each = text();
    const CallStack stack{position()};
    const int number = int(random());
    const bool isSet = flag();
    const ReportEvent events[] = {
        SuiteStarted{texts[0], texts[1]},
        SuiteEnded{isSet},
        CaseStarted{texts[0], texts[1]},
        CaseEnded{isSet},
        SectionStarted{texts[0], texts[1], texts[2], number, stack},
        SectionEnded{texts[0], texts[1], texts[2], stack},
        result,
        FileAttached{number % 6, texts[0], texts[1], stack, isSet},
        VideoStarted{texts[0], texts[1], stack},
        VideoEnded{texts[0], texts[1], stack},
        OutputWritten{isSet ? OutputStream::StandardError : OutputStream::StandardOutput, texts[0]},
        ActionEnded{texts[0], texts[1], number, isSet, stack.front()},
        EnvironmentFact{texts[0], texts[1]},
        ItemDescribed{texts[0], texts[1], texts[2]},
        // A type's name stands in the line of its parameter.
        StepMatched{texts[0],
                    stack.front(),
                    {{number & 0xff, 0x100, QStringLiteral("int")}, {0, 3, QString()}}},
    };
    return events[random() % std::size(events)];
}

inline ReportEvent randomEvent(std::mt19937& random) {
    return randomEvent(random, [](const QString& text) { return text; });
}

}  // namespace Test
}  // namespace Tamrix
