#include "runner/suites/lostrun.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>
#include <algorithm>
#include <variant>

#include "base/filewriting.h"
#include "platform/testresult/compositereport.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/reportfactory.h"
#include "platform/testresult/runtally.h"
#include "runner/processes/terminal.h"

namespace Tamrix {

namespace {

/// A file without a name; -1 on failure.
int openUnnamedFile() {
    const int file = ::open(QFile::encodeName(QDir::tempPath()).constData(),
                            O_TMPFILE | O_RDWR | O_CLOEXEC, S_IRUSR | S_IWUSR);
    // Not every file system has such files.
    return file >= 0 ? file : ::memfd_create("tamrix-journal", MFD_CLOEXEC);
}

/// A journal that nobody asked for: that it can't be written is no failure of the run.
class UnaskedJournal : public ReportGenerator {
public:
    explicit UnaskedJournal(const QString& path) : m_journal(path) {}
    void add(const ReportEntry& entry) override { m_journal.add(entry); }

private:
    JournalReport m_journal;
};

/// A stream behind what was written to it before. No QFile, whose descriptor the report
/// would write to past writeData().
class RestOfOutput : public QIODevice {
public:
    explicit RestOfOutput(int descriptor) : m_descriptor(descriptor) {}
    bool open() { return QIODevice::open(QIODevice::WriteOnly | QIODevice::Unbuffered); }
    void beginWriting() { m_isWriting = true; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override {
        QString reason;
        if (!m_isWriting ||
            writeAll(m_descriptor, QByteArray(data, static_cast<int>(size)), &reason))
            return size;
        setErrorString(reason);
        return -1;
    }

private:
    int m_descriptor;
    bool m_isWriting = false;
};

/// Hands on all entries, and lets the output begin with those that are new.
class ContinuedReport : public ReportGenerator {
public:
    ContinuedReport(std::unique_ptr<ReportGenerator> report, RestOfOutput* output, int knownEntries)
        : m_report(std::move(report)), m_output(output), m_knownEntries(knownEntries) {}
    void add(const ReportEntry& entry) override {
        if (m_knownEntries-- == 0)
            m_output->beginWriting();
        m_report->add(entry);
    }
    void finish() override { m_report->finish(); }

private:
    std::unique_ptr<ReportGenerator> m_report;
    RestOfOutput* m_output;
    int m_knownEntries;
};

/// Keeps what a journal has, but for the end of the suite.
class KeptEntries : public ReportGenerator {
public:
    explicit KeptEntries(LostPart* part) : m_part(part) {}
    void add(const ReportEntry& entry) override {
        if (std::holds_alternative<SuiteEnded>(entry.event))
            return;
        m_part->entries.push_back(entry);
        m_tally.add(entry);
    }
    int caseCount(CaseOutcome outcome) const { return m_tally.caseCount(outcome); }

private:
    LostPart* m_part;
    RunTally m_tally;
};

bool writesToStandardOutput(const QString& description) {
    const Outcome<ReportDescription> report = parseReportDescription(description);
    return report && report->isStandardOutput();
}

}  // namespace

RunJournal::RunJournal(const QStringList& reports) {
    for (const QString& description : reports) {
        const Outcome<ReportDescription> report = parseReportDescription(description);
        if (!report || report->format != QLatin1String("json"))
            continue;
        // Not a pipe or a terminal, of which nothing can be read again.
        const QFileInfo file(report->path);
        if (file.exists() && !file.isFile())
            continue;
        m_description = description;
        m_path = file.absoluteFilePath();
        return;
    }
    m_descriptor = openUnnamedFile();
    if (m_descriptor >= 0)
        m_path = QStringLiteral("/proc/self/fd/%1").arg(m_descriptor);
}

RunJournal::~RunJournal() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

std::unique_ptr<ReportGenerator> RunJournal::createWriter() const {
    return m_descriptor >= 0 ? std::make_unique<UnaskedJournal>(m_path) : nullptr;
}

JournalCompletion completeLostRun(const RunJournal& journal, const LostRun& run) {
    tell(run.notice);
    JournalCompletion completion = completeJournal(journal.path(), run.message, run.detail);
    if (!completion.error.isEmpty())
        tell(QStringLiteral("no reports of it can be made: %1").arg(completion.error));
    return completion;
}

Outcome<LostPart> readPart(const RunJournal& journal) {
    LostPart part;
    KeptEntries kept(&part);
    JournalReader reader(&kept);
    if (!reader.replay(journal.path()))
        return fail(FailureKind::Failed, reader.errorText());
    part.shownEntries = static_cast<int>(part.entries.size());
    part.caseCount = static_cast<int>(std::count_if(
        part.entries.begin(), part.entries.end(),
        [](const ReportEntry& entry) { return std::holds_alternative<CaseStarted>(entry.event); }));
    part.failedCases = kept.caseCount(CaseOutcome::Failed) + kept.caseCount(CaseOutcome::Error);
    return part;
}

Outcome<LostPart> readLostPart(const RunJournal& journal, const JournalCompletion& completion) {
    Outcome<LostPart> part = readPart(journal);
    if (part) {
        part->shownEntries = completion.entryCount;
        part->isLost = true;
    }
    return part;
}

std::unique_ptr<ReportGenerator> createContinuedConsole(const LostRun& run, int shownEntries) {
    auto output = std::make_unique<RestOfOutput>(run.consoleDescriptor);
    RestOfOutput* const rest = output.get();
    if (!output->open())
        return nullptr;
    return std::make_unique<ContinuedReport>(run.createConsole(std::move(output)), rest,
                                             shownEntries);
}

void RestOfRun::add(const ReportEntry& entry) {
    m_hasCases = m_hasCases || std::holds_alternative<CaseStarted>(entry.event);
    const bool isKnown = std::holds_alternative<SuiteStarted>(entry.event) ||
                         std::holds_alternative<EnvironmentFact>(entry.event);
    if (m_hasCases || !isKnown)
        m_report->add(entry);
}

void finishLostRun(const RunJournal& journal, const JournalCompletion& completion,
                   const LostRun& run) {
    if (!completion.error.isEmpty())
        return;
    CompositeReport reports;
    for (const QString& description : run.reports) {
        if (journal.isReport(description) || writesToStandardOutput(description))
            continue;
        auto report = createReportGenerator(description);
        if (report)
            reports.append(*std::move(report));
        else
            tell(report.error().text);
    }
    reports.append(createContinuedConsole(run, completion.entryCount));
    JournalReader reader(&reports);
    if (!reader.replay(journal.path()))
        tell(reader.errorText());
    reports.finish();
    for (const QString& error : reports.errorText().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
        tell(error);
    const int left = run.selectedCases - completion.caseCount;
    if (left > 0)
        tell(QStringLiteral("%1 test case(s) did not run").arg(left));
}

}  // namespace Tamrix
