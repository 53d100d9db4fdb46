#include "platform/testresult/messages/messagesreport.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSysInfo>
#include <algorithm>

#include "base/overloaded.h"
#include "platform/testresult/featureresults.h"
#include "platform/testresult/reporttarget.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

namespace {

/// The version of the format that the messages are written for.
const char* const protocolVersion = "34.2.1";
/// Larger files are not taken in.
constexpr qint64 largestFile = 8 * 1024 * 1024;

QJsonObject timestamp(const QDateTime& time) {
    const qint64 milliseconds = time.isValid() ? time.toMSecsSinceEpoch() : 0;
    return {{"seconds", milliseconds / 1000}, {"nanos", (milliseconds % 1000) * 1000000}};
}

QJsonObject duration(const QDateTime& start, const QDateTime& end) {
    // The clock may be set back meanwhile.
    const qint64 milliseconds =
        start.isValid() && end.isValid() ? std::max<qint64>(0, start.msecsTo(end)) : 0;
    return {{"seconds", milliseconds / 1000}, {"nanos", (milliseconds % 1000) * 1000000}};
}

QJsonObject product(const QString& name, const QString& version = QString()) {
    QJsonObject object{{"name", name}};
    if (!version.isEmpty())
        object.insert("version", version);
    return object;
}

QString statusOf(const ResultAdded& result) {
    for (const FeatureResult& row : featureResults) {
        if (result.message == QLatin1String(row.message))
            return QLatin1String(row.status);
    }
    return QStringLiteral("FAILED");
}

const char* mediaTypeOf(const QString& path) {
    static const std::map<QString, const char*> s_types = {
        {"png", "image/png"},  {"jpg", "image/jpeg"},        {"jpeg", "image/jpeg"},
        {"gif", "image/gif"},  {"txt", "text/plain"},        {"log", "text/plain"},
        {"csv", "text/csv"},   {"json", "application/json"}, {"xml", "application/xml"},
        {"html", "text/html"}, {"mp4", "video/mp4"},         {"webm", "video/webm"},
    };
    const auto type = s_types.find(QFileInfo(path).suffix().toLower());
    return type == s_types.end() ? "application/octet-stream" : type->second;
}

/// Which of the two kinds of expressions a definition has: the results don't say.
bool isRegular(const StepMatched& match) {
    const QString& source = match.definition;
    return source.startsWith('^') || source.endsWith('$') ||
           std::any_of(match.parameters.begin(), match.parameters.end(),
                       [&source](const StepParameterRange& each) {
                           return each.type.isEmpty() && !source.contains(QLatin1String("{}"));
                       });
}

}  // namespace

MessagesReport::MessagesReport(const QString& path) {
    m_path = prepareReportTarget(path, &m_error);
    append("meta", {{"protocolVersion", protocolVersion},
                    {"implementation", product("Tamrix", TAMRIX_VERSION)},
                    {"runtime", product("Qt", QString::fromLatin1(qVersion()))},
                    {"os", product(QSysInfo::kernelType(), QSysInfo::kernelVersion())},
                    {"cpu", product(QSysInfo::currentCpuArchitecture())}});
}

void MessagesReport::append(const char* kind, const QJsonObject& message) {
    m_lines +=
        QJsonDocument(QJsonObject{{QLatin1String(kind), message}}).toJson(QJsonDocument::Compact);
    m_lines += '\n';
}

void MessagesReport::add(const ReportEntry& entry) {
    m_end = entry.time;
    if (m_runId.isEmpty()) {
        m_runId = m_ids.next();
        append("testRunStarted", {{"id", m_runId}, {"timestamp", timestamp(entry.time)}});
    }
    std::visit(Overloaded{
                   [&](const SuiteStarted& suite) { m_suiteFolder = suite.folder; },
                   [&](const CaseEnded&) { endTestCase(entry.time); },
                   [&](const SectionStarted& section) { startSection(section, entry.time); },
                   [&](const SectionEnded& section) { endSection(section, entry.time); },
                   [&](const StepMatched& match) {
                       if (m_testCase && m_testCase->isInStep)
                           m_testCase->steps.back().match = match;
                   },
                   [&](const ResultAdded& result) { addResult(result, entry.time); },
                   [&](const FileAttached& file) { addFile(file); },
                   [&](const OutputWritten& output) { addLog(output.text); },
                   // The format has no place for the others.
                   [](const auto&) {},
               },
               entry.event);
}

void MessagesReport::startSection(const SectionStarted& section, const QDateTime& time) {
    const LineInfo place = section.callStack.empty() ? LineInfo() : section.callStack.front();
    if (section.kind == QLatin1String("feature"))
        startFeature(place.fileName());
    if (section.kind == QLatin1String("scenario") || section.kind == QLatin1String("row")) {
        const auto& pickles = m_features[m_feature];
        const auto pickle = pickles.find(place.lineNumber());
        if (pickle != pickles.end())
            m_testCase = TestCase{pickle->second, time, {}, 0, false};
    }
    if (section.kind == QLatin1String("step") && m_testCase &&
        m_testCase->pickleSteps < m_testCase->pickle.steps.size()) {
        TestStep step;
        step.id = m_ids.next();
        step.pickleStepId = m_testCase->pickle.steps.at(m_testCase->pickleSteps++);
        step.start = time;
        m_testCase->steps.push_back(step);
        m_testCase->isInStep = true;
    }
}

void MessagesReport::startFeature(const QString& file) {
    m_feature = file;
    if (m_features.count(file) > 0)
        return;
    QFile content(file);
    std::map<int, PickleIds>& pickles = m_features[file];
    if (!content.open(QIODevice::ReadOnly)) {
        append("parseError",
               {{"source", QJsonObject{{"uri", uriOf(file)}}}, {"message", content.errorString()}});
        return;
    }
    const FeatureMessages told = featureMessages(uriOf(file), content.readAll(), &m_ids);
    for (const QJsonObject& message : told.messages)
        m_lines += QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
    pickles = told.pickles;
}

QString MessagesReport::uriOf(const QString& file) const {
    const QString folder = m_suiteFolder + '/';
    return file.startsWith(folder) ? file.mid(folder.size()) : file;
}

void MessagesReport::endSection(const SectionEnded& section, const QDateTime& time) {
    if (!m_testCase)
        return;
    if (section.kind == QLatin1String("step") && m_testCase->isInStep) {
        m_testCase->steps.back().end = time;
        m_testCase->isInStep = false;
    }
    if (section.kind == QLatin1String("scenario") || section.kind == QLatin1String("row"))
        endTestCase(time);
}

void MessagesReport::addResult(const ResultAdded& result, const QDateTime& time) {
    if (isFailure(result))
        addFailure(result, time);
    else if (result.type == TestResult::Log || result.type == TestResult::Warning)
        addLog(messageText(result.message, result.detail));
    else if (result.skipped == QLatin1String("step") && m_testCase && m_testCase->isInStep)
        m_testCase->steps.back().status = QStringLiteral("SKIPPED");
}

void MessagesReport::addFailure(const ResultAdded& result, const QDateTime& time) {
    m_hasFailed = true;
    const QString text = describeResult(result);
    if (!m_testCase) {
        if (m_failureOutside.isEmpty())
            m_failureOutside = text;
        return;
    }
    if (!m_testCase->isInStep) {
        // Outside of steps only hooks can fail.
        const LineInfo place = result.callStack.empty() ? LineInfo() : result.callStack.front();
        TestStep hook;
        hook.id = m_ids.next();
        hook.hookId = m_ids.next();
        hook.start = time;
        hook.end = time;
        hook.status = QStringLiteral("FAILED");
        hook.message = text;
        m_testCase->steps.push_back(hook);
        QJsonObject source{{"uri", uriOf(place.fileName())}};
        if (place.lineNumber() > 0)
            source.insert("location", QJsonObject{{"line", place.lineNumber()}});
        append("hook", {{"id", hook.hookId}, {"sourceReference", source}});
        return;
    }
    TestStep& step = m_testCase->steps.back();
    if (step.status == QLatin1String("PASSED"))
        step.status = statusOf(result);
    step.message += (step.message.isEmpty() ? QString() : QStringLiteral("\n\n")) + text;
}

void MessagesReport::addLog(const QString& text) {
    if (m_testCase && m_testCase->isInStep && !text.isEmpty())
        m_testCase->steps.back().attachments.push_back(
            {{"body", text},
             {"contentEncoding", "IDENTITY"},
             {"mediaType", "text/x.cucumber.log+plain"}});
}

void MessagesReport::addFile(const FileAttached& file) {
    QFile content(file.path);
    if (!m_testCase || !m_testCase->isInStep || content.size() > largestFile ||
        !content.open(QIODevice::ReadOnly))
        return;
    m_testCase->steps.back().attachments.push_back(
        {{"body", QString::fromLatin1(content.readAll().toBase64())},
         {"contentEncoding", "BASE64"},
         {"mediaType", mediaTypeOf(file.path)},
         {"fileName", QFileInfo(file.path).fileName()}});
}

void MessagesReport::endTestCase(const QDateTime& time) {
    if (!m_testCase)
        return;
    TestCase testCase = *m_testCase;
    m_testCase.reset();
    // A scenario that was cut short: what did not run has been skipped.
    while (testCase.pickleSteps < testCase.pickle.steps.size()) {
        TestStep step;
        step.id = m_ids.next();
        step.pickleStepId = testCase.pickle.steps.at(testCase.pickleSteps++);
        step.start = time;
        step.status = QStringLiteral("SKIPPED");
        testCase.steps.push_back(step);
    }
    const QString id = m_ids.next();
    addTestCase(id, testCase);
    const QString startedId = m_ids.next();
    append("testCaseStarted", {{"attempt", 0},
                               {"id", startedId},
                               {"testCaseId", id},
                               {"timestamp", timestamp(testCase.start)}});
    for (TestStep& step : testCase.steps) {
        if (!step.end.isValid())
            step.end = time;
        addRunOf(startedId, step);
    }
    append("testCaseFinished", {{"testCaseStartedId", startedId},
                                {"timestamp", timestamp(time)},
                                {"willBeRetried", false}});
}

void MessagesReport::addTestCase(const QString& id, const TestCase& testCase) {
    QJsonArray steps;
    for (const TestStep& step : testCase.steps) {
        QJsonObject object{{"id", step.id}};
        if (!step.hookId.isEmpty())
            object.insert("hookId", step.hookId);
        if (!step.pickleStepId.isEmpty()) {
            object.insert("pickleStepId", step.pickleStepId);
            QJsonArray definitions;
            QJsonArray lists;
            if (step.match) {
                definitions.append(stepDefinitionId(*step.match));
                QJsonArray arguments;
                for (const StepParameterRange& each : step.match->parameters) {
                    QJsonObject argument{
                        {"group", QJsonObject{{"start", each.begin}, {"children", QJsonArray()}}}};
                    if (!each.type.isEmpty())
                        argument.insert("parameterTypeName", each.type);
                    arguments.append(argument);
                }
                lists.append(QJsonObject{{"stepMatchArguments", arguments}});
            }
            object.insert("stepDefinitionIds", definitions);
            object.insert("stepMatchArgumentsLists", lists);
        }
        steps.append(object);
    }
    append("testCase", {{"id", id},
                        {"pickleId", testCase.pickle.id},
                        {"testSteps", steps},
                        {"testRunStartedId", m_runId}});
}

void MessagesReport::addRunOf(const QString& startedId, const TestStep& step) {
    append("testStepStarted", {{"testCaseStartedId", startedId},
                               {"testStepId", step.id},
                               {"timestamp", timestamp(step.start)}});
    for (QJsonObject attachment : step.attachments) {
        attachment.insert("testCaseStartedId", startedId);
        attachment.insert("testStepId", step.id);
        append("attachment", attachment);
    }
    QJsonObject result{{"status", step.status}, {"duration", duration(step.start, step.end)}};
    if (!step.message.isEmpty())
        result.insert("message", step.message);
    append("testStepFinished", {{"testCaseStartedId", startedId},
                                {"testStepId", step.id},
                                {"testStepResult", result},
                                {"timestamp", timestamp(step.end)}});
}

QString MessagesReport::stepDefinitionId(const StepMatched& match) {
    QString& id = m_definitions[positionText(match.position) + ' ' + match.definition];
    if (!id.isEmpty())
        return id;
    id = m_ids.next();
    QJsonObject source{{"uri", uriOf(match.position.fileName())}};
    if (match.position.lineNumber() > 0)
        source.insert("location", QJsonObject{{"line", match.position.lineNumber()}});
    append("stepDefinition",
           {{"id", id},
            {"pattern", QJsonObject{{"source", match.definition},
                                    {"type", isRegular(match) ? "REGULAR_EXPRESSION"
                                                              : "CUCUMBER_EXPRESSION"}}},
            {"sourceReference", source}});
    return id;
}

void MessagesReport::finish() {
    if (!m_error.isEmpty())
        return;
    endTestCase(m_end);
    QJsonObject finished{{"success", !m_hasFailed}, {"timestamp", timestamp(m_end)}};
    if (!m_failureOutside.isEmpty())
        finished.insert("message", m_failureOutside);
    if (!m_runId.isEmpty())
        finished.insert("testRunStartedId", m_runId);
    append("testRunFinished", finished);
    m_error = writeReport(m_path, m_lines);
}

}  // namespace Tamrix
