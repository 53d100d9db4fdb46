#include "runner/commands/commandline.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "runner/commands/commands.h"
#include "runner/coreapplication.h"
#include "support/printqt.h"

namespace Tamrix {
namespace {

Outcome<Action> parse(const QStringList& arguments,
                      const std::vector<Command>& commands = allCommands()) {
    // The parser's help asks the application for the program's name.
    Tamrix::Test::coreApplication();
    return parseCommandLine(QStringList("tamrixrunner") + arguments, commands);
}

/// What a command line prints, "exit code: output".
QString printed(const QStringList& arguments) {
    const Outcome<Action> action = parse(arguments);
    if (!action)
        return action.error().text;
    testing::internal::CaptureStdout();
    const int exitCode = (*action)();
    const QString output = QString::fromStdString(testing::internal::GetCapturedStdout());
    return QString("%1: %2").arg(QString::number(exitCode), output);
}

/// A command with options of all kinds that prints what it was asked for.
struct EchoSettings {
    QString text;
    QStringList all;
    int count = 0;
    bool isSet = false;
    QStringList arguments;
    QStringList script;
};

Outcome<> readCount(const QStringList& values, EchoSettings& settings) {
    settings.count = values.constLast().toInt();
    return settings.count > 0 ? Outcome<>() : wrongUsage("--count is above 0");
}

Outcome<> readArguments(const CommandArguments& arguments, EchoSettings& settings) {
    settings.arguments = arguments.own;
    settings.script = arguments.script;
    return arguments.own.contains("wrong") ? wrongUsage("no wrong argument") : Outcome<>();
}

EchoSettings lastEcho;

int echo(const EchoSettings& settings) {
    lastEcho = settings;
    return 7;
}

Command echoCommand(CommandTail tail) {
    return makeCommand<EchoSettings>(
        {{"echo", "WORD...", "Echoes.", 1, 3, tail},
         {{"text", "TEXT", "Any text.", nullptr, textTo(&EchoSettings::text)},
          {"all", "TEXT", "Texts.", nullptr, allTo(&EchoSettings::all)},
          {"count", "N", "Counts; %1 unless given.", "3", readCount},
          {"set", nullptr, "Sets.", nullptr, setTo(&EchoSettings::isSet, true)},
          {"unset", nullptr, "Does not.", nullptr, setTo(&EchoSettings::isSet, false)}},
         {{"set", "unset"}},
         readArguments,
         echo});
}

TEST(CommandLine, ValuesReachTheCommandsSettings) {
    const std::vector<Command> commands = {echoCommand(CommandTail::ScriptArguments)};
    const auto action =
        parse({"echo", "--set", "my word", "--text", "a", "--all", "b:c", "w 1", "--all=d",
               "--text", "e/", "w2", "--count", "5", "--", "--set", "--", "x"},
              commands);
    ASSERT_TRUE(action) << qPrintable(action.error().text);
    EXPECT_EQ((*action)(), 7);
    // Of several values the last one counts where only one is wanted.
    EXPECT_EQ(lastEcho.text, QString("e/"));
    EXPECT_EQ(lastEcho.all, QStringList({"b:c", "d"}));
    EXPECT_EQ(lastEcho.count, 5);
    EXPECT_TRUE(lastEcho.isSet);
    EXPECT_EQ(lastEcho.arguments, QStringList({"my word", "w 1", "w2"}));
    EXPECT_EQ(lastEcho.script, QStringList({"--set", "--", "x"}));

    ASSERT_TRUE(parse({"echo", "word"}, commands));
    (*parse({"echo", "word"}, commands))();
    EXPECT_EQ(lastEcho.count, 3) << "the default value is read";
    EXPECT_EQ(lastEcho.text, QString());
    EXPECT_FALSE(lastEcho.isSet);
}

TEST(CommandLine, ProgramGetsAllThatStandsBehindItsName) {
    const std::vector<Command> commands = {echoCommand(CommandTail::Program)};
    const auto action = parse({"echo", "--set", "program", "--text", "--"}, commands);
    ASSERT_TRUE(action) << qPrintable(action.error().text);
    (*action)();
    EXPECT_TRUE(lastEcho.isSet);
    EXPECT_EQ(lastEcho.arguments, QStringList({"program", "--text", "--"}));
}

TEST(CommandLine, ReadersRefuseWrongUsage) {
    const std::vector<Command> commands = {echoCommand(CommandTail::Nothing)};
    const std::pair<QStringList, const char*> rows[] = {
        {{"w", "--count", "0"}, "--count is above 0 (see tamrixrunner echo --help)"},
        {{"w", "wrong"}, "no wrong argument (see tamrixrunner echo --help)"},
        {{"w", "--set", "--unset"},
         "--set and --unset exclude each other (see tamrixrunner echo --help)"},
    };
    for (const auto& [arguments, error] : rows) {
        const auto action = parse(QStringList("echo") + arguments, commands);
        ASSERT_FALSE(action) << error;
        EXPECT_EQ(action.error().text, QString(error));
        EXPECT_EQ(action.error().kind, FailureKind::BadArgument);
    }
}

TEST(CommandLine, HelpAndVersionAreShown) {
    EXPECT_EQ(printed({"--version"}), QString("0: tamrixrunner 7.1.0\n"));
    EXPECT_EQ(printed({"--help"}), printed({"-h"}));
    for (const char* word : {"run SUITE [CASE...] [-- ARGUMENT...]", "list SUITE", "Exit code:"})
        EXPECT_TRUE(printed({"--help"}).contains(word)) << word;
    // Also where the rest would be wrong.
    const QString help = printed({"run", "--help"});
    EXPECT_TRUE(help.startsWith("0: Usage: tamrixrunner run SUITE")) << qPrintable(help);
    for (const char* word : {"--report <FORMAT:PATH>", "--result-dir <DIR>", "--fail-fast"})
        EXPECT_TRUE(help.contains(word)) << word;
    EXPECT_TRUE(printed({"find-image", "--help"}).simplified().contains("100 unless given"))
        << "the default";
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
        {{"run", "s", "--only-failed", "--result-dir", "o"},
         "Missing value after '--only-failed' (see tamrixrunner run --help)"},
        {{"run", "s", "--report", "junit"},
         "The report format 'junit' needs a path: junit:PATH (see tamrixrunner run --help)"},
        {{"run", "s", "--report", "pdf:x"},
         "Unknown report format 'pdf' in 'pdf:x'; the known ones are allure, console, "
         "cucumber-messages, html, json, junit, tap (see tamrixrunner run --help)"},
        {{"run", "s", "--report", "console:-"},
         "the console report always goes to standard output; 'console:-' would write it twice (see "
         "tamrixrunner run --help)"},
        {{"run", "s", "--debugger", "--report", "console:-"},
         "standard output belongs to the debugger; 'console:-' can't be written there (see "
         "tamrixrunner run --help)"},
        {{"debug", "s"}, "debug needs SUITE CASE (see tamrixrunner debug --help)"},
        {{"debug", "s", "a", "b"}, "unexpected argument 'b' (see tamrixrunner debug --help)"},
        {{"debug", "s", "a", "--fail-fast"},
         "Unknown option 'fail-fast' (see tamrixrunner debug --help)"},
        {{"run", "s", "--result-dir", "/a", "--report", "json:/a/../a/journal.jsonl"},
         "the reports 'json:/a/journal.jsonl' and 'json:/a/../a/journal.jsonl' have the same path "
         "(see tamrixrunner run --help)"},
        {{"run", "s", "--report", "json:/a/b", "--report", "junit:/a/c/../b"},
         "the reports 'json:/a/b' and 'junit:/a/c/../b' have the same path (see tamrixrunner run "
         "--help)"},
        {{"run", "s", "--no-console", "--quiet"},
         "--no-console and --quiet exclude each other (see tamrixrunner run --help)"},
        {{"run", "suite", "--fail-fast", "--max-failures", "3"},
         "--fail-fast and --max-failures exclude each other (see tamrixrunner run --help)"},
        {{"run", "suite", "--debugger", "--jobs", "2"},
         "--debugger and --jobs exclude each other (see tamrixrunner run --help)"},
        {{"run", "suite", "--jobs", "0"},
         "--jobs takes auto or a number from 1 to 1000, not '0' (see tamrixrunner run --help)"},
        {{"run", "suite", "--retries", "x"},
         "--retries takes a number from 0 to 1000000, not 'x' (see tamrixrunner run --help)"},
        {{"run", "suite", "--order", "random:"},
         "--order takes suite, longest, random or random:SEED, not 'random:' (see tamrixrunner run "
         "--help)"},
        {{"run", "suite", "--shard", "3/2"},
         "--shard: a shard is I/N with I from 1 to N, not '3/2' (see tamrixrunner run --help)"},
        {{"run", "suite", "--home", "mine"},
         "--home takes private or inherit, not 'mine' (see tamrixrunner run --help)"},
        {{"run", "s", "--verbose", "--quiet"},
         "--verbose and --quiet exclude each other (see tamrixrunner run --help)"},
        {{"run", "s", "--scenario", "-1"},
         "--scenario takes a number from 0 on, not '-1' (see tamrixrunner run --help)"},
        {{"features"}, "features needs SUITE [CASE...] (see tamrixrunner features --help)"},
        {{"list"}, "list needs SUITE (see tamrixrunner list --help)"},
        {{"list", "a", "b"}, "unexpected argument 'b' (see tamrixrunner list --help)"},
        {{"list", "a", "--", "b"}, "list takes no script arguments (see tamrixrunner list --help)"},
        {{"list", "a", "--report", "junit:x"},
         "Unknown option 'report' (see tamrixrunner list --help)"},
        {{"report", "j"},
         "report needs at least one --to FORMAT:PATH (see tamrixrunner report --help)"},
        {{"run", "s", "--aut-display", "99"},
         "--aut-display takes auto, inherit or :N, not '99' (see tamrixrunner run --help)"},
        {{"run", "s", "--video", "yes"},
         "--video takes on, off or on-failure, not 'yes' (see tamrixrunner run --help)"},
        {{"attachable", "program"},
         "attachable needs --name NAME (see tamrixrunner attachable --help)"},
        {{"record", "--suite", "s", "program"},
         "--suite and --case go together (see tamrixrunner record --help)"},
        {{"record", "--suite", "s", "--case", "a/b", "program"},
         "--case takes the name of a folder, not 'a/b' (see tamrixrunner record --help)"},
        {{"record", "--hook", "none", "program"},
         "--hook takes plugin or preload, not 'none' (see tamrixrunner record --help)"},
        {{"drive", "look"},
         "there is no tool 'look'; \"tamrixrunner drive tools\" lists them, and \"stop\" ends a "
         "session (see tamrixrunner drive --help)"},
        {{"mcp", "--aut-display", "here"},
         "--aut-display takes auto, inherit or :N, not 'here' (see tamrixrunner mcp --help)"},
        {{"inspect", "--wait", "soon", "program", "--xml"},
         "--wait takes a number of seconds, not 'soon' (see tamrixrunner inspect --help)"},
        {{"names", "make", "x"},
         "names knows the tasks convert, check and unused, not 'make' (see tamrixrunner names "
         "--help)"},
        {{"names", "convert", "x"},
         "names convert takes the file of a map and a new one (see tamrixrunner names --help)"},
        {{"names", "check", "x"},
         "names check takes a suite and a program (see tamrixrunner names --help)"},
        {{"names", "unused", "x", "y"},
         "names unused takes one suite (see tamrixrunner names --help)"},
        {{"vp", "make", "x"},
         "vp knows the tasks create and show, not 'make' (see tamrixrunner vp --help)"},
        {{"vp", "show", "x", "y"}, "vp show takes one file (see tamrixrunner vp --help)"},
        {{"vp", "create", "x"},
         "vp create takes a program and a name (see tamrixrunner vp --help)"},
        {{"vp", "create", "program", "name"},
         "vp create needs --object NAME (see tamrixrunner vp --help)"},
        {{"vp", "create", "program", "name", "--kind", "sound"},
         "--kind takes properties, table or visual, not 'sound' (see tamrixrunner vp --help)"},
        {{"inspect", "--json", "--xml", "program"},
         "--json and --xml exclude each other (see tamrixrunner inspect --help)"},
        {{"cut", "a", "0", "0", "0", "1", "n", "--suite", "s"},
         "WIDTH is a number from 1 on, not '0' (see tamrixrunner cut --help)"},
        {{"cut", "a", "0", "y", "1", "1", "n", "--suite", "s"},
         "Y is a number from 0 on, not 'y' (see tamrixrunner cut --help)"},
        {{"cut", "a", "0", "0", "1", "1", "n"}, "--suite is missing (see tamrixrunner cut --help)"},
        {{"cut", "a", "0", "0", "1", "1", "x/../../n", "--suite", "s"},
         "NAME is a file below the folder of search images, not 'x/../../n' (see tamrixrunner cut "
         "--help)"},
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
        {{"find-text"}, "find-text needs PICTURE (see tamrixrunner find-text --help)"},
        {{"find-text", "a", " "}, "TEXT is empty (see tamrixrunner find-text --help)"},
        {{"find-text", "a", "--occurrence", "1"},
         "--occurrence needs TEXT (see tamrixrunner find-text --help)"},
        {{"find-text", "a", "b", "--occurrence", "0"},
         "--occurrence takes a number from 1 on, not '0' (see tamrixrunner find-text --help)"},
        {{"find-text", "a", "--options", "{\"psm\": 11}"},
         "--options '{\"psm\": 11}': Unknown keys: psm (see tamrixrunner find-text --help)"},
        {{"find-text", "a", "--region", "1"},
         "--region '1': Rectangle descriptor must consist of four integers (see tamrixrunner "
         "find-text --help)"},
        {{"find-text", "a", "--annotate", "a"},
         "--annotate a would write over 'a' (see tamrixrunner find-text --help)"},
        {{"find-text", "a", "--engine", "tesseract"},
         "--engine: there is no engine 'tesseract'; there are: Tesseract, OCRSpace, Rekognition "
         "(see tamrixrunner find-text --help)"},
        {{"find-text", "--engines", "a"},
         "--engines takes no picture (see tamrixrunner find-text --help)"},
    };
    for (const auto& row : rows) {
        const Outcome<Action> action = parse(row.arguments);
        ASSERT_FALSE(action) << qPrintable(row.arguments.join(' '));
        EXPECT_EQ(action.error().text, QString(row.error)) << qPrintable(row.arguments.join(' '));
    }
}

}  // namespace
}  // namespace Tamrix
