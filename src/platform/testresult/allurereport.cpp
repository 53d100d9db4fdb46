#include "platform/testresult/allurereport.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QUuid>

#include "base/overloaded.h"
#include "platform/testresult/longtext.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"

namespace Tamrix {

namespace {

constexpr int longestText = 64 * 1024;

QLatin1String statusOf(CaseOutcome outcome) {
    switch (outcome) {
        case CaseOutcome::Passed:
        case CaseOutcome::Flaky:
            return QLatin1String("passed");
        case CaseOutcome::Failed:
            return QLatin1String("failed");
        case CaseOutcome::Skipped:
            return QLatin1String("skipped");
        case CaseOutcome::Error:
        case CaseOutcome::Incomplete:
        case CaseOutcome::Interrupted:
            break;
    }
    return QLatin1String("broken");
}

QJsonObject label(const char* name, const QString& value) {
    return {{QStringLiteral("name"), QLatin1String(name)}, {QStringLiteral("value"), value}};
}

/// Times are milliseconds.
QJsonValue timeOf(const QDateTime& time) {
    return time.isValid() ? static_cast<double>(time.toMSecsSinceEpoch()) : 0;
}

QJsonObject stepOf(const QString& name, const QDateTime& start, const QDateTime& stop,
                   bool hasFailed) {
    return {
        {QStringLiteral("name"), limitedText(name, longestText)},
        {QStringLiteral("status"), hasFailed ? QStringLiteral("failed") : QStringLiteral("passed")},
        {QStringLiteral("stage"), QStringLiteral("finished")},
        {QStringLiteral("start"), timeOf(start)},
        {QStringLiteral("stop"), timeOf(stop)}};
}

}  // namespace

AllureReport::AllureReport(const QString& folder) {
    const QString inFolder =
        prepareReportTarget(QDir(folder).filePath(QStringLiteral("result.json")), &m_error);
    m_folder = QFileInfo(inFolder).path();
}

void AllureReport::add(const ReportEntry& entry) {
    const CaseTally& tally = m_tally.add(entry);
    if (tally.id != m_id) {
        m_id = tally.id;
        startCase();
    }
    const QDateTime& time = entry.time;
    std::visit(Overloaded{
                   [&](const CaseEnded&) {
                       writeCase(tally, m_tally.suites().back().outside.name);
                       m_id = -1;
                   },
                   [&](const SectionStarted& section) {
                       m_levels.push_back({stepOf(messageText(section.title, section.description),
                                                  time, time, false),
                                           {}});
                   },
                   [&](const SectionEnded&) { endLevel(time); },
                   [&](const ResultAdded& result) {
                       addStep(stepOf(describeResult(result), time, time, isFailure(result)));
                       QString message = result.message;
                       const QString screenshot = takeScreenshotNote(&message);
                       if (!screenshot.isEmpty())
                           addAttachment(QStringLiteral("Screenshot"), screenshot);
                   },
                   [&](const ActionEnded& action) {
                       addStep(stepOf(describeAction(action), time.addMSecs(-action.milliseconds),
                                      time, action.hasFailed));
                   },
                   [&](const FileAttached& file) { addAttachment(file.message, file.path); },
                   [&](const VideoEnded& video) { addAttachment(video.message, video.path); },
                   // The format has no place for the others.
                   [](const auto&) {},
               },
               entry.event);
}

void AllureReport::startCase() {
    m_levels = {Level()};
    m_attachments = {};
    m_attachmentNumber = 0;
    // Random, so that results of many runs can lie in one folder.
    m_uuid = QUuid::createUuid().toString(QUuid::WithoutBraces);
}

void AllureReport::addStep(const QJsonObject& step) {
    m_levels.back().steps.append(step);
}

void AllureReport::endLevel(const QDateTime& time) {
    if (m_levels.size() < 2)
        return;
    Level level = std::move(m_levels.back());
    m_levels.pop_back();
    level.step.insert(QStringLiteral("stop"), timeOf(time));
    level.step.insert(QStringLiteral("steps"), level.steps);
    addStep(level.step);
}

void AllureReport::addAttachment(const QString& name, const QString& path) {
    const QString suffix = QFileInfo(path).suffix();
    QString source =
        QStringLiteral("%1-%2-attachment").arg(m_uuid, QString::number(++m_attachmentNumber));
    if (!suffix.isEmpty())
        source += QLatin1Char('.') + suffix;
    // A file that is missing, or is none, can't be shown.
    if (!QFileInfo(path).isFile() || !QFile::copy(path, m_folder + QLatin1Char('/') + source))
        return;
    m_attachments.append(
        QJsonObject{{QStringLiteral("name"), name}, {QStringLiteral("source"), source}});
}

void AllureReport::writeCase(const CaseTally& tally, const QString& suite) {
    while (m_levels.size() > 1)
        endLevel(tally.end);
    const CaseOutcome outcome = tally.outcome();
    QJsonObject details;
    if (!tally.failures.empty()) {
        QStringList failures;
        for (const ResultAdded& failure : tally.failures)
            failures += describeResult(failure);
        const ResultAdded& first = tally.failures.front();
        details.insert(QStringLiteral("message"),
                       limitedText(messageText(first.message, first.detail), longestText));
        details.insert(QStringLiteral("trace"),
                       limitedText(failures.join(QLatin1String("\n\n")), longestText));
    } else if (!tally.skipText.isEmpty()) {
        details.insert(QStringLiteral("message"), tally.skipText);
    } else if (outcome == CaseOutcome::Incomplete || outcome == CaseOutcome::Interrupted) {
        details.insert(QStringLiteral("message"),
                       QStringLiteral("The test case is ") + outcomeText(outcome));
    }
    if (outcome == CaseOutcome::Flaky)
        details.insert(QStringLiteral("flaky"), true);
    const QString fullName = suite + QLatin1Char('/') + tally.name;
    const QJsonObject result{
        {QStringLiteral("uuid"), m_uuid},
        // What it is the same case by, in this run and in others.
        {QStringLiteral("historyId"),
         QString::fromLatin1(
             QCryptographicHash::hash(fullName.toUtf8(), QCryptographicHash::Md5).toHex())},
        {QStringLiteral("name"), tally.name},
        {QStringLiteral("fullName"), fullName},
        {QStringLiteral("status"), statusOf(outcome)},
        {QStringLiteral("statusDetails"), details},
        {QStringLiteral("stage"), QStringLiteral("finished")},
        {QStringLiteral("start"), timeOf(tally.start)},
        {QStringLiteral("stop"), timeOf(tally.end)},
        {QStringLiteral("labels"),
         QJsonArray{label("suite", suite), label("framework", QStringLiteral("tamrix"))}},
        {QStringLiteral("steps"), m_levels.back().steps},
        {QStringLiteral("attachments"), m_attachments}};
    write(m_uuid + QLatin1String("-result.json"),
          QJsonDocument(result).toJson(QJsonDocument::Indented));
}

void AllureReport::write(const QString& name, const QByteArray& bytes) {
    const QString error = writeReport(m_folder + QLatin1Char('/') + name, bytes);
    if (m_error.isEmpty())
        m_error = error;
}

void AllureReport::finish() {
    for (const SuiteTally& suite : m_tally.suites()) {
        for (const CaseTally& testCase : suite.cases) {
            if (testCase.isEnded)
                continue;
            // The last one has its steps still; of others there is only the outcome.
            if (testCase.id != m_id)
                startCase();
            writeCase(testCase, suite.outside.name);
        }
        if (!suite.outside.failures.empty()) {
            startCase();
            writeCase(suite.outside, suite.outside.name);
        }
    }
}

}  // namespace Tamrix
