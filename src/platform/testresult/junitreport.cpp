#include "platform/testresult/junitreport.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

#include "base/overloaded.h"
#include "platform/testresult/longtext.h"
#include "platform/testresult/reportfiles.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/reportxml.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

// Readers of XML refuse texts of ten million characters, and servers show far less.
constexpr int longestMessage = 1000;
constexpr int longestText = 64 * 1024;
constexpr int longestElement = 1024 * 1024;

QString secondsText(double seconds) {
    return QString::number(seconds, 'f', 3);
}

/// The element that tells a case's outcome; null for one that passed at last.
const char* outcomeElement(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
        case CaseOutcome::Flaky:
            return nullptr;
        case CaseOutcome::Failed:
            return "failure";
        case CaseOutcome::Skipped:
            return "skipped";
        case CaseOutcome::Error:
        case CaseOutcome::Incomplete:
        case CaseOutcome::Interrupted:
            break;
    }
    return "error";
}

/// The counts that stand in the attributes of suites.
struct Totals {
    int tests = 0;
    int failures = 0;
    int errors = 0;
    int skipped = 0;

    void add(CaseOutcome outcome) {
        const QByteArray element = outcomeElement(outcome);
        ++tests;
        failures += element == "failure";
        errors += element == "error";
        skipped += element == "skipped";
    }

    void add(const Totals& other) {
        tests += other.tests;
        failures += other.failures;
        errors += other.errors;
        skipped += other.skipped;
    }
};

/// Whether the suite needs an element among its cases: it failed by itself, or it came to no end
/// and none of its cases says so.
bool needsOwnCase(const SuiteTally& suite) {
    const CaseOutcome outcome = suite.outside.outcome();
    if (!suite.outside.failures.empty())
        return true;
    if (outcome != CaseOutcome::Incomplete && outcome != CaseOutcome::Interrupted)
        return false;
    return std::none_of(
        suite.cases.begin(), suite.cases.end(),
        [outcome](const CaseTally& testCase) { return testCase.outcome() == outcome; });
}

/// Whether a case that runs scenarios needs an element of its own beside theirs.
bool needsOwnElement(const CaseTally& testCase) {
    const CaseOutcome outcome = testCase.outcome();
    return testCase.scenarios.empty() || testCase.previous ||
           !testCase.failuresOutsideScenarios.empty() || outcome == CaseOutcome::Skipped ||
           outcome == CaseOutcome::Incomplete || outcome == CaseOutcome::Interrupted;
}

/// How a case came out apart from its scenarios.
CaseOutcome outcomeOutside(const CaseTally& testCase) {
    Tally outside = static_cast<const Tally&>(testCase);
    outside.failures = testCase.failuresOutsideScenarios;
    return outside.outcome();
}

void writeProperty(ReportXml& xml, const char* name, const QString& value) {
    xml.startElement("properties");
    xml.startElement("property");
    xml.addAttribute("name", QString::fromLatin1(name));
    xml.addAttribute("value", value);
    xml.endElement();
    xml.endElement();
}

/// The form in which the consumers look for files.
QString attachmentLine(const QString& path) {
    return QStringLiteral("[[ATTACHMENT|%1]]").arg(path);
}

void writeTotals(ReportXml& xml, const Totals& totals) {
    xml.addAttribute("tests", totals.tests);
    xml.addAttribute("failures", totals.failures);
    xml.addAttribute("errors", totals.errors);
}

}  // namespace

JUnitReport::JUnitReport(const QString& path) {
    m_path = prepareReportTarget(path, &m_error);
    const QFileInfo file(m_path);
    m_files =
        std::make_unique<ReportFiles>(file.path(), file.fileName() + QStringLiteral("-texts"));
}

JUnitReport::~JUnitReport() = default;

void JUnitReport::add(const ReportEntry& entry) {
    const Tally* tally = &m_tally.add(entry);
    const auto* const fact = eventOf<EnvironmentFact>(entry);
    if (fact && fact->name == QLatin1String(shardFactName))
        m_shards[tally->id] = fact->fact;
    if (m_tally.scenario())
        tally = m_tally.scenario();
    Texts& texts = m_texts[tally->id];
    std::visit(Overloaded{
                   [&](const ResultAdded& result) {
                       // Failures have an element of their own, and so has the skip of a case.
                       if (result.type == TestResult::Log || result.type == TestResult::Warning ||
                           (result.type == TestResult::Skipped && !isCaseSkip(result)))
                           addLine(texts, describeResult(result));
                   },
                   [&](const FileAttached& file) { addLine(texts, attachmentLine(file.path)); },
                   // A run that was killed leaves a video without its end.
                   [&](const VideoStarted& video) { texts.videos.append(video.path); },
                   [&](const VideoEnded& video) {
                       if (video.isDiscarded)
                           texts.videos.removeOne(video.path);
                       else if (!texts.videos.contains(video.path))
                           texts.videos.append(video.path);
                   },
                   [&](const OutputWritten& output) {
                       (output.stream == OutputStream::StandardError ? texts.err : texts.out) +=
                           output.text;
                   },
                   // The format has no place for the others.
                   [](const auto&) {},
               },
               entry.event);
}

void JUnitReport::finish() {
    if (!m_error.isEmpty())
        return;
    QByteArray text;
    ReportXml xml(&text);
    xml.startElement("testsuites");
    Totals totals;
    for (const SuiteTally& suite : m_tally.suites()) {
        for (const Element& element : elementsOf(suite))
            totals.add(element.outcome);
    }
    writeTotals(xml, totals);
    xml.addAttribute("time", secondsText(m_tally.seconds()));
    for (const SuiteTally& suite : m_tally.suites())
        writeSuite(xml, suite);
    xml.endElement();
    xml.endDocument();
    m_error = m_files->errorText();
    if (m_error.isEmpty())
        m_error = writeReport(m_path, text);
    if (m_error.isEmpty())
        m_files->removeUnused();
    else
        m_files->removeNew();
}

void JUnitReport::addLine(Texts& texts, const QString& line) {
    if (!texts.out.isEmpty() && !texts.out.endsWith(QLatin1Char('\n')))
        texts.out += QLatin1Char('\n');
    texts.out += line + QLatin1Char('\n');
}

void JUnitReport::writeSuite(ReportXml& xml, const SuiteTally& suite) {
    const CaseTally& self = suite.outside;
    const std::vector<Element> elements = elementsOf(suite);
    Totals totals;
    for (const Element& element : elements)
        totals.add(element.outcome);
    xml.startElement("testsuite");
    xml.addAttribute("name", self.name);
    writeTotals(xml, totals);
    xml.addAttribute("skipped", totals.skipped);
    xml.addAttribute("time", secondsText(self.seconds()));
    if (self.start.isValid()) {
        xml.addAttribute("timestamp", self.start.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")));
    }
    if (const auto shard = m_shards.find(self.id); shard != m_shards.end())
        writeProperty(xml, "shard", shard->second);
    for (const Element& element : elements)
        writeElement(xml, element);
    // What a case without an element of its own has written belongs to no other one.
    Texts& texts = m_texts[self.id];
    for (const CaseTally& testCase : suite.cases) {
        if (needsOwnElement(testCase) || testCase.isSuperseded)
            continue;
        texts.out += m_texts[testCase.id].out;
        texts.err += m_texts[testCase.id].err;
    }
    writeTexts(xml, self.id);
    xml.endElement();
}

std::vector<JUnitReport::Element> JUnitReport::elementsOf(const SuiteTally& suite) const {
    const CaseTally& self = suite.outside;
    std::vector<Element> elements;
    if (needsOwnCase(suite))
        elements.push_back({self.name, self.name, &self, &self.failures, self.outcome(), true});
    for (const CaseTally& testCase : suite.cases) {
        if (testCase.isSuperseded)
            continue;
        const std::vector<Element> ofCase = elementsOf(testCase, self.name);
        elements.insert(elements.end(), ofCase.begin(), ofCase.end());
    }
    return elements;
}

std::vector<JUnitReport::Element> JUnitReport::elementsOf(const CaseTally& testCase,
                                                          const QString& suiteName) const {
    std::vector<Element> elements;
    if (needsOwnElement(testCase)) {
        elements.push_back({testCase.name, suiteName, &testCase, &testCase.failuresOutsideScenarios,
                            outcomeOutside(testCase), false, QString(), &testCase});
    }
    for (const ScenarioTally& scenario : testCase.scenarios) {
        elements.push_back(
            {scenario.name,
             QStringLiteral("%1.%2.%3").arg(suiteName, testCase.name, scenario.feature), &scenario,
             &scenario.failures, scenario.outcome(), false, scenario.failedStep});
    }
    return elements;
}

void JUnitReport::writeElement(ReportXml& xml, const Element& element) {
    xml.startElement("testcase");
    xml.addAttribute("name", element.name);
    xml.addAttribute("classname", element.className);
    if (!element.isSuiteItself) {
        if (!element.tally->path.isEmpty())
            xml.addAttribute("file", element.tally->path);
        xml.addAttribute("time", secondsText(element.tally->seconds()));
    }
    if (element.testCase && element.testCase->attempt > 1)
        writeProperty(xml, "attempt", QString::number(element.testCase->attempt));
    writeOutcome(xml, element);
    if (element.testCase && element.testCase->previous)
        writeEarlierAttempts(xml, *element.testCase);
    if (!element.isSuiteItself)
        writeTexts(xml, element.tally->id);
    xml.endElement();
}

void JUnitReport::writeOutcome(ReportXml& xml, const Element& element) {
    const char* const tag = outcomeElement(element.outcome);
    if (!tag)
        return;
    xml.startElement(tag);
    xml.addText(writeProblem(xml, element));
    xml.endElement();
}

QString JUnitReport::writeProblem(ReportXml& xml, const Element& element) {
    const CaseOutcome outcome = element.outcome;
    QString message;
    QString type;
    if (outcome == CaseOutcome::Skipped) {
        message = element.tally->skipText;
    } else if (outcome == CaseOutcome::Incomplete) {
        type = QStringLiteral("Incomplete");
        message = QStringLiteral("The run ended before this did");
    } else if (outcome == CaseOutcome::Interrupted) {
        type = QStringLiteral("Interrupted");
        message = QStringLiteral("The run was interrupted");
    } else if (!element.failures->empty()) {
        const ResultAdded& first = element.failures->front();
        type = resultTypeName(first.type);
        message = messageText(first.message, first.detail);
        if (!element.failedStep.isEmpty())
            message = QStringLiteral("%1: %2").arg(element.failedStep, message);
        if (element.failures->size() > 1)
            message += QStringLiteral(" (and %1 more)").arg(element.failures->size() - 1);
    }

    xml.addAttribute("message", limitedText(message, longestMessage));
    if (!type.isEmpty())
        xml.addAttribute("type", type);
    QStringList descriptions;
    const auto store = [this](const QString& text, const QString& name) {
        return storeWhole(text, name);
    };
    for (const ResultAdded& failure : *element.failures)
        descriptions += describeResult(withLimitedTexts(failure, longestText, store));
    return limited(descriptions.join(QLatin1String("\n\n")), QStringLiteral("failures"));
}

void JUnitReport::writeEarlierAttempts(ReportXml& xml, const CaseTally& testCase) {
    std::vector<const CaseTally*> attempts;
    for (const CaseTally* attempt = testCase.previous; attempt; attempt = attempt->previous)
        attempts.insert(attempts.begin(), attempt);
    const QByteArray beginning = testCase.outcome() == CaseOutcome::Flaky ? "flaky" : "rerun";
    for (const CaseTally* const attempt : attempts) {
        const CaseOutcome outcome = attempt->outcome();
        const QByteArray tag = beginning + (outcome == CaseOutcome::Failed ? "Failure" : "Error");
        xml.startElement(tag.constData());
        xml.addTextElement("stackTrace", writeProblem(xml, {attempt->name, QString(), attempt,
                                                            &attempt->failures, outcome}));
        writeTexts(xml, attempt->id);
        xml.endElement();
    }
}

QString JUnitReport::storeWhole(const QString& text, const QString& name) {
    const QString path = m_files->store(text, name + QLatin1String(".txt")).path;
    if (!path.isEmpty())
        m_wholes += QFileInfo(m_path).dir().filePath(path);
    return path;
}

QString JUnitReport::limited(const QString& text, const QString& name) {
    return text.size() <= longestElement
               ? text
               : limitedText(text, longestElement, storeWhole(text, name));
}

void JUnitReport::writeTexts(ReportXml& xml, int id) {
    const Texts& texts = m_texts[id];
    const QString err = limited(texts.err, QStringLiteral("system-err"));
    Texts out{limited(texts.out, QStringLiteral("system-out")), QString(), {}};
    for (const QString& video : texts.videos)
        addLine(out, attachmentLine(video));
    // The servers look for files here.
    for (const QString& whole : qAsConst(m_wholes))
        addLine(out, attachmentLine(whole));
    m_wholes.clear();
    xml.addTextElement("system-out", out.out);
    xml.addTextElement("system-err", err);
}

}  // namespace Tamrix
