#include "runner/commands/commandline.h"

#include <gtest/gtest.h>

#include <QDir>

#include "runner/coreapplication.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

CommandLine parse(const QStringList& arguments) {
    // The parser's help asks the application for the program's name.
    Tamrix::Test::coreApplication();
    return parseCommandLine(QStringList("tamrixrunner") + arguments);
}

TEST(CommandLine, RunWithEverything) {
    const CommandLine line = parse({"run", "--fail-fast", "my suite", "--report", "junit:a:b.xml",
                                    "case 1", "--report=json:/tmp/../j", "--result-dir", "out/",
                                    "case2", "--verbose", "--", "--quiet", "--", "x"});
    ASSERT_EQ(line.error, QString());
    EXPECT_EQ(line.command, CommandLine::Command::Run);
    EXPECT_EQ(line.suite, QString("my suite"));
    EXPECT_EQ(line.cases, QStringList({"case 1", "case2"}));
    EXPECT_TRUE(line.failFast);
    EXPECT_TRUE(line.recordsActions);
    EXPECT_TRUE(line.verbose);
    EXPECT_FALSE(line.quiet);
    // The folder's own journal stands first.
    EXPECT_EQ(line.reports, QStringList({"json:" + QDir::current().filePath("out/journal.jsonl"),
                                         "junit:a:b.xml", "json:/tmp/../j"}));
    EXPECT_EQ(line.resultDirectory, QDir::current().filePath("out"));
    EXPECT_EQ(line.scriptArguments, QStringList({"--quiet", "--", "x"}));
}

TEST(CommandLine, ListAndReport) {
    const CommandLine list = parse({"list", "s"});
    EXPECT_EQ(list.command, CommandLine::Command::List);
    EXPECT_EQ(list.suite, QString("s"));

    const CommandLine report = parse({"report", "j", "--to", "junit:a", "--to", "json:b"});
    EXPECT_EQ(report.command, CommandLine::Command::Report);
    EXPECT_EQ(report.journal, QString("j"));
    EXPECT_EQ(report.reports.size(), 2);
}

TEST(CommandLine, FindImage) {
    const CommandLine line =
        parse({"find-image", "desk.png", "--options", "tolerant: true", "a.png", "b.png",
               "--region=1x2x3x4", "--limit", "7", "--best"});
    ASSERT_EQ(line.error, QString());
    EXPECT_EQ(line.command, CommandLine::Command::FindImage);
    EXPECT_EQ(line.haystack, QString("desk.png"));
    EXPECT_EQ(line.needles, QStringList({"a.png", "b.png"}));
    EXPECT_TRUE(line.searchOptions.getTolerant());
    EXPECT_EQ(line.searchRegion.description(), QString("1x2x3x4"));
    EXPECT_EQ(line.occurrenceLimit, 7);
    EXPECT_TRUE(line.wantsBest);
}

TEST(CommandLine, HelpAndVersionAreShown) {
    EXPECT_EQ(parse({"--version"}).text, QString("tamrixrunner 7.1.0\n"));
    EXPECT_EQ(parse({"--help"}).text, parse({"-h"}).text);
    for (const char* word : {"run SUITE [CASE...] [-- ARGUMENT...]", "list SUITE", "Exit code:"})
        EXPECT_TRUE(parse({"--help"}).text.contains(word)) << word;
    // Also where the rest would be wrong.
    const QString help = parse({"run", "--help"}).text;
    EXPECT_TRUE(help.startsWith("Usage: tamrixrunner run SUITE")) << qPrintable(help);
    for (const char* word : {"--report <FORMAT:PATH>", "--result-dir <DIR>", "--fail-fast"})
        EXPECT_TRUE(help.contains(word)) << word;
}

TEST(CommandLine, WrongUsageIsOneLine) {
    const struct {
        QStringList arguments;
        const char* error;
    } rows[] = {
        {{}, "no command given (see tamrixrunner --help)"},
        {{""}, "unknown command '' (see tamrixrunner --help)"},
        {{"start"}, "unknown command 'start' (see tamrixrunner --help)"},
        {{"--verbose", "run", "s"},
         "Unknown option '--verbose' in front of the command (see tamrixrunner --help)"},
        {{"run"}, "run needs SUITE [CASE...] (see tamrixrunner run --help)"},
        {{"run", "s", "--fast"}, "Unknown option 'fast' (see tamrixrunner run --help)"},
        {{"run", "s", "-x"}, "Unknown option 'x' (see tamrixrunner run --help)"},
        {{"run", "s", "--quiet=1"},
         "Unexpected value after '--quiet' (see tamrixrunner run --help)"},
        {{"run", "s", "--report"}, "Missing value after '--report' (see tamrixrunner run --help)"},
        {{"run", "s", "--report", "junit"},
         "The report format 'junit' needs a path: junit:PATH (see tamrixrunner run --help)"},
        {{"run", "s", "--report", "pdf:x"},
         "Unknown report format 'pdf' in 'pdf:x'; the known ones are console, html, json, junit "
         "(see tamrixrunner run --help)"},
        {{"run", "s", "--report", "console:-"},
         "the console report always goes to standard output; 'console:-' would write it twice (see "
         "tamrixrunner run --help)"},
        {{"run", "s", "--result-dir", "/a", "--report", "json:/a/../a/journal.jsonl"},
         "the reports 'json:/a/journal.jsonl' and 'json:/a/../a/journal.jsonl' have the same path "
         "(see tamrixrunner run --help)"},
        {{"run", "s", "--report", "json:/a/b", "--report", "junit:/a/c/../b"},
         "the reports 'json:/a/b' and 'junit:/a/c/../b' have the same path (see tamrixrunner run "
         "--help)"},
        {{"run", "s", "--verbose", "--quiet"},
         "--verbose and --quiet exclude each other (see tamrixrunner run --help)"},
        {{"list"}, "list needs SUITE (see tamrixrunner list --help)"},
        {{"list", "a", "b"}, "unexpected argument 'b' (see tamrixrunner list --help)"},
        {{"list", "a", "--", "b"}, "list takes no script arguments (see tamrixrunner list --help)"},
        {{"list", "a", "--report", "junit:x"},
         "Unknown option 'report' (see tamrixrunner list --help)"},
        {{"report", "j"},
         "report needs at least one --to FORMAT:PATH (see tamrixrunner report --help)"},
        {{"run", "s", "--aut-display", "99"},
         "--aut-display takes auto, inherit or :N, not '99' (see tamrixrunner run --help)"},
        {{"attachable", "program"},
         "attachable needs --name NAME (see tamrixrunner attachable --help)"},
        {{"inspect", "--wait", "soon", "program", "--xml"},
         "--wait takes a number of seconds, not 'soon' (see tamrixrunner inspect --help)"},
        {{"inspect", "--json", "--xml", "program"},
         "--json and --xml exclude each other (see tamrixrunner inspect --help)"},
        {{"find-image", "a", "b", "--options", "threshold: 101"},
         "--options 'threshold: 101': threshold must lie in the [0,100] range (see tamrixrunner "
         "find-image --help)"},
        {{"find-image", "a", "b", "--options", "minScale: 300"},
         "--options 'minScale: 300': minScale is above maxScale (see tamrixrunner find-image "
         "--help)"},
        {{"find-image", "a", "b", "--region", "1x2x0x4"},
         "--region '1x2x0x4': Invalid rectangle: 1x2x0x4 (see tamrixrunner find-image --help)"},
        {{"find-image", "a", "b", "--limit", "0"},
         "--limit takes a number from 1 on, not '0' (see tamrixrunner find-image --help)"},
        {{"find-image", "a", "/x/b", "--annotate", "/x/../x/b"},
         "--annotate /x/../x/b would write over '/x/b' (see tamrixrunner find-image --help)"},
    };
    for (const auto& row : rows) {
        const CommandLine line = parse(row.arguments);
        EXPECT_EQ(line.error, QString(row.error)) << qPrintable(row.arguments.join(' '));
        EXPECT_EQ(line.text, QString());
    }
}

}  // namespace
}  // namespace Tamrix
