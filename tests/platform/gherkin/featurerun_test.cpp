#include "platform/gherkin/featurerun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "platform/gherkin/errors.h"
#include "support/golden.h"

namespace Tamrix::Gherkin {
namespace {

using Cells = std::vector<TableCell>;

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

/// Notes every call in a line.
class Log {
public:
    void add(const std::string& line) { m_text += line + "\n"; }
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

class RecordingReport : public ReportGenerator {
public:
    explicit RecordingReport(Log* log) : m_log(log) {}

    /// As scripts do whose verifications fail.
    void failVerification() { m_hasError = true; }

    void errorInStep(const Step&, const LookupAndExecuteStepResult& result) override {
        m_hasError = true;
        m_log->add("errorInStep " + std::to_string(result.kind) + " " + result.message);
    }
    void errorInHook(HookType type, HookOrder order, const ExecuteHookResult& result) override {
        m_hasError = true;
        m_log->add("errorInHook " + std::to_string(type) + " " + std::to_string(order) + " " +
                   std::to_string(result.kind));
    }
    void startFeature(const Feature& feature) override {
        m_log->add("startFeature " + heading(feature));
    }
    void finishedFeature(const Feature& feature) override {
        m_log->add("finishedFeature " + heading(feature));
    }
    void errorReservedTag(const Feature& feature, const std::vector<std::string>& tags) override {
        m_log->add("errorReservedTag " + heading(feature) + ": " + joined(tags, ","));
    }
    void startScenario(const Scenario& scenario, int index) override {
        m_log->add("startScenario " + heading(scenario) + " " + std::to_string(index));
    }
    void finishedScenario(const Scenario& scenario) override {
        m_log->add("finishedScenario " + heading(scenario));
    }
    void skippedScenario(const Scenario& scenario) override {
        m_log->add("skippedScenario " + heading(scenario));
    }
    void errorReservedTag(const Scenario& scenario, const std::vector<std::string>& tags) override {
        m_log->add("errorReservedTag " + heading(scenario) + ": " + joined(tags, ","));
    }
    void startScenarioOutline(const Scenario& scenario) override {
        m_log->add("startScenarioOutline " + heading(scenario));
    }
    void finishedScenarioOutline(const Scenario& scenario) override {
        m_log->add("finishedScenarioOutline " + heading(scenario));
    }
    void startExample(const Scenario& scenario, const Cells& header, const Cells& row,
                      int index) override {
        m_log->add("startExample " + example(scenario, header, row, index));
    }
    void finishedExample(const Scenario& scenario, const Cells& header, const Cells& row,
                         int index) override {
        m_log->add("finishedExample " + example(scenario, header, row, index));
    }
    void skippedExample(const Scenario& scenario, const Cells& header, const Cells& row,
                        int index) override {
        m_log->add("skippedExample " + example(scenario, header, row, index));
    }
    void startBackground(const Background& background) override {
        m_log->add("startBackground " + std::to_string(background.line));
    }
    void finishedBackground(const Background& background) override {
        m_log->add("finishedBackground " + std::to_string(background.line));
    }
    void startStep(const Step& step) override {
        m_log->add("startStep " + std::to_string(step.line) + " " + step.keyword + "| " +
                   step.text);
        for (const Cells& row : step.table)
            m_log->add("  " + cells(row));
        if (step.docString)
            m_log->add("  (" + step.docString->mediaType + ") " + step.docString->text);
    }
    void finishedStep(const Step& step) override { m_log->add("finishedStep " + step.text); }
    void skippedStep(const Step& step) override { m_log->add("skippedStep " + step.text); }
    bool lastScenarioHasError() override { return m_hasError; }
    void clearLastScenarioError() override { m_hasError = false; }

private:
    template <typename Item>
    static std::string heading(const Item& item) {
        return std::to_string(item.line) + " " + item.name +
               (item.description.empty() ? "" : " (" + joined(item.description, "/") + ")");
    }
    static std::string cells(const Cells& cells) {
        std::vector<std::string> texts;
        for (const TableCell& cell : cells)
            texts.push_back(std::to_string(cell.line) + ":" + cell.text);
        return joined(texts, ", ");
    }
    static std::string example(const Scenario& scenario, const Cells& header, const Cells& row,
                               int index) {
        return heading(scenario) + " [" + cells(header) + "] [" + cells(row) + "] " +
               std::to_string(index);
    }

    Log* m_log;
    bool m_hasError = false;
};

/// What a step does stands in its text.
class FakeActions : public ScriptActions {
public:
    FakeActions(Log* log, RecordingReport* report) : m_log(log), m_report(report) {}

    bool unknownStepsAreWritten = false;
    HookType failingHooks = StepHook;

    LookupAndExecuteStepResult lookupAndExecuteStep(const Step& step) override {
        using Result = LookupAndExecuteStepResult;
        m_log->add("execute " + step.text);
        if (step.text == "unknown" && !unknownStepsAreWritten)
            return {Result::NoMatch, "", {}, {}};
        if (step.text == "twice")
            return {Result::SeveralMatches, "both match", {}, {}};
        if (step.text == "throws")
            throw std::runtime_error("thrown");
        if (step.text == "verifies wrongly")
            m_report->failVerification();
        if (step.text.find("fails") != std::string::npos)
            return {Result::ScriptFailure, "it failed", {"steps.py", 3}, {}};
        return {};
    }
    std::vector<StepMatch> findStep(const Step& step) override {
        return {step.text != "unknown" || unknownStepsAreWritten ? 1u : 0u, StepMatch()};
    }
    std::vector<Definition> definitions() override { return {}; }
    std::string snippet(const Step&) override { return {}; }
    void reload() override { m_log->add("reload"); }
    ExecuteHookResult executeHooks(HookType type, HookOrder order,
                                   const HookSubject& subject) override {
        if (type != StepHook || subject.title == "hooks fail")
            m_log->add("hooks " + std::to_string(type) + " " + std::to_string(order) + " " +
                       subject.title + " {" + joined(subject.tags, ",") + "}");
        const bool fails = type == failingHooks && subject.title == "hooks fail";
        return {fails ? ExecuteHookResult::ScriptFailure : ExecuteHookResult::Success, "", {}};
    }

private:
    Log* m_log;
    RecordingReport* m_report;
};

class RecordingDebugger : public Debugger {
public:
    RecordingDebugger(Log* log, FakeActions* actions) : m_log(log), m_actions(actions) {}

    bool breaksOnMissingStep = true;

    void trace(const SourceExtent& extent, TraceType type) override {
        m_log->add("trace " + std::to_string(type) + " " + std::to_string(extent.firstLine) + ":" +
                   std::to_string(extent.firstColumn) + "-" + std::to_string(extent.lastLine));
    }
    bool handlesMissingSteps() override { return breaksOnMissingStep; }
    void missingStep(int line, const Step& step) override {
        m_log->add("missingStep " + std::to_string(line) + " " + step.text);
        m_actions->unknownStepsAreWritten = true;
    }

private:
    Log* m_log;
    FakeActions* m_actions;
};

class FakeFilter : public Filter {
public:
    FakeFilter(Log* log, std::function<bool(const std::vector<std::string>&)> wants)
        : m_log(log), m_wants(std::move(wants)) {}
    bool shouldExecuteScenarioWithTags(const std::vector<std::string>& tags) override {
        m_log->add("filter {" + joined(tags, ",") + "}");
        return m_wants(tags);
    }

private:
    Log* m_log;
    std::function<bool(const std::vector<std::string>&)> m_wants;
};

class GherkinRun : public testing::Test {
protected:
    static std::string dataFile(const std::string& name) {
        std::ifstream file(TAMRIX_TEST_SOURCE_DIR "/tests/platform/gherkin/data/" + name);
        EXPECT_TRUE(file) << name;
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// What happens in the run of a file.
    std::string run(const std::string& source, Filter* filter, Debugger* debugger) {
        std::istringstream stream(source);
        try {
            runFeatureFile(&stream, "/folder", filter, &actions, &report, debugger, 0);
        } catch (const SyntaxError& error) {
            log.add("SyntaxError " + std::to_string(error.line()) + " " + error.what() + " " +
                    error.token());
        } catch (const RunFeatureError& error) {
            log.add("RunFeatureError " + std::to_string(error.line()) + " " + error.what());
        } catch (const std::exception& error) {
            log.add(std::string("exception ") + error.what());
        }
        return log.text();
    }

    static testing::AssertionResult isGolden(const std::string& name, const std::string& text) {
        return Tamrix::Test::compareWithGolden(QString::fromStdString("gherkin/" + name),
                                               QString::fromStdString(text));
    }

    Log log;
    RecordingReport report{&log};
    FakeActions actions{&log, &report};
    RecordingDebugger debugger{&log, &actions};
};

TEST_F(GherkinRun, ReportsWhatHappens) {
    EXPECT_TRUE(isGolden("run.txt", run(dataFile("run.feature"), nullptr, nullptr)));
}

TEST_F(GherkinRun, AsksTheFilterOnceForEachScenarioAndRow) {
    FakeFilter filter(&log, [](const std::vector<std::string>& tags) {
        return std::find(tags.begin(), tags.end(), "slow") != tags.end();
    });
    EXPECT_TRUE(isGolden("filtered.txt", run(dataFile("run.feature"), &filter, nullptr)));
}

TEST_F(GherkinRun, TracesStepsAndLetsMissingOnesBeWritten) {
    const std::string source =
        "Feature: f\nScenario: s\n  Given a\n    | t |\n    \"\"\"\n\n    \"\"\"\n\n"
        "  * unknown\n  * unknown\n  * throws\n";
    EXPECT_TRUE(isGolden("traced.txt", run(source, nullptr, &debugger)));
}

TEST_F(GherkinRun, FailsAtMissingStepsWhenNobodyWritesThem) {
    debugger.breaksOnMissingStep = false;
    const std::string source = "Feature: f\nScenario: s\n* unknown\n";
    EXPECT_THAT(run(source, nullptr, &debugger),
                testing::AllOf(testing::HasSubstr("errorInStep 1 \n"),
                               testing::Not(testing::HasSubstr("missingStep"))));
}

TEST_F(GherkinRun, SkipsEverythingBehindFailedHooksOfTheFeature) {
    actions.failingHooks = FeatureHook;
    const std::string text =
        run("Feature: hooks fail\nScenario: s\n* a\nScenario: t\n* b\n", nullptr, nullptr);
    EXPECT_THAT(text, testing::HasSubstr("errorInHook 0 0 1\n"));
    EXPECT_THAT(text, testing::HasSubstr("errorInHook 0 1 1\n"));
    EXPECT_THAT(text, testing::HasSubstr("skippedStep a\n"));
    EXPECT_THAT(text, testing::HasSubstr("skippedStep b\n"));
    EXPECT_THAT(text, testing::Not(testing::HasSubstr("execute")));
}

TEST_F(GherkinRun, WorksWithoutActions) {
    std::istringstream stream("Feature: f\nScenario: s\n* a\n");
    runFeatureFile(&stream, "/folder", nullptr, nullptr, &report, &debugger, 0);
    EXPECT_THAT(log.text(), testing::HasSubstr("errorInStep 1 \n"));
}

TEST_F(GherkinRun, RefusesFilesBeforeAnythingRuns) {
    const struct {
        std::string source;
        const char* log;
    } rows[] = {
        {"", "RunFeatureError 1 the file holds no feature\n"},
        {"Feature: f\nScenario: s\n* a\nb\n  c\n",
         "SyntaxError 4 column 1: expected the end of the file, a table row, a doc string's fence, "
         "a "
         "step, tags, examples, a scenario or a rule b\n"},
        {"@a\n", "SyntaxError 2 expected tags or a feature end of file\n"},
    };
    for (const auto& row : rows) {
        log = {};
        EXPECT_EQ(run(row.source, nullptr, nullptr), row.log);
    }
}

TEST_F(GherkinRun, LimitsWhatRowsComeTo) {
    std::string source = "Feature: f\nScenario: s\n* a ";
    for (int i = 0; i < 2'000; ++i)
        source += "<a>";
    source += "\nExamples:\n|a|\n|" + std::string(1'000, 'x') + "|\n";
    EXPECT_THAT(run(source, nullptr, nullptr),
                testing::EndsWith("RunFeatureError 6 the values of the row make a text longer than "
                                  "1048576 bytes\n"));
}

}  // namespace
}  // namespace Tamrix::Gherkin
