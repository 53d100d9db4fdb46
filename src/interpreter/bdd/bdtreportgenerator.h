#pragma once

#include <QString>
#include <string>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/callbacks.h"
#include "platform/testresult/testresult.h"

namespace Tamrix {

class BDTTestResultLogger;

/// Turns what the run of a feature file tells into nested sections of the results: the feature, its
/// scenarios and outlines, their rows, and steps. Backgrounds are transparent.
class TAMRIX_EXPORT BDTReportGenerator final : public Gherkin::ReportGenerator {
public:
    /// The logger is not owned.
    BDTReportGenerator(const QString& absoluteFeatureFile, BDTTestResultLogger* logger)
        : m_file(absoluteFeatureFile), m_logger(logger) {}

    void errorInStep(const Gherkin::Step& step,
                     const Gherkin::LookupAndExecuteStepResult& result) override;
    void errorInHook(Gherkin::HookType type, Gherkin::HookOrder order,
                     const Gherkin::ExecuteHookResult& result) override;
    void startFeature(const Gherkin::Feature& feature) override;
    void finishedFeature(const Gherkin::Feature& feature) override;
    void errorReservedTag(const Gherkin::Feature& feature,
                          const std::vector<std::string>& tags) override;
    void startScenario(const Gherkin::Scenario& scenario, int index) override;
    void finishedScenario(const Gherkin::Scenario& scenario) override;
    void skippedScenario(const Gherkin::Scenario& scenario) override;
    void errorReservedTag(const Gherkin::Scenario& scenario,
                          const std::vector<std::string>& tags) override;
    void startScenarioOutline(const Gherkin::Scenario& scenario) override;
    void finishedScenarioOutline(const Gherkin::Scenario& scenario) override;
    void startExample(const Gherkin::Scenario& scenario,
                      const std::vector<Gherkin::TableCell>& header,
                      const std::vector<Gherkin::TableCell>& row, int index) override;
    void finishedExample(const Gherkin::Scenario& scenario,
                         const std::vector<Gherkin::TableCell>& header,
                         const std::vector<Gherkin::TableCell>& row, int index) override;
    void skippedExample(const Gherkin::Scenario& scenario,
                        const std::vector<Gherkin::TableCell>& header,
                        const std::vector<Gherkin::TableCell>& row, int index) override;
    void startBackground(const Gherkin::Background&) override {}
    void finishedBackground(const Gherkin::Background&) override {}
    void startStep(const Gherkin::Step& step) override;
    void finishedStep(const Gherkin::Step& step) override;
    void skippedStep(const Gherkin::Step& step) override;
    bool lastScenarioHasError() override;
    void clearLastScenarioError() override;
    void matchedStep(const Gherkin::Step& step, const Gherkin::StepMatch& match) override;

private:
    template <typename Item>
    void addItem(TestResult::ResultType type, const Item& item, const char* section,
                 int index = -1);
    template <typename Item>
    void addReservedTags(const Item& item, const std::vector<std::string>& tags);
    void addStep(TestResult::ResultType type, const Gherkin::Step& step);
    void addError(const QString& message, const QString& detail, const LineInfo& location);
    LineInfo location(int line) const { return LineInfo(m_file, line); }

    QString m_file;
    BDTTestResultLogger* m_logger;
};

/// The place in a script.
TAMRIX_EXPORT LineInfo toLineInfo(const Gherkin::ScriptLocation& location);

}  // namespace Tamrix
