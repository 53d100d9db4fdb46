#include "runner/farm/opencases.h"

#include <QDir>

#include "platform/testresult/journalreader.h"

namespace Tamrix {

namespace {

/// The cases of a journal without what frames them.
class CasesAlone : public ReportGenerator {
public:
    explicit CasesAlone(ReportGenerator* report) : m_report(report) {}

    void add(const ReportEntry& entry) override {
        m_isCase = m_isCase || eventOf<CaseStarted>(entry);
        if (m_isCase && !eventOf<SuiteEnded>(entry))
            m_report->add(entry);
    }

private:
    ReportGenerator* m_report;
    bool m_isCase = false;
};

}  // namespace

QString openCasesFolder(const QString& journal) {
    return journal + QLatin1String(".running");
}

Outcome<> renewOpenCases(const QString& journal) {
    removeOpenCases(journal);
    const QString folder = openCasesFolder(journal);
    if (QDir().mkpath(folder))
        return {};
    return fail(FailureKind::Failed, QStringLiteral("the folder '%1' can't be made").arg(folder));
}

void removeOpenCases(const QString& journal) {
    // Nothing but what such a folder holds: the path is the user's.
    const QDir folder(openCasesFolder(journal));
    const QStringList names = folder.entryList({QStringLiteral("*.jsonl")}, QDir::Files);
    for (const QString& name : names)
        QFile::remove(folder.filePath(name));
    QDir().rmdir(folder.path());
}

void RunEnd::add(const ReportEntry& entry) {
    m_isOpen = (m_isOpen || eventOf<SuiteStarted>(entry)) && !eventOf<SuiteEnded>(entry);
    m_report->add(entry);
}

void RunEnd::addOpenCases(const QString& journal) {
    if (!m_isOpen)
        return;
    const QDir folder(openCasesFolder(journal));
    const QStringList names =
        folder.entryList({QStringLiteral("*.jsonl")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        CasesAlone cases(m_report);
        JournalReader(&cases).replay(folder.filePath(name));
    }
}

}  // namespace Tamrix
