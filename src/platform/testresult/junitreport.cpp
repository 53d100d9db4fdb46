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

Totals totalsOf(const SuiteTally& suite) {
    Totals totals;
    if (needsOwnCase(suite))
        totals.add(suite.outside.outcome());
    for (const CaseTally& testCase : suite.cases) {
        if (!testCase.isSuperseded)
            totals.add(testCase.outcome());
    }
    return totals;
}

void writeProperty(ReportXml& xml, const char* name, const QString& value) {
    xml.startElement("properties");
    xml.startElement("property");
    xml.addAttribute("name", QString::fromLatin1(name));
    xml.addAttribute("value", value);
    xml.endElement();
    xml.endElement();
}

/// What went wrong with a case, in a few words.
struct Problem {
    QString message;
    QString type;
};

Problem problemOf(const CaseTally& testCase) {
    switch (testCase.outcome()) {
        case CaseOutcome::Skipped:
            return {testCase.skipText, {}};
        case CaseOutcome::Incomplete:
            return {QStringLiteral("The run ended before this did"), QStringLiteral("Incomplete")};
        case CaseOutcome::Interrupted:
            return {QStringLiteral("The run was interrupted"), QStringLiteral("Interrupted")};
        default:
            break;
    }
    if (testCase.failures.empty())
        return {};
    const ResultAdded& first = testCase.failures.front();
    Problem problem{messageText(first.message, first.detail), resultTypeName(first.type)};
    if (testCase.failures.size() > 1)
        problem.message += QStringLiteral(" (and %1 more)").arg(testCase.failures.size() - 1);
    return problem;
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
    const int id = m_tally.add(entry).id;
    Texts& texts = m_texts[id];
    std::visit(Overloaded{
                   [&](const EnvironmentFact& fact) {
                       if (fact.name == QLatin1String(shardFactName))
                           m_shards[id] = fact.fact;
                   },
                   [&](const ResultAdded& result) {
                       // Failures have an element of their own, and so has the skip of a case.
                       if (result.type == TestResult::Log || result.type == TestResult::Warning ||
                           (result.type == TestResult::Skipped && !isCaseSkip(result)))
                           addLine(texts, describeResult(result));
                   },
                   [&](const FileAttached& file) { addLine(texts, attachmentLine(file.path)); },
                   [&](const VideoEnded& video) { addLine(texts, attachmentLine(video.path)); },
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
    for (const SuiteTally& suite : m_tally.suites())
        totals.add(totalsOf(suite));
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
    const Totals totals = totalsOf(suite);
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
    if (needsOwnCase(suite))
        writeCase(xml, self, self.name, true);
    for (const CaseTally& testCase : suite.cases) {
        if (!testCase.isSuperseded)
            writeCase(xml, testCase, self.name, false);
    }
    writeTexts(xml, self.id);
    xml.endElement();
}

void JUnitReport::writeCase(ReportXml& xml, const CaseTally& testCase, const QString& suiteName,
                            bool isSuiteItself) {
    xml.startElement("testcase");
    xml.addAttribute("name", testCase.name);
    xml.addAttribute("classname", suiteName);
    if (!isSuiteItself) {
        if (!testCase.path.isEmpty())
            xml.addAttribute("file", testCase.path);
        xml.addAttribute("time", secondsText(testCase.seconds()));
    }
    if (testCase.attempt > 1)
        writeProperty(xml, "attempt", QString::number(testCase.attempt));
    writeOutcome(xml, testCase);
    if (!isSuiteItself)
        writeTexts(xml, testCase.id);
    xml.endElement();
}

void JUnitReport::writeOutcome(ReportXml& xml, const CaseTally& testCase) {
    if (const char* const element = outcomeElement(testCase.outcome())) {
        xml.startElement(element);
        xml.addText(writeProblem(xml, testCase));
        xml.endElement();
    }
    if (testCase.previous)
        writeEarlierAttempts(xml, testCase);
}

QString JUnitReport::writeProblem(ReportXml& xml, const CaseTally& testCase) {
    const Problem problem = problemOf(testCase);
    xml.addAttribute("message", limitedText(problem.message, longestMessage));
    if (!problem.type.isEmpty())
        xml.addAttribute("type", problem.type);
    QStringList descriptions;
    const auto store = [this](const QString& text, const QString& name) {
        return storeWhole(text, name);
    };
    for (const ResultAdded& failure : testCase.failures)
        descriptions += describeResult(withLimitedTexts(failure, longestText, store));
    return limited(descriptions.join(QLatin1String("\n\n")), QStringLiteral("failures"));
}

void JUnitReport::writeEarlierAttempts(ReportXml& xml, const CaseTally& testCase) {
    std::vector<const CaseTally*> attempts;
    for (const CaseTally* attempt = testCase.previous; attempt; attempt = attempt->previous)
        attempts.insert(attempts.begin(), attempt);
    const QByteArray beginning = testCase.outcome() == CaseOutcome::Flaky ? "flaky" : "rerun";
    for (const CaseTally* const attempt : attempts) {
        const bool hasFailed = attempt->outcome() == CaseOutcome::Failed;
        xml.startElement((beginning + (hasFailed ? "Failure" : "Error")).constData());
        xml.addTextElement("stackTrace", writeProblem(xml, *attempt));
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
    Texts out{limited(texts.out, QStringLiteral("system-out")), QString()};
    // The servers look for files here.
    for (const QString& whole : qAsConst(m_wholes))
        addLine(out, attachmentLine(whole));
    m_wholes.clear();
    xml.addTextElement("system-out", out.out);
    xml.addTextElement("system-err", err);
}

}  // namespace Tamrix
