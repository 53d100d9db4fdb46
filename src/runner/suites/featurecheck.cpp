#include "runner/suites/featurecheck.h"

#include <QDir>
#include <QFile>
#include <map>
#include <sstream>
#include <tuple>

#include "base/environment.h"
#include "base/utf8file.h"
#include "interpreter/bridge/interpreter.h"
#include "interpreter/bridge/scriptcontext.h"
#include "interpreter/run/scripttestcase.h"
#include "platform/gherkin/errors.h"
#include "platform/gherkin/expressions/expressionerror.h"
#include "platform/gherkin/featurerun.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/resulttypes.h"
#include "runner/processes/processstate.h"
#include "runner/services/runner.h"

namespace Tamrix {

namespace {

using Gherkin::LookupAndExecuteStepResult;
/// File, line and source.
using DefinitionKey = std::tuple<std::string, int, std::string>;

/// Whether each known definition is used.
using Definitions = std::map<DefinitionKey, bool>;

/// The failures that loading a script has brought.
class LoadFailures : public ReportGenerator {
public:
    void add(const ReportEntry& entry) override {
        if (const auto* result = eventOf<ResultAdded>(entry); result && isFailure(*result))
            failures.push_back(*result);
    }

    std::vector<ResultAdded> failures;
};

/// Looks steps up instead of running them.
class StepLookup : public Gherkin::ScriptActions {
public:
    StepLookup(Gherkin::ScriptActions& actions, const QString& file, Definitions& definitions,
               std::vector<FeatureProblem>& problems)
        : m_actions(actions), m_file(file), m_definitions(definitions), m_problems(problems) {}

    LookupAndExecuteStepResult lookupAndExecuteStep(const Gherkin::Step& step) override {
        try {
            const std::vector<Gherkin::StepMatch> matches = m_actions.findStep(step);
            for (const Gherkin::StepMatch& match : matches)
                m_definitions[{match.location.fileName, match.location.line, match.definition}] =
                    true;
            if (matches.empty())
                addUndefined(step);
            else if (matches.size() > 1)
                addAmbiguous(step, matches);
        } catch (const Gherkin::ExpressionError& error) {
            add(step, QString::fromUtf8(error.what()));
        }
        return {};
    }
    std::vector<Gherkin::StepMatch> findStep(const Gherkin::Step& step) override {
        return m_actions.findStep(step);
    }
    std::vector<Definition> definitions() override { return m_actions.definitions(); }
    std::string snippet(const Gherkin::Step& step) override { return m_actions.snippet(step); }
    void reload() override {}
    Gherkin::ExecuteHookResult executeHooks(Gherkin::HookType, Gherkin::HookOrder,
                                            const Gherkin::HookSubject&) override {
        return {};
    }

private:
    void add(const Gherkin::Step& step, const QString& text, const QString& snippet = QString()) {
        m_problems.push_back({m_file, step.line, step.extent.firstColumn, text, snippet});
    }

    void addUndefined(const Gherkin::Step& step) {
        add(step,
            QStringLiteral("no step definition fits '%1'").arg(QString::fromStdString(step.text)),
            QString::fromStdString(m_actions.snippet(step)));
    }

    void addAmbiguous(const Gherkin::Step& step, const std::vector<Gherkin::StepMatch>& matches) {
        QStringList places;
        for (const Gherkin::StepMatch& match : matches)
            places += QStringLiteral("'%1' (%2:%3)")
                          .arg(QString::fromStdString(match.definition),
                               QString::fromStdString(match.location.fileName),
                               QString::number(match.location.line));
        add(step, QStringLiteral("several step definitions fit '%1': %2")
                      .arg(QString::fromStdString(step.text), places.join(QLatin1String(", "))));
    }

    Gherkin::ScriptActions& m_actions;
    QString m_file;
    Definitions& m_definitions;
    std::vector<FeatureProblem>& m_problems;
};

/// Nothing that is looked up is reported.
class NoReport : public Gherkin::ReportGenerator {
public:
    using Cells = std::vector<Gherkin::TableCell>;
    using Tags = std::vector<std::string>;

    void errorInStep(const Gherkin::Step&, const LookupAndExecuteStepResult&) override {}
    void errorInHook(Gherkin::HookType, Gherkin::HookOrder,
                     const Gherkin::ExecuteHookResult&) override {}
    void startFeature(const Gherkin::Feature&) override {}
    void finishedFeature(const Gherkin::Feature&) override {}
    void errorReservedTag(const Gherkin::Feature&, const Tags&) override {}
    void startScenario(const Gherkin::Scenario&, int) override {}
    void finishedScenario(const Gherkin::Scenario&) override {}
    void skippedScenario(const Gherkin::Scenario&) override {}
    void errorReservedTag(const Gherkin::Scenario&, const Tags&) override {}
    void startScenarioOutline(const Gherkin::Scenario&) override {}
    void finishedScenarioOutline(const Gherkin::Scenario&) override {}
    void startExample(const Gherkin::Scenario&, const Cells&, const Cells&, int) override {}
    void finishedExample(const Gherkin::Scenario&, const Cells&, const Cells&, int) override {}
    void skippedExample(const Gherkin::Scenario&, const Cells&, const Cells&, int) override {}
    void startBackground(const Gherkin::Background&) override {}
    void finishedBackground(const Gherkin::Background&) override {}
    void startStep(const Gherkin::Step&) override {}
    void finishedStep(const Gherkin::Step&) override {}
    void skippedStep(const Gherkin::Step&) override {}
    bool lastScenarioHasError() override { return false; }
    void clearLastScenarioError() override {}
};

/// One case: its scripts are loaded and its features looked through.
class CaseCheck {
public:
    CaseCheck(const SuiteCase& testCase, Runner& runner, Definitions& definitions,
              FeatureCheck& check)
        : m_case(testCase), m_runner(runner), m_definitions(definitions), m_check(check) {}

    void run(const std::vector<const ListedFeature*>& features) {
        const ProcessState stateBeforeCase;
        if (!QDir::setCurrent(m_case.directory)) {
            addProblem(m_case.directory, 0, QStringLiteral("the folder can't be entered"));
            return;
        }
        LoadFailures failures;
        TestResult result(&failures);
        m_runner.startCase(m_case.name, m_case.script);
        ScriptTestCase script(&result, QDir(m_case.directory), &m_runner, {});
        if (load(script)) {
            for (const ListedFeature* const feature : features)
                lookThrough(*feature);
        }
        for (const ResultAdded& failure : failures.failures) {
            const LineInfo place =
                failure.callStack.empty() ? LineInfo() : failure.callStack.front();
            addProblem(place.fileName().isEmpty() ? m_case.script : place.fileName(),
                       std::max(place.lineNumber(), 0),
                       messageText(failure.message, failure.detail));
        }
        ScriptContext::setCurrent(nullptr);
    }

private:
    bool load(ScriptTestCase& script) {
        if (isFeatureCase(m_case))
            return script.loadFeature(m_case.script, Debugger::Run);
        const Outcome<Utf8Text> text = readUtf8File(m_case.script);
        if (!text) {
            addProblem(m_case.script, 0, text.error().text);
            return false;
        }
        return script.load(m_case.script, Debugger::Run) && script.evaluate(text->text);
    }

    void lookThrough(const ListedFeature& feature) {
        ScriptContext* const context = ScriptTestCase::ip->scriptContext();
        Gherkin::ScriptActions* const actions =
            context ? context->gherkinScriptActions(feature.file) : nullptr;
        if (!actions) {
            addProblem(feature.file, 0,
                       context && context->hasError()
                           ? context->errorMessage()
                           : QStringLiteral("the language of the scripts has no step definitions"));
            return;
        }
        for (const Gherkin::ScriptActions::Definition& each : actions->definitions())
            m_definitions.insert(
                {{each.location.fileName, each.location.line, each.source}, false});
        QFile file(feature.file);
        if (!feature.problems.empty() || !file.open(QIODevice::ReadOnly))
            return;
        std::istringstream stream(file.readAll().toStdString());
        StepLookup lookup(*actions, feature.file, m_definitions, m_check.problems);
        NoReport report;
        try {
            Gherkin::runFeatureFile(&stream, {}, nullptr, &lookup, &report, nullptr, 0);
        } catch (const Gherkin::RunFeatureError& error) {
            addProblem(feature.file, error.line(), QString::fromUtf8(error.what()));
        }
    }

    void addProblem(const QString& file, int line, const QString& text) {
        m_check.problems.push_back({file, line, 0, text});
    }

    const SuiteCase& m_case;
    Runner& m_runner;
    Definitions& m_definitions;
    FeatureCheck& m_check;
};

}  // namespace

FeatureCheck checkFeatures(const Suite& suite, const QList<SuiteCase>& cases,
                           const std::vector<ListedFeature>& features) {
    FeatureCheck check;
    Definitions definitions;
    Runner runner;
    runner.facts.suiteName = suite.name;
    Environment::setVariable(QStringLiteral("TAMRIX_SUITE_DIR"), suite.directory);
    for (const SuiteCase& testCase : cases) {
        std::vector<const ListedFeature*> ofCase;
        for (const ListedFeature& feature : features) {
            if (feature.caseName == testCase.name)
                ofCase.push_back(&feature);
        }
        if (!ofCase.empty())
            CaseCheck(testCase, runner, definitions, check).run(ofCase);
    }
    for (const auto& [key, isUsed] : definitions) {
        const auto& [file, line, source] = key;
        if (!isUsed)
            check.unused.push_back(
                {QString::fromStdString(file), line, 0,
                 QStringLiteral("no step uses '%1'").arg(QString::fromStdString(source))});
    }
    return check;
}

}  // namespace Tamrix
