#include "platform/testresult/journalcompletion.h"

#include <QFile>
#include <vector>

#include "platform/testresult/journalformat.h"
#include "platform/testresult/journalreader.h"
#include "platform/testresult/reportgenerator.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

using Kind = ReportEntry::Kind;

/// Sees what is open at the end of a journal.
class OpenLevels : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override {
        ++m_entryCount;
        switch (entry.kind) {
            case Kind::SuiteStart:
                m_isSuiteOpen = true;
                break;
            case Kind::CaseStart:
                ++m_caseCount;
                m_case = entry;
                m_isCaseOpen = true;
                break;
            case Kind::SectionStart:
                m_sections.push_back(entry);
                break;
            case Kind::SectionEnd:
                if (!m_sections.empty())
                    m_sections.pop_back();
                break;
            case Kind::CaseEnd:
                m_isCaseOpen = false;
                m_sections.clear();
                break;
            case Kind::SuiteEnd:
                m_isSuiteOpen = false;
                break;
            default:
                break;
        }
    }

    int entryCount() const { return m_entryCount; }
    int caseCount() const { return m_caseCount; }

    /// The result, at the script of the open case, and the ends.
    std::vector<ReportEntry> completion(const QString& message, const QString& detail) const {
        std::vector<ReportEntry> entries;
        const auto append = [&](Kind kind) -> ReportEntry& {
            entries.emplace_back();
            entries.back().kind = kind;
            entries.back().time = QDateTime::currentDateTime();
            return entries.back();
        };
        ReportEntry& result = append(Kind::Result);
        result.type = TestResult::Error;
        result.message = message;
        result.detail = detail;
        if (m_isCaseOpen)
            result.callStack = {LineInfo(m_case.path, 0)};
        for (auto section = m_sections.rbegin(); section != m_sections.rend(); ++section) {
            ReportEntry& end = append(Kind::SectionEnd);
            end.type = TestResult::SectionEnd;
            end.message = section->message;
            end.extra = section->extra;
        }
        // The case came to its end, in its own way; the suite did not.
        if (m_isCaseOpen)
            append(Kind::CaseEnd).extra = QStringLiteral("finished");
        if (m_isSuiteOpen)
            append(Kind::SuiteEnd).extra = QStringLiteral("interrupted");
        return entries;
    }

private:
    ReportEntry m_case;
    bool m_isSuiteOpen = false;
    bool m_isCaseOpen = false;
    std::vector<ReportEntry> m_sections;
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
    for (const ReportEntry& entry : levels.completion(message, detail)) {
        const QByteArray line = Journal::entryLine(entry);
        if (file.write(line) != line.size())
            return failed();
    }
    return file.flush() ? completion : failed();
}

}  // namespace Tamrix
