#include "platform/testresult/journalcompletion.h"

#include <QFile>
#include <vector>

#include "base/overloaded.h"
#include "platform/testresult/journalentry.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

/// Sees what is open at the end of a journal.
class OpenLevels : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override {
        ++m_entryCount;
        std::visit(Overloaded{
                       [this](const SuiteStarted&) { m_isSuiteOpen = true; },
                       [this](const CaseStarted& testCase) {
                           ++m_caseCount;
                           m_script = testCase.script;
                           m_isCaseOpen = true;
                       },
                       [this](const SectionStarted& section) { m_sections.push_back(section); },
                       [this](const SectionEnded&) {
                           if (!m_sections.empty())
                               m_sections.pop_back();
                       },
                       [this](const CaseEnded&) {
                           m_isCaseOpen = false;
                           m_sections.clear();
                       },
                       [this](const SuiteEnded&) { m_isSuiteOpen = false; },
                       // The others open and end nothing.
                       [](const auto&) {},
                   },
                   entry.event);
    }

    int entryCount() const { return m_entryCount; }
    int caseCount() const { return m_caseCount; }

    /// The result, at the script of the open case, and the ends.
    std::vector<ReportEvent> completion(const QString& message, const QString& detail) const {
        ResultAdded result;
        result.type = TestResult::Error;
        result.message = message;
        result.detail = detail;
        if (m_isCaseOpen)
            result.callStack = {LineInfo(m_script, 0)};
        std::vector<ReportEvent> events{result};
        for (auto section = m_sections.rbegin(); section != m_sections.rend(); ++section) {
            SectionEnded end;
            end.title = section->title;
            end.kind = section->kind;
            events.emplace_back(end);
        }
        // The case came to its end, in its own way; the suite did not.
        if (m_isCaseOpen)
            events.emplace_back(CaseEnded{false});
        if (m_isSuiteOpen)
            events.emplace_back(SuiteEnded{true});
        return events;
    }

private:
    QString m_script;
    bool m_isSuiteOpen = false;
    bool m_isCaseOpen = false;
    std::vector<SectionStarted> m_sections;
    int m_entryCount = 0;
    int m_caseCount = 0;
};

/// Cuts a file off behind its last line feed. False on failure.
bool cutOpenLine(QFile& file) {
    qint64 size = file.size();
    char last = 0;
    while (size > 0 && last != '\n') {
        if (!file.seek(size - 1) || !file.getChar(&last))
            return false;
        if (last != '\n')
            --size;
    }
    return size == file.size() || file.resize(size);
}

}  // namespace

JournalCompletion completeJournal(const QString& path, const QString& message,
                                  const QString& detail) {
    JournalCompletion completion;
    QFile file(path);
    const auto failed = [&] {
        completion.error = QStringLiteral("The journal '%1' could not be completed: %2")
                               .arg(path, file.errorString());
        return completion;
    };
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || !cutOpenLine(file))
        return failed();
    OpenLevels levels;
    JournalReader reader(&levels);
    if (!file.seek(0) || !reader.replay(&file, path)) {
        completion.error = reader.errorText();
        return completion;
    }
    // Ended before anything was written.
    if (file.size() == 0 && file.write(Journal::headerLine(QDateTime::currentDateTime())) < 0)
        return failed();
    completion.entryCount = levels.entryCount();
    completion.caseCount = levels.caseCount();
    for (const ReportEvent& event : levels.completion(message, detail)) {
        const QByteArray line = Journal::entryLine({QDateTime::currentDateTime(), event});
        if (file.write(line) != line.size())
            return failed();
    }
    return file.flush() ? completion : failed();
}

}  // namespace Tamrix
