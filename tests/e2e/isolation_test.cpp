// What a test case leaves behind does not reach the next one.

#include <gtest/gtest.h>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "platform/testresult/testresult.h"
#include "runner/suites/suitefolder.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

TEST(Isolation, TheSecondCaseFindsNoTraceOfTheFirst) {
    const QTemporaryDir results;
    RunnerProcess runner;
    runner.setVariable("LC_ALL", "C.UTF-8");
    runner.setVariable("HOME", "/somewhere");
    const QString suite = QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/tests/e2e/suites/isolation");
    runner.run(
        {"run", suite, "--report", "json:" + results.filePath("journal.jsonl"), "--verbose"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output());
    EXPECT_EQ(runner.errors(), QString(""));

    QStringList shape;
    int line = 0;
    for (const Json::Value& entry : Tamrix::Test::readJournal(results.filePath("journal.jsonl"))) {
        const QString kind = QString::fromStdString(entry["kind"].asString());
        if (kind != "result")
            shape.append(kind);
        if (entry["message"] == "results stand at their own line")
            line = entry["callStack"][0]["line"].asInt();
    }
    EXPECT_EQ(line, 12);
    EXPECT_EQ(shape,
              QStringList({"suiteStart", "caseStart", "sectionStart", "sectionEnd", "caseEnd",
                           "caseStart", "output", "output", "caseEnd", "suiteEnd"}));
}

TEST(Isolation, EachCaseStartsWithTheSettingsOfTheSuite) {
    const QTemporaryDir results;
    RunnerProcess runner;
    runner.run({"run", TAMRIX_TEST_SOURCE_DIR "/tests/e2e/suites/settings", "--report",
                "json:" + results.filePath("journal.jsonl")});
    EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.output());
    QStringList told;
    for (const Json::Value& entry : Tamrix::Test::readJournal(results.filePath("journal.jsonl"))) {
        if (entry["kind"] == "result" && entry["type"].asInt() != TestResult::Pass)
            told.append(QString::fromStdString(entry["message"].asString()));
    }
    const QStringList warnings{
        "Unexpected boolean value for TestSettings property 'logScreenshotOnPass'. 'on' was "
        "evaluated to 'false'.",
        "TestSettings property 'waitForever' in config.xml could not be found."};
    const QStringList first{"this failure is wanted", "and throws"};
    const QStringList second{"this failure is wanted, too", "and does not throw"};
    EXPECT_EQ(told, warnings + first + warnings + second);
}

TEST(Isolation, AForkedChildDoesNotRunTheRestOfTheSuite) {
    const Tamrix::Test::SuiteFolder suite;
    suite.write("a/test.py",
                "import os\n"
                "def main():\n"
                "    child = os.fork()\n"
                "    if child:\n"
                "        os.waitpid(child, 0)\n");
    suite.write("b/test.py", "def main():\n    test.pass_('once')\n");
    RunnerProcess runner;
    runner.run({"run", suite.path(), "--verbose"});
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_EQ(runner.output().count("once"), 1) << qPrintable(runner.output());
    EXPECT_EQ(runner.output().count("2 cases"), 1);
}

TEST(Isolation, AForkedChildCanBeTerminatedAsAnyProcess) {
    const Tamrix::Test::SuiteFolder suite;
    suite.write("a/test.py",
                "import os, signal, time\n"
                "def main():\n"
                "    child = os.fork()\n"
                "    if not child:\n"
                "        time.sleep(600)\n"
                "    os.kill(child, signal.SIGTERM)\n"
                "    test.compare(os.waitpid(child, 0)[1], signal.SIGTERM)\n");
    RunnerProcess runner;
    EXPECT_EQ(runner.run({"run", suite.path()}).exitCode(), 0) << qPrintable(runner.output());
}

TEST(Isolation, ScriptCanDeleteItsWorkingDirectory) {
    const Tamrix::Test::SuiteFolder suite;
    suite.write("a/test.py",
                "import os, shutil, tempfile\n"
                "def main():\n"
                "    folder = tempfile.mkdtemp()\n"
                "    os.chdir(folder)\n"
                "    os.rmdir(folder)\n"
                "    test.log('gone')\n");
    suite.write("b/test.py",
                "import os\n"
                "def main():\n"
                "    test.compare(os.path.basename(os.getcwd()), 'b')\n");
    RunnerProcess runner;
    EXPECT_EQ(runner.run({"run", suite.path()}).exitCode(), 0) << qPrintable(runner.output());
}

}  // namespace
}  // namespace Tamrix
