// Feature files in suites: their runs, their reports, and what the command "features" tells of
// them.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using namespace Test;

class FeatureSuite : public testing::Test {
protected:
    FeatureSuite() {
        suite.write("suite_shop/order/test.feature",
                    "@shop\n"
                    "Feature: orders\n"
                    "  What people order.\n"
                    "\n"
                    "  Background:\n"
                    "    Given a customer\n"
                    "\n"
                    "  @quick\n"
                    "  Scenario: right\n"
                    "    When 2 pies are ordered\n"
                    "      | kind  | size |\n"
                    "      | apple | big  |\n"
                    "    Then 2 pies arrive\n"
                    "\n"
                    "  Scenario: wrong\n"
                    "    When 3 pies are ordered\n"
                    "    Then 2 pies arrive\n"
                    "    And they are \"warm\"\n"
                    "\n"
                    "  Scenario Outline: many\n"
                    "    When <count> pies are ordered\n"
                    "    Then <count> pies arrive\n"
                    "    Examples:\n"
                    "      | count |\n"
                    "      | 1     |\n"
                    "      | 4     |\n"
                    "\n"
                    "  Rule: payment\n"
                    "    @later\n"
                    "    Scenario: unwritten\n"
                    "      When \"ann\" pays 4.50 (cash)\n"
                    "      * pending\n");
        suite.write("suite_shop/shared/steps/orders.py",
                    "from bdd import given, when, then, step, pending, after_scenario\n"
                    "\n"
                    "@given('a customer')\n"
                    "def customer(context):\n"
                    "    context.count = 0\n"
                    "\n"
                    "@when('{int} pie(s) is/are ordered')\n"
                    "def order(context, count):\n"
                    "    context.count = count\n"
                    "\n"
                    "@then('{int} pies arrive')\n"
                    "def arrive(context, count):\n"
                    "    test.compare(context.count, count, 'pies')\n"
                    "\n"
                    "@step('pending')\n"
                    "def not_yet(context):\n"
                    "    pending()\n"
                    "\n"
                    "@step('never used')\n"
                    "def never(context):\n"
                    "    pass\n");
        suite.write("suite_shop/by_script/test.py",
                    "def main():\n"
                    "    runFeatureFile('extra.feature')\n"
                    "    test.log('behind it')\n");
        suite.write("suite_shop/by_script/extra.feature",
                    "# language: de\n"
                    "Funktionalität: Bestellungen\n"
                    "  Szenario: einfach\n"
                    "    Angenommen a customer\n");
        runner.setWorkingDirectory(suite.path());
    }

    QString normalised(const QString& text) const {
        return Normaliser()
            .path(suite.path("suite_shop"), "<SUITE>")
            .path(suite.path(), "<FOLDER>")
            .durations()
            .times()(text);
    }

    SuiteFolder suite;
    RunnerProcess runner;
};

TEST_F(FeatureSuite, RunsAndReports) {
    runner.run({"run", "suite_shop", "order", "by_script", "--report", "junit:out/junit.xml",
                "--report", "cucumber-messages:out/messages.ndjson", "--report", "html:out/html",
                "--report", "json:out/run.journal"});
    EXPECT_EQ(runner.exitCode(), 1) << runner.errors().toStdString();
    EXPECT_TRUE(compareWithGolden("e2e/features-console.txt", normalised(runner.output())));
    const QByteArray junit = readFile(suite.path("out/junit.xml"));
    EXPECT_TRUE(compareWithGolden("e2e/features-junit.xml", normalised(QString::fromUtf8(junit))));

    // What others define as the form of these messages.
    QProcess check;
    check.start("python3", {TAMRIX_TEST_SOURCE_DIR "/tests/e2e/cucumbermessages/check.py",
                            suite.path("out/messages.ndjson")});
    ASSERT_TRUE(check.waitForFinished());
    EXPECT_EQ(check.exitCode(), 0)
        << check.readAll().toStdString() << check.readAllStandardError().toStdString();
    const QString messages = QString::fromUtf8(readFile(suite.path("out/messages.ndjson")));
    const struct {
        const char* part;
        int count;
    } parts[] = {
        {"{\"testCaseStarted\":", 6},    {"{\"pickle\":", 6},
        {"\"status\":\"UNDEFINED\"", 1}, {"\"status\":\"FAILED\"", 1},
        {"\"status\":\"SKIPPED\"", 2},   {"\"name\":\"many\"", 3},
        {"\"language\":\"de\"", 2},      {"{\"testRunFinished\":{\"success\":false", 1},
    };
    for (const auto& row : parts)
        EXPECT_EQ(messages.count(row.part), row.count) << row.part;

    // The same reports come of the journal.
    RunnerProcess later;
    later.setWorkingDirectory(suite.path());
    later.run({"report", "out/run.journal", "--to", "junit:again/junit.xml", "--to",
               "cucumber-messages:again/messages.ndjson"});
    EXPECT_EQ(later.exitCode(), 0) << later.errors().toStdString();
    EXPECT_EQ(readFile(suite.path("again/junit.xml")), junit);
    EXPECT_EQ(readFile(suite.path("again/messages.ndjson")), messages.toUtf8());
}

TEST_F(FeatureSuite, RunsTheScenariosThatAreWanted) {
    const struct {
        QStringList options;
        const char* scenarios;
    } rows[] = {
        {{"--tags", "@quick"}, "right"},
        {{"--tags", "shop", "--tags", "~quick,~@shop", "--scenario", "1"}, "many (count=1)"},
        {{"--tags", "untagged"}, ""},
        {{"--scenario", "0"}, "right"},
    };
    for (const auto& row : rows) {
        RunnerProcess run;
        run.setWorkingDirectory(suite.path());
        run.run(QStringList{"run", "suite_shop", "order"} + row.options);
        QStringList names;
        for (const QString& line : run.output().split('\n')) {
            if (line.startsWith("    PASS"))
                names += line.mid(10).section("  (", 0, 0);
        }
        EXPECT_EQ(names.join(","), row.scenarios) << run.output().toStdString();
        EXPECT_EQ(run.exitCode(), 0);
    }
    runner.run({"run", "suite_shop", "--tags", "~untagged"});
    EXPECT_EQ(runner.exitCode(), 2);
    EXPECT_TRUE(
        runner.errors().contains("~ operator is not supported for reserved tag: ~untagged"));
    runner.run({"run", "suite_shop", "--scenario", "x"});
    EXPECT_EQ(runner.exitCode(), 2);
}

TEST_F(FeatureSuite, IsListed) {
    runner.run({"features", "suite_shop"});
    EXPECT_EQ(runner.exitCode(), 0) << runner.errors().toStdString();
    EXPECT_TRUE(compareWithGolden("e2e/features-list.txt", runner.output()));
}

TEST_F(FeatureSuite, IsCheckedWithoutRunning) {
    suite.write(
        "suite_shop/broken/test.feature",
        "Feature: broken\n  Senario: x\n    Given a customer\n  Scenario: y\n    Gibt es\n");
    suite.write("suite_shop/twice/test.feature",
                "Feature: twice\n  Scenario: x\n    Given a customer\n");
    suite.write(
        "suite_shop/twice/steps/twice.py",
        "from bdd import given\n@given('{word} customer')\ndef other(context, word): pass\n");
    suite.write("suite_shop/faulty/test.feature", "Feature: f\n  Scenario: x\n    Given a\n");
    suite.write("suite_shop/faulty/steps/faulty.py", "1 / 0\n");
    runner.run({"features", "suite_shop", "--check"});
    EXPECT_EQ(runner.exitCode(), 1) << runner.errors().toStdString();
    EXPECT_TRUE(compareWithGolden("e2e/features-check.txt", normalised(runner.output())));

    RunnerProcess json;
    json.setWorkingDirectory(suite.path());
    json.run({"features", "suite_shop", "order", "--check", "--json"});
    const QJsonObject told = QJsonDocument::fromJson(json.output().toUtf8()).object();
    EXPECT_EQ(told["features"].toArray().size(), 1);
    ASSERT_EQ(told["problems"].toArray().size(), 1);
    const QJsonObject problem = told["problems"].toArray()[0].toObject();
    EXPECT_EQ(problem["line"].toInt(), 31);
    EXPECT_EQ(problem["column"].toInt(), 7);
    EXPECT_EQ(problem["snippet"].toString(),
              "from bdd import when, pending\n\n"
              "@when(r\"{string} pays {float} \\(cash)\")\n"
              "def pays_cash(context, string_1, float_2):\n"
              "    pending()\n");
    EXPECT_EQ(told["unused"].toArray().size(), 1);
}

}  // namespace
}  // namespace Tamrix
