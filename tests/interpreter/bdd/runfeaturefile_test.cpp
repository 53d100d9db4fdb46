#include "interpreter/bdd/runfeaturefile.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include "base/overloaded.h"
#include "interpreter/bdd/fakeactions.h"
#include "interpreter/bridge/testsettingstype.h"
#include "interpreter/debugger/testdebugger.h"
#include "platform/testresult/resulttext.h"
#include "platform/testresult/testvp.h"
#include "support/fakelanguage.h"
#include "support/fakerunner.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"
#include "support/recordingreport.h"
#include "support/scriptedfrontend.h"

namespace Tamrix {
namespace {

using namespace Test;

class FeatureContext : public FakeContext {
public:
    using FakeContext::FakeContext;

    Gherkin::ScriptActions* gherkinScriptActions(const QString& name) override {
        askedFor = name;
        return hasActions ? &actions : nullptr;
    }

    FakeActions actions;
    bool hasActions = true;
    QString askedFor;
};

class RunFeatureFileTest : public testing::Test {
protected:
    ~RunFeatureFileTest() override {
        ScriptContext::setCurrent(nullptr);
        Interpreter::setSelf(nullptr);
        TestVP::setScreenshotServices({});
        TestSettingsType::reset();
    }

    /// Runs a file; the error of the script, empty without one.
    QString run(const QString& file) {
        report.entries.clear();
        context.call(runFeatureFile, {text(file)});
        return context.errorMessage();
    }

    /// Runs a feature of a text.
    QString runText(const char* feature) {
        EXPECT_TRUE(writeFile(folder.filePath("x.feature"), feature));
        return run(folder.filePath("x.feature"));
    }

    static QString place(const CallStack& stack) {
        QStringList places;
        for (const LineInfo& position : stack)
            places += positionText(position);
        return places.isEmpty() ? QString() : " at " + places.join(" < ");
    }

    /// The sections and results, a line each, indented.
    QString told() {
        QString text;
        int depth = 0;
        const auto add = [&](const QString& line) {
            text += QString(2 * depth, ' ') + QString(line).replace('\n', "\\n") + '\n';
        };
        for (const ReportEntry& entry : report.entries) {
            std::visit(
                Overloaded{
                    [&](const SectionStarted& section) {
                        add(QStringLiteral("%1 '%2' (%3) #%4%5")
                                .arg(section.kind, section.title, section.description)
                                .arg(section.index)
                                .arg(place(section.callStack)));
                        ++depth;
                    },
                    [&](const SectionEnded&) { --depth; },
                    [&](const ResultAdded& result) {
                        add(QStringLiteral("%1 %2: %3 [%4%5] #%6%7 %8")
                                .arg(result.type)
                                .arg(result.message, result.detail, result.comment, result.skipped)
                                .arg(result.value)
                                .arg(place(result.callStack), result.explanation));
                    },
                    [&](const ItemDescribed& item) {
                        add("= " + item.keyword + "|" + item.tags + "|" + item.argument);
                    },
                    [&](const StepMatched& match) {
                        QString line = "matches " + match.definition + place({match.position});
                        for (const StepParameterRange& each : match.parameters)
                            line += QStringLiteral(" %1-%2 %3")
                                        .arg(each.begin)
                                        .arg(each.end)
                                        .arg(each.type);
                        add(line);
                    },
                    [](const auto&) {},
                },
                entry.event);
        }
        return Normaliser().path(data, "<DATA>")(text);
    }

    const QString data = QFileInfo(QString(__FILE__)).absolutePath() + "/data";
    QTemporaryDir folder;
    RecordingReport report;
    TestResult result{&report};
    FakeRunner runner;
    FakeInterpreter interpreter{&runner, Interpreter::Tcl};
    FeatureContext context{&result};
};

TEST_F(RunFeatureFileTest, TellsAllThatHappens) {
    EXPECT_EQ(run(data + "/orders.feature"), "");
    EXPECT_EQ(context.askedFor, data + "/orders.feature");
    EXPECT_TRUE(compareWithGolden("bdd/run.txt", told()));
}

TEST_F(RunFeatureFileTest, RunsWhatTheRunWants) {
    runner.tagFilters = QStringList{"@quick", "~slow"};
    EXPECT_EQ(run(data + "/orders.feature"), "");
    QStringList ran;
    for (const SectionStarted& section : report.all<SectionStarted>()) {
        if (section.kind == "scenario" || section.kind == "row")
            ran += section.title;
    }
    EXPECT_EQ(ran.join(","), "right");

    runner.tagFilters.clear();
    runner.wantedScenarios = {8};
    EXPECT_EQ(run(data + "/orders.feature"), "");
    EXPECT_TRUE(told().contains("row 'count=2, what=cake, who=bob' () #8"));

    runner.tagFilters = QStringList{"~untagged"};
    EXPECT_EQ(run(data + "/orders.feature"),
              "~ operator is not supported for reserved tag: ~untagged");
    EXPECT_TRUE(report.entries.empty());
}

TEST_F(RunFeatureFileTest, RefusesWhatIsNoFeature) {
    const QString wrongCall = "runFeatureFile() requires a feature file name as argument";
    for (const ScriptArgument::List& arguments :
         {ScriptArgument::List{}, {text("a"), text("b")}, {integer(1)}}) {
        context.call(runFeatureFile, arguments);
        EXPECT_EQ(context.errorMessage(), wrongCall);
    }
    EXPECT_EQ(run("no.feature"), "runFeatureFile() failed to open file 'no.feature'");
    const QString path = folder.filePath("x.feature");
    EXPECT_EQ(
        runText("Feature: a\n  Scenario: b\n    Gibven c\n    When d\n").left(path.size() + 16),
        "Syntax error in " + path);
    EXPECT_TRUE(context.errorMessage().endsWith("(got 'Gibven c')"))
        << context.errorMessage().toStdString();
    EXPECT_EQ(context.errorFrame(), (DebuggerFrame{3, 0, -1})) << "without a debugger";
    EXPECT_TRUE(report.entries.empty());
    EXPECT_EQ(runText(""),
              "Error running feature file in " + path + ":1: the file holds no feature");
}

TEST_F(RunFeatureFileTest, KnowsNoStepWithoutALanguageForThem) {
    context.hasActions = false;
    EXPECT_EQ(runText("Feature: a\n  Scenario: b\n    Given c\n"), "");
    const std::vector<ResultAdded> results = report.results();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].message, "No Matching Step Definition");
    EXPECT_EQ(results[0].explanation, "");
}

TEST_F(RunFeatureFileTest, LetsAMissingStepBeWritten) {
    TestDebugger debugger;
    ScriptedFrontEnd& frontEnd = ScriptedFrontEnd::install(debugger);
    debugger.setInteractive(true);
    debugger.setBreakOnMissingStep(true);
    frontEnd.commands = {Resume::Run};
    EXPECT_EQ(runText("Feature: a\n  Scenario: b\n    Given unknown\n"), "");
    EXPECT_EQ(frontEnd.take(), "3 no step unknown");
    EXPECT_TRUE(report.results().empty());
    EXPECT_GT(debugger.findSourceId("x.feature"), 0);

    EXPECT_NE(runText("Feature: a\n  Scenario: b\n    Bad c\n"), "");
    EXPECT_EQ(debugger.findSourceId(context.errorFrame().sourceId),
              Debugger::sanitizedFilePath(folder.filePath("x.feature")));
}

TEST_F(RunFeatureFileTest, AppendsScreenshotsToDetails) {
    TestVP::setScreenshotServices(
        {[](RunnerInterface*) { return QImage(2, 2, QImage::Format_RGB32); },
         [this](RunnerInterface*) { return folder.path(); },
         {}});
    TestSettingsType::s_vpOptions.setFlag(VerificationOptions::LogScreenshotOnError, true);
    EXPECT_EQ(runText("Feature: a\n  Scenario: b\n    Given unknown\n"), "");
    const std::vector<ResultAdded> results = report.results();
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].message, "No Matching Step Definition");
    EXPECT_TRUE(results[0].detail.startsWith("unknown (Screenshot in '"))
        << results[0].detail.toStdString();
}

}  // namespace
}  // namespace Tamrix
