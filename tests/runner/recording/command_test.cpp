// "tamrixrunner record" as it is used at a terminal: what it says, and what it leaves.

#include <gtest/gtest.h>

#include <QDir>
#include <csignal>

#include "e2e/runnerprocess.h"
#include "runner/suites/suitefolder.h"
#include "support/files.h"
#include "support/golden.h"
#include "support/printqt.h"
#include "support/waituntil.h"

namespace Tamrix {
namespace {

using Tamrix::Test::readFile;

const QString target = TAMRIX_TEST_PREFIX "/tests/targets/recorder_target";

/// The process that was started with this path as its first argument; 0 for none.
int processWithArgument(const QString& path) {
    const QStringList processes = QDir("/proc").entryList({"[0-9]*"}, QDir::Dirs);
    for (const QString& process : processes) {
        const QList<QByteArray> words = readFile("/proc/" + process + "/cmdline").split('\0');
        if (words.size() > 1 && words[0] == target.toLocal8Bit() && words[1] == path.toLocal8Bit())
            return process.toInt();
    }
    return 0;
}

class RecordCommand : public testing::Test {
protected:
    /// Exit code, output and errors of a command that does not begin to record.
    QString told(const QStringList& arguments) {
        Tamrix::Test::RunnerProcess command;
        command.setWorkingDirectory(suite.path());
        command.run(QStringList{"record"} + arguments);
        return QStringLiteral("$ record %1\n%2%3exit code %4\n\n")
            .arg(arguments.join(' '), command.output(), command.errors(),
                 QString::number(command.exitCode()));
    }
    /// A recording in the case "case" of which nothing is done, until `end`.
    template <typename End>
    QString recording(const QString& language, End end) {
        Tamrix::Test::RunnerProcess command;
        command.start({"record", "--aut-display", "auto", "--suite", suite.path("suite"), "--case",
                       language, "--language", language, target, suite.path("journal")});
        EXPECT_TRUE(command.waitForErrors("Recording;"));
        end(command);
        command.finish();
        const QByteArray script =
            readFile(suite.path("suite/" + language + "/test." + suffixOf(language)));
        return QStringLiteral("$ record --language %1\n%2%3exit code %4\n# The script\n%5\n")
            .arg(language, command.output(), command.errors(), QString::number(command.exitCode()),
                 QString::fromUtf8(script));
    }
    static QString suffixOf(const QString& language) { return language == "python" ? "py" : "tcl"; }
    QString normalised(const QString& text) const {
        return Tamrix::Test::Normaliser()
            .path(suite.path(), "<FOLDER>")
            .path(TAMRIX_TEST_PREFIX, "<PREFIX>")
            .pattern("folders of PATH \\(.*\\)", "folders of PATH (...)")(text);
    }

    Tamrix::Test::SuiteFolder suite;
};

TEST_F(RecordCommand, FailsClearly) {
    suite.write("suite/there/test.py", "def main():\n    pass\n");
    suite.write("faulty/shared/objectnames.tsv", ":Save\t{type=}\n");
    const QStringList rows[] = {
        {},
        {"--case", "new", "true"},
        {"--suite", "suite", "--case", "../new", "true"},
        {"--suite", "suite", "--case", "there", "true"},
        {"--suite", "suite/there/test.py", "--case", "new", "true"},
        {"--suite", "/proc/self", "--case", "new", "true"},
        {"--suite", "faulty", "--case", "new", "true"},
        {"--language", "cobol", "true"},
        {"--verify-keys", "Ctrl+Nothing", "true"},
        {"--hook", "magic", "true"},
        {"--aut-display", "auto", "no_such_program"},
        // Ends before an agent comes.
        {"--aut-display", "auto", "--suite", "suite", "--case", "new", "true"},
    };
    QString text;
    for (const QStringList& row : rows)
        text += told(row);
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("e2e/record-failures.txt", normalised(text)));
    EXPECT_EQ(readFile(suite.path("suite/there/test.py")), "def main():\n    pass\n");
    EXPECT_FALSE(QFile::exists(suite.path("suite/new")));
}

TEST_F(RecordCommand, LeavesAWholeScript) {
    // By the program's end, by Ctrl-C, and when the runner itself is killed.
    QString text = recording("python", [this](Tamrix::Test::RunnerProcess&) {
        ASSERT_GT(processWithArgument(suite.path("journal")), 0);
        ::kill(processWithArgument(suite.path("journal")), SIGTERM);
    });
    text +=
        recording("tcl", [](Tamrix::Test::RunnerProcess& command) { command.sendSignal(SIGINT); });
    ASSERT_TRUE(QDir(suite.path("suite/tcl")).removeRecursively());
    text +=
        recording("tcl", [](Tamrix::Test::RunnerProcess& command) { command.sendSignal(SIGKILL); });
    EXPECT_TRUE(Tamrix::Test::compareWithGolden("e2e/record-ends.txt", normalised(text)));
    // The watch behind the runner ends the program, a moment later.
    EXPECT_TRUE(
        Tamrix::Test::waitUntil([&] { return processWithArgument(suite.path("journal")) == 0; }));
}

}  // namespace
}  // namespace Tamrix
