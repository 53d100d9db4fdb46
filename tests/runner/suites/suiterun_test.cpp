#include "runner/suites/suiterun.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "base/environment.h"
#include "runner/coreapplication.h"
#include "runner/processes/interrupt.h"
#include "runner/suites/suitefolder.h"
#include "support/outcomes.h"
#include "support/printqt.h"
#include "support/recordingreport.h"

namespace Tamrix {
namespace {

/// Runs suites in an installation without any language plug-in: every case that comes so far as to
/// be loaded ends with that result.
class SuiteRunTest : public testing::Test {
protected:
    SuiteRunTest() {
        Tamrix::Test::coreApplication();
        Environment::setVariable(prefixVariable, folder.path("prefix"));
    }
    ~SuiteRunTest() override { Interrupt::reset(); }

    void run(const SuiteRunOptions& options = {}) {
        const auto suite = loadSuite(folder.path("suite"));
        ASSERT_EQ(Tamrix::Test::errorOf(suite), QString());
        SuiteRun suiteRun(*suite, options, &report);
        ASSERT_EQ(Tamrix::Test::errorOf(suiteRun.prepare()), QString());
        suiteRun.run(suite->cases);
        hasFailed = suiteRun.hasFailed();
        interruptedBy = suiteRun.interruptedBy();
        skippedCases = suiteRun.skippedCases();
        std::erase_if(report.entries, [this](const ReportEntry& entry) {
            const auto* fact = eventOf<EnvironmentFact>(entry);
            if (fact)
                facts.insert(fact->name, fact->fact);
            return fact != nullptr;
        });
    }

    Tamrix::Test::SuiteFolder folder;
    /// Without what tells of the environment, which stands in `facts`.
    Tamrix::Test::RecordingReport report;
    QMap<QString, QString> facts;
    bool hasFailed = false;
    int interruptedBy = 0;
    int skippedCases = 0;
};

TEST_F(SuiteRunTest, TellsWhereItRuns) {
    folder.write("suite/a/test.py", "def main(): pass\n");
    SuiteRunOptions options;
    options.display = ":7";
    options.scriptArguments = QStringList{"a b", "c"};
    run(options);
    EXPECT_EQ(facts.value("Tamrix"), TAMRIX_VERSION);
    EXPECT_EQ(facts.value("Qt"), qVersion());
    EXPECT_EQ(facts.value("Script arguments"), "'a b' c");
    EXPECT_TRUE(facts.value("System").contains(QSysInfo::kernelVersion()));
    EXPECT_EQ(facts.value("Display"), ":7");
}

TEST_F(SuiteRunTest, EveryCaseIsFramedAndAMissingPluginIsAResult) {
    folder.write("suite/a/test.py", "def main(): pass\n");
    folder.write("suite/b/test.py", "def main(): pass\n");
    run();
    ASSERT_EQ(report.kinds(), (QStringList{"suiteStart", "caseStart", "result", "caseEnd",
                                           "caseStart", "result", "caseEnd", "suiteEnd"}));
    EXPECT_EQ(report.all<SuiteStarted>().at(0), (SuiteStarted{"suite", folder.path("suite")}));
    EXPECT_EQ(report.all<CaseStarted>().at(1), (CaseStarted{"b", folder.path("suite/b/test.py")}));
    const ResultAdded result = report.results().at(1);
    EXPECT_EQ(result.message, QString("Failed to load script language plugin"));
    ASSERT_EQ(result.callStack.size(), 1u);
    EXPECT_EQ(result.callStack.front().fileName(), folder.path("suite/b/test.py"));
    EXPECT_TRUE(hasFailed);
    EXPECT_EQ(interruptedBy, 0);
    EXPECT_EQ(skippedCases, 0);
    EXPECT_EQ(std::getenv("TAMRIX_SUITE_DIR"), nullptr) << "the run leaves its variables behind";
}

TEST_F(SuiteRunTest, FailFastEndsBehindTheFirstFailure) {
    for (const char* name : {"suite/a/test.py", "suite/b/test.py", "suite/c/test.py"})
        folder.write(name);
    SuiteRunOptions options;
    options.maxFailures = 1;
    run(options);
    EXPECT_EQ(report.results().size(), 1u);
    EXPECT_EQ(skippedCases, 2);
}

TEST_F(SuiteRunTest, ScriptThatIsNoUtf8IsAResult) {
    folder.write("suite/a/test.py", "\n# \xfcml\n");
    run();
    ASSERT_EQ(report.results().size(), 1u);
    const ResultAdded result = report.results().front();
    EXPECT_EQ(result.type, TestResult::Fatal);
    EXPECT_EQ(result.message, QString("Can't read test script"));
    EXPECT_EQ(result.detail, QString("the file is not encoded in UTF-8"));
    EXPECT_EQ(result.callStack.front(), LineInfo(folder.path("suite/a/test.py"), 2));
    EXPECT_TRUE(hasFailed);
}

TEST_F(SuiteRunTest, NoCaseStartsAfterASignal) {
    folder.write("suite/a/test.py");
    Interrupt::install();
    ::raise(SIGTERM);
    run();
    EXPECT_EQ(report.kinds(), (QStringList{"suiteStart", "suiteEnd"}));
    EXPECT_TRUE(report.all<SuiteEnded>().at(0).isInterrupted);
    EXPECT_EQ(interruptedBy, SIGTERM);
    EXPECT_EQ(skippedCases, 1);
    EXPECT_FALSE(hasFailed);
}

}  // namespace
}  // namespace Tamrix
