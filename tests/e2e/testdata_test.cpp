// Test data in whole runs and at the terminal.

#include <gtest/gtest.h>

#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"
#include "support/ziparchive.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;
using Tamrix::Test::SuiteFolder;

TEST(TestData, EveryFormatGivesTheSameRecords) {
    // The cases write beside their files.
    const SuiteFolder folder;
    const QString suite = QStringLiteral(TAMRIX_TEST_SOURCE_DIR "/tests/e2e/suites/suite_testdata");
    ASSERT_EQ(QProcess::execute("cp", {"-r", suite, folder.path()}), 0);
    RunnerProcess runner;
    runner.setVariable("QT_QPA_PLATFORM", "offscreen");
    runner.run({"run", folder.path("suite_testdata")});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.output()) << qPrintable(runner.errors());
}

TEST(TestData, IsPrintedAtTheTerminal) {
    const SuiteFolder folder;
    folder.write("people.csv", "name,age\n\"Ada, \"\"C\"\"\",36\n\"two\nlines\x1b\",7,more\nBob\n");
    folder.write("plain.txt", "nothing\n");
    const QString file = folder.path("people.csv");
    const QString warnings =
        "Warning: inconsistent format in " + file + " (line 2): Expected 2 fields. Got 3.\n" +
        "Warning: inconsistent format in " + file + " (line 3): Expected 2 fields. Got 1.\n";
    const struct {
        QStringList arguments;
        int exitCode;
        QString output;
        QString errors;
    } rows[] = {
        {{file},
         0,
         "name            age\n--------------  ---  ----\nAda, \"C\"        36\n"
         "two\\nlines\\x1b  7    more\nBob\n",
         warnings},
        {{file, "--as", "csv"},
         0,
         "\"name\",\"age\"\n\"Ada, "
         "\"\"C\"\"\",\"36\"\n\"two\nlines\x1b\",\"7\",\"more\"\n\"Bob\",\n",
         warnings},
        {{file, "--as", "json"},
         0,
         "{\"fields\": [\"name\",\"age\"],\n\"records\": [\n[\"Ada, \\\"C\\\"\",\"36\"],\n"
         "[\"two\\nlines\\u001b\",\"7\",\"more\"],\n[\"Bob\"]\n]}\n",
         warnings},
        {{folder.path("none")},
         2,
         "",
         "tamrixrunner: '" + folder.path("none") + "' can't be read: there is no such file\n"},
        {{folder.path("plain.txt")},
         2,
         "",
         "tamrixrunner: '" + folder.path("plain.txt") +
             "' is no table: its first lines hold no separator (comma, semicolon or tab) equally "
             "often\n"},
        {{file, "--sheet", "x"},
         2,
         "",
         "tamrixrunner: '" + file + "' has no sheets: only .xls and .xlsx files have them\n"},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.run(QStringList("data") + row.arguments);
        EXPECT_EQ(runner.exitCode(), row.exitCode);
        EXPECT_EQ(runner.output(), row.output);
        EXPECT_EQ(runner.errors(), row.errors);
    }
}

TEST(TestData, NothingIsPrintedOfHalfATable) {
    const SuiteFolder folder;
    const QString workbook = folder.path("a.xlsx");
    Tamrix::Test::writeArchive(
        workbook,
        {{"xl/workbook.xml", "<workbook><sheets><sheet name='A' sheetId='1'/></sheets></workbook>"},
         {"xl/worksheets/sheet1.xml",
          "<worksheet><sheetData><row><c><v>a</v></c></row><row><c "
          "r='XFE2'/></row></sheetData></worksheet>"}});
    folder.write("line.csv", "a,b\n1,2\n");
    ASSERT_TRUE(QFile::resize(folder.path("line.csv"), 65 << 20));
    const struct {
        const char* file;
        const char* reason;
    } rows[] = {
        {"a.xlsx", "tamrixrunner: testData Sheet: XFE2 lies beyond the last column\n"},
        {"line.csv", "Couldn't read line.csv: it has a line of more than 64 MiB\n"},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.setWorkingDirectory(folder.path("."));
        runner.run({"data", row.file});
        EXPECT_EQ(runner.exitCode(), 2);
        EXPECT_EQ(runner.output(), QString());
        EXPECT_EQ(runner.errors(), QString(row.reason) + "tamrixrunner: '" + row.file +
                                       "' can't be read as a whole, so nothing of it is printed\n");
    }
}

}  // namespace
}  // namespace Tamrix
