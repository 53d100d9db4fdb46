#include "platform/testresult/tapreport.h"

#include <QJsonArray>
#include <QJsonDocument>

#include "platform/testresult/longtext.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/runsummary.h"

namespace Tamrix {

namespace {

constexpr int longestText = 16 * 1024;

/// On one line, without what would begin a directive.
QByteArray description(QString text) {
    text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    text.replace(QLatin1Char('#'), QLatin1String("\\#"));
    for (QChar& character : text) {
        if (character < QLatin1Char(' '))
            character = QLatin1Char(' ');
    }
    return text.toUtf8();
}

/// A text of YAML is quoted as in JSON.
QByteArray quoted(const QString& text) {
    const QByteArray list = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return list.mid(1, list.size() - 2);
}

bool isOk(CaseOutcome outcome) {
    return outcome == CaseOutcome::Passed || outcome == CaseOutcome::Flaky ||
           outcome == CaseOutcome::Skipped;
}

/// The block behind the line of a case.
QByteArray diagnosis(const CaseTally& tally) {
    QByteArray text = "  ---\n  outcome: " + quoted(outcomeText(tally.outcome())) +
                      "\n  duration_ms: " + QByteArray::number(qRound64(tally.seconds() * 1000)) +
                      '\n';
    if (tally.attempt > 1)
        text += "  attempts: " + QByteArray::number(tally.attempt) + '\n';
    if (!tally.failures.empty()) {
        text += "  failures:\n";
        for (const ResultAdded& failure : tally.failures)
            text += "    - " + quoted(limitedText(describeResult(failure), longestText)) + '\n';
    }
    return text + "  ...\n";
}

QByteArray lineOf(const CaseTally& tally, int number) {
    const CaseOutcome outcome = tally.outcome();
    QByteArray line = (isOk(outcome) ? "ok " : "not ok ") + QByteArray::number(number) + " - " +
                      description(tally.name);
    if (outcome == CaseOutcome::Skipped)
        line += " # SKIP " + description(tally.skipText);
    line += '\n';
    return outcome == CaseOutcome::Passed || outcome == CaseOutcome::Skipped
               ? line
               : line + diagnosis(tally);
}

}  // namespace

TapReport::TapReport(const QString& path) {
    m_path = prepareReportTarget(path, &m_error);
}

void TapReport::finish() {
    if (!m_error.isEmpty())
        return;
    int number = 0;
    QByteArray lines;
    for (const SuiteTally& suite : m_tally.suites()) {
        if (!suite.outside.failures.empty() || suite.outside.isInterrupted ||
            !suite.outside.isEnded)
            lines += lineOf(suite.outside, ++number);
        for (const CaseTally& testCase : suite.cases) {
            if (!testCase.isSuperseded)
                lines += lineOf(testCase, ++number);
        }
    }
    m_error =
        writeReport(m_path, "TAP version 14\n1.." + QByteArray::number(number) + '\n' + lines);
}

}  // namespace Tamrix
