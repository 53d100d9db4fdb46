#include "runner/farm/casetimes.h"

#include <QDir>
#include <QFile>
#include <algorithm>
#include <numeric>

#include "platform/testresult/journalreader.h"
#include "platform/testresult/journalreport.h"

namespace Tamrix {

double CaseTimes::Span::seconds() const {
    return static_cast<double>(std::max<qint64>(0, start.msecsTo(end))) / 1000;
}

void CaseTimes::add(const ReportEntry& entry) {
    if (const auto* suite = eventOf<SuiteStarted>(entry))
        m_isSuite = suite->name == m_suite;
    if (const auto* started = eventOf<CaseStarted>(entry)) {
        m_case = started->name;
        m_running = {started->script, entry.time, {}};
    }
    const auto* const ended = eventOf<CaseEnded>(entry);
    if (!ended || ended->isInterrupted || !m_isSuite || m_case.isEmpty())
        return;
    m_running.end = entry.time;
    Span& known = m_spans[std::exchange(m_case, QString())];
    if (!known.start.isValid() || known.start <= m_running.start)
        known = m_running;
}

QStringList CaseTimes::readFolder(const QString& folder) {
    QStringList problems;
    const QDir directory(folder);
    const QStringList names =
        directory.entryList({QStringLiteral("*.jsonl")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        m_isSuite = false;
        m_case.clear();
        JournalReader reader(this);
        if (!reader.replay(directory.filePath(name)))
            problems += reader.errorText();
    }
    return problems;
}

std::vector<double> CaseTimes::expected(const QList<SuiteCase>& cases) const {
    std::vector<double> known;
    for (const SuiteCase& each : cases) {
        const auto span = m_spans.find(each.name);
        if (span != m_spans.end())
            known.push_back(span->seconds());
    }
    const double average = known.empty() ? -1
                                         : std::accumulate(known.begin(), known.end(), 0.0) /
                                               static_cast<double>(known.size());
    std::vector<double> times;
    for (const SuiteCase& each : cases) {
        const auto span = m_spans.find(each.name);
        times.push_back(span == m_spans.end() ? average : span->seconds());
    }
    return times;
}

HistoryReport::HistoryReport(const QString& folder, const QString& suite, CaseTimes earlier)
    : m_folder(folder), m_suite(suite), m_times(std::move(earlier)) {}

void HistoryReport::finish() {
    const QString path = QStringLiteral("%1/%2.jsonl").arg(m_folder, m_suite);
    const QString newPath = path + QLatin1String(".new");
    JournalReport journal(newPath);
    const QDateTime now = QDateTime::currentDateTime();
    journal.add({now, SuiteStarted{m_suite, QString()}});
    const QMap<QString, CaseTimes::Span>& spans = m_times.spans();
    for (auto span = spans.begin(); span != spans.end(); ++span) {
        journal.add({span->start, CaseStarted{span.key(), span->script}});
        journal.add({span->end, CaseEnded{}});
    }
    journal.add({now, SuiteEnded{}});
    journal.finish();
    m_error = journal.errorText();
    if (!m_error.isEmpty()) {
        QFile::remove(newPath);
        return;
    }
    // Unlike QFile::rename(), in place of the earlier one.
    if (std::rename(QFile::encodeName(newPath).constData(), QFile::encodeName(path).constData()) !=
        0)
        m_error = QStringLiteral("The history '%1' could not be written: %2")
                      .arg(path, qt_error_string(errno));
}

}  // namespace Tamrix
