// Suites and installations in unusual places.

#include <gtest/gtest.h>

#include "e2e/journal.h"
#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

/// A suite whose folders have blanks and umlauts in their names.
class Locations : public testing::Test {
protected:
    Locations() {
        folder.write("Prüfung 1/ein Fall/test.py",
                     "import os, sys\n"
                     "import hilfe\n"
                     "def main():\n"
                     "    hilfe.check()\n"
                     "    test.compare(os.getcwd(), os.path.dirname(os.path.realpath(__file__)))\n"
                     "    with open(findFile('testdata', 'Größe.txt')) as file:\n"
                     "        test.compare(file.read(), 'groß')\n"
                     "    test.attachFile(findFile('testdata', 'Größe.txt'))\n"
                     "    test.fail(os.environ['TAMRIX_SUITE_DIR'])\n");
        folder.write("Prüfung 1/shared/scripts/hilfe.py",
                     "def check():\n    test.pass_('Hilfe')\n");
        folder.write("Prüfung 1/shared/testdata/Größe.txt", "groß");
    }

    /// Runs the suite and checks that nothing but the last line of its case failed, which tells the
    /// suite's path. Positions of results have no symbolic links in them.
    void expectOnlyTheLastLineFails(RunnerProcess& runner, const QString& suite,
                                    const QString& expected) {
        runner.run({"run", suite, "--result-dir", folder.path("Ergebnis se")});
        EXPECT_EQ(runner.exitCode(), 1) << qPrintable(runner.errors());
        EXPECT_TRUE(runner.output().contains(folder.path("Prüfung 1/ein Fall/test.py") +
                                             ":9: Fail: " + expected + "\n"))
            << qPrintable(runner.output());
        EXPECT_TRUE(runner.output().contains("Results: passes 3, fails 1\n"))
            << qPrintable(runner.output());
    }

    Tamrix::Test::SuiteFolder folder;
};

TEST_F(Locations, BlanksAndUmlauts) {
    RunnerProcess runner;
    expectOnlyTheLastLineFails(runner, folder.path("Prüfung 1"), folder.path("Prüfung 1"));
    EXPECT_EQ(
        Tamrix::Test::readFile(folder.path("Ergebnis se/Prüfung 1/ein Fall/attachments/Größe.txt")),
        QByteArray("groß"));
}

TEST_F(Locations, WithoutAnyLocale) {
    for (const char* variable : {"LC_ALL", "LANG"}) {
        RunnerProcess runner;
        for (const char* other : {"LC_ALL", "LC_CTYPE", "LANG"})
            runner.setVariable(other, QString());
        runner.setVariable(variable, "C");
        expectOnlyTheLastLineFails(runner, folder.path("Prüfung 1"), folder.path("Prüfung 1"));
    }
}

TEST_F(Locations, RelativePath) {
    RunnerProcess runner;
    runner.setWorkingDirectory(folder.path("Prüfung 1/shared"));
    expectOnlyTheLastLineFails(runner, "..", folder.path("Prüfung 1"));
}

TEST_F(Locations, SymbolicLink) {
    ASSERT_TRUE(QFile::link("Prüfung 1", folder.path("link")));
    RunnerProcess runner;
    expectOnlyTheLastLineFails(runner, folder.path("link/"), folder.path("link"));
}

TEST_F(Locations, ProgramThroughASymbolicLink) {
    ASSERT_TRUE(QFile::link(TAMRIX_TEST_PREFIX "/bin/tamrixrunner", folder.path("start")));
    RunnerProcess runner;
    runner.setProgram(folder.path("start"));
    expectOnlyTheLastLineFails(runner, folder.path("Prüfung 1"), folder.path("Prüfung 1"));
}

TEST_F(Locations, AnotherInstallation) {
    // A copy of the program takes its own installation, unless the variable names another one.
    const QString prefix = folder.path("Ein Präfix");
    ASSERT_TRUE(QDir().mkpath(prefix + "/bin"));
    ASSERT_TRUE(QFile::copy(TAMRIX_TEST_PREFIX "/bin/tamrixrunner", prefix + "/bin/tamrixrunner"));
    for (const char* name : {"lib", "etc", "scriptmodules"})
        ASSERT_TRUE(QFile::link(QString(TAMRIX_TEST_PREFIX "/") + name, prefix + '/' + name));
    folder.write("s/a/test.py",
                 "import os\ndef main():\n    print('prefix', os.environ['TAMRIX_PREFIX'])\n");
    RunnerProcess own;
    own.setProgram(prefix + "/bin/tamrixrunner");
    own.run({"run", folder.path("s")});
    EXPECT_TRUE(own.output().contains("prefix " + prefix + '\n')) << qPrintable(own.output());
    EXPECT_EQ(own.exitCode(), 0);

    RunnerProcess named;
    named.setProgram(prefix + "/bin/tamrixrunner");
    named.setWorkingDirectory(TAMRIX_TEST_PREFIX "/lib");
    named.setVariable("TAMRIX_PREFIX", "..");
    named.run({"run", folder.path("s")});
    EXPECT_TRUE(named.output().contains("prefix " TAMRIX_TEST_PREFIX "\n"))
        << qPrintable(named.output());

    RunnerProcess wrong;
    wrong.setVariable("TAMRIX_PREFIX", folder.path("nowhere"));
    wrong.run({"run", folder.path("s")});
    EXPECT_EQ(wrong.exitCode(), 1);
    EXPECT_TRUE(wrong.output().contains("Failed to load script language plugin"))
        << qPrintable(wrong.output());
}

}  // namespace
}  // namespace Tamrix
