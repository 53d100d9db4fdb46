#include "interpreter/bdd/bdtreportgenerator.h"

#include <QStringList>
#include <algorithm>

#include "interpreter/bdd/bdttestresultlogger.h"
#include "interpreter/bdd/stepargument.h"
#include "interpreter/bridge/interpreter.h"
#include "platform/testresult/featureresults.h"

namespace Tamrix {

namespace {

using Kind = Gherkin::LookupAndExecuteStepResult::Kind;

QString joined(const std::vector<std::string>& texts, const char* separator,
               const char* prefix = "") {
    QStringList list;
    for (const std::string& text : texts)
        list += QLatin1String(prefix) + QString::fromStdString(text);
    return list.join(QLatin1String(separator));
}

QString rowText(const std::vector<Gherkin::TableCell>& header,
                const std::vector<Gherkin::TableCell>& row) {
    QStringList cells;
    for (std::size_t i = 0; i < std::min(header.size(), row.size()); ++i)
        cells += QString::fromStdString(header[i].text) + QLatin1Char('=') +
                 QString::fromStdString(row[i].text);
    return cells.join(QLatin1String(", "));
}

int lineOf(const std::vector<Gherkin::TableCell>& row) {
    return row.empty() ? -1 : row.front().line;
}

std::vector<LineInfo> errorCallStack() {
    const Interpreter* const interpreter = Interpreter::self();
    return interpreter ? interpreter->errorCallStack() : std::vector<LineInfo>();
}

/// Code units in front of a byte of a text.
int codeUnitsBefore(const std::string& text, std::size_t byte) {
    return QString::fromUtf8(text.data(), static_cast<int>(std::min(byte, text.size()))).size();
}

}  // namespace

LineInfo toLineInfo(const Gherkin::ScriptLocation& location) {
    return LineInfo(QString::fromStdString(location.fileName), location.line);
}

// Errors

void BDTReportGenerator::errorInStep(const Gherkin::Step& step,
                                     const Gherkin::LookupAndExecuteStepResult& result) {
    const QString message = QString::fromStdString(result.message);
    switch (result.kind) {
        case Kind::Success:
            break;
        case Kind::NoMatch:
            m_logger->addResult(
                TestResult::Error, QLatin1String(noStepDefinition),
                QString::fromStdString(step.text), std::vector<LineInfo>{location(step.line)},
                message.isEmpty() ? QString()
                                  : QStringLiteral("A definition could begin so:\n") + message);
            break;
        case Kind::SeveralMatches:
            addError(QLatin1String(severalStepDefinitions), message, location(step.line));
            break;
        case Kind::LookupFailure:
        case Kind::ArgumentFailure:
            addError(QStringLiteral("Gherkin Error"), message, toLineInfo(result.location));
            break;
        case Kind::ScriptFailure:
            m_logger->addResult(TestResult::Error, QStringLiteral("Script Error"), message,
                                errorCallStack());
            break;
        case Kind::Pending:
            m_logger->addResult(TestResult::Error, QLatin1String(pendingStepDefinition), message,
                                errorCallStack());
            break;
        default:
            break;
    }
}

void BDTReportGenerator::errorInHook(Gherkin::HookType, Gherkin::HookOrder,
                                     const Gherkin::ExecuteHookResult& result) {
    const QString message = QString::fromStdString(result.message);
    if (result.kind == Gherkin::ExecuteHookResult::ScriptFailure)
        m_logger->addResult(TestResult::Error, QStringLiteral("Script Error"), message,
                            errorCallStack());
    else if (result.kind == Gherkin::ExecuteHookResult::LibraryFailure)
        addError(QStringLiteral("Gherkin Error"), message, toLineInfo(result.location));
}

void BDTReportGenerator::addError(const QString& message, const QString& detail,
                                  const LineInfo& location) {
    m_logger->addResult(TestResult::Error, message, detail, location, QString(), -1);
}

template <typename Item>
void BDTReportGenerator::addReservedTags(const Item& item, const std::vector<std::string>& tags) {
    m_logger->addResult(TestResult::Warning, QStringLiteral("Invalid tag value"),
                        QStringLiteral("\"%1\" should not be used as tag, reserved tag by Tamrix")
                            .arg(joined(tags, ",")),
                        location(item.line), QStringLiteral("Use of reserved tag"), -1);
}

void BDTReportGenerator::errorReservedTag(const Gherkin::Feature& feature,
                                          const std::vector<std::string>& tags) {
    addReservedTags(feature, tags);
}

void BDTReportGenerator::errorReservedTag(const Gherkin::Scenario& scenario,
                                          const std::vector<std::string>& tags) {
    addReservedTags(scenario, tags);
}

// Sections

template <typename Item>
void BDTReportGenerator::addItem(TestResult::ResultType type, const Item& item, const char* section,
                                 int index) {
    m_logger->addResult(type, QString::fromStdString(item.name), joined(item.description, "\n"),
                        location(item.line), QLatin1String(section), index);
    if (type == TestResult::SectionStart)
        m_logger->describeItem(
            {QString::fromStdString(item.keyword), joined(item.tags, " ", "@"), QString()});
}

void BDTReportGenerator::startFeature(const Gherkin::Feature& feature) {
    addItem(TestResult::SectionStart, feature, "feature");
}

void BDTReportGenerator::finishedFeature(const Gherkin::Feature& feature) {
    addItem(TestResult::SectionEnd, feature, "feature");
}

void BDTReportGenerator::startScenario(const Gherkin::Scenario& scenario, int index) {
    addItem(TestResult::SectionStart, scenario, "scenario", index);
}

void BDTReportGenerator::finishedScenario(const Gherkin::Scenario& scenario) {
    addItem(TestResult::SectionEnd, scenario, "scenario");
}

void BDTReportGenerator::skippedScenario(const Gherkin::Scenario& scenario) {
    addItem(TestResult::Skipped, scenario, "scenario");
}

void BDTReportGenerator::startScenarioOutline(const Gherkin::Scenario& scenario) {
    addItem(TestResult::SectionStart, scenario, "scenariooutline");
}

void BDTReportGenerator::finishedScenarioOutline(const Gherkin::Scenario& scenario) {
    addItem(TestResult::SectionEnd, scenario, "scenariooutline");
}

void BDTReportGenerator::startExample(const Gherkin::Scenario&,
                                      const std::vector<Gherkin::TableCell>& header,
                                      const std::vector<Gherkin::TableCell>& row, int index) {
    m_logger->addResult(TestResult::SectionStart, rowText(header, row), QString(),
                        location(lineOf(row)), QStringLiteral("row"), index);
}

void BDTReportGenerator::finishedExample(const Gherkin::Scenario&,
                                         const std::vector<Gherkin::TableCell>&,
                                         const std::vector<Gherkin::TableCell>&, int) {
    m_logger->addResult(TestResult::SectionEnd, QString(), QString(), LineInfo(),
                        QStringLiteral("row"), -1);
}

void BDTReportGenerator::skippedExample(const Gherkin::Scenario&,
                                        const std::vector<Gherkin::TableCell>& header,
                                        const std::vector<Gherkin::TableCell>& row, int) {
    m_logger->addResult(TestResult::Skipped, rowText(header, row), QString(), location(lineOf(row)),
                        QStringLiteral("row"), -1);
}

void BDTReportGenerator::addStep(TestResult::ResultType type, const Gherkin::Step& step) {
    m_logger->addResult(type, QString::fromStdString(step.text), QString(), location(step.line),
                        QStringLiteral("step"), -1);
}

void BDTReportGenerator::startStep(const Gherkin::Step& step) {
    addStep(TestResult::SectionStart, step);
    m_logger->describeItem(
        {QString::fromStdString(step.keyword), QString(), stepArgumentText(step)});
}

void BDTReportGenerator::finishedStep(const Gherkin::Step& step) {
    addStep(TestResult::SectionEnd, step);
}

void BDTReportGenerator::skippedStep(const Gherkin::Step& step) {
    addStep(TestResult::Skipped, step);
}

void BDTReportGenerator::matchedStep(const Gherkin::Step& step, const Gherkin::StepMatch& match) {
    StepMatched event;
    event.definition = QString::fromStdString(match.definition);
    event.position = toLineInfo(match.location);
    for (const Gherkin::StepParameter& parameter : match.parameters)
        event.parameters.push_back({codeUnitsBefore(step.text, parameter.begin),
                                    codeUnitsBefore(step.text, parameter.end),
                                    QString::fromStdString(parameter.typeName)});
    m_logger->addStepMatch(event);
}

bool BDTReportGenerator::lastScenarioHasError() {
    return m_logger->lastScenarioHasError();
}

void BDTReportGenerator::clearLastScenarioError() {
    m_logger->clearLastScenarioError();
}

}  // namespace Tamrix
