// Files compared by scripts and at the terminal: what people read when files differ.

#include <gtest/gtest.h>

#include <QRegularExpression>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

const QString sourceDirectory = QStringLiteral(TAMRIX_TEST_SOURCE_DIR);

TEST(Comparison, ResultsTellWhatDiffers) {
    // The scripts write into their folders.
    const Tamrix::Test::SuiteFolder folder;
    const QString suite = folder.path("suite_comparison");
    for (const char* file : {"config.xml", "documents/test.py", "texts/test.py"}) {
        const QByteArray contents =
            Tamrix::Test::readFile(sourceDirectory + "/tests/e2e/suites/suite_comparison/" + file);
        ASSERT_TRUE(Tamrix::Test::writeFile(suite + '/' + file, contents));
    }
    RunnerProcess runner;
    runner.run({"run", suite, "--result-dir", folder.path("results")});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_EQ(runner.errors(), QString(""));

    QString text;
    for (const Json::Value& entry :
         Tamrix::Test::readJournal(folder.path("results/journal.jsonl"))) {
        const QString message = QString::fromStdString(entry["message"].asString());
        if (entry["kind"] == "result" && message != "Verified")
            text += message + ": " + QString::fromStdString(entry["detail"].asString()) + '\n';
    }
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("e2e/comparison/results.txt", text));
}

TEST(Comparison, TheGuideShowsRealOutput) {
    const QString guide =
        QString::fromUtf8(Tamrix::Test::readFile(sourceDirectory + "/docs/comparison.md"));
    const QRegularExpression example("```\n\\$ tamrixrunner ([^\n]*)\n(.*?)```\n",
                                     QRegularExpression::DotMatchesEverythingOption);
    int examples = 0;
    for (auto each = example.globalMatch(guide); each.hasNext(); ++examples) {
        const QRegularExpressionMatch match = each.next();
        RunnerProcess runner;
        runner.setWorkingDirectory(sourceDirectory + "/docs/comparison");
        runner.run(match.captured(1).split(' '));
        EXPECT_EQ(runner.output(), match.captured(2)) << qPrintable(match.captured(1));
        EXPECT_EQ(runner.exitCode(), runner.output().contains("are equal") ? 0 : 1);
    }
    EXPECT_EQ(examples, 4);
}

TEST(Comparison, WrongOptionsAndFilesEndWithExitCode2) {
    const struct {
        QStringList arguments;
        const char* error;
    } rows[] = {
        {{"csv", "a", "b"}, "compare takes text, json or xml, not 'csv'"},
        {{"text", "a"}, "compare needs text|json|xml EXPECTED ACTUAL"},
        {{"text", "a", "b", "--option", "strict"}, "--option takes NAME=VALUE, not 'strict'"},
        {{"text", "a", "b", "--option", "strict=true"},
         "unknown option 'strict'; text has strictLineEndings"},
        {{"text", "a", "b", "--option", "strictLineEndings=yes"},
         "option strictLineEndings takes true or false, not 'yes'"},
        {{"xml", "a", "b", "--option", "whitespaceInTextHandling=keep"},
         "option whitespaceInTextHandling takes preserve, normalize or trim, not 'keep'"},
        {{"xml", "a", "b", "--option", "ignore=true"}, "unknown option 'ignore'; xml has ignoreN"},
        {{"json", "a", "b", "--option", "x=y"}, "unknown option 'x'; json has none"},
        {{"json", "/none", "b"}, "File '/none' can not be read: No such file or directory"},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.run(QStringList("compare") + row.arguments);
        EXPECT_EQ(runner.exitCode(), 2) << row.error;
        EXPECT_EQ(runner.output(), QString(""));
        EXPECT_TRUE(runner.errors().startsWith(QString("tamrixrunner: ") + row.error))
            << qPrintable(runner.errors());
    }
}

TEST(Comparison, FilesThatAreNoJsonAreNamed) {
    const Tamrix::Test::SuiteFolder folder;
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.path("sound.json"), "[1]\n"));
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.path("lines.json"), "[1]\n[2]\n"));
    ASSERT_TRUE(Tamrix::Test::writeFile(folder.path("latin.json"), "[\"\xe4\"]\n"));
    const QString extraText = "Invalid JSON: * Line 2, Column 1 Extra text behind the value.\n";
    const QString badByte = "Invalid JSON: * Line 1, Column 3 A byte that is not UTF-8.\n";
    const struct {
        const char* expected;
        const char* actual;
        QString errors;
    } rows[] = {
        {"sound.json", "lines.json", "tamrixrunner: 'lines.json': " + extraText},
        {"latin.json", "sound.json", "tamrixrunner: 'latin.json': " + badByte},
        {"lines.json", "latin.json",
         "tamrixrunner: 'lines.json': " + extraText + "tamrixrunner: 'latin.json': " + badByte},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.setWorkingDirectory(folder.path("."));
        runner.run({"compare", "json", row.expected, row.actual});
        EXPECT_EQ(runner.exitCode(), 1);
        EXPECT_TRUE(runner.output().startsWith("Files differ: Invalid JSON: * Line "))
            << qPrintable(runner.output());
        EXPECT_EQ(runner.errors(), row.errors);
    }
}

}  // namespace
}  // namespace Tamrix
