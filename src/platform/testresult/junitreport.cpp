#include "platform/testresult/junitreport.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QXmlStreamWriter>
#include <algorithm>

#include "base/filewriting.h"
#include "base/textescape.h"
#include "platform/testresult/longtext.h"
#include "platform/testresult/reportfiles.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

using Kind = ReportEntry::Kind;

// Readers of XML refuse texts of ten million characters, and servers show far less.
constexpr int longestMessage = 1000;
constexpr int longestText = 64 * 1024;
constexpr int longestElement = 1024 * 1024;

QString secondsText(double seconds) {
    return QString::number(seconds, 'f', 3);
}

/// The element that tells a case's outcome; null for a passed one.
const char* outcomeElement(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
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
    for (const CaseTally& testCase : suite.cases)
        totals.add(testCase.outcome());
    return totals;
}

/// The form in which the consumers look for files.
QString attachmentLine(const QString& path) {
    return QStringLiteral("[[ATTACHMENT|%1]]").arg(path);
}

void writeText(QXmlStreamWriter& xml, const QString& name, const QString& text) {
    if (!text.isEmpty())
        xml.writeTextElement(name, escapedForXml(text));
}

void writeAttribute(QXmlStreamWriter& xml, const char* name, const QString& value) {
    xml.writeAttribute(QLatin1String(name), escapedForXml(value));
}

void writeTotals(QXmlStreamWriter& xml, const Totals& totals) {
    writeAttribute(xml, "tests", QString::number(totals.tests));
    writeAttribute(xml, "failures", QString::number(totals.failures));
    writeAttribute(xml, "errors", QString::number(totals.errors));
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
    Texts& texts = m_texts[m_tally.add(entry).id];
    switch (entry.kind) {
        case Kind::Result:
            // Failures have an element of their own, and so has the skip of a case.
            if (entry.type == TestResult::Log || entry.type == TestResult::Warning ||
                (entry.type == TestResult::Skipped && !isCaseSkip(entry)))
                addLine(texts, describeResult(entry));
            break;
        case Kind::Attachment:
        case Kind::VideoEnd:
            addLine(texts, attachmentLine(entry.path));
            break;
        case Kind::Output:
            if (entry.extra == QLatin1String("stderr"))
                texts.err += entry.message;
            else
                texts.out += entry.message;
            break;
        default:
            break;
    }
}

void JUnitReport::finish() {
    if (!m_error.isEmpty())
        return;
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("testsuites"));
    Totals totals;
    for (const SuiteTally& suite : m_tally.suites())
        totals.add(totalsOf(suite));
    writeTotals(xml, totals);
    writeAttribute(xml, "time", secondsText(m_tally.seconds()));
    for (const SuiteTally& suite : m_tally.suites())
        writeSuite(xml, suite);
    xml.writeEndElement();
    xml.writeEndDocument();
    m_error = m_files->errorText();
    if (m_error.isEmpty())
        writeFile(text);
    if (m_error.isEmpty())
        m_files->removeUnused();
    else
        m_files->removeNew();
}

void JUnitReport::writeFile(const QByteArray& text) {
    QSaveFile file(m_path);
    QString reason;
    if (!file.open(QIODevice::WriteOnly) || !writeAll(&file, text, &reason) || !file.commit()) {
        m_error = QStringLiteral("The report '%1' can't be written: %2")
                      .arg(m_path, reason.isEmpty() ? file.errorString() : reason);
    }
}

void JUnitReport::addLine(Texts& texts, const QString& line) {
    if (!texts.out.isEmpty() && !texts.out.endsWith(QLatin1Char('\n')))
        texts.out += QLatin1Char('\n');
    texts.out += line + QLatin1Char('\n');
}

void JUnitReport::writeSuite(QXmlStreamWriter& xml, const SuiteTally& suite) {
    const CaseTally& self = suite.outside;
    const Totals totals = totalsOf(suite);
    xml.writeStartElement(QStringLiteral("testsuite"));
    writeAttribute(xml, "name", self.name);
    writeTotals(xml, totals);
    writeAttribute(xml, "skipped", QString::number(totals.skipped));
    writeAttribute(xml, "time", secondsText(self.seconds()));
    if (self.start.isValid()) {
        writeAttribute(xml, "timestamp",
                       self.start.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")));
    }
    if (needsOwnCase(suite))
        writeCase(xml, self, self.name, true);
    for (const CaseTally& testCase : suite.cases)
        writeCase(xml, testCase, self.name, false);
    writeTexts(xml, self.id);
    xml.writeEndElement();
}

void JUnitReport::writeCase(QXmlStreamWriter& xml, const CaseTally& testCase,
                            const QString& suiteName, bool isSuiteItself) {
    xml.writeStartElement(QStringLiteral("testcase"));
    writeAttribute(xml, "name", testCase.name);
    writeAttribute(xml, "classname", suiteName);
    if (!isSuiteItself) {
        if (!testCase.path.isEmpty())
            writeAttribute(xml, "file", testCase.path);
        writeAttribute(xml, "time", secondsText(testCase.seconds()));
    }
    writeOutcome(xml, testCase);
    if (!isSuiteItself)
        writeTexts(xml, testCase.id);
    xml.writeEndElement();
}

void JUnitReport::writeOutcome(QXmlStreamWriter& xml, const CaseTally& testCase) {
    const CaseOutcome outcome = testCase.outcome();
    const char* element = outcomeElement(outcome);
    if (!element)
        return;
    QString message;
    QString type;
    if (outcome == CaseOutcome::Skipped) {
        message = testCase.skipText;
    } else if (outcome == CaseOutcome::Incomplete) {
        type = QStringLiteral("Incomplete");
        message = QStringLiteral("The run ended before this did");
    } else if (outcome == CaseOutcome::Interrupted) {
        type = QStringLiteral("Interrupted");
        message = QStringLiteral("The run was interrupted");
    } else {
        const ReportEntry& first = testCase.failures.front();
        type = resultTypeName(first.type);
        message = messageText(first);
        if (testCase.failures.size() > 1)
            message += QStringLiteral(" (and %1 more)").arg(testCase.failures.size() - 1);
    }

    xml.writeStartElement(QLatin1String(element));
    writeAttribute(xml, "message", limitedText(message, longestMessage));
    if (!type.isEmpty())
        writeAttribute(xml, "type", type);
    QStringList descriptions;
    const auto store = [this](const QString& text, const QString& name) {
        return storeWhole(text, name);
    };
    for (const ReportEntry& failure : testCase.failures)
        descriptions += describeResult(withLimitedTexts(failure, longestText, store));
    const QString text = descriptions.join(QLatin1String("\n\n"));
    xml.writeCharacters(escapedForXml(limited(text, QStringLiteral("failures"))));
    xml.writeEndElement();
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

void JUnitReport::writeTexts(QXmlStreamWriter& xml, int id) {
    const Texts& texts = m_texts[id];
    const QString err = limited(texts.err, QStringLiteral("system-err"));
    Texts out{limited(texts.out, QStringLiteral("system-out")), QString()};
    // The servers look for files here.
    for (const QString& whole : qAsConst(m_wholes))
        addLine(out, attachmentLine(whole));
    m_wholes.clear();
    writeText(xml, QStringLiteral("system-out"), out.out);
    writeText(xml, QStringLiteral("system-err"), err);
}

}  // namespace Tamrix
