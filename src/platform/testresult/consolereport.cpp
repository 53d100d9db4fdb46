#include "platform/testresult/consolereport.h"

#include <QFileDevice>
#include <QMap>
#include <QStringList>

#include "base/filewriting.h"
#include "base/overloaded.h"
#include "base/textescape.h"
#include "platform/testresult/longtext.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/runsummary.h"

namespace Tamrix {

namespace {

const char* const green = "\x1b[32m";
const char* const red = "\x1b[31m";
const char* const yellow = "\x1b[33m";
const char* const plain = "\x1b[0m";

struct OutcomeLabel {
    CaseOutcome outcome;
    const char* label;
    const char* colour;
};

constexpr int indentWidth = 2;
/// Of longer texts of a result, the ends are shown.
constexpr int longestText = 16 * 1024;
constexpr int mostLines = 200;

const OutcomeLabel outcomeLabels[] = {
    {CaseOutcome::Passed, "PASS ", green},        {CaseOutcome::Flaky, "FLAKY", yellow},
    {CaseOutcome::Failed, "FAIL ", red},          {CaseOutcome::Error, "ERROR", red},
    {CaseOutcome::Skipped, "SKIP ", yellow},      {CaseOutcome::Interrupted, "INTERRUPTED", red},
    {CaseOutcome::Incomplete, "INCOMPLETE", red},
};

QString secondsText(double seconds) {
    return QString::number(seconds, 'f', 2) + QLatin1String(" s");
}

QString sectionLabel(const QString& kind) {
    static const QMap<QString, QString> s_labels = {
        {QStringLiteral("feature"), QStringLiteral("Feature: ")},
        {QStringLiteral("scenario"), QStringLiteral("Scenario: ")},
        {QStringLiteral("scenariooutline"), QStringLiteral("Scenario outline: ")},
        {QStringLiteral("row"), QStringLiteral("Row: ")},
        {QStringLiteral("step"), QStringLiteral("Step: ")}};
    return s_labels.value(kind, QStringLiteral("Section: "));
}

const char* resultColour(const ResultAdded& result) {
    if (isFailure(result))
        return red;
    switch (result.type) {
        case TestResult::Pass:
            return green;
        case TestResult::ExpectedFail:
        case TestResult::Warning:
        case TestResult::Skipped:
            return yellow;
        default:
            return "";
    }
}

}  // namespace

ConsoleReport::ConsoleReport(QIODevice* device, Verbosity verbosity, Decoration decoration)
    : m_device(device), m_verbosity(verbosity), m_decoration(decoration) {}

ConsoleReport::ConsoleReport(std::unique_ptr<QIODevice> device, Verbosity verbosity,
                             Decoration decoration)
    : m_ownDevice(std::move(device)),
      m_device(m_ownDevice.get()),
      m_verbosity(verbosity),
      m_decoration(decoration) {}

ConsoleReport::~ConsoleReport() = default;

void ConsoleReport::add(const ReportEntry& entry) {
    const CaseTally& tally = m_tally.add(entry);
    std::visit(
        Overloaded{
            [&](const SuiteStarted&) { startLevel(tally, Verbosity::Normal); },
            [](const SuiteEnded&) {},
            [&](const CaseStarted&) { startLevel(tally, Verbosity::Verbose); },
            [&](const CaseEnded&) {
                if (m_verbosity != Verbosity::Quiet)
                    addCaseLine(tally);
            },
            [this](const SectionStarted& section) { startSection(section); },
            [&](const SectionEnded& section) {
                endSection(section);
                if (m_tally.scenario() && m_tally.scenario()->isEnded)
                    addScenarioLine(*m_tally.scenario(), tally);
            },
            [&](const ResultAdded& result) { addResult(result, tally); },
            [this](const FileAttached& file) {
                addDetail(QStringLiteral("Attached: %1: %2").arg(file.message, file.path));
            },
            [this](const VideoStarted& video) {
                addDetail(QStringLiteral("Video starts: %1: %2").arg(video.message, video.path));
            },
            [this](const VideoEnded& video) {
                addDetail((video.isDiscarded ? QStringLiteral("Video discarded: %1: %2")
                                             : QStringLiteral("Video ends: %1: %2"))
                              .arg(video.message, video.path));
            },
            [this](const OutputWritten& output) { addOutput(output); },
            [this](const ActionEnded& action) {
                addDetail(QStringLiteral("Action: ") + describeAction(action),
                          action.hasFailed ? yellow : "");
            },
            [](const EnvironmentFact&) {},
            [this](const ItemDescribed& item) { addItem(item); },
            [](const StepMatched&) {},
        },
        entry.event);
    flush();
}

void ConsoleReport::showStatus(const QString& status) {
    m_status = status;
    flush();
}

void ConsoleReport::finish() {
    m_status.clear();
    addIncompleteCases();
    addSummary();
    flush();
}

void ConsoleReport::startLevel(const CaseTally& tally, Verbosity announcedFrom) {
    m_sectionDepth = 0;
    if (m_verbosity >= announcedFrom)
        announceCase(tally);
}

void ConsoleReport::startSection(const SectionStarted& section) {
    addDetail(sectionLabel(section.kind) + messageText(section.title, section.description));
    ++m_sectionDepth;
}

void ConsoleReport::endSection(const SectionEnded& section) {
    m_sectionDepth = qMax(0, m_sectionDepth - 1);
    addDetail(QStringLiteral("End of section: ") + section.title);
}

void ConsoleReport::addResult(const ResultAdded& result, const CaseTally& tally) {
    if (m_verbosity != Verbosity::Verbose && !isFailure(result))
        return;
    if (m_announcedId != tally.id)
        announceCase(tally);
    QStringList lines =
        describeResult(withLimitedTexts(result, {longestText, mostLines})).split(QLatin1Char('\n'));
    if (result.isEcho)
        lines.first() += QLatin1String(" (the end of the skipped case)");
    addLine(lines.takeFirst(), resultIndent(), resultColour(result));
    for (const QString& line : qAsConst(lines))
        addLine(line, resultIndent() + 2);
}

void ConsoleReport::addDetail(const QString& text, const char* colour) {
    if (m_verbosity == Verbosity::Verbose)
        addLine(text, resultIndent(), colour);
}

void ConsoleReport::addOutput(const OutputWritten& output) {
    if (m_verbosity == Verbosity::Quiet || output.text.isEmpty())
        return;
    m_pending += output.text.toUtf8();
    m_isAtLineStart = m_pending.endsWith('\n');
}

void ConsoleReport::announceCase(const CaseTally& tally) {
    const bool isSuite = tally.id == m_tally.suites().back().outside.id;
    m_announcedId = tally.id;
    if (isSuite && tally.name.isEmpty())
        return;
    QString text = isSuite ? QStringLiteral("Suite ") + tally.name : tally.name;
    if (m_verbosity == Verbosity::Verbose && !tally.path.isEmpty())
        text += QStringLiteral(" (%1)").arg(tally.path);
    if (!isSuite)
        text += QLatin1Char(':');
    addLine(text, isSuite ? 0 : 1);
}

void ConsoleReport::addItem(const ItemDescribed& item) {
    if (!item.tags.isEmpty())
        addDetail(item.tags);
    if (!item.argument.isEmpty())
        addDetail(item.argument);
}

void ConsoleReport::addScenarioLine(const ScenarioTally& scenario, const CaseTally& testCase) {
    if (m_verbosity == Verbosity::Quiet)
        return;
    if (m_announcedId != testCase.id)
        announceCase(testCase);
    addOutcomeLine(
        scenario,
        scenario.failedStep.isEmpty() ? QString() : QStringLiteral("at: ") + scenario.failedStep,
        resultIndent());
}

void ConsoleReport::addCaseLine(const CaseTally& testCase) {
    QStringList notes;
    if (testCase.outcome() == CaseOutcome::Skipped && !testCase.skipText.isEmpty())
        notes += testCase.skipText;
    if (testCase.attempt > 1)
        notes += QStringLiteral("attempt %1").arg(testCase.attempt);
    addOutcomeLine(testCase, notes.join(QLatin1String("  ")), 1);
}

void ConsoleReport::addOutcomeLine(const Tally& tally, const QString& note, int indent) {
    const CaseOutcome outcome = tally.outcome();
    for (const OutcomeLabel& row : outcomeLabels) {
        if (row.outcome != outcome)
            continue;
        QString text = QStringLiteral("%1 %2  (%3)")
                           .arg(QLatin1String(row.label), tally.name, secondsText(tally.seconds()));
        if (!note.isEmpty())
            text += QLatin1String("  ") + note;
        addLine(text, indent, row.colour);
    }
}

void ConsoleReport::addIncompleteCases() {
    if (m_verbosity == Verbosity::Quiet)
        return;
    for (const SuiteTally& suite : m_tally.suites()) {
        for (const CaseTally& testCase : suite.cases) {
            if (!testCase.isSuperseded && testCase.outcome() == CaseOutcome::Incomplete)
                addCaseLine(testCase);
        }
    }
}

void ConsoleReport::addSummary() {
    if (m_verbosity != Verbosity::Quiet || !isGood(m_tally))
        addLine(QString());
    addLine(caseSummary(m_tally), 0, isGood(m_tally) ? green : red);
    const QString outside = outsideSummary(m_tally);
    if (!outside.isEmpty())
        addLine(outside, 0, red);
    const QString results = resultSummary(m_tally);
    if (!results.isEmpty())
        addLine(QStringLiteral("Results: ") + results);
    const QString end = endSummary(m_tally);
    if (!end.isEmpty())
        addLine(end, 0, red);
    addLine(QStringLiteral("Time: ") + secondsText(m_tally.seconds()));
}

void ConsoleReport::addLine(const QString& text, int indent, const char* colour) {
    if (!m_isAtLineStart)
        m_pending += '\n';
    m_isAtLineStart = true;
    const QByteArray margin(indent * indentWidth, ' ');
    const bool isColoured = m_decoration != Decoration::None && *colour;
    for (const QString& line : escapedForTerminal(text).split(QLatin1Char('\n'))) {
        if (!line.isEmpty()) {
            m_pending += margin;
            m_pending += isColoured ? colour + line.toUtf8() + plain : line.toUtf8();
        }
        m_pending += '\n';
    }
}

int ConsoleReport::resultIndent() const {
    const int level = m_tally.runningCase() ? 2 : 1;
    return m_verbosity == Verbosity::Verbose ? level + m_sectionDepth : level;
}

QByteArray ConsoleReport::passingLine() const {
    if (m_decoration != Decoration::ColoursAndRunningCase || m_verbosity != Verbosity::Normal ||
        !m_isAtLineStart)
        return {};
    const CaseTally* const running = m_tally.runningCase();
    const QString text = !m_status.isEmpty() ? m_status : running ? running->name : QString();
    if (text.isEmpty())
        return {};
    return "  ...   " +
           escapedForTerminal(text).replace(QLatin1Char('\n'), QLatin1Char(' ')).toUtf8();
}

void ConsoleReport::flush() {
    const QByteArray line = passingLine();
    if (m_pending.isEmpty() && line == m_shownLine)
        return;
    QByteArray text;
    if (!m_shownLine.isEmpty())
        text += "\r\x1b[K";
    text += m_pending + line;
    m_shownLine = line;
    m_pending.clear();

    QString reason;
    auto* const file = qobject_cast<QFileDevice*>(m_device);
    const bool isWritten =
        file ? writeAll(file, text, &reason) : m_device->write(text) == text.size();
    if (isWritten || !m_error.isEmpty())
        return;
    if (!file)
        reason = m_device->errorString();
    const QString name = file ? file->fileName() : QString();
    m_error = name.isEmpty()
                  ? QStringLiteral("The console report could not be written: %1").arg(reason)
                  : QStringLiteral("The report '%1' can't be written: %2").arg(name, reason);
}

}  // namespace Tamrix
