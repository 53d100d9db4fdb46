#include "platform/testresult/testresult.h"

#include <algorithm>

#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

const QString& endText(bool interrupted) {
    static const QString s_finished = QStringLiteral("finished");
    static const QString s_interrupted = QStringLiteral("interrupted");
    return interrupted ? s_interrupted : s_finished;
}

}  // namespace

TestResult::TestResult(ReportGenerator* generator) : m_generator(generator) {}

TestResult::~TestResult() {
    // Whoever ends a run in order has ended its suite by now.
    endSuite(true);
}

void TestResult::startSuite(const QString& name, const QString& path) {
    endSuite();
    m_suiteOpen = true;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::SuiteStart;
    entry.message = name;
    entry.path = path;
    forward(std::move(entry));
}

void TestResult::endSuite(bool interrupted) {
    endCase(interrupted);
    closeSections(0);
    if (!m_suiteOpen)
        return;
    m_suiteOpen = false;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::SuiteEnd;
    entry.extra = endText(interrupted);
    forward(std::move(entry));
}

void TestResult::startCase(const QString& name, const QString& scriptPath) {
    endCase();
    closeSections(0);
    m_caseOpen = true;
    m_counts.clear();
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::CaseStart;
    entry.message = name;
    entry.path = scriptPath;
    forward(std::move(entry));
}

void TestResult::endCase(bool interrupted) {
    if (!m_caseOpen)
        return;
    closeSections(0);
    m_caseOpen = false;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::CaseEnd;
    entry.extra = endText(interrupted);
    forward(std::move(entry));
}

void TestResult::addResult(ResultType type, const QString& message, const QString& detail,
                           const LineInfo& location, const QString& extra, int value) {
    addResult(QDateTime::currentDateTime(), type, message, detail, CallStack{location}, extra,
              value);
}

void TestResult::addResult(const QDateTime& time, ResultType type, const QString& message,
                           const QString& detail, const LineInfo& location, const QString& extra,
                           int value) {
    addResult(time, type, message, detail, CallStack{location}, extra, value);
}

void TestResult::addResult(const QDateTime& time, ResultType type, const QString& message,
                           const QString& detail, const std::vector<LineInfo>& callStack,
                           const QString& extra, int value, const QString& explanation) {
    if (m_complete)
        return;
    ReportEntry entry = resultEntry(time, type, message, detail, callStack);
    entry.extra = extra;
    entry.value = value;
    entry.explanation = explanation;

    if (type == SectionStart) {
        openSection(std::move(entry));
        return;
    }
    if (type == SectionEnd) {
        endSectionOfKind(std::move(entry));
        return;
    }

    ++m_counts[type];
    m_lastScenarioHasError = m_lastScenarioHasError || isFailure(entry);
    forward(std::move(entry));
}

void TestResult::addSkipEcho(ResultType type, const QString& message, const QString& detail,
                             const std::vector<LineInfo>& callStack) {
    ReportEntry entry = resultEntry(QDateTime::currentDateTime(), type, message, detail, callStack);
    entry.echo = true;
    forward(std::move(entry));
}

void TestResult::startSection(const QString& title, const QString& description,
                              const LineInfo& location) {
    addResult(SectionStart, title, description, location);
}

QString TestResult::endSection(const LineInfo& location) {
    if (m_openSections.empty())
        return QStringLiteral("There is no open section");
    ReportEntry entry;
    entry.callStack = {location};
    closeInnermostSection(std::move(entry));
    return QString();
}

int TestResult::count(const QString& category) const {
    const bool isTests = category == QLatin1String("tests");
    int total = isTests ? 0 : -1;
    for (const ResultTypeInfo& info : resultTypes) {
        if (isTests && info.isVerdict)
            total += m_counts.value(info.type);
        else if (category == QLatin1String(info.category))
            return m_counts.value(info.type);
    }
    return total;
}

void TestResult::addAttachment(AttachmentType type, const QString& message, const QString& path,
                               const std::vector<LineInfo>& callStack) {
    addFile(ReportEntry::Kind::Attachment, type, message, path, callStack);
}

void TestResult::addResultAttachment(AttachmentType type, const QString& message,
                                     const QString& path) {
    addFile(ReportEntry::Kind::Attachment, type, message, path, {}, QStringLiteral("result"));
}

void TestResult::addStartVideo(const QString& message, const QString& path,
                               const std::vector<LineInfo>& callStack) {
    addFile(ReportEntry::Kind::VideoStart, 0, message, path, callStack);
}

void TestResult::addEndVideo(const QString& message, const QString& path,
                             const std::vector<LineInfo>& callStack) {
    addFile(ReportEntry::Kind::VideoEnd, 0, message, path, callStack);
}

void TestResult::addOutput(const QString& stream, const QString& text) {
    if (text.isEmpty())
        return;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::Output;
    entry.message = text;
    entry.extra = stream;
    forward(std::move(entry));
}

void TestResult::addAction(const QString& function, const QString& what, int milliseconds,
                           bool hasFailed, const LineInfo& position) {
    if (!m_recordsActions)
        return;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::Action;
    entry.message = function;
    entry.detail = what;
    entry.value = milliseconds;
    if (hasFailed)
        entry.extra = QStringLiteral("failed");
    entry.callStack = {position};
    forward(std::move(entry));
}

void TestResult::addEnvironment(const QString& name, const QString& fact) {
    if (fact.isEmpty())
        return;
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::Environment;
    entry.message = name;
    entry.detail = fact;
    forward(std::move(entry));
}

void TestResult::setComplete() {
    m_complete = true;
}

bool TestResult::isComplete() const {
    return m_complete;
}

ReportGenerator* TestResult::reportGenerator() const {
    return m_generator;
}

bool TestResult::lastScenarioHasError() const {
    return m_lastScenarioHasError;
}

void TestResult::clearLastScenarioError() {
    m_lastScenarioHasError = false;
}

void TestResult::forward(ReportEntry entry) {
    if (m_complete || !m_generator)
        return;
    if (!entry.time.isValid())
        entry.time = QDateTime::currentDateTime();
    m_generator->add(entry);
}

void TestResult::addFile(ReportEntry::Kind kind, int type, const QString& message,
                         const QString& path, const std::vector<LineInfo>& callStack,
                         const QString& extra) {
    ReportEntry entry;
    entry.kind = kind;
    entry.extra = extra;
    entry.type = type;
    entry.message = message;
    entry.path = path;
    entry.callStack = callStack;
    forward(std::move(entry));
}

void TestResult::openSection(ReportEntry entry) {
    m_openSections.push_back({entry.message, entry.extra});
    entry.kind = ReportEntry::Kind::SectionStart;
    forward(std::move(entry));
}

void TestResult::endSectionOfKind(ReportEntry entry) {
    const auto match = std::find_if(m_openSections.rbegin(), m_openSections.rend(),
                                    [&entry](const OpenSection& section) {
                                        return entry.extra.isEmpty() || section.kind == entry.extra;
                                    });
    if (match == m_openSections.rend()) {
        // The script has closed more sections than it opened: this one has its end already.
        qWarning("There is no open section of the kind '%s' that '%s' could end",
                 qUtf8Printable(entry.extra), qUtf8Printable(entry.message));
        return;
    }
    closeSections(std::size_t(m_openSections.rend() - match));
    closeInnermostSection(std::move(entry));
}

void TestResult::closeInnermostSection(ReportEntry entry) {
    const OpenSection section = m_openSections.back();
    m_openSections.pop_back();
    entry.kind = ReportEntry::Kind::SectionEnd;
    entry.type = SectionEnd;
    entry.message = section.title;
    entry.extra = section.kind;
    forward(std::move(entry));
}

void TestResult::closeSections(std::size_t depth) {
    while (m_openSections.size() > depth)
        closeInnermostSection(ReportEntry());
}

ReportEntry TestResult::resultEntry(const QDateTime& time, ResultType type, const QString& message,
                                    const QString& detail, const std::vector<LineInfo>& callStack) {
    ReportEntry entry;
    entry.kind = ReportEntry::Kind::Result;
    entry.type = type;
    entry.time = time;
    entry.message = message;
    entry.detail = detail;
    entry.callStack = callStack;
    return entry;
}

}  // namespace Tamrix
