#include "platform/gherkin/featurerun.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/gherkin/errors.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/parser.h"
#include "platform/gherkin/recordsfromtree.h"

namespace Tamrix::Gherkin {

namespace {

constexpr std::string_view reservedTags[] = {"untagged"};

/// Where no language brings actions.
class NoActions final : public ScriptActions {
public:
    LookupAndExecuteStepResult lookupAndExecuteStep(const Step&) override {
        LookupAndExecuteStepResult result;
        result.kind = LookupAndExecuteStepResult::NoMatch;
        return result;
    }
    std::vector<StepMatch> findStep(const Step&) override { return {}; }
    std::vector<Definition> definitions() override { return {}; }
    std::string snippet(const Step&) override { return {}; }
    void reload() override {}
    ExecuteHookResult executeHooks(HookType, HookOrder, const HookSubject&) override { return {}; }
};

/// Tells the debugger when a step begins and ends, however it ends.
class StepTrace {
public:
    StepTrace(Debugger* debugger, const SourceExtent& extent)
        : m_debugger(debugger), m_extent(extent) {
        if (m_debugger)
            m_debugger->trace(m_extent, Entering);
    }
    ~StepTrace() {
        if (m_debugger)
            m_debugger->trace(m_extent, Leaving);
    }
    StepTrace(const StepTrace&) = delete;
    StepTrace& operator=(const StepTrace&) = delete;

private:
    Debugger* m_debugger;
    SourceExtent m_extent;
};

class FeatureRun {
public:
    FeatureRun(Filter* filter, ScriptActions* actions, ReportGenerator* report, Debugger* debugger)
        : m_filter(filter),
          m_actions(actions ? actions : &m_noActions),
          m_report(report),
          m_debugger(debugger) {}

    void run(const Syntax::Feature& feature);

private:
    using Tags = std::vector<std::string>;
    /// Those of the feature, then those of the rule.
    using Backgrounds = std::vector<const Syntax::Background*>;

    void runScenarios(std::span<const Syntax::Scenario> scenarios, const Tags& inheritedTags,
                      const Backgrounds& backgrounds);
    void runPlainScenario(const Syntax::Scenario& scenario, const Tags& tags,
                          const Backgrounds& backgrounds);
    void runOutline(const Syntax::Scenario& scenario, const Tags& tags,
                    const Backgrounds& backgrounds);
    void runExamples(const Syntax::Scenario& scenario, const Syntax::Examples& examples,
                     const Tags& tags, const Backgrounds& backgrounds);
    void runBody(const Syntax::Scenario& scenario, const HookSubject& subject,
                 const Backgrounds& backgrounds, const RowValues& values);
    void runSteps(std::span<const Syntax::Step> steps, const Tags& tags, const RowValues& values);
    void runStep(const Step& step, const Tags& tags);
    void execute(const Step& step);
    bool isMissing(const Step& step);
    /// Whether they succeeded.
    bool runHooks(HookType type, HookOrder order, const HookSubject& subject);
    bool isWanted(const Tags& tags);
    template <typename Item>
    void reportReservedTags(const Item& item, const Tags& tags);

    NoActions m_noActions;
    Filter* m_filter;
    ScriptActions* m_actions;
    ReportGenerator* m_report;
    Debugger* m_debugger;
    /// Of the next question to the filter.
    int m_index = 0;
    bool m_featureHasFailed = false;
    bool m_scenarioHasFailed = false;
};

bool FeatureRun::isWanted(const Tags& tags) {
    ++m_index;
    return !m_filter || m_filter->shouldExecuteScenarioWithTags(tags);
}

template <typename Item>
void FeatureRun::reportReservedTags(const Item& item, const Tags& tags) {
    Tags reserved;
    std::copy_if(tags.begin(), tags.end(), std::back_inserter(reserved), isReservedTag);
    if (!reserved.empty())
        m_report->errorReservedTag(item, reserved);
}

bool FeatureRun::runHooks(HookType type, HookOrder order, const HookSubject& subject) {
    const ExecuteHookResult result = m_actions->executeHooks(type, order, subject);
    if (result.kind == ExecuteHookResult::Success)
        return true;
    m_report->errorInHook(type, order, result);
    return false;
}

void FeatureRun::run(const Syntax::Feature& feature) {
    const Feature record = featureRecord(feature);
    HookSubject subject{record.name, {}};
    appendTags(feature.tags, &subject.tags);
    Backgrounds backgrounds;
    if (feature.background)
        backgrounds.push_back(feature.background);

    m_report->startFeature(record);
    reportReservedTags(record, subject.tags);
    m_featureHasFailed = !runHooks(FeatureHook, BeforeHook, subject);
    runScenarios(feature.scenarios, subject.tags, backgrounds);
    for (const Syntax::Rule& rule : feature.rules) {
        Tags tags = subject.tags;
        appendTags(rule.tags, &tags);
        Backgrounds ofRule = backgrounds;
        if (rule.background)
            ofRule.push_back(rule.background);
        runScenarios(rule.scenarios, tags, ofRule);
    }
    runHooks(FeatureHook, AfterHook, subject);
    m_report->finishedFeature(record);
}

void FeatureRun::runScenarios(std::span<const Syntax::Scenario> scenarios,
                              const Tags& inheritedTags, const Backgrounds& backgrounds) {
    for (const Syntax::Scenario& scenario : scenarios) {
        Tags tags = inheritedTags;
        appendTags(scenario.tags, &tags);
        if (scenario.examples.empty())
            runPlainScenario(scenario, tags, backgrounds);
        else
            runOutline(scenario, tags, backgrounds);
    }
}

void FeatureRun::runPlainScenario(const Syntax::Scenario& scenario, const Tags& tags,
                                  const Backgrounds& backgrounds) {
    const Scenario record = scenarioRecord(scenario, {});
    const int index = m_index;
    if (!isWanted(tags)) {
        m_report->skippedScenario(record);
        return;
    }
    m_report->clearLastScenarioError();
    m_report->startScenario(record, index);
    Tags own;
    appendTags(scenario.tags, &own);
    reportReservedTags(record, own);
    runBody(scenario, {record.name, tags}, backgrounds, {});
    m_report->finishedScenario(record);
}

void FeatureRun::runOutline(const Syntax::Scenario& scenario, const Tags& tags,
                            const Backgrounds& backgrounds) {
    const Scenario record = scenarioRecord(scenario, {});
    m_report->startScenarioOutline(record);
    Tags own;
    appendTags(scenario.tags, &own);
    for (const Syntax::Examples& examples : scenario.examples)
        appendTags(examples.tags, &own);
    reportReservedTags(record, own);
    for (const Syntax::Examples& examples : scenario.examples) {
        Tags withExamples = tags;
        appendTags(examples.tags, &withExamples);
        // Examples may have no table.
        if (!examples.table.empty())
            runExamples(scenario, examples, withExamples, backgrounds);
    }
    m_report->finishedScenarioOutline(record);
}

void FeatureRun::runExamples(const Syntax::Scenario& scenario, const Syntax::Examples& examples,
                             const Tags& tags, const Backgrounds& backgrounds) {
    const std::vector<TableCell> header = rowRecord(examples.table[0], {});
    for (const Syntax::TableRow& row : examples.table.subspan(1)) {
        const RowValues values(&examples.table[0], &row);
        const Scenario record = scenarioRecord(scenario, values);
        const std::vector<TableCell> cells = rowRecord(row, {});
        const int index = m_index;
        if (!isWanted(tags)) {
            m_report->skippedExample(record, header, cells, index);
            continue;
        }
        m_report->clearLastScenarioError();
        m_report->startExample(record, header, cells, index);
        runBody(scenario, {record.name, tags}, backgrounds, values);
        m_report->finishedExample(record, header, cells, index);
    }
}

void FeatureRun::runBody(const Syntax::Scenario& scenario, const HookSubject& subject,
                         const Backgrounds& backgrounds, const RowValues& values) {
    m_scenarioHasFailed = m_featureHasFailed;
    if (!runHooks(ScenarioHook, BeforeHook, subject) || m_report->lastScenarioHasError())
        m_scenarioHasFailed = true;
    if (!scenario.steps.empty()) {
        for (const Syntax::Background* const background : backgrounds) {
            m_report->startBackground({background->location.line});
            runSteps(background->steps, subject.tags, {});
            m_report->finishedBackground({background->location.line});
        }
    }
    runSteps(scenario.steps, subject.tags, values);
    runHooks(ScenarioHook, AfterHook, subject);
}

void FeatureRun::runSteps(std::span<const Syntax::Step> steps, const Tags& tags,
                          const RowValues& values) {
    for (const Syntax::Step& step : steps)
        runStep(stepRecord(step, values), tags);
}

void FeatureRun::runStep(const Step& step, const Tags& tags) {
    const StepTrace trace(m_debugger, step.extent);
    m_report->startStep(step);
    if (m_scenarioHasFailed) {
        m_report->skippedStep(step);
    } else {
        const HookSubject subject{step.text, tags};
        m_scenarioHasFailed = !runHooks(StepHook, BeforeHook, subject);
        if (!m_scenarioHasFailed)
            execute(step);
        const bool hooksSucceeded = runHooks(StepHook, AfterHook, subject);
        // A verification in a script may have failed, too.
        if (!hooksSucceeded || m_report->lastScenarioHasError())
            m_scenarioHasFailed = true;
    }
    m_report->finishedStep(step);
}

bool FeatureRun::isMissing(const Step& step) {
    try {
        return m_actions->findStep(step).empty();
    } catch (const ExpressionError&) {
        // What can't be looked up is told when the step is to run.
        return false;
    }
}

void FeatureRun::execute(const Step& step) {
    if (m_debugger && m_debugger->handlesMissingSteps() && isMissing(step)) {
        m_debugger->missingStep(step.line, step);
        m_actions->reload();
    }
    const LookupAndExecuteStepResult result = m_actions->lookupAndExecuteStep(step);
    if (result.match)
        m_report->matchedStep(step, *result.match);
    if (result.kind == LookupAndExecuteStepResult::Success)
        return;
    m_scenarioHasFailed = true;
    m_report->errorInStep(step, result);
}

/// Reads no more than the parser takes.
std::string contentOf(std::istream* stream) {
    std::string content;
    char buffer[65536];
    while (content.size() <= maxFeatureFileSize) {
        stream->read(buffer, sizeof buffer);
        content.append(buffer, static_cast<std::size_t>(stream->gcount()));
        if (!*stream)
            break;
    }
    if (stream->bad())
        throw RunFeatureError(1, "the file can't be read");
    return content;
}

}  // namespace

bool isReservedTag(std::string_view tag) {
    return std::find(std::begin(reservedTags), std::end(reservedTags), tag) !=
           std::end(reservedTags);
}

// The name is taken by value so that it can be kept one day.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void runFeatureFile(std::istream* stream, std::string /*fileName*/, Filter* filter,
                    ScriptActions* actions, ReportGenerator* report, Debugger* debugger,
                    unsigned /*level*/) {
    const ParseResult parsed = parse(contentOf(stream));
    if (!parsed.errors.empty())
        throw SyntaxError(parsed.errors[0]);
    const Syntax::Feature* const feature = parsed.document.feature();
    if (!feature)
        throw RunFeatureError(1, "the file holds no feature");
    FeatureRun(filter, actions, report, debugger).run(*feature);
}

}  // namespace Tamrix::Gherkin
