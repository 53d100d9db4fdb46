#include "interpreter/bdd/bdttestresultlogger.h"

#include <QDateTime>
#include <QImage>

#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/testsettingstype.h"
#include "platform/testresult/testvp.h"

namespace Tamrix {

namespace {

QString withScreenshot(TestResult::ResultType type, const QString& detail) {
    if (!TestVP::wantLogScreenshotForResult(TestSettingsType::s_vpOptions, type))
        return detail;
    return detail + TestVP::logScreenshot(Interpreter::currentRunner(), type, QImage());
}

}  // namespace

void BDTTestResultLogger::addResult(TestResult::ResultType type, const QString& message,
                                    const QString& detail, const LineInfo& location,
                                    const QString& sectionName, int index) {
    if (m_result)
        m_result->addResult(type, message, withScreenshot(type, detail), location, sectionName,
                            index);
}

void BDTTestResultLogger::addResult(TestResult::ResultType type, const QString& message,
                                    const QString& detail, const std::vector<LineInfo>& callStack,
                                    const QString& explanation) {
    if (m_result)
        m_result->addResult(QDateTime::currentDateTime(), type, message,
                            withScreenshot(type, detail), callStack, QString(), -1, explanation);
}

void BDTTestResultLogger::describeItem(const ItemDescribed& item) {
    if (m_result)
        m_result->describeItem(item);
}

void BDTTestResultLogger::addStepMatch(const StepMatched& match) {
    if (m_result)
        m_result->addStepMatch(match);
}

bool BDTTestResultLogger::lastScenarioHasError() const {
    return m_result && m_result->lastScenarioHasError();
}

void BDTTestResultLogger::clearLastScenarioError() {
    if (m_result)
        m_result->clearLastScenarioError();
}

}  // namespace Tamrix
