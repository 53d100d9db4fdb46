#pragma once

#include <string>
#include <vector>

#include "base/export.h"
#include "platform/gherkin/records.h"

namespace Tamrix::Gherkin {

/// Decides which scenarios run.
class TAMRIX_EXPORT Filter {
public:
    virtual ~Filter();

    /// Asked once for each scenario, and of an outline once for each row, in the order of the file.
    /// The tags are without "@": the scenario's and those of its rule and feature, and of a row
    /// also those of its examples.
    virtual bool shouldExecuteScenarioWithTags(const std::vector<std::string>& tags) = 0;
};

/// Follows a run step by step. Calls come in pairs and don't nest.
class TAMRIX_EXPORT Debugger {
public:
    virtual ~Debugger();

    /// When leaving it must not throw: the step may have ended with an exception.
    virtual void trace(const SourceExtent& extent, TraceType type) = 0;
    /// Whether missingStep() is to be called for a step without a definition.
    virtual bool handlesMissingSteps() = 0;
    /// Returns when the step shall be looked up again, once.
    virtual void missingStep(int line, const Step& step) = 0;
};

/// Is notified of each event of the run, in the order of the file. Each start has its end unless an
/// exception ends the run.
class TAMRIX_EXPORT ReportGenerator {
public:
    virtual ~ReportGenerator();

    virtual void errorInStep(const Step& step, const LookupAndExecuteStepResult& result) = 0;
    virtual void errorInHook(HookType type, HookOrder order, const ExecuteHookResult& result) = 0;
    virtual void startFeature(const Feature& feature) = 0;
    virtual void finishedFeature(const Feature& feature) = 0;
    /// Tags that mean something else, without "@".
    virtual void errorReservedTag(const Feature& feature, const std::vector<std::string>& tags) = 0;
    /// The index counts the questions to the filter, from 0: scenarios and the rows of outlines.
    virtual void startScenario(const Scenario& scenario, int index) = 0;
    virtual void finishedScenario(const Scenario& scenario) = 0;
    /// In place of the two above.
    virtual void skippedScenario(const Scenario& scenario) = 0;
    virtual void errorReservedTag(const Scenario& scenario,
                                  const std::vector<std::string>& tags) = 0;
    virtual void startScenarioOutline(const Scenario& scenario) = 0;
    virtual void finishedScenarioOutline(const Scenario& scenario) = 0;
    /// A row of an outline's examples. The index is as of startScenario().
    virtual void startExample(const Scenario& scenario, const std::vector<TableCell>& header,
                              const std::vector<TableCell>& row, int index) = 0;
    virtual void finishedExample(const Scenario& scenario, const std::vector<TableCell>& header,
                                 const std::vector<TableCell>& row, int index) = 0;
    /// In place of the two above.
    virtual void skippedExample(const Scenario& scenario, const std::vector<TableCell>& header,
                                const std::vector<TableCell>& row, int index) = 0;
    virtual void startBackground(const Background& background) = 0;
    virtual void finishedBackground(const Background& background) = 0;
    virtual void startStep(const Step& step) = 0;
    virtual void finishedStep(const Step& step) = 0;
    /// Between the two above, for a step behind a failure.
    virtual void skippedStep(const Step& step) = 0;
    /// Whether anything has failed since the last call of clearLastScenarioError(), be it only a
    /// verification in a script.
    virtual bool lastScenarioHasError() = 0;
    virtual void clearLastScenarioError() = 0;
    /// The definition that a step has run with, behind its run. Does nothing by default.
    virtual void matchedStep(const Step& step, const StepMatch& match);
};

/// The step definitions and hooks of a language's scripts.
class TAMRIX_EXPORT ScriptActions {
public:
    virtual ~ScriptActions();

    /// A definition of a script.
    struct Definition {
        /// The expression as the script has it.
        std::string source;
        ScriptLocation location;
    };

    virtual LookupAndExecuteStepResult lookupAndExecuteStep(const Step& step) = 0;
    /// All definitions that fit the step, without running anything. Throws ExpressionError when
    /// looking takes too long.
    virtual std::vector<StepMatch> findStep(const Step& step) = 0;
    /// All definitions that there are.
    virtual std::vector<Definition> definitions() = 0;
    /// Code with which a definition for the step can begin, in the language of the scripts.
    virtual std::string snippet(const Step& step) = 0;
    /// Definitions may have been written meanwhile: looks for them.
    virtual void reload() = 0;
    /// Runs all hooks of this kind that are meant for the subject.
    virtual ExecuteHookResult executeHooks(HookType type, HookOrder order,
                                           const HookSubject& subject) = 0;
};

}  // namespace Tamrix::Gherkin
