#include "platform/testresult/testresult.h"

#include <algorithm>

#include "platform/testresult/resulttypes.h"

namespace Tamrix {

TestResult::TestResult(ReportGenerator* generator) : m_generator(generator) {}

TestResult::~TestResult() {
    // Whoever ends a run in order has ended its suite by now.
    endSuite(true);
}

void TestResult::startSuite(const QString& name, const QString& path) {
    endSuite();
    m_suiteOpen = true;
    forward(SuiteStarted{name, path});
}

void TestResult::endSuite(bool interrupted) {
    endCase(interrupted);
    closeSections(0);
    if (!m_suiteOpen)
        return;
    m_suiteOpen = false;
    forward(SuiteEnded{interrupted});
}

void TestResult::startCase(const QString& name, const QString& scriptPath) {
    endCase();
    closeSections(0);
    m_caseOpen = true;
    m_counts.clear();
    forward(CaseStarted{name, scriptPath});
}

void TestResult::endCase(bool interrupted) {
    if (!m_caseOpen)
        return;
    closeSections(0);
    m_caseOpen = false;
    forward(CaseEnded{interrupted});
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
    if (type == SectionStart) {
        openSection({message, detail, extra, value, callStack}, time);
        return;
    }
    if (type == SectionEnd) {
        endSectionOfKind({message, detail, extra, callStack}, time);
        return;
    }

    ResultAdded result;
    result.type = type;
    result.message = message;
    result.detail = detail;
    result.callStack = callStack;
    (type == Skipped ? result.skipped : result.comment) = extra;
    result.value = value;
    result.explanation = explanation;
    ++m_counts[type];
    m_lastScenarioHasError = m_lastScenarioHasError || isFailure(result);
    forward(std::move(result), time);
}

void TestResult::addSkipEcho(ResultType type, const QString& message, const QString& detail,
                             const std::vector<LineInfo>& callStack) {
    ResultAdded echo;
    echo.type = type;
    echo.message = message;
    echo.detail = detail;
    echo.callStack = callStack;
    echo.isEcho = true;
    forward(std::move(echo));
}

void TestResult::startSection(const QString& title, const QString& description,
                              const LineInfo& location) {
    addResult(SectionStart, title, description, location);
}

QString TestResult::endSection(const LineInfo& location) {
    if (m_openSections.empty())
        return QStringLiteral("There is no open section");
    SectionEnded end;
    end.callStack = {location};
    closeInnermostSection(std::move(end));
    return QString();
}

void TestResult::describeItem(const ItemDescribed& item) {
    forward(item);
}

void TestResult::addStepMatch(const StepMatched& match) {
    forward(match);
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
    forward(FileAttached{type, message, path, callStack});
}

void TestResult::addResultAttachment(AttachmentType type, const QString& message,
                                     const QString& path) {
    forward(FileAttached{type, message, path, {}, true});
}

void TestResult::addStartVideo(const QString& message, const QString& path,
                               const std::vector<LineInfo>& callStack) {
    forward(VideoStarted{message, path, callStack});
}

void TestResult::addEndVideo(const QString& message, const QString& path,
                             const std::vector<LineInfo>& callStack) {
    forward(VideoEnded{message, path, callStack});
}

void TestResult::addDiscardedVideo(const QString& message, const QString& path) {
    forward(VideoEnded{message, path, {}, true});
}

void TestResult::addOutput(OutputStream stream, const QString& text) {
    if (!text.isEmpty())
        forward(OutputWritten{stream, text});
}

void TestResult::addAction(const QString& function, const QString& what, int milliseconds,
                           bool hasFailed, const LineInfo& position) {
    if (m_recordsActions)
        forward(ActionEnded{function, what, milliseconds, hasFailed, position});
}

void TestResult::addEnvironment(const QString& name, const QString& fact) {
    if (!fact.isEmpty())
        forward(EnvironmentFact{name, fact});
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

void TestResult::forward(ReportEvent event, const QDateTime& time) {
    if (m_complete || !m_generator)
        return;
    m_generator->add({time.isValid() ? time : QDateTime::currentDateTime(), std::move(event)});
}

void TestResult::openSection(SectionStarted section, const QDateTime& time) {
    m_openSections.push_back({section.title, section.kind});
    forward(std::move(section), time);
}

void TestResult::endSectionOfKind(SectionEnded end, const QDateTime& time) {
    const auto match = std::find_if(m_openSections.rbegin(), m_openSections.rend(),
                                    [&end](const OpenSection& section) {
                                        return end.kind.isEmpty() || section.kind == end.kind;
                                    });
    if (match == m_openSections.rend()) {
        // The script has closed more sections than it opened: this one has its end already.
        qWarning("There is no open section of the kind '%s' that '%s' could end",
                 qUtf8Printable(end.kind), qUtf8Printable(end.title));
        return;
    }
    closeSections(std::size_t(m_openSections.rend() - match));
    closeInnermostSection(std::move(end), time);
}

void TestResult::closeInnermostSection(SectionEnded end, const QDateTime& time) {
    const OpenSection section = m_openSections.back();
    m_openSections.pop_back();
    end.title = section.title;
    end.kind = section.kind;
    forward(std::move(end), time);
}

void TestResult::closeSections(std::size_t depth) {
    while (m_openSections.size() > depth)
        closeInnermostSection({});
}

}  // namespace Tamrix
