// A suite that fails in every way, and one that passes: what the reports say.

#include <gtest/gtest.h>

#include <QFile>
#include <QMap>
#include <QSet>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::compareWithGolden;
using Tamrix::Test::RunnerProcess;

const QString sourceDirectory = QStringLiteral(TAMRIX_TEST_SOURCE_DIR);

class Reports : public testing::Test {
protected:
    /// Runs a suite and compares what it writes with the golden files in a folder.
    void compareAll(const QString& suite, const QString& golden, int exitCode) {
        const QString journal = results.filePath("journal.jsonl");
        const QString junit = results.filePath("junit.xml");
        RunnerProcess runner;
        runner.run({"run", suite, "--result-dir", results.path(), "--report", "junit:" + junit});
        EXPECT_EQ(runner.exitCode(), exitCode);
        EXPECT_EQ(runner.errors(), QString(""));

        Tamrix::Test::Normaliser normalised;
        normalised.path(suite, "<SUITE>")
            .path(results.path(), "<RESULTS>")
            .path(TAMRIX_TEST_PREFIX, "<PREFIX>")
            .times()
            .durations()
            // A hundred times the same line, in each of the formats.
            .pattern("(\\n +called from <SUITE>/recursion/test\\.py:2){5,}", "\\1")
            .pattern("(\\ncalled from <SUITE>/recursion/test\\.py:2){5,}", "\\1")
            .pattern("(,\\{\"file\":\"<SUITE>/recursion/test\\.py\",\"line\":2\\}){5,}", "\\1")
            // The machine.
            .pattern("\\{\"kind\":\"environment\"[^\\n]*\\n", "")
            // How long actions take.
            .pattern("(\"kind\":\"action\".*\"value\":)\\d+", "\\1<TIME>")
            .pattern("Tamrix \\d+\\.\\d+\\.\\d+", "Tamrix <VERSION>");
        EXPECT_TRUE(compareWithGolden(golden + "/console.txt", normalised(runner.output())));
        EXPECT_TRUE(compareWithGolden(golden + "/journal.jsonl", normalised(read(journal))));
        EXPECT_TRUE(compareWithGolden(golden + "/junit.xml", normalised(read(junit))));

        EXPECT_EQ(schemaErrors(junit), QString(""));
        // The other forms of the console.
        for (const QString verbosity : {"--quiet", "--verbose"}) {
            RunnerProcess again;
            again.run({"run", suite, verbosity, "--result-dir", results.filePath(verbosity)});
            EXPECT_TRUE(compareWithGolden(golden + "/console" + verbosity + ".txt",
                                          normalised(again.output())));
        }
        // From the journal come the same reports.
        const QString second = results.filePath("second.xml");
        RunnerProcess report;
        report.run({"report", journal, "--to", "junit:" + second, "--to",
                    "json:" + results.filePath("second.jsonl")});
        EXPECT_EQ(report.exitCode(), 0) << qPrintable(report.errors());
        // A journal can't hold half a character.
        EXPECT_EQ(read(second), read(junit).replace("\\ud83d", "\ufffd"));
        EXPECT_EQ(readEntries("second.jsonl"), readEntries("journal.jsonl"));
    }

    /// What the schema has against JUnit XML.
    QString schemaErrors(const QString& path) const {
        QProcess process;
        process.start(XMLLINT, {"--noout", "--nonet", "--schema",
                                sourceDirectory + "/tests/platform/testresult/junit.xsd", path});
        if (!process.waitForFinished())
            return "xmllint did not run";
        return process.exitCode() == 0 ? "" : QString::fromUtf8(process.readAllStandardError());
    }

    QString read(const QString& path) const {
        return QString::fromUtf8(Tamrix::Test::readFile(path));
    }

    /// A journal without its header, which tells when it was made.
    QString readEntries(const QString& name) const {
        return read(results.filePath(name)).section('\n', 1);
    }

    QTemporaryDir results;
};

TEST_F(Reports, OfASuiteThatFailsInEveryWay) {
    compareAll(sourceDirectory + "/tests/e2e/suites/failures", "e2e/failures", 1);
}

TEST_F(Reports, OfTheFirstExample) {
    compareAll(sourceDirectory + "/examples/suite_first", "e2e/suite_first", 0);
}

/// Whether the line of the file is marked as the place of a failure.
bool isMarked(const QString& file, int line) {
    return QString::fromUtf8(Tamrix::Test::readFile(file))
        .section('\n', line - 1, line - 1)
        .endsWith("# here");
}

int marksIn(const QString& file) {
    return QString::fromUtf8(Tamrix::Test::readFile(file)).count("# here");
}

TEST_F(Reports, EveryFailureStandsAtItsLine) {
    const QString suite = sourceDirectory + "/tests/e2e/suites/failures";
    RunnerProcess runner;
    runner.run({"run", suite, "--report", "json:" + results.filePath("journal.jsonl")});

    QMap<QString, QSet<int>> found;
    for (const Json::Value& entry : Tamrix::Test::readJournal(results.filePath("journal.jsonl"))) {
        const int type = entry["type"].asInt();
        const bool failed = type == 8 || type == 9 || type == 11 || type == 13;
        if (entry["kind"] != "result" || !failed || entry["echo"].asBool())
            continue;
        ASSERT_GE(entry["callStack"].size(), 1u) << entry;
        const Json::Value& position = entry["callStack"][0];
        const QString file = QString::fromStdString(position["file"].asString());
        const int line = position["line"].asInt();
        // What concerns a file as a whole has no line: no language, no function main.
        if (line < 1)
            continue;
        EXPECT_TRUE(isMarked(file, line)) << entry;
        found[file].insert(line);
    }
    // Each mark was reached.
    EXPECT_GE(found.size(), 14);
    for (auto file = found.cbegin(); file != found.cend(); ++file)
        EXPECT_EQ(file->size(), marksIn(file.key())) << qPrintable(file.key());
}

}  // namespace
}  // namespace Tamrix
