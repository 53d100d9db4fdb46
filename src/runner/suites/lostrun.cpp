#include "runner/suites/lostrun.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QIODevice>

#include "base/filewriting.h"
#include "platform/testresult/compositereport.h"
#include "platform/testresult/journalcompletion.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/journalreport.h"
#include "platform/testresult/reportfactory.h"
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

void finishLostRun(const RunJournal& journal, const LostRun& run) {
    tell(run.notice);
    const JournalCompletion completion = completeJournal(journal.path(), run.message, run.detail);
    if (!completion.error.isEmpty()) {
        tell(QStringLiteral("no reports of it can be made: %1").arg(completion.error));
        return;
    }
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
    auto output = std::make_unique<RestOfOutput>(run.consoleDescriptor);
    RestOfOutput* const rest = output.get();
    if (output->open()) {
        reports.append(std::make_unique<ContinuedReport>(run.createConsole(std::move(output)), rest,
                                                         completion.entryCount));
    }
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
