// The commands of the program: exit codes, what goes to which stream, reports that can't be
// written.

#include <gtest/gtest.h>
#include <unistd.h>

#include <QImage>

#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

using Tamrix::Test::RunnerProcess;

class Commands : public testing::Test {
protected:
    Commands() {
        suite.write("suite/good/test.py", "def main():\n    test.pass_('well')\n");
        suite.write("suite/bad/test.py", "def main():\n    test.fail('not well')\n");
        suite.write("suite/last/test.py", "def main():\n    print('last runs')\n");
        suite.write("suite/config.xml",
                    "<suite><cases><case name=\"good\"/><case name=\"bad\"/></cases></suite>");
    }

    Tamrix::Test::SuiteFolder suite;
};

TEST_F(Commands, WrongUsageIsOneLineOnStandardErrorAndExitCode2) {
    suite.write("empty/file");
    suite.write("text", "no journal\n");
    suite.write("faulty/a/test.py");
    suite.write("faulty/config.xml", "<suite>\n<oops/>\n</suite>");
    const QString name = suite.path("suite");
    const struct {
        QStringList arguments;
        QString error;
    } rows[] = {
        {{}, "no command given"},
        {{"walk"}, "unknown command 'walk'"},
        {{"run", name, "--nonsense"}, "Unknown option 'nonsense'"},
        {{"run", suite.path("absent")}, "there is no suite '" + suite.path("absent")},
        {{"run", suite.path("empty")}, "has no test case"},
        {{"list", suite.path("empty")}, "has no test case"},
        {{"list", suite.path("faulty")}, suite.path("faulty/config.xml") + ":2: unknown element"},
        {{"run", name, "god"}, "no test case 'god'; did you mean 'good' or 'bad'?"},
        {{"run", name, "--report", "junit:" + suite.path()}, "it is a directory"},
        {{"run", name, "--report", "json:/proc/none/journal"}, "/proc/none/journal"},
        {{"run", name, "--result-dir", suite.path("text")}, suite.path("text")},
        {{"report", suite.path("absent"), "--to", "console"}, "there is no journal"},
        {{"report", suite.path("text"), "--to", "junit:" + suite.path("x.xml")},
         suite.path("text")},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.run(row.arguments);
        EXPECT_EQ(runner.exitCode(), 2) << qPrintable(row.arguments.join(' '));
        EXPECT_EQ(runner.output(), QString(""));
        EXPECT_TRUE(runner.errors().startsWith("tamrixrunner: ")) << qPrintable(runner.errors());
        EXPECT_TRUE(runner.errors().contains(row.error)) << qPrintable(runner.errors());
        EXPECT_EQ(runner.errors().count('\n'), 1) << qPrintable(runner.errors());
    }
    EXPECT_FALSE(QFile::exists(suite.path("x.xml"))) << "a report of a faulty journal";
}

TEST_F(Commands, HelpVersionAndList) {
    RunnerProcess version;
    EXPECT_EQ(version.run({"--version"}).output(), QString("tamrixrunner 7.1.0\n"));
    EXPECT_EQ(version.exitCode(), 0);
    RunnerProcess help;
    EXPECT_TRUE(help.run({"run", "--help"}).output().startsWith("Usage: "));
    EXPECT_EQ(help.exitCode(), 0);
    RunnerProcess list;
    EXPECT_EQ(list.run({"list", suite.path("suite")}).output(), QString("good\nbad\nlast\n"));
    EXPECT_EQ(list.exitCode(), 0);
}

TEST_F(Commands, ExitCodeTellsOfFailures) {
    const struct {
        QStringList arguments;
        int exitCode;
    } rows[] = {{{"good"}, 0}, {{"bad"}, 1}, {{}, 1}, {{"last", "good"}, 0}};
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.run(QStringList({"run", suite.path("suite")}) + row.arguments);
        EXPECT_EQ(runner.exitCode(), row.exitCode) << qPrintable(row.arguments.join(' '));
        EXPECT_EQ(runner.errors(), QString(""));
    }
}

TEST_F(Commands, FailFastEndsBehindTheFirstFailure) {
    RunnerProcess runner;
    runner.run({"run", suite.path("suite"), "--fail-fast"});
    EXPECT_EQ(runner.exitCode(), 1);
    EXPECT_TRUE(runner.output().contains("PASS  good"));
    EXPECT_FALSE(runner.output().contains("last"));
    EXPECT_EQ(runner.errors(),
              QString("tamrixrunner: ended at the first failure: 1 test case(s) did not run\n"));
}

TEST_F(Commands, ScriptArgumentsReachTheScript) {
    suite.write("suite/args/test.py", "import sys\ndef main():\n    print(sys.argv[1:])\n");
    RunnerProcess runner;
    runner.run({"run", suite.path("suite"), "args", "--", "--quiet", "a b", "", "ü", "--"});
    EXPECT_EQ(runner.exitCode(), 0);
    EXPECT_TRUE(runner.output().contains("['--quiet', 'a b', '', 'ü', '--']"))
        << qPrintable(runner.output());
}

TEST_F(Commands, RunTakesItsOptionsAmongItsArguments) {
    RunnerProcess runner;
    runner.run({"run", "--no-actions", suite.path("suite"), "--report",
                "junit:" + suite.path("a:b.xml"), "last", "--report=json:" + suite.path("x/../j"),
                "--result-dir", suite.path("out/"), "good", "--verbose", "--", "--quiet"});
    EXPECT_EQ(runner.exitCode(), 0) << qPrintable(runner.errors());
    EXPECT_TRUE(runner.output().contains("good") && runner.output().contains("last runs"))
        << qPrintable(runner.output());
    EXPECT_FALSE(runner.output().contains("bad")) << "a case that was not named";
    EXPECT_TRUE(runner.output().contains("well")) << "what --verbose shows";
    for (const char* file : {"a:b.xml", "j", "out/journal.jsonl"})
        EXPECT_TRUE(QFile::exists(suite.path(file))) << file;
}

TEST_F(Commands, ReportThatCantBeWrittenInTheEndIsTold) {
    // The folder is there when the run starts and gone when the report is written.
    suite.write("suite/remover/test.py",
                "import os, shutil, sys\ndef main():\n    shutil.rmtree(sys.argv[1])\n");
    RunnerProcess runner;
    runner.run({"run", suite.path("suite"), "remover", "--report",
                "junit:" + suite.path("reports/junit.xml"), "--", suite.path("reports")});
    EXPECT_EQ(runner.exitCode(), 2);
    EXPECT_TRUE(runner.errors().contains(suite.path("reports/junit.xml")))
        << qPrintable(runner.errors());
    EXPECT_EQ(runner.errors().count('\n'), 1);
    EXPECT_TRUE(runner.output().contains("PASS  remover"));
}

TEST_F(Commands, ReportDoesNotWriteOverItsJournal) {
    RunnerProcess runner;
    runner.run({"run", suite.path("suite"), "--result-dir", suite.path("results")});
    const QString journal = suite.path("results/journal.jsonl");
    const QByteArray before = Tamrix::Test::readFile(journal);
    ASSERT_FALSE(before.isEmpty());
    ASSERT_TRUE(QFile::link(journal, suite.path("link")));
    for (const QString& target : {journal, suite.path("link"), suite.path("suite/../link")}) {
        RunnerProcess report;
        report.run({"report", journal, "--to", "json:" + target});
        EXPECT_EQ(report.exitCode(), 2) << qPrintable(target);
        EXPECT_EQ(Tamrix::Test::readFile(journal), before);
    }
}

// The pictures of the documentation.
TEST_F(Commands, FindsPicturesInPictures) {
    const QString folder = TAMRIX_TEST_SOURCE_DIR "/docs/images/";
    const QString order = folder + "order.png";
    const QString annotated = suite.path("found.png");
    suite.write("text.png", "no picture\n");
    const struct {
        QStringList arguments;
        int exitCode;
        /// What standard output, or for exit code 2 standard error, is or contains.
        QString text;
    } rows[] = {
        {{"save.png", "round.png"}, 0, "53x14x24x24\n243x184x80x25\n"},
        {{"save-large.png"}, 1, "Not found\n"},
        {{"save-large.png", "--best"}, 0, "243x184x80x25  score 99.748\n"},
        {{"round.png", "--options", "tolerant: true, threshold: 99", "--limit", "1"},
         0,
         "15x14x24x24  score 99.667\n"},
        {{"save.png", "--region", "0x0x200x100", "--json"}, 1, "\"occurrences\" : []"},
        {{"save.png", "--annotate", annotated}, 0, "243x184x80x25\n"},
        {{"absent.png"}, 2, "'" + folder + "absent.png' can't be read"},
        {{suite.path("text.png")}, 2, "text.png' can't be read: "},
        {{"save.png", "--region", "1000x0x9x9"}, 2, "1000x0x9x9 lies outside '" + order + "'"},
        {{"save.png", "--annotate", suite.path("x/y.png")}, 2, "x/y.png' can't be written: "},
        {{"save.png", "--annotate", suite.path("x.abc")}, 2, "x.abc' can't be written: "},
    };
    for (const auto& row : rows) {
        QStringList arguments = row.arguments;
        for (QString& each : arguments) {
            if (each.endsWith(".png") && !each.startsWith('/'))
                each.prepend(folder);
        }
        RunnerProcess runner;
        runner.run(QStringList{"find-image", order} + arguments);
        EXPECT_EQ(runner.exitCode(), row.exitCode) << qPrintable(arguments.join(' '));
        const QString text = row.exitCode == 2 ? runner.errors() : runner.output();
        EXPECT_TRUE(text.contains(row.text)) << qPrintable(text);
    }
    const QImage image(annotated);
    EXPECT_EQ(image.size(), QImage(order).size());
    EXPECT_EQ(image.pixelColor(242, 184), QColor(Qt::red));
    EXPECT_EQ(image.pixel(243, 184), QImage(order).pixel(243, 184));
    EXPECT_FALSE(QFile::exists(suite.path("x.abc")));
}

TEST_F(Commands, CutsSearchImagesOutOfScreenshots) {
    const QString order = TAMRIX_TEST_SOURCE_DIR "/docs/images/order.png";
    suite.write("suite/plain/test.py", "def main():\n    pass\n");
    const QString shared = suite.path("suite/shared/searchImages/new/save.png");
    const QString own = suite.path("suite/plain/searchImages/save.png");
    const struct {
        QStringList arguments;
        int exitCode;
        QString text;
    } rows[] = {
        {{order, "20", "30", "40", "10", "new/save"}, 0, shared + '\n'},
        {{order, "21", "30", "40", "10", "new/save"}, 2, "' is there already; --replace replaces"},
        {{order, "25", "30", "40", "10", "new/save.png", "--replace"}, 0, shared + '\n'},
        {{order, "20", "30", "4", "10", "save.png", "--case", "plain"}, 0, own + '\n'},
        {{order, "20", "30", "4", "10", "save", "--case", "none"}, 2, "none"},
        {{order, "20", "30", "2147483647", "10", "x"},
         2,
         "the place leaves '" + order + "', which"},
        {{suite.path("none.png"), "0", "0", "1", "1", "x"}, 2, "none.png' can't be read: "},
    };
    for (const auto& row : rows) {
        RunnerProcess runner;
        runner.run(QStringList("cut") + row.arguments +
                   QStringList{"--suite", suite.path("suite")});
        EXPECT_EQ(runner.exitCode(), row.exitCode) << qPrintable(row.arguments.join(' '));
        const QString text = row.exitCode == 2 ? runner.errors() : runner.output();
        EXPECT_TRUE(text.contains(row.text)) << qPrintable(text);
    }
    EXPECT_EQ(QImage(shared).size(), QSize(40, 10));
    EXPECT_EQ(QImage(shared).pixel(0, 0), QImage(order).pixel(25, 30));
    EXPECT_EQ(QImage(own).size(), QSize(4, 10));
}

TEST_F(Commands, ReaderThatGoesAwayDoesNotTakeTheReportsWithIt) {
    suite.write("suite/chatty/test.py",
                "def main():\n    for _ in range(20000):\n        print('x' * 100)\n");
    QProcess shell;
    shell.start("/bin/sh",
                {"-c", "'" TAMRIX_TEST_PREFIX "/bin/tamrixrunner' run '" + suite.path("suite") +
                           "' chatty last --report 'junit:" + suite.path("junit.xml") + "' 2>'" +
                           suite.path("errors") + "' | head -n 1"});
    ASSERT_TRUE(shell.waitForFinished(60'000));
    const QString junit = QString::fromUtf8(Tamrix::Test::readFile(suite.path("junit.xml")));
    EXPECT_TRUE(junit.contains("last runs")) << qPrintable(junit.right(400));
    EXPECT_TRUE(junit.endsWith("</testsuites>\n"));
    const QString errors = QString::fromUtf8(Tamrix::Test::readFile(suite.path("errors")));
    EXPECT_EQ(errors.count('\n'), 1) << qPrintable(errors);
}

TEST_F(Commands, NamesThatControlATerminalOrAreNotUnicodeCanBeUsed) {
    // What a shell makes, since Qt's own texts can't hold such names.
    RunnerProcess shell;
    shell.setProgram("/bin/sh");
    shell.setWorkingDirectory(suite.path());
    shell.setVariable("RUNNER", TAMRIX_TEST_PREFIX "/bin/tamrixrunner");
    shell.setVariable("LC_ALL", "C.UTF-8");
    shell.run({"-c", R"sh(
name=$(printf 'caf\351\033[31m')
mkdir "s$name" "s$name/t$name" "s$name/u
v"
echo "
import os
def main():
    test.log(os.path.basename(os.getcwd()))" > "s$name/t$name/test.py"
cp "s$name/t$name/test.py" "s$name/u
v/test.py"
"$RUNNER" list "s$name"
"$RUNNER" list "s$name" | while IFS= read -r case; do
    "$RUNNER" run "s$name" "$case" --report "json:j$name" || echo "failed: run"
    "$RUNNER" report "j$name" --to console > /dev/null || echo "failed: report"
done
"$RUNNER" run "s$name" "t$name" || echo "failed: run by its name"
printf '{"a": 1}\n' > "d$name"
printf 'a,b\n1,2\n' > "d$name.csv"
"$RUNNER" compare json "d$name" "d$name" || echo "failed: compare"
"$RUNNER" data "d$name.csv" || echo "failed: data"
for command in list run data inspect "report --to console" "compare text /dev/null" \
        "attachable --name n"; do
    "$RUNNER" $command "none$name"
done
"$RUNNER" find-image "none$name" needle
rm -r ./*caf*
)sh"});
    const QString all = shell.output() + shell.errors();
    EXPECT_FALSE(all.contains("failed: ")) << qPrintable(all);
    EXPECT_FALSE(all.contains('\x1b')) << qPrintable(all);
    EXPECT_FALSE(all.contains(QChar::ReplacementCharacter)) << qPrintable(all);
    EXPECT_TRUE(shell.output().startsWith("tcaf\\xe9\\x1b[31m\nu\\nv\n")) << qPrintable(all);
    EXPECT_EQ(shell.errors().count("none"), 8) << qPrintable(shell.errors());
    EXPECT_EQ(shell.errors().count("nonecaf\\xe9\\x1b[31m"), 8) << qPrintable(shell.errors());
}

}  // namespace
}  // namespace Tamrix
